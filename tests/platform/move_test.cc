#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include "platform/files.h"
#include "support/Files.h"
#include "tests/support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::Exists;
using zt::testing::ListNames;
using zt::testing::ReadText;
using zt::testing::TempDir;
using zt::testing::WriteText;

constexpr DWORD kMoveFlags = MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH;

TEST(MoveFile, ExistingTargetGivesAlreadyExistsAndBothStay) {
  TempDir T;
  WriteText(T / "a.txt", "a");
  WriteText(T / "b.txt", "b");
  EXPECT_FALSE(MoveFileWithProgressA(T / "a.txt", T / "b.txt", nullptr, nullptr, kMoveFlags));
  EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
  EXPECT_FALSE(MoveFileA(T / "a.txt", T / "b.txt"));
  EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(ReadText(T / "a.txt"), "a");
  EXPECT_EQ(ReadText(T / "b.txt"), "b");
}

TEST(MoveFile, RenamesFilesAndDirectoriesAndChangesLetterCase) {
  TempDir T;
  WriteText(T / "a.txt", "a");
  mkdir((T / "d").c_str(), 0777);
  EXPECT_TRUE(MoveFileA(T / "a.txt", T / "d/A.TXT"));
  EXPECT_TRUE(MoveFileA(T / "d/A.TXT", T / "d/a.Txt"));
  EXPECT_TRUE(MoveFileWithProgressA(T / "d", T / "e", nullptr, nullptr, kMoveFlags));
  EXPECT_EQ(ListNames(T / "e"), (std::vector<std::string>{"a.Txt"}));
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"e"}));
}

TEST(MoveFile, ExReplacesFilesButNeverADirectory) {
  TempDir T;
  WriteText(T / "a.txt", "a");
  WriteText(T / "b.txt", "b");
  mkdir((T / "d").c_str(), 0777);
  mkdir((T / "e").c_str(), 0777);
  EXPECT_TRUE(MoveFileExA(T / "a.txt", T / "b.txt", MOVEFILE_REPLACE_EXISTING));
  EXPECT_EQ(ReadText(T / "b.txt"), "a");
  EXPECT_FALSE(MoveFileExA(T / "d", T / "e", 0));
  EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
  EXPECT_FALSE(MoveFileExA(T / "d", T / "e", MOVEFILE_REPLACE_EXISTING));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_FALSE(MoveFileExA(T / "b.txt", T / "e", MOVEFILE_REPLACE_EXISTING));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"b.txt", "d", "e"}));
}

TEST(MoveFile, ReadOnlyTargetIsNotReplaced) {
  TempDir T;
  WriteText(T / "a.txt", "a");
  WriteText(T / "b.txt", "b");
  ASSERT_TRUE(SetFileAttributesA(T / "b.txt", FILE_ATTRIBUTE_READONLY));
  EXPECT_FALSE(MoveFileWithProgressA(T / "a.txt", T / "b.txt", nullptr, nullptr, MOVEFILE_REPLACE_EXISTING));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ReadText(T / "b.txt"), "b");
  EXPECT_TRUE(Exists(T / "a.txt"));
}

TEST(MoveFile, MissingSourceAndMissingTargetFolder) {
  TempDir T;
  WriteText(T / "a.txt", "a");
  EXPECT_FALSE(MoveFileA(T / "none.txt", T / "b.txt"));
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_FALSE(MoveFileA(T / "a.txt", T / "nodir/b.txt"));
  EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
  EXPECT_TRUE(Exists(T / "a.txt"));
}

// A second file system for moves across devices: /dev/shm when it is one.
class CrossDeviceMove : public ::testing::Test {
 protected:
  void SetUp() override {
    struct stat A, B;
    std::string Tmpl = "/dev/shm/zt-move-XXXXXX";
    if (stat("/dev/shm", &B) != 0 || stat(T.Path().c_str(), &A) != 0 || A.st_dev == B.st_dev ||
        !mkdtemp(Tmpl.data()))
      GTEST_SKIP() << "no second file system to move to";
    Other = Tmpl;
  }
  void TearDown() override {
    if (!Other.empty()) std::system(("rm -rf '" + Other + "'").c_str());
  }
  TempDir T;
  std::string Other;
};

struct Progress {
  int Calls = 0;
  std::int64_t Last = -1;
};

DWORD Count(std::int64_t, std::int64_t Transferred, std::int64_t, std::int64_t, DWORD, DWORD, void* Data) {
  auto* P = static_cast<Progress*>(Data);
  ++P->Calls;
  P->Last = Transferred;
  return PROGRESS_CONTINUE;
}

TEST_F(CrossDeviceMove, FileIsCopiedWithProgressThenTheSourceDeleted) {
  WriteText(T / "a.txt", "payload");
  Progress P;
  EXPECT_TRUE(MoveFileWithProgressA(T / "a.txt", Other + "/a.txt", Count, &P, kMoveFlags));
  EXPECT_EQ(ReadText(Other + "/a.txt"), "payload");
  EXPECT_FALSE(Exists(T / "a.txt"));
  EXPECT_GE(P.Calls, 2);
  EXPECT_EQ(P.Last, 7);
}

TEST_F(CrossDeviceMove, ExistingTargetOnTheOtherSideGivesAlreadyExists) {
  WriteText(T / "a.txt", "a");
  WriteText(Other + "/a.txt", "b");
  EXPECT_FALSE(MoveFileWithProgressA(T / "a.txt", Other + "/a.txt", nullptr, nullptr, kMoveFlags));
  EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(ReadText(T / "a.txt"), "a");
  EXPECT_EQ(ReadText(Other + "/a.txt"), "b");
}

TEST_F(CrossDeviceMove, DirectoryOrMoveWithoutCopyAllowedGivesNotSameDevice) {
  mkdir((T / "d").c_str(), 0777);
  WriteText(T / "a.txt", "a");
  EXPECT_FALSE(MoveFileA(T / "d", Other + "/d"));
  EXPECT_EQ(GetLastError(), ERROR_NOT_SAME_DEVICE);
  EXPECT_FALSE(MoveFileWithProgressA(T / "a.txt", Other + "/a.txt", nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_NOT_SAME_DEVICE);
  EXPECT_TRUE(Exists(T / "d"));
  EXPECT_TRUE(Exists(T / "a.txt"));
  EXPECT_TRUE(ListNames(Other).empty());
}

}  // namespace
}  // namespace zt::platform
