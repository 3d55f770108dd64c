// "Set File Attributes" and "Touch File(s)" on a file the platform refuses to
// change, through its replaceable Env (everything a real disk shows is
// checked through zt).
#include <gtest/gtest.h>

#include <algorithm>

#include "files/Ztfileattrib.h"
#include "files/Zttouchfile.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "support/ActionTesting.h"
#include "support/FakeHost.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace pf = zt::platform;
using Lines = std::vector<std::string>;

// SetFileAttributesA and FileOpen fail with ERROR_ACCESS_DENIED for Victim.
class RefusingEnv : public pf::EnvWrapper {
 public:
  explicit RefusingEnv(std::string Victim) : EnvWrapper(pf::Env::Platform()), Victim_(std::move(Victim)) {}
  bool SetFileAttributesA(const std::string& Path, pf::DWORD Attributes) override {
    if (Path == Victim_) return pf::SetLastError(pf::ERROR_ACCESS_DENIED), false;
    return EnvWrapper::SetFileAttributesA(Path, Attributes);
  }
  pf::THandle FileOpen(const std::string& Path, int Mode) override {
    if (Path == Victim_) return pf::SetLastError(pf::ERROR_ACCESS_DENIED), pf::INVALID_HANDLE_VALUE;
    return EnvWrapper::FileOpen(Path, Mode);
  }

 private:
  std::string Victim_;
};

TEST(FileActionFaults, SetFileAttributesStopsAtTheFirstFileItCannotChange) {
  TempDir Dir;
  MakeTree(Dir.Path(), {"a.txt", "b.txt", "c.txt"});
  const Lines Order = FoundNames(Dir / "*.txt", pf::faAnyFile);
  RefusingEnv Env(Dir / Order[1]);
  pf::ScopedEnv Use(&Env);
  FakeHost Host;
  package::TSetFileAttributesAction A;
  A.SetHost(&Host);
  A.SetFileSpec(Dir / "*.txt");
  A.SetReadOnly(package::asSet);
  A.SetLogAllFiles(true);
  EXPECT_FALSE(A.Execute());
  EXPECT_EQ(Host.AllDetails(), (Lines{"Processed File : " + (Dir / Order[0]),
                                      "Error processing File Spec : Error Processing File " +
                                          (Dir / Order[1]) + " : Access is denied"}));
  Lines Expected = {Order[0] + " [ro]", Order[1], Order[2]};
  std::sort(Expected.begin(), Expected.end());
  EXPECT_EQ(Tree(Dir.Path()), Expected);
}

TEST(FileActionFaults, TouchStopsAtAFileItCannotOpenAndPutsItsReadOnlyBitBack) {
  for (const std::string File : {"locked.txt", "ro.txt [ro]"}) {
    TempDir Dir;
    MakeTree(Dir.Path(), {File});
    const std::string Name = File.substr(0, File.find(' '));
    RefusingEnv Env(Dir / Name);
    pf::ScopedEnv Use(&Env);
    FakeHost Host;
    package::TTouchFilesAction A;
    A.SetHost(&Host);
    A.SetFileSpec(Dir / "*.txt");
    A.SetTouchReadOnly(true);
    EXPECT_FALSE(A.Execute());
    EXPECT_EQ(Host.StatusEntries,
              (std::vector<Lines>{{"Error touching File : " + (Dir / Name)}, {"Processed : 0 File(s)"}}));
    EXPECT_EQ(Tree(Dir.Path()), Lines{File});
  }
}

}  // namespace
}  // namespace zt::testing
