// Faults only the layer can stage: a copy that fails in mid-part (which side
// the log blames) and a source tree that cannot be deleted after a move's
// copy (both trees stay). The end-to-end tests cover what a real disk shows.
#include <gtest/gtest.h>

#include <filesystem>

#include "files/Ztconcatfiles.h"
#include "files/Ztdirectoryactions.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "support/FakeHost.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
namespace pf = zt::platform;
using Lines = std::vector<std::string>;

// Every copy chunk fails with Error.
class FailingCopyEnv : public pf::EnvWrapper {
 public:
  explicit FailingCopyEnv(pf::DWORD Error) : EnvWrapper(pf::Env::Platform()), Error_(Error) {}
  pf::DWORD CopyChunk(pf::THandle, pf::THandle, std::int64_t, std::int64_t& Copied) override {
    Copied = 0;
    return Error_;
  }

 private:
  pf::DWORD Error_;
};

TEST(ConcatFaultsTest, AFullDiskBlamesTheTargetAnyOtherFailureTheSource) {
  for (const auto& [Error, Blamed] : {std::pair{pf::ERROR_DISK_FULL, std::string(" --> Error Writing File : ")},
                                      std::pair{pf::ERROR_NOT_READY, std::string(" --> Error Reading File : ")}}) {
    TempDir D;
    D.Write("part.txt", "part");
    const std::string Target = D.Write("all.txt", "old");
    FakeHost Host;
    package::TConcatAction A;
    A.SetHost(&Host);
    A.SetSourceFiles(D / "part.txt");
    A.SetTargetFile(Target);
    FailingCopyEnv Env(Error);
    pf::ScopedEnv Use(&Env);
    EXPECT_FALSE(A.Execute());
    EXPECT_EQ(Host.AllDetails(),
              (Lines{"Concatenating files : " + Target, "Adding : " + D / "part.txt",
                     Blamed + (Error == pf::ERROR_DISK_FULL ? Target : D / "part.txt"),
                     " --> " + pf::SysErrorMessage(Error), "0 Files Concatenated."}));
    EXPECT_EQ(D.Read("all.txt"), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(D.Path()), fs::directory_iterator()), 2);
  }
}

// Directories never rename (as across file systems), and one file of the
// source cannot be deleted.
class OtherVolumeEnv : public pf::EnvWrapper {
 public:
  OtherVolumeEnv() : EnvWrapper(pf::Env::Platform()) {}
  bool MoveFileWithProgressA(const std::string& Existing, const std::string& New, pf::LPPROGRESS_ROUTINE Progress,
                             void* Data, pf::DWORD Flags) override {
    if (fs::is_directory(Existing)) {
      pf::SetLastError(pf::ERROR_NOT_SAME_DEVICE);
      return false;
    }
    return Target()->MoveFileWithProgressA(Existing, New, Progress, Data, Flags);
  }
  bool DeleteFile(const std::string& Path) override {
    if (Path.ends_with("locked.txt")) {
      pf::SetLastError(pf::ERROR_SHARING_VIOLATION);
      return false;
    }
    return Target()->DeleteFile(Path);
  }
};

TEST(MoveDirectoryFaultsTest, ASourceThatCannotBeDeletedAfterTheCopyLeavesBothTrees) {
  TempDir D;
  fs::create_directories(D / "src/sub");
  D.Write("src/sub/locked.txt", "locked");
  FakeHost Host;
  package::TZTMoveDirectoryAction A;
  A.SetHost(&Host);
  A.SetFileOrDirectory(D / "src/sub");
  A.SetTarget(D / "dst");
  OtherVolumeEnv Env;
  pf::ScopedEnv Use(&Env);
  EXPECT_FALSE(A.Execute());
  EXPECT_EQ(Host.AllDetails(),
            (Lines{"Moving directory : " + D / "src/sub" + " -> " + D / "dst",
                   "Moving across volumes : copying and deleting",
                   " --> Error Moving Directory : " + D / "src/sub" + " -> " + D / "dst",
                   " --> Error Deleting File : " + D / "src/sub/locked.txt",
                   " --> The process cannot access the file because it is being used by another process"}));
  EXPECT_EQ(D.Read("src/sub/locked.txt"), "locked");
  EXPECT_EQ(D.Read("dst/locked.txt"), "locked");
}

}  // namespace
}  // namespace zt::testing
