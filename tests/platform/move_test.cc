// MoveFileA, MoveFileExA and MoveFileWithProgressA: what a move leaves on
// disk and the error it reports, within one file system and across two.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/files.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using Lines = std::vector<std::string>;
using zt::testing::MakeTree;
using zt::testing::TempDir;
using zt::testing::Tree;

constexpr DWORD kCopyAllowed = MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH;
enum Call { kMove, kMoveEx, kWithProgress };

bool Move(Call How, const std::string& From, const std::string& To, DWORD Flags) {
  if (How == kMove) return MoveFileA(From, To);
  if (How == kMoveEx) return MoveFileExA(From, To, Flags);
  return MoveFileWithProgressA(From, To, nullptr, nullptr, Flags);
}

TEST(MoveFile, WhatAMoveLeavesAndTheErrorItReports) {
  // clang-format off
  const struct {
    Lines Before;
    Call How;
    std::string From, To;
    DWORD Flags, Error;  // ERROR_SUCCESS for a move that succeeds
    Lines After;
  } Cases[] = {
      {{"a=a", "b=b"}, kWithProgress, "a", "b", kCopyAllowed, ERROR_ALREADY_EXISTS, {"a=a", "b=b"}},
      {{"a=a", "b=b"}, kMove, "a", "b", 0, ERROR_ALREADY_EXISTS, {"a=a", "b=b"}},
      {{"a=a", "b=b"}, kMoveEx, "a", "b", MOVEFILE_REPLACE_EXISTING, ERROR_SUCCESS, {"b=a"}},
      {{"a=a", "b=b [ro]"}, kWithProgress, "a", "b", MOVEFILE_REPLACE_EXISTING, ERROR_ACCESS_DENIED,
       {"a=a", "b=b [ro]"}},
      // Letter case is a rename; a directory moves whole but is never replaced.
      {{"a.txt=a", "d/"}, kMove, "a.txt", "d/A.TXT", 0, ERROR_SUCCESS, {"d/A.TXT=a"}},
      {{"d/A.TXT=a"}, kMove, "d/A.TXT", "d/a.Txt", 0, ERROR_SUCCESS, {"d/a.Txt=a"}},
      {{"d/a=a"}, kWithProgress, "d", "e", kCopyAllowed, ERROR_SUCCESS, {"e/a=a"}},
      {{"d/", "e/"}, kMoveEx, "d", "e", 0, ERROR_ALREADY_EXISTS, {"d/", "e/"}},
      {{"d/", "e/"}, kMoveEx, "d", "e", MOVEFILE_REPLACE_EXISTING, ERROR_ACCESS_DENIED, {"d/", "e/"}},
      {{"b=b", "e/"}, kMoveEx, "b", "e", MOVEFILE_REPLACE_EXISTING, ERROR_ACCESS_DENIED, {"b=b", "e/"}},
      {{"a=a"}, kMove, "none", "b", 0, ERROR_FILE_NOT_FOUND, {"a=a"}},
      {{"a=a"}, kMove, "a", "nodir/b", 0, ERROR_PATH_NOT_FOUND, {"a=a"}},
  };
  // clang-format on
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.From + " -> " + C.To);
    TempDir T;
    MakeTree(T.Path(), C.Before);
    EXPECT_EQ(Move(C.How, T / C.From, T / C.To, C.Flags), C.Error == ERROR_SUCCESS);
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

}  // namespace
}  // namespace zt::platform
