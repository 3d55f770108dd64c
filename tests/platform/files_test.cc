// Deleting files, creating and removing directories, temporary files, file
// times, replacing files, free space; file handles and the opens refused.
#include "platform/files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/dates.h"
#include "platform/env.h"
#include "platform/stop.h"
#include "platform/system_paths.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using Lines = std::vector<std::string>;
using namespace zt::testing;

enum Op { kDelete, kCreateDirectory, kForceDirectories, kRemoveDirectory, kWriteAtomically, kFreeSpace };
constexpr DWORD kSomeError = 0xFFFFFFFF;  // fails, whatever the code

TEST(Files, WhatEachCallLeavesAndTheErrorItReports) {
  // clang-format off
  const struct {
    Lines Before;
    Op Call;
    std::string Path;
    DWORD Error;  // ERROR_SUCCESS for a call that succeeds
    Lines After;
  } Cases[] = {
      // Read-only refuses a delete even for root; hidden and system do not.
      {{"a [ro]"}, kDelete, "a", ERROR_ACCESS_DENIED, {"a [ro]"}},
      {{"h [0x6]"}, kDelete, "h", ERROR_SUCCESS, {}},
      {{"sub/"}, kDelete, "sub", ERROR_ACCESS_DENIED, {"sub/"}},
      {{}, kDelete, "missing", ERROR_FILE_NOT_FOUND, {}},
      {{}, kDelete, "nodir/missing", ERROR_PATH_NOT_FOUND, {}},
      {{}, kCreateDirectory, "a/b", ERROR_PATH_NOT_FOUND, {}},
      {{}, kCreateDirectory, "a", ERROR_SUCCESS, {"a/"}},
      {{"a/"}, kCreateDirectory, "a", ERROR_ALREADY_EXISTS, {"a/"}},
      {{"f"}, kCreateDirectory, "f", ERROR_ALREADY_EXISTS, {"f"}},
      {{}, kForceDirectories, "a/b/c/", ERROR_SUCCESS, {"a/b/c/"}},
      {{"a/b/c/"}, kForceDirectories, "a/b/c", ERROR_SUCCESS, {"a/b/c/"}},
      {{"f"}, kForceDirectories, "f/g", kSomeError, {"f"}},
      // Only an empty directory is removed; a link to one goes as a link.
      {{"d/a"}, kRemoveDirectory, "d", ERROR_DIR_NOT_EMPTY, {"d/a"}},
      {{"d/"}, kRemoveDirectory, "d", ERROR_SUCCESS, {}},
      {{"f"}, kRemoveDirectory, "f", ERROR_DIRECTORY, {"f"}},
      {{"d/a", "dlink -> d"}, kRemoveDirectory, "dlink", ERROR_SUCCESS, {"d/a"}},
      {{"f", "flink -> f"}, kRemoveDirectory, "flink", ERROR_DIRECTORY, {"f", "flink -> f"}},
      // A whole-file write replaces the contents and leaves no other file.
      {{"out=old"}, kWriteAtomically, "out", ERROR_SUCCESS, {"out=new"}},
      {{}, kWriteAtomically, "fresh", ERROR_SUCCESS, {"fresh=new"}},
      {{"out=old [ro]"}, kWriteAtomically, "out", ERROR_ACCESS_DENIED, {"out=old [ro]"}},
      {{}, kFreeSpace, "missing/deeper", ERROR_PATH_NOT_FOUND, {}},
  };
  // clang-format on
  for (const auto& C : Cases) {
    SCOPED_TRACE(std::to_string(C.Call) + " " + C.Path);
    TempDir T;
    MakeTree(T.Path(), C.Before);
    const std::string P = T / C.Path;
    std::uint64_t Free = 0, Total = 0;
    const bool Ok = C.Call == kDelete             ? DeleteFile(P)
                    : C.Call == kCreateDirectory  ? CreateDirectory(P)
                    : C.Call == kForceDirectories ? ForceDirectories(P)
                    : C.Call == kRemoveDirectory  ? RemoveDirectory(P)
                    : C.Call == kFreeSpace        ? GetDiskFreeSpaceExA(P, &Free, &Total, nullptr)
                                                  : WriteFileAtomically(P, "new");
    EXPECT_EQ(Ok, C.Error == ERROR_SUCCESS);
    if (C.Error != ERROR_SUCCESS && C.Error != kSomeError) {
      EXPECT_EQ(GetLastError(), C.Error);
    }
    EXPECT_EQ(Tree(T.Path()), C.After);
  }
}

TEST(Files, LastWriteTimeKeepsHundredsOfNanosecondsOnFilesDirectoriesAndReadOnlyFiles) {
  TempDir T;
  WriteText(T / "f", "abc");
  mkdir((T / "d").c_str(), 0777);
  ASSERT_TRUE(SetFileAttributesA(T / "f", FILE_ATTRIBUTE_READONLY));
  const TFileTime When = UnixToFileTime(1709633730, 123456700);
  WIN32_FILE_ATTRIBUTE_DATA Data;
  for (const char* Name : {"d", "f"}) {
    ASSERT_TRUE(SetFileLastWriteTime(T / Name, When)) << Name;
    ASSERT_TRUE(GetFileAttributesExA(T / Name, Data));
    EXPECT_EQ(Data.ftLastWriteTime, When) << Name;
  }
  EXPECT_EQ(Data.dwFileAttributes, FILE_ATTRIBUTE_READONLY);  // of f
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

TEST(Files, ExistsTellsFilesFromDirectoriesThroughLinksAndWholeFilesReadBack) {
  TempDir T;
  MakeTree(T.Path(), {"f=abc", "to-file -> f", "to-dir -> .", "dangling -> gone"});
  const std::tuple<std::string, bool, bool> Cases[] = {
      {"f", true, false}, {"to-file", true, false}, {"dangling", true, false}, {"to-dir", false, true},
      {"", false, true},  {"g", false, false},      {"g/h", false, false},
  };
  for (const auto& [Name, File, Directory] : Cases) {
    const std::string P = Name.empty() ? T.Path() : T / Name;
    EXPECT_EQ(FileExists(P), File) << Name;
    EXPECT_EQ(DirectoryExists(P), Directory) << Name;
  }
  EXPECT_EQ(FileSizeOf(T / "f"), 3);
  EXPECT_EQ(FileSizeOf(T / "g"), -1);
  std::string Back;
  ASSERT_TRUE(ReadWholeFile(T / "f", Back));
  EXPECT_EQ(Back, "abc");
  EXPECT_FALSE(ReadWholeFile(T / "none", Back));
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  // A replacement Env is asked, as for every other question about a file.
  HiddenPath Env(T / "f");
  ScopedEnv Installed(&Env);
  EXPECT_FALSE(FileExists(T / "f"));
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
  ResumeLongOperations();
  EXPECT_EQ(FileRead(H, Buffer, 3), 3);
  FileClose(H);
}

// The pieces a mapping hands over, and where the reads must go on from.
TEST(Files, MappedReadHandsTheRestOfALargeFileAndLeavesWhatIsCutAwayToReads) {
  TempDir T;
  std::string Data(9 * 1048576 + 12345, '\0');
  for (std::size_t I = 0; I < Data.size(); ++I) Data[I] = static_cast<char>(I * 2654435761u >> 24);
  const std::size_t kPiece = 4 << 20;
  struct Row {
    const char* What;
    std::size_t Size, Start;
    int CutInCall;       // the call of Consume that truncates the file to Start + 1000 bytes (0: none)
    bool Stop;           // stopped before the call
    std::size_t Handed;  // bytes Consume saw in the calls it finished
  } Rows[] = {
      {"whole, from a place inside a page", Data.size(), 70001, 0, false, Data.size() - 70001},
      {"small file: all left to reads", 1048575, 0, 0, false, 0},
      {"cut in the first piece", Data.size(), 65536, 1, false, 0},
      {"cut in the second piece", Data.size(), 65536, 2, false, kPiece},
      {"stopped", Data.size(), 0, 0, true, 0},
  };
  for (const Row& R : Rows) {
    const std::string Path = T / "big.bin";
    WriteText(Path, Data.substr(0, R.Size));
    THandle H = FileOpen(Path, fmOpenRead);
    ASSERT_NE(H, INVALID_HANDLE_VALUE);
    FileSeek(H, static_cast<std::int64_t>(R.Start), 0);
    std::string Seen;
    int Calls = 0;
    if (R.Stop) CancelLongOperations();
    const bool Ok = FileConsumeMapped(H, [&](const unsigned char* P, std::size_t N) {
      if (++Calls == R.CutInCall) {
        ASSERT_EQ(truncate(Path.c_str(), static_cast<off_t>(R.Start + 1000)), 0);
        volatile unsigned char Last = P[N - 1];  // gone: the call ends here
        (void)Last;
        ADD_FAILURE() << R.What << ": read past the cut";
      }
      Seen.append(reinterpret_cast<const char*>(P), N);
    });
    ResumeLongOperations();
    EXPECT_EQ(Ok, !R.Stop) << R.What;
    if (R.Stop) EXPECT_EQ(GetLastError(), ERROR_OPERATION_ABORTED);
    EXPECT_EQ(Seen.size(), R.Handed) << R.What;
    EXPECT_TRUE(Seen == Data.substr(R.Start, R.Handed)) << R.What;
    EXPECT_EQ(FileSeek(H, 0, 1), static_cast<std::int64_t>(R.Start + R.Handed)) << R.What;
    FileClose(H);
  }
}

// Its name, and its removal by its owner, are read through XCopy's exclude list.
TEST(Files, TemporaryFileGoesWithAnAbruptEnd) {
  TempDir T;
  setenv("TMPDIR", T.Path().c_str(), 1);
  EXPECT_EXIT(
      {
        GetTemporaryFileName(".xcp");
        AbandonPendingFiles();
        std::_Exit(0);
      },
      ::testing::ExitedWithCode(0), "");
  unsetenv("TMPDIR");
  EXPECT_EQ(ListNames(T.Path()), Lines{});
}

// Reads, writes and seeks from the start or the end are read through the text, concatenation and
// version-information actions end to end.
TEST(FileHandles, SeekBeforeTheStartFailsAndCreateEmptiesTheFile) {
  TempDir T;
  THandle H = FileOpen(T.Write("f.bin", "hello world"), fmOpenReadWrite);
  ASSERT_NE(H, INVALID_HANDLE_VALUE);
  EXPECT_EQ(FileSeek(H, 6, 0), 6);
  EXPECT_EQ(FileSeek(H, -20, 1), -1);
  EXPECT_EQ(GetLastError(), ERROR_NEGATIVE_SEEK);
  FileClose(H);
  FileClose(FileCreate(T / "f.bin"));  // truncates
  EXPECT_EQ(T.Read("f.bin"), "");
}

enum Open { kRead, kWrite, kReadWrite, kDenyWriters, kCreate };

THandle OpenAs(Open How, const std::string& Path) {
  const int Modes[] = {fmOpenRead | fmShareDenyNone, fmOpenWrite, fmOpenReadWrite,
                       fmOpenRead | fmShareDenyWrite};
  return How == kCreate ? FileCreate(Path) : FileOpen(Path, Modes[How]);
}

TEST(FileHandles, RefusedOpensSayWhyAndKeepTheFile) {
  enum Holder { kNobody, kPosixWriter, kDenyingReader };
  // clang-format off
  const struct {
    DWORD Attributes;
    Holder By;  // another handle open on f.txt
    Open How;
    std::string Name;
    DWORD Error;  // ERROR_SUCCESS for an open that succeeds
  } Cases[] = {
      {FILE_ATTRIBUTE_READONLY, kNobody, kWrite, "f.txt", ERROR_ACCESS_DENIED},
      {FILE_ATTRIBUTE_READONLY, kNobody, kReadWrite, "f.txt", ERROR_ACCESS_DENIED},
      {FILE_ATTRIBUTE_READONLY, kNobody, kCreate, "f.txt", ERROR_ACCESS_DENIED},
      {FILE_ATTRIBUTE_READONLY, kNobody, kRead, "f.txt", ERROR_SUCCESS},
      {FILE_ATTRIBUTE_HIDDEN, kNobody, kCreate, "f.txt", ERROR_ACCESS_DENIED},
      {FILE_ATTRIBUTE_NORMAL, kNobody, kRead, "none", ERROR_FILE_NOT_FOUND},
      {FILE_ATTRIBUTE_NORMAL, kNobody, kRead, "nodir/none", ERROR_PATH_NOT_FOUND},
      {FILE_ATTRIBUTE_NORMAL, kNobody, kRead, "", ERROR_ACCESS_DENIED},  // the folder itself
      // Denying writers is refused while another program writes; readers that allow writers are not.
      {FILE_ATTRIBUTE_NORMAL, kPosixWriter, kDenyWriters, "f.txt", ERROR_SHARING_VIOLATION},
      {FILE_ATTRIBUTE_NORMAL, kPosixWriter, kRead, "f.txt", ERROR_SUCCESS},
      {FILE_ATTRIBUTE_NORMAL, kNobody, kDenyWriters, "f.txt", ERROR_SUCCESS},
      {FILE_ATTRIBUTE_NORMAL, kDenyingReader, kWrite, "f.txt", ERROR_SHARING_VIOLATION},
      {FILE_ATTRIBUTE_NORMAL, kDenyingReader, kCreate, "f.txt", ERROR_SHARING_VIOLATION},
      {FILE_ATTRIBUTE_NORMAL, kDenyingReader, kRead, "f.txt", ERROR_SUCCESS},
  };
  // clang-format on
  for (const auto& C : Cases) {
    SCOPED_TRACE(std::to_string(&C - Cases) + " " + C.Name);
    TempDir T;
    const std::string File = T.Write("f.txt", "keep");
    ASSERT_TRUE(SetFileAttributesA(File, C.Attributes));
    const int Writer = C.By == kPosixWriter ? open(File.c_str(), O_WRONLY) : -1;
    const THandle Reader = C.By == kDenyingReader ? OpenAs(kDenyWriters, File) : INVALID_HANDLE_VALUE;
    const THandle H = OpenAs(C.How, C.Name.empty() ? T.Path() : T / C.Name);
    EXPECT_EQ(H != INVALID_HANDLE_VALUE, C.Error == ERROR_SUCCESS);
    if (H == INVALID_HANDLE_VALUE) {
      EXPECT_EQ(GetLastError(), C.Error);
    } else {
      FileClose(H);
    }
    if (Writer >= 0) close(Writer);
    if (Reader != INVALID_HANDLE_VALUE) FileClose(Reader);
    EXPECT_EQ(T.Read("f.txt"), "keep");
  }
  // Nor are a read-only file's times changed.
  TempDir T;
  const std::string File = T.Write("ro.txt", "keep");
  ASSERT_TRUE(SetFileAttributesA(File, FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(FileSetDate(File, FileAge(File)), static_cast<int>(ERROR_ACCESS_DENIED));
}

}  // namespace
}  // namespace zt::platform
