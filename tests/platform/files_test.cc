// Deleting files, creating and removing directories, temporary files, file
// times, replacing files, free space.
#include "platform/files.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "platform/dates.h"
#include "platform/env.h"
#include "platform/stop.h"
#include "platform/system_paths.h"
#include "support/Files.h"
#include "tests/support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::Exists;
using zt::testing::ListNames;
using zt::testing::ModeOf;
using zt::testing::ReadText;
using zt::testing::TempDir;
using zt::testing::WriteText;

TEST(DeleteFile, RefusesReadOnlyFileEvenForRootUntilTheAttributeIsCleared) {
  TempDir T;
  WriteText(T / "a.txt", "x");
  ASSERT_TRUE(SetFileAttributesA(T / "a.txt", FILE_ATTRIBUTE_READONLY));
  EXPECT_FALSE(DeleteFile(T / "a.txt"));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_TRUE(Exists(T / "a.txt"));
  ASSERT_TRUE(SetFileAttributesA(T / "a.txt", FILE_ATTRIBUTE_NORMAL));
  EXPECT_TRUE(DeleteFile(T / "a.txt"));
  EXPECT_FALSE(Exists(T / "a.txt"));
}

TEST(DeleteFile, HiddenAndSystemFilesDeleteNormally) {
  TempDir T;
  WriteText(T / "h.txt", "x");
  ASSERT_TRUE(SetFileAttributesA(T / "h.txt", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM));
  EXPECT_TRUE(DeleteFile(T / "h.txt"));
  EXPECT_FALSE(Exists(T / "h.txt"));
}

TEST(DeleteFile, DirectoryMissingFileAndMissingFolder) {
  TempDir T;
  mkdir((T / "sub").c_str(), 0777);
  EXPECT_FALSE(DeleteFile(T / "sub"));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_TRUE(Exists(T / "sub"));
  EXPECT_FALSE(DeleteFile(T / "missing.txt"));
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_FALSE(DeleteFile(T / "nodir/missing.txt"));
  EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST(Directories, CreateNeedsTheParentAndRefusesExistingNames) {
  TempDir T;
  EXPECT_FALSE(CreateDirectory(T / "a/b"));
  EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
  EXPECT_TRUE(CreateDirectory(T / "a"));
  EXPECT_TRUE(DirectoryExists(T / "a"));
  EXPECT_FALSE(CreateDirectory(T / "a"));
  EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
  WriteText(T / "f", "x");
  EXPECT_FALSE(CreateDirectory(T / "f"));
  EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
}

TEST(Directories, ForceCreatesEveryMissingLevel) {
  TempDir T;
  EXPECT_TRUE(ForceDirectories(T / "a/b/c/"));
  EXPECT_TRUE(DirectoryExists(T / "a/b/c"));
  EXPECT_TRUE(ForceDirectories(T / "a/b/c"));
  WriteText(T / "f", "x");
  EXPECT_FALSE(ForceDirectories(T / "f/g"));
  EXPECT_FALSE(DirectoryExists(T / "f/g"));
}

TEST(Directories, RemoveOnlyEmptyDirectories) {
  TempDir T;
  mkdir((T / "d").c_str(), 0777);
  WriteText(T / "d/a.txt", "x");
  EXPECT_FALSE(RemoveDirectory(T / "d"));
  EXPECT_EQ(GetLastError(), ERROR_DIR_NOT_EMPTY);
  unlink((T / "d/a.txt").c_str());
  EXPECT_TRUE(RemoveDirectory(T / "d"));
  EXPECT_FALSE(Exists(T / "d"));
  WriteText(T / "f", "x");
  EXPECT_FALSE(RemoveDirectory(T / "f"));
  EXPECT_EQ(GetLastError(), ERROR_DIRECTORY);
}

TEST(Directories, RemoveTakesALinkToADirectoryAwayAsALink) {
  TempDir T;
  mkdir((T / "d").c_str(), 0777);
  WriteText(T / "d/a.txt", "x");
  WriteText(T / "f", "x");
  ASSERT_EQ(symlink("d", (T / "dlink").c_str()), 0);
  ASSERT_EQ(symlink("f", (T / "flink").c_str()), 0);
  EXPECT_TRUE(RemoveDirectory(T / "dlink"));
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"d", "f", "flink"}));
  EXPECT_EQ(ListNames(T / "d"), (std::vector<std::string>{"a.txt"}));
  EXPECT_FALSE(RemoveDirectory(T / "flink"));
  EXPECT_EQ(GetLastError(), ERROR_DIRECTORY);
}

TEST(Files, LastWriteTimeKeepsHundredsOfNanosecondsOnFilesDirectoriesAndReadOnlyFiles) {
  TempDir T;
  WriteText(T / "f", "abc");
  mkdir((T / "d").c_str(), 0777);
  ASSERT_TRUE(SetFileAttributesA(T / "f", FILE_ATTRIBUTE_READONLY));
  const TFileTime When = UnixToFileTime(1709633730, 123456700);
  for (const char* Name : {"f", "d"}) {
    ASSERT_TRUE(SetFileLastWriteTime(T / Name, When)) << Name;
    WIN32_FILE_ATTRIBUTE_DATA Data;
    ASSERT_TRUE(GetFileAttributesExA(T / Name, Data));
    EXPECT_EQ(Data.ftLastWriteTime, When) << Name;
  }
  WIN32_FILE_ATTRIBUTE_DATA Data;
  ASSERT_TRUE(GetFileAttributesExA(T / "f", Data));
  EXPECT_EQ(Data.dwFileAttributes, FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(Data.nFileSize, 3);
  EXPECT_FALSE(GetFileAttributesExA(T / "missing", Data));
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST(Files, ReplacementTakesThePlaceOfTheFileOnlyWhenCommitted) {
  TempDir T;
  WriteText(T / "t", "old");
  chmod((T / "t").c_str(), 0750);
  WriteText(T / "src", "-tail");
  {
    TFileReplacement R;
    ASSERT_TRUE(R.Begin(T / "t"));
    ASSERT_TRUE(R.Write("new", 3));
    EXPECT_EQ(ReadText(T / "t"), "old");
  }  // abandoned
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"src", "t"}));
  TFileReplacement R;
  ASSERT_TRUE(R.Begin(T / "t"));
  ASSERT_TRUE(R.Write("new", 3));
  THandle Src = FileOpen(T / "src", fmOpenRead);
  ASSERT_TRUE(R.Append(Src));
  FileClose(Src);
  ASSERT_TRUE(R.Commit());
  EXPECT_EQ(ReadText(T / "t"), "new-tail");
  EXPECT_EQ(ModeOf(T / "t"), 0750u);
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"src", "t"}));
  // A read-only file is refused, also when it became read-only meanwhile.
  ASSERT_TRUE(R.Begin(T / "t"));
  ASSERT_TRUE(SetFileAttributesA(T / "t", FILE_ATTRIBUTE_READONLY));
  EXPECT_FALSE(R.Commit());
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_FALSE(R.Begin(T / "t"));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ReadText(T / "t"), "new-tail");
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"src", "t"}));
}

TEST(Volumes, FreeSpaceIsThatOfTheVolumeHoldingThePath) {
  TempDir T;
  struct statvfs Vfs;
  ASSERT_EQ(statvfs(T.Path().c_str(), &Vfs), 0);
  std::uint64_t Free = 0, Total = 0;
  ASSERT_TRUE(GetDiskFreeSpaceExA(T.Path(), &Free, &Total, nullptr));
  EXPECT_EQ(Total, static_cast<std::uint64_t>(Vfs.f_blocks) * Vfs.f_frsize);
  EXPECT_LE(Free, Total);
  EXPECT_FALSE(GetDiskFreeSpaceExA(T / "missing/deeper", &Free, nullptr, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

// Answers "not found" for one path, whatever is there.
class HiddenPath : public EnvWrapper {
 public:
  explicit HiddenPath(std::string Path) : EnvWrapper(Env::Default()), Path_(std::move(Path)) {}
  DWORD QueryFileInfo(const std::string& Path, FileInfo& Info) override {
    return Path == Path_ ? ERROR_FILE_NOT_FOUND : EnvWrapper::QueryFileInfo(Path, Info);
  }

 private:
  std::string Path_;
};

TEST(Files, ExistsTellsFilesFromDirectoriesThroughLinks) {
  TempDir T;
  WriteText(T / "f", "abc");
  ASSERT_EQ(symlink("f", (T / "to-file").c_str()), 0);
  ASSERT_EQ(symlink(".", (T / "to-dir").c_str()), 0);
  ASSERT_EQ(symlink("gone", (T / "dangling").c_str()), 0);
  for (const std::string Name : {"f", "to-file", "dangling"}) {
    EXPECT_TRUE(FileExists(T / Name)) << Name;
    EXPECT_FALSE(DirectoryExists(T / Name)) << Name;
  }
  EXPECT_FALSE(FileExists(T / "to-dir"));
  EXPECT_TRUE(DirectoryExists(T / "to-dir"));
  EXPECT_FALSE(FileExists(T.Path()));
  EXPECT_TRUE(DirectoryExists(T.Path()));
  EXPECT_FALSE(FileExists(T / "g"));
  EXPECT_FALSE(DirectoryExists(T / "g/h"));
  EXPECT_EQ(FileSizeOf(T / "f"), 3);
  EXPECT_EQ(FileSizeOf(T / "g"), -1);
  // A replacement Env is asked, as for every other question about a file.
  HiddenPath Env(T / "f");
  ScopedEnv Installed(&Env);
  EXPECT_FALSE(FileExists(T / "f"));
}

TEST(Files, WriteAtomicallyReplacesContentsAndLeavesNoTemporaryFile) {
  TempDir T;
  WriteText(T / "out.txt", "old");
  ASSERT_TRUE(WriteFileAtomically(T / "out.txt", "new contents"));
  EXPECT_EQ(zt::testing::ReadText(T / "out.txt"), "new contents");
  ASSERT_TRUE(WriteFileAtomically(T / "fresh.txt", ""));
  EXPECT_EQ(zt::testing::ListNames(T.Path()), (std::vector<std::string>{"fresh.txt", "out.txt"}));
  std::string Back;
  ASSERT_TRUE(ReadWholeFile(T / "out.txt", Back));
  EXPECT_EQ(Back, "new contents");
  EXPECT_FALSE(ReadWholeFile(T / "none.txt", Back));
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST(Files, WriteAtomicallyRefusesReadOnlyTargetAndLeavesItUnchanged) {
  TempDir T;
  WriteText(T / "out.txt", "old");
  ASSERT_TRUE(SetFileAttributesA(T / "out.txt", FILE_ATTRIBUTE_READONLY));
  EXPECT_FALSE(WriteFileAtomically(T / "out.txt", "new"));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(zt::testing::ReadText(T / "out.txt"), "old");
  EXPECT_EQ(zt::testing::ListNames(T.Path()), (std::vector<std::string>{"out.txt"}));
}

TEST(Files, AfterAStopLongOperationsFailAtOnceUntilResumed) {
  TempDir T;
  WriteText(T / "a.txt", "abc");
  THandle H = FileOpen(T / "a.txt", fmOpenRead);
  ASSERT_NE(H, INVALID_HANDLE_VALUE);
  char Buffer[4];
  CancelLongOperations();
  EXPECT_EQ(FileRead(H, Buffer, 3), -1);
  EXPECT_EQ(GetLastError(), ERROR_OPERATION_ABORTED);
  EXPECT_FALSE(CopyFileExA(T / "a.txt", T / "b.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_OPERATION_ABORTED);
  ResumeLongOperations();
  EXPECT_EQ(FileRead(H, Buffer, 3), 3);
  FileClose(H);
  EXPECT_EQ(zt::testing::ListNames(T.Path()), std::vector<std::string>{"a.txt"});
}

TEST(Files, TemporaryFileGoesWithItsOwnerOrWithAnAbruptEnd) {
  TempDir T;
  setenv("TMPDIR", T.Path().c_str(), 1);
  const std::string Name = GetTemporaryFileName("xcp");
  EXPECT_EQ(Name.rfind(T / "zt-", 0), 0u);
  EXPECT_EQ(Name.substr(Name.size() - 4), ".xcp");
  EXPECT_TRUE(Exists(Name));
  DeleteTemporaryFile(Name);
  EXPECT_FALSE(Exists(Name));
  // A program that must end at once takes the files it still has with it.
  EXPECT_EXIT(
      {
        GetTemporaryFileName(".xcp");
        AbandonPendingFiles();
        std::_Exit(0);
      },
      ::testing::ExitedWithCode(0), "");
  unsetenv("TMPDIR");
  EXPECT_EQ(zt::testing::ListNames(T.Path()), std::vector<std::string>{});
}

}  // namespace
}  // namespace zt::platform
