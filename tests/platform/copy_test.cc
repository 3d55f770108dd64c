#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>
#include <vector>

#include "platform/env.h"
#include "platform/errors.h"
#include "platform/files.h"
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

void MakeFile(const std::string& Path, std::int64_t Size) {
  int Fd = open(Path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  std::vector<char> Block(1 << 20, 'z');
  for (std::int64_t Left = Size; Left > 0; Left -= static_cast<std::int64_t>(Block.size()))
    ASSERT_GT(write(Fd, Block.data(), static_cast<size_t>(std::min<std::int64_t>(Left, Block.size()))), 0);
  close(Fd);
}

struct Call {
  std::int64_t Total, Transferred;
  DWORD Reason;
};

struct Recorder {
  std::vector<Call> Calls;
  BOOL* CancelAfterFirstChunk = nullptr;
  DWORD Answer = PROGRESS_CONTINUE;
};

DWORD Record(std::int64_t Total, std::int64_t Transferred, std::int64_t, std::int64_t, DWORD, DWORD Reason,
             void* Data) {
  auto* R = static_cast<Recorder*>(Data);
  R->Calls.push_back({Total, Transferred, Reason});
  if (R->CancelAfterFirstChunk && Reason == CALLBACK_CHUNK_FINISHED) *R->CancelAfterFirstChunk = 1;
  return Reason == CALLBACK_CHUNK_FINISHED ? R->Answer : PROGRESS_CONTINUE;
}

TEST(CopyFile, CopiesDataAttributesPlusArchiveAndLastWriteTime) {
  TempDir T;
  WriteText(T / "src.txt", "hello");
  struct timespec Times[2] = {{0, UTIME_OMIT}, {1700000000, 0}};
  utimensat(AT_FDCWD, (T / "src.txt").c_str(), Times, 0);
  ASSERT_TRUE(SetFileAttributesA(T / "src.txt", FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_READONLY));
  Recorder R;
  ASSERT_TRUE(CopyFileExA(T / "src.txt", T / "dst.txt", Record, &R, nullptr, 0));
  EXPECT_EQ(ReadText(T / "dst.txt"), "hello");
  EXPECT_EQ(GetFileAttributesA(T / "dst.txt"),
            FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(FileAge(T / "dst.txt"), FileAge(T / "src.txt"));
  struct stat St;
  stat((T / "dst.txt").c_str(), &St);
  EXPECT_EQ(St.st_mtim.tv_sec, 1700000000);
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"dst.txt", "src.txt"}));
  // At the start with nothing copied, then after the chunk with everything.
  ASSERT_EQ(R.Calls.size(), 2u);
  EXPECT_EQ(R.Calls[0].Reason, CALLBACK_STREAM_SWITCH);
  EXPECT_EQ(R.Calls[0].Total, 5);
  EXPECT_EQ(R.Calls[0].Transferred, 0);
  EXPECT_EQ(R.Calls[1].Reason, CALLBACK_CHUNK_FINISHED);
  EXPECT_EQ(R.Calls[1].Transferred, 5);
}

TEST(CopyFile, ProgressReportsEveryChunkOfALargeFile) {
  TempDir T;
  MakeFile(T / "big", 40 << 20);
  Recorder R;
  ASSERT_TRUE(CopyFileExA(T / "big", T / "copy", Record, &R, nullptr, 0));
  ASSERT_GE(R.Calls.size(), 3u);
  for (size_t I = 1; I < R.Calls.size(); ++I) {
    EXPECT_EQ(R.Calls[I].Total, 40 << 20);
    EXPECT_GT(R.Calls[I].Transferred, R.Calls[I - 1].Transferred);
  }
  EXPECT_EQ(R.Calls.back().Transferred, 40 << 20);
  EXPECT_EQ(zt::testing::ReadText(T / "copy"), zt::testing::ReadText(T / "big"));
}

TEST(CopyFile, FailIfExistsGivesEightyAndLeavesTargetUntouched) {
  TempDir T;
  WriteText(T / "src.txt", "new");
  WriteText(T / "dst.txt", "old");
  EXPECT_FALSE(
      CopyFileExA(T / "src.txt", T / "dst.txt", nullptr, nullptr, nullptr, COPY_FILE_FAIL_IF_EXISTS));
  EXPECT_EQ(GetLastError(), ERROR_FILE_EXISTS);
  EXPECT_EQ(ReadText(T / "dst.txt"), "old");
  EXPECT_TRUE(CopyFileExA(T / "src.txt", T / "dst.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(ReadText(T / "dst.txt"), "new");
}

TEST(CopyFile, ReadOnlyOrHiddenTargetIsRefusedAndUntouched) {
  TempDir T;
  WriteText(T / "src.txt", "new");
  WriteText(T / "ro.txt", "old");
  WriteText(T / "hid.txt", "old");
  ASSERT_TRUE(SetFileAttributesA(T / "ro.txt", FILE_ATTRIBUTE_READONLY));
  ASSERT_TRUE(SetFileAttributesA(T / "hid.txt", FILE_ATTRIBUTE_HIDDEN));
  EXPECT_FALSE(CopyFileExA(T / "src.txt", T / "ro.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ReadText(T / "ro.txt"), "old");
  EXPECT_FALSE(CopyFileExA(T / "src.txt", T / "hid.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ReadText(T / "hid.txt"), "old");
}

TEST(CopyFile, OntoItselfIsASharingViolation) {
  TempDir T;
  WriteText(T / "a.txt", "data");
  EXPECT_FALSE(CopyFileExA(T / "a.txt", T / "a.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(ReadText(T / "a.txt"), "data");
}

TEST(CopyFile, MissingSourceOrTargetFolder) {
  TempDir T;
  WriteText(T / "a.txt", "data");
  EXPECT_FALSE(CopyFileExA(T / "none.txt", T / "b.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_FALSE(CopyFileExA(T / "a.txt", T / "nodir/b.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST(CopyFile, CancelFlagInMidCopyAbortsAndLeavesNoTarget) {
  TempDir T;
  MakeFile(T / "big", 64 << 20);
  BOOL Cancel = 0;
  Recorder R;
  R.CancelAfterFirstChunk = &Cancel;
  EXPECT_FALSE(CopyFileExA(T / "big", T / "copy", Record, &R, &Cancel, 0));
  EXPECT_EQ(GetLastError(), ERROR_REQUEST_ABORTED);
  EXPECT_LT(R.Calls.back().Transferred, 64 << 20);
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"big"}));
}

TEST(CopyFile, ProgressCancelKeepsTheOldTarget) {
  TempDir T;
  MakeFile(T / "big", 20 << 20);
  WriteText(T / "copy", "old");
  Recorder R;
  R.Answer = PROGRESS_CANCEL;
  EXPECT_FALSE(CopyFileExA(T / "big", T / "copy", Record, &R, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_REQUEST_ABORTED);
  EXPECT_EQ(ReadText(T / "copy"), "old");
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"big", "copy"}));
}

// The disk fills up after the first chunk of a copy.
class DiskFullAfterFirstChunk : public EnvWrapper {
 public:
  DiskFullAfterFirstChunk() : EnvWrapper(Env::Default()) {}
  DWORD CopyChunk(THandle From, THandle To, std::int64_t MaxBytes, std::int64_t& Copied) override {
    if (++Chunks > 1) {
      Copied = 0;
      return ERROR_DISK_FULL;
    }
    return EnvWrapper::CopyChunk(From, To, MaxBytes, Copied);
  }
  int Chunks = 0;
};

TEST(CopyFile, DiskFullInMidFileLeavesNoPartialTarget) {
  TempDir T;
  MakeFile(T / "big", 40 << 20);
  DiskFullAfterFirstChunk Env;
  ScopedEnv Installed(&Env);
  EXPECT_FALSE(CopyFileExA(T / "big", T / "copy", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(SysErrorMessage(GetLastError()), "There is not enough space on the disk");
  EXPECT_EQ(Env.Chunks, 2);
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"big"}));
}

// Sets the process's umask for the lifetime of the object.
class ScopedUmask {
 public:
  explicit ScopedUmask(mode_t Mask) : Previous_(umask(Mask)) {}
  ~ScopedUmask() { umask(Previous_); }

 private:
  mode_t Previous_;
};

TEST(CopyFile, NewTargetGetsTheSourcePermissionsLessTheUmaskAndStaysReadOnly) {
  TempDir T;
  const std::vector<std::pair<std::string, mode_t>> Sources = {
      {"shared", 0666}, {"private", 0600}, {"tool", 0755}, {"frozen", 0444}, {"odd", 0464}};
  for (const auto& [Name, Mode] : Sources) {
    WriteText(T / Name, Name);
    chmod((T / Name).c_str(), Mode);
  }
  ScopedUmask Mask(027);
  for (const auto& [Name, Mode] : Sources)
    ASSERT_TRUE(CopyFileExA(T / Name, T / (Name + ".copy"), nullptr, nullptr, nullptr, 0)) << Name;
  EXPECT_EQ(ModeOf(T / "shared.copy"), 0640u);
  EXPECT_EQ(ModeOf(T / "private.copy"), 0600u);
  EXPECT_EQ(ModeOf(T / "tool.copy"), 0750u);
  EXPECT_EQ(ModeOf(T / "frozen.copy"), 0440u);
  EXPECT_EQ(ModeOf(T / "odd.copy"), 0440u);
  EXPECT_EQ(GetFileAttributesA(T / "frozen.copy"), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(ReadText(T / "frozen.copy"), "frozen");
}

TEST(CopyFile, ReplacedTargetIsANewFileAndOtherLinksKeepTheOldContents) {
  TempDir T;
  WriteText(T / "src.txt", "new");
  WriteText(T / "dst.txt", "old");
  ASSERT_EQ(link((T / "dst.txt").c_str(), (T / "other-link").c_str()), 0);
  ASSERT_TRUE(CopyFileExA(T / "src.txt", T / "dst.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(ReadText(T / "dst.txt"), "new");
  EXPECT_EQ(ReadText(T / "other-link"), "old");
  EXPECT_EQ(GetFileAttributesA(T / "dst.txt"), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"dst.txt", "other-link", "src.txt"}));
}

TEST(CopyFile, ReplacingTakesTheSourcePermissionsLessTheUmaskAndStoredAttributes) {
  TempDir T;
  WriteText(T / "src.txt", "new");
  chmod((T / "src.txt").c_str(), 0664);
  ASSERT_TRUE(SetFileAttributesA(T / "src.txt", FILE_ATTRIBUTE_SYSTEM));
  WriteText(T / "dst.txt", "old");
  chmod((T / "dst.txt").c_str(), 0666);
  ScopedUmask Mask(022);
  ASSERT_TRUE(CopyFileExA(T / "src.txt", T / "dst.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(ModeOf(T / "dst.txt"), 0644u);
  EXPECT_EQ(GetFileAttributesA(T / "dst.txt"), FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE);
  // A read-only source makes a read-only replacement.
  WriteText(T / "ro.txt", "frozen");
  chmod((T / "ro.txt").c_str(), 0444);
  WriteText(T / "dst2.txt", "old");
  ASSERT_TRUE(CopyFileExA(T / "ro.txt", T / "dst2.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(ModeOf(T / "dst2.txt"), 0444u);
  EXPECT_EQ(GetFileAttributesA(T / "dst2.txt"), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(ReadText(T / "dst2.txt"), "frozen");
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"dst.txt", "dst2.txt", "ro.txt", "src.txt"}));
}

TEST(CopyFile, EmptyFileReportsStartAndEndAndCopiesNothing) {
  TempDir T;
  WriteText(T / "empty", "");
  Recorder R;
  ASSERT_TRUE(CopyFileExA(T / "empty", T / "copy", Record, &R, nullptr, 0));
  EXPECT_EQ(ReadText(T / "copy"), "");
  ASSERT_EQ(R.Calls.size(), 2u);
  EXPECT_EQ(R.Calls[0].Reason, CALLBACK_STREAM_SWITCH);
  EXPECT_EQ(R.Calls[1].Reason, CALLBACK_CHUNK_FINISHED);
  EXPECT_EQ(R.Calls[1].Total, 0);
  EXPECT_EQ(R.Calls[1].Transferred, 0);
}

TEST(CopyFile, CancelFlagSetBeforeTheStartCreatesNothing) {
  TempDir T;
  WriteText(T / "small", "abc");
  WriteText(T / "empty", "");
  BOOL Cancel = 1;
  EXPECT_FALSE(CopyFileExA(T / "small", T / "copy", nullptr, nullptr, &Cancel, 0));
  EXPECT_EQ(GetLastError(), ERROR_REQUEST_ABORTED);
  EXPECT_FALSE(CopyFileExA(T / "empty", T / "copy", nullptr, nullptr, &Cancel, 0));
  EXPECT_EQ(GetLastError(), ERROR_REQUEST_ABORTED);
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"empty", "small"}));
}

// The progress routine hands the cancel to another thread, as a user
// interface or a build stop would.
DWORD CancelFromAnotherThread(std::int64_t, std::int64_t, std::int64_t, std::int64_t, DWORD, DWORD Reason,
                              void* Data) {
  if (Reason == CALLBACK_CHUNK_FINISHED) std::thread([Data] { *static_cast<BOOL*>(Data) = 1; }).join();
  return PROGRESS_CONTINUE;
}

TEST(CopyFile, CancelFromAnotherThreadKeepsTheOldTargetAndLeavesNoTemporaryFile) {
  TempDir T;
  MakeFile(T / "big", 40 << 20);
  WriteText(T / "copy", "old");
  BOOL Cancel = 0;
  EXPECT_FALSE(CopyFileExA(T / "big", T / "copy", CancelFromAnotherThread, &Cancel, &Cancel, 0));
  EXPECT_EQ(GetLastError(), ERROR_REQUEST_ABORTED);
  EXPECT_EQ(ReadText(T / "copy"), "old");
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"big", "copy"}));
}

TEST(CopyFile, ProgressCancelOfANewTargetRemovesIt) {
  TempDir T;
  MakeFile(T / "big", 20 << 20);
  Recorder R;
  R.Answer = PROGRESS_CANCEL;
  EXPECT_FALSE(CopyFileExA(T / "big", T / "copy", Record, &R, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_REQUEST_ABORTED);
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"big"}));
}

TEST(CopyFile, DiskFullWhileReplacingKeepsTheOldTarget) {
  TempDir T;
  MakeFile(T / "big", 40 << 20);
  WriteText(T / "copy", "old");
  DiskFullAfterFirstChunk Env;
  ScopedEnv Installed(&Env);
  EXPECT_FALSE(CopyFileExA(T / "big", T / "copy", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
  EXPECT_EQ(ReadText(T / "copy"), "old");
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"big", "copy"}));
}

TEST(CopyFile, StopsAtTheSizeTheSourceHadAtTheStart) {
  TempDir T;
  WriteText(T / "src", "12345");
  Recorder R;
  // The source grows after the first chunk; the copy takes what it measured.
  struct Grow : EnvWrapper {
    explicit Grow(std::string Path) : EnvWrapper(Env::Default()), Path(std::move(Path)) {}
    DWORD CopyChunk(THandle From, THandle To, std::int64_t MaxBytes, std::int64_t& Copied) override {
      ++Calls;
      DWORD Error = EnvWrapper::CopyChunk(From, To, MaxBytes, Copied);
      WriteText(Path, "1234567890");
      return Error;
    }
    std::string Path;
    int Calls = 0;
  } Env(T / "src");
  ScopedEnv Installed(&Env);
  ASSERT_TRUE(CopyFileExA(T / "src", T / "copy", Record, &R, nullptr, 0));
  EXPECT_EQ(Env.Calls, 1);
  EXPECT_EQ(ReadText(T / "copy"), "12345");
  EXPECT_EQ(R.Calls.back().Transferred, 5);
}

TEST(CopyFile, DanglingLinkAsTargetIsReplacedUnlessFailIfExists) {
  TempDir T;
  WriteText(T / "src.txt", "data");
  ASSERT_EQ(symlink("missing", (T / "link").c_str()), 0);
  EXPECT_FALSE(CopyFileExA(T / "src.txt", T / "link", nullptr, nullptr, nullptr, COPY_FILE_FAIL_IF_EXISTS));
  EXPECT_EQ(GetLastError(), ERROR_FILE_EXISTS);
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"link", "src.txt"}));
  ASSERT_TRUE(CopyFileExA(T / "src.txt", T / "link", nullptr, nullptr, nullptr, 0));
  struct stat St;
  ASSERT_EQ(lstat((T / "link").c_str(), &St), 0);
  EXPECT_TRUE(S_ISREG(St.st_mode));
  EXPECT_EQ(ReadText(T / "link"), "data");
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"link", "src.txt"}));
}

TEST(CopyFile, DirectoryAsSourceOrTargetIsAccessDenied) {
  TempDir T;
  WriteText(T / "a.txt", "data");
  mkdir((T / "dir").c_str(), 0777);
  EXPECT_FALSE(CopyFileExA(T / "dir", T / "b.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_FALSE(CopyFileExA(T / "a.txt", T / "dir", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ListNames(T.Path()), (std::vector<std::string>{"a.txt", "dir"}));
  EXPECT_EQ(ListNames(T / "dir"), std::vector<std::string>{});
}

}  // namespace
}  // namespace zt::platform
