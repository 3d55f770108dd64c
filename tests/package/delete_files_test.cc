// "Delete File(s)" on file systems that misbehave, through the platform's
// replaceable Env (everything a real disk shows is checked through zt).
#include <gtest/gtest.h>

#include "files/Ztdeletefilesaction.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "support/FakeHost.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace pf = zt::platform;
using Lines = std::vector<std::string>;

// Reports the delete of Victim but keeps the file, or fails it without an
// error code.
class FaultyDeleteEnv : public pf::EnvWrapper {
 public:
  FaultyDeleteEnv(bool KeepFile, std::string Victim)
      : EnvWrapper(pf::Env::Platform()), KeepFile_(KeepFile), Victim_(std::move(Victim)) {}
  bool DeleteFile(const std::string& Path) override {
    if (Path != Victim_) return Target()->DeleteFile(Path);
    pf::SetLastError(KeepFile_ ? pf::ERROR_SHARING_VIOLATION : 0);
    return KeepFile_;
  }

 private:
  bool KeepFile_;
  std::string Victim_;
};

TEST(DeleteFaults, AFileThatStaysStopsTheRunUnlessNoErrorWasGiven) {
  for (bool KeepFile : {true, false}) {
    TempDir Dir;
    MakeTree(Dir.Path(), {"a.txt", "b.txt", "c.txt"});
    FakeHost Host;
    package::TDeleteFilesAction A;
    A.SetHost(&Host);
    A.SetFileSpec(Dir / (KeepFile ? "b.txt" : "*.txt"));
    FaultyDeleteEnv Env(KeepFile, Dir / "b.txt");
    pf::ScopedEnv Use(&Env);
    EXPECT_EQ(A.Execute(), !KeepFile);
    const Lines Expected =
        KeepFile
            ? Lines{"Deleting files : " + (Dir / "b.txt"), " --> Error Deleting File : " + (Dir / "b.txt"),
                    " --> The process cannot access the file because it is being used by another process",
                    "0 Files Deleted."}
            : Lines{"Deleting files : " + (Dir / "*.txt"), "2 Files Deleted."};
    EXPECT_EQ(Host.AllDetails(), Expected);
    EXPECT_EQ(ListNames(Dir.Path()), KeepFile ? (Lines{"a.txt", "b.txt", "c.txt"}) : Lines{"b.txt"});
  }
}

}  // namespace
}  // namespace zt::testing
