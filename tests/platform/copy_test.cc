// CopyFileExA: what a copy leaves on disk and the error it reports, one row
// per rule; its progress calls and the ways it is cancelled; a disk that
// fills up; the permissions and times a copy takes. MoveFileA and its
// siblings: the same within one file system and across two. Retries of the
// built-in robocopy against copies that fail for a while (another program
// holding the file), and a stop during the wait.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>
#include <vector>

#include "platform/env.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/tools/robocopy.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using Lines = std::vector<std::string>;
using namespace zt::testing;

TEST(CopyFile, WhatACopyLeavesAndTheErrorItReports) {
  // clang-format off
  const struct {
    Lines Before;
    std::string From, To;
    DWORD Flags, Error;  // Error: ERROR_SUCCESS for a copy that succeeds
    Lines After;
  } Cases[] = {
      // The data and the attributes, plus archive.
      {{"src=hello [ro] [0x4]"}, "src", "dst", 0, ERROR_SUCCESS, {"dst=hello [ro] [0x24]", "src=hello [ro] [0x4]"}},
      {{"src=new", "dst=old"}, "src", "dst", COPY_FILE_FAIL_IF_EXISTS, ERROR_FILE_EXISTS, {"dst=old", "src=new"}},
      // A replaced target is a new file: another name of the old one keeps it.
      {{"src=new", "dst=old", "link => dst"}, "src", "dst", 0, ERROR_SUCCESS,
       {"dst=new [0x20]", "link=old", "src=new"}},
      {{"src=new", "ro=old [ro]"}, "src", "ro", 0, ERROR_ACCESS_DENIED, {"ro=old [ro]", "src=new"}},
      {{"src=new", "hid=old [0x2]"}, "src", "hid", 0, ERROR_ACCESS_DENIED, {"hid=old [0x2]", "src=new"}},
      {{"a=data"}, "none", "b", 0, ERROR_FILE_NOT_FOUND, {"a=data"}},
      {{"a=data", "dir/"}, "dir", "b", 0, ERROR_ACCESS_DENIED, {"a=data", "dir/"}},
      {{"a=data", "dir/"}, "a", "dir", 0, ERROR_ACCESS_DENIED, {"a=data", "dir/"}},
      // A dangling link counts as an existing target, and is replaced by a file.
      {{"a=data", "link -> missing"}, "a", "link", COPY_FILE_FAIL_IF_EXISTS, ERROR_FILE_EXISTS,
       {"a=data", "link -> missing"}},
      {{"a=data", "link -> missing"}, "a", "link", 0, ERROR_SUCCESS, {"a=data", "link=data [0x20]"}},
      {{"empty="}, "empty", "copy", 0, ERROR_SUCCESS, {"copy= [0x20]", "empty="}},
  };
  // clang-format on
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Before.front() + " " + C.From + " -> " + C.To);
    TempDir T;
    MakeTree(T.Path(), C.Before);
    EXPECT_EQ(CopyFileExA(T / C.From, T / C.To, nullptr, nullptr, nullptr, C.Flags),
              C.Error == ERROR_SUCCESS);
    if (C.Error != ERROR_SUCCESS) {
      EXPECT_EQ(GetLastError(), C.Error);
    }
    EXPECT_EQ(Tree(T.Path()), C.After);
  }
}

// Its time too, which the robocopy end-to-end tests compare.
TEST(CopyFile, TakesTheSourcesPermissionsLessTheUmask) {
  TempDir T;
  const std::tuple<std::string, mode_t, mode_t> Cases[] = {{"shared", 0666, 0640},
                                                           {"private", 0600, 0600},
                                                           {"tool", 0755, 0750},
                                                           {"odd", 0464, 0440},
                                                           {"frozen", 0444, 0440}};
  WriteText(T / "shared.copy", "old", 0600);  // replacing takes them too
  const mode_t Previous = umask(027);
  for (const auto& [Name, Mode, Copied] : Cases) {
    WriteText(T / Name, "x", Mode);
    EXPECT_TRUE(CopyFileExA(T / Name, T / (Name + ".copy"), nullptr, nullptr, nullptr, 0)) << Name;
    EXPECT_EQ(ModeOf(T / (Name + ".copy")), Copied) << Name;
  }
  umask(Previous);
}

struct Call {
  std::int64_t Total, Transferred;
  DWORD Reason;
  bool operator==(const Call&) const = default;
};

// Records every progress call; answers Answer after a chunk, and sets
// *Cancel after the first chunk when it is given.
struct Recorder {
  std::vector<Call> Calls;
  BOOL* Cancel = nullptr;
  DWORD Answer = PROGRESS_CONTINUE;
};

DWORD Record(std::int64_t Total, std::int64_t Transferred, std::int64_t, std::int64_t, DWORD, DWORD Reason,
             void* Data) {
  auto* R = static_cast<Recorder*>(Data);
  R->Calls.push_back({Total, Transferred, Reason});
  if (Reason != CALLBACK_CHUNK_FINISHED) return PROGRESS_CONTINUE;
  if (R->Cancel) std::thread([R] { *R->Cancel = 1; }).join();  // from another thread, as a stop would
  return R->Answer;
}

// Files of many chunks are reported after each (the tests of cancelling below, and of
// Copy File(s)'s percentages with a small chunk).
TEST(CopyFile, ReportsProgressAtTheStartAndAfterEveryChunk) {
  TempDir T;
  for (std::int64_t Size : {0, 5}) {
    WriteText(T / "src", std::string(Size, 'z'));
    Recorder R;
    ASSERT_TRUE(CopyFileExA(T / "src", T / "copy", Record, &R, nullptr, 0));
    EXPECT_EQ(R.Calls,
              (std::vector<Call>{{Size, 0, CALLBACK_STREAM_SWITCH}, {Size, Size, CALLBACK_CHUNK_FINISHED}}));
    EXPECT_EQ(ReadText(T / "copy"), ReadText(T / "src"));
  }
}

// A disk that fills up after the first chunk.
class DiskFullAfterFirstChunk : public EnvWrapper {
 public:
  DiskFullAfterFirstChunk() : EnvWrapper(Env::Default()) {}
  DWORD CopyChunk(THandle From, THandle To, std::int64_t MaxBytes, std::int64_t& Copied) override {
    if (++Chunks > 1) return Copied = 0, ERROR_DISK_FULL;
    return EnvWrapper::CopyChunk(From, To, MaxBytes, Copied);
  }
  int Chunks = 0;
};

TEST(CopyFile, ACopyCancelledOrFailedInMidFileLeavesNoPartOfItAndTheOldTargetWhole) {
  enum Way { kCancelFlag, kProgressCancel, kDiskFull, kCancelFirst };
  for (Way How : {kCancelFlag, kProgressCancel, kDiskFull, kCancelFirst}) {
    for (bool OldTarget : {false, true}) {
      SCOPED_TRACE(std::to_string(How) + (OldTarget ? " over an old target" : ""));
      TempDir T;
      WriteText(T / "big", std::string(40 << 20, 'z'));
      if (OldTarget) WriteText(T / "copy", "old");
      BOOL Cancel = How == kCancelFirst;
      Recorder R;
      R.Cancel = How == kCancelFlag ? &Cancel : nullptr;
      R.Answer = How == kProgressCancel ? PROGRESS_CANCEL : PROGRESS_CONTINUE;
      DiskFullAfterFirstChunk Full;
      ScopedEnv Use(How == kDiskFull ? &Full : Env::Default());
      EXPECT_FALSE(CopyFileExA(T / "big", T / "copy", Record, &R, &Cancel, 0));
      EXPECT_EQ(GetLastError(), How == kDiskFull ? ERROR_DISK_FULL : ERROR_REQUEST_ABORTED);
      EXPECT_EQ(Tree(T.Path()).size(), OldTarget ? 2u : 1u);
      if (OldTarget) {
        EXPECT_EQ(ReadText(T / "copy"), "old");
      }
    }
  }
}

TEST(CopyFile, StopsAtTheSizeTheSourceHadAtTheStart) {
  TempDir T;
  WriteText(T / "src", "12345");
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
  Recorder R;
  ASSERT_TRUE(CopyFileExA(T / "src", T / "copy", Record, &R, nullptr, 0));
  EXPECT_EQ(Env.Calls, 1);
  EXPECT_EQ(ReadText(T / "copy"), "12345");
  EXPECT_EQ(R.Calls.back().Transferred, 5);
}

constexpr DWORD kCopyAllowed = MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH;

// The other refusals and errors are read through Rename File or Directory and Move Directory.
TEST(MoveFile, WhatAMoveLeavesAndTheErrorItReports) {
  // clang-format off
  const struct {
    Lines Before;
    std::string From, To;
    DWORD Flags, Error;  // ERROR_SUCCESS for a move that succeeds
    Lines After;
  } Cases[] = {
      // Letter case is a rename; a directory is never replaced, nor replaces one.
      {{"d/A.TXT=a"}, "d/A.TXT", "d/a.Txt", 0, ERROR_SUCCESS, {"d/a.Txt=a"}},
      {{"d/", "e/"}, "d", "e", MOVEFILE_REPLACE_EXISTING, ERROR_ACCESS_DENIED, {"d/", "e/"}},
      {{"b=b", "e/"}, "b", "e", MOVEFILE_REPLACE_EXISTING, ERROR_ACCESS_DENIED, {"b=b", "e/"}},
  };
  // clang-format on
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.From + " -> " + C.To);
    TempDir T;
    MakeTree(T.Path(), C.Before);
    EXPECT_EQ(MoveFileExA(T / C.From, T / C.To, C.Flags), C.Error == ERROR_SUCCESS);
    if (C.Error != ERROR_SUCCESS) {
      EXPECT_EQ(GetLastError(), C.Error);
    }
    EXPECT_EQ(Tree(T.Path()), C.After);
  }
}

DWORD CountCalls(std::int64_t, std::int64_t Transferred, std::int64_t, std::int64_t, DWORD, DWORD,
                 void* Data) {
  static_cast<std::vector<std::int64_t>*>(Data)->push_back(Transferred);
  return PROGRESS_CONTINUE;
}

// Across file systems (to /dev/shm when it is a second one) a file is copied
// with progress, then its source deleted; a directory is never copied.
TEST(MoveFile, AcrossFileSystemsOnlyFilesMoveAndOnlyWhenACopyIsAllowed) {
  TempDir T, Other("/dev/shm");
  struct stat A, B;
  if (Other.Path().empty() || stat(T.Path().c_str(), &A) != 0 || stat(Other.Path().c_str(), &B) != 0 ||
      A.st_dev == B.st_dev)
    GTEST_SKIP() << "no second file system to move to";
  MakeTree(T.Path(), {"a=payload", "b=b", "d/"});
  MakeTree(Other.Path(), {"b=other"});
  std::vector<std::int64_t> Calls;
  EXPECT_TRUE(MoveFileWithProgressA(T / "a", Other / "a", CountCalls, &Calls, kCopyAllowed));
  EXPECT_GE(Calls.size(), 2u);
  EXPECT_EQ(Calls.back(), 7);
  EXPECT_FALSE(MoveFileWithProgressA(T / "b", Other / "b", nullptr, nullptr, kCopyAllowed));
  EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
  EXPECT_FALSE(MoveFileA(T / "d", Other / "d"));
  EXPECT_EQ(GetLastError(), ERROR_NOT_SAME_DEVICE);
  EXPECT_FALSE(MoveFileWithProgressA(T / "b", Other / "c", nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), ERROR_NOT_SAME_DEVICE);
  EXPECT_EQ(Tree(T.Path()), (Lines{"b=b", "d/"}));
  EXPECT_EQ(Tree(Other.Path()), (Lines{"a=payload [0x20]", "b=other"}));  // copied: archive
}

// Copies fail with a sharing violation the first Failures times.
class LockedForAWhile : public EnvWrapper {
 public:
  explicit LockedForAWhile(int Failures) : EnvWrapper(Env::Default()), Left_(Failures) {
    Env::SetDefault(this);
  }
  ~LockedForAWhile() override { Env::SetDefault(Target()); }
  bool CopyFileExA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                   void* Data, BOOL* Cancel, DWORD Flags) override {
    if (Left_ > 0 && Left_--) {
      SetLastError(ERROR_SHARING_VIOLATION);
      return false;
    }
    return EnvWrapper::CopyFileExA(Existing, New, Progress, Data, Cancel, Flags);
  }

 private:
  int Left_;
};

struct Recorded : IToolOutput {
  std::vector<std::string> Lines;
  int StopAfterLines = -1;
  void Line(const std::string& Text) override { Lines.push_back(Text); }
  bool StopRequested() override {
    return StopAfterLines >= 0 && static_cast<int>(Lines.size()) >= StopAfterLines;
  }
};

TEST(RobocopyRetries, ALockedFileIsGivenUpStoppedDuringTheWaitOrCopiedOnTheThirdTry) {
  TempDir Dir;
  const std::string Src = Dir / "a.txt";
  WriteText(Src, "data");
  {
    LockedForAWhile Env(2);
    Recorded Out;
    EXPECT_EQ(RunRobocopy({Dir.Path(), Dir / "out", "/R:1", "/W:0", "/NJH", "/NJS"}, Out), kRobocopyFailures);
    EXPECT_EQ(Out.Lines.back(), " --> Giving up on : " + Src);
  }
  {
    LockedForAWhile Env(1);
    Recorded Out;
    Out.StopAfterLines = 4;  // once the wait has begun
    const auto Start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunRobocopy({Dir.Path(), Dir / "out", "/R:5", "/W:30", "/NJH", "/NJS"}, Out), kRobocopyFatal);
    EXPECT_LT(std::chrono::steady_clock::now() - Start, std::chrono::seconds(5));
    EXPECT_EQ(Out.Lines.back(), "Stopped by the user.");
    EXPECT_FALSE(Exists(Dir / "out/a.txt"));
  }
  LockedForAWhile Env(2);
  Recorded Out;
  EXPECT_EQ(RunRobocopy({Dir.Path(), Dir / "out", "/R:3", "/W:0", "/NJH", "/NJS"}, Out), kRobocopyCopied);
  EXPECT_EQ(Out.Lines,
            (std::vector<std::string>{
                "New File : a.txt (4 bytes)",
                " --> Error Copying File : " + Src,
                " --> The process cannot access the file because it is being used by another process",
                " --> Waiting 0 seconds before retry 1 of 3",
                " --> Error Copying File : " + Src,
                " --> The process cannot access the file because it is being used by another process",
                " --> Waiting 0 seconds before retry 2 of 3",
            }));
  EXPECT_EQ(ReadText(Dir / "out/a.txt"), "data");
}

}  // namespace
}  // namespace zt::platform
