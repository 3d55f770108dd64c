#include <gtest/gtest.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "platform/env.h"
#include "platform/files.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::MakeTree;
using zt::testing::ModeOf;
using zt::testing::TempDir;
using zt::testing::Tree;
using zt::testing::WriteText;

TEST(Attributes, WhatGetFileAttributesSays) {
  TempDir T;
  // Read-only from the mode; hidden from a leading dot or the stored bits,
  // which other programs write as Samba does ("0x4": system).
  MakeTree(T.Path(), {"a.txt", "ro [ro] [0x4]", ".env", "sys [0x4]", "to-file -> ro", "dangling -> missing"});
  ASSERT_EQ(symlink(T.Path().c_str(), (T / "to-dir").c_str()), 0);
  constexpr DWORD Link = FILE_ATTRIBUTE_REPARSE_POINT;
  // clang-format off
  const std::pair<std::string, DWORD> Cases[] = {
      {"a.txt", FILE_ATTRIBUTE_NORMAL},
      {"", FILE_ATTRIBUTE_DIRECTORY},
      {"ro", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM},
      {".env", FILE_ATTRIBUTE_HIDDEN},
      {".", FILE_ATTRIBUTE_DIRECTORY},
      {"sys", FILE_ATTRIBUTE_SYSTEM},
      // Links are followed and marked; a dangling one describes itself.
      {"to-file", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM | Link},
      {"to-dir", FILE_ATTRIBUTE_DIRECTORY | Link},
      {"dangling", Link},
  };
  // clang-format on
  for (const auto& [Name, Attributes] : Cases) EXPECT_EQ(GetFileAttributesA(T / Name), Attributes) << Name;
  const std::pair<std::string, DWORD> Missing[] = {{"nope", ERROR_FILE_NOT_FOUND},
                                                   {"nodir/nope", ERROR_PATH_NOT_FOUND},
                                                   {"a.txt/x", ERROR_PATH_NOT_FOUND}};
  for (const auto& [Name, Error] : Missing) {
    EXPECT_EQ(GetFileAttributesA(T / Name), INVALID_FILE_ATTRIBUTES) << Name;
    EXPECT_EQ(GetLastError(), Error) << Name;
  }
  // The link bit is reported, never set: writing attributes back changes nothing.
  EXPECT_TRUE(SetFileAttributesA(T / "to-dir", GetFileAttributesA(T / "to-dir")));
  EXPECT_EQ(GetFileAttributesA(T.Path()), FILE_ATTRIBUTE_DIRECTORY);
}

TEST(Attributes, WhatSetFileAttributesLeaves) {
  const DWORD All =
      FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY;
  // clang-format off
  const struct {
    std::string Before;
    DWORD Set;
    std::string After;  // as Tree shows it
    mode_t Mode;
  } Cases[] = {
      // Read-only takes every write bit; clearing it gives the owner's back.
      {"a", FILE_ATTRIBUTE_READONLY, "a [ro]", 0444},
      {"a [ro]", FILE_ATTRIBUTE_NORMAL, "a", 0644},
      {"a", All, "a [ro] [0x26]", 0444},
      {"a [0x26]", FILE_ATTRIBUTE_ARCHIVE, "a [0x20]", 0666},
      {"a [ro] [0x26]", FILE_ATTRIBUTE_NORMAL, "a", 0644},  // normal clears everything the file keeps
      {".env", FILE_ATTRIBUTE_NORMAL, ".env", 0666},         // a leading dot stays hidden
  };
  // clang-format on
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Before);
    TempDir T;
    MakeTree(T.Path(), {C.Before});
    const std::string Name = C.Before.substr(0, C.Before.find(' ')), Path = T / Name;
    if (C.Before.find("[ro]") == std::string::npos) chmod(Path.c_str(), 0666);
    ASSERT_TRUE(SetFileAttributesA(Path, C.Set));
    EXPECT_EQ(Tree(T.Path()), std::vector<std::string>{C.After});
    EXPECT_EQ(ModeOf(Path), C.Mode);
    EXPECT_EQ(GetFileAttributesA(Path), Name == ".env" ? FILE_ATTRIBUTE_HIDDEN : C.Set);
  }
}

// A file system that cannot keep extended attributes.
class NoExtendedAttributes : public EnvWrapper {
 public:
  NoExtendedAttributes() : EnvWrapper(Env::Default()) {}
  DWORD WriteDosAttributes(const std::string&, DWORD) override { return ERROR_NOT_SUPPORTED; }
};

TEST(Attributes, WithoutExtendedAttributesSettingHiddenFailsAndChangesNothing) {
  TempDir T;
  WriteText(T / "a.txt", "x");
  NoExtendedAttributes Env;
  ScopedEnv Installed(&Env);
  EXPECT_FALSE(SetFileAttributesA(T / "a.txt", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(GetLastError(), ERROR_NOT_SUPPORTED);
  EXPECT_EQ(GetFileAttributesA(T / "a.txt"), FILE_ATTRIBUTE_NORMAL);
  // What needs no extended attribute still works.
  EXPECT_TRUE(SetFileAttributesA(T / "a.txt", FILE_ATTRIBUTE_READONLY));
  EXPECT_TRUE(SetFileAttributesA(T / "a.txt", FILE_ATTRIBUTE_NORMAL));
}

// Files whose change time lies well in the past: the layer may remember
// their stored attributes, and must notice when another program changes them.
TEST(Attributes, ChangeByAnotherProgramIsSeenAfterASearchHasReadTheFile) {
  TempDir T;
  WriteText(T / "a.txt", "x");
  std::this_thread::sleep_for(std::chrono::milliseconds(2100));
  TSearchRec F;
  ASSERT_EQ(FindFirst(T / "a.txt", faAnyFile, F), 0);
  EXPECT_EQ(F.Attr, faNormal);
  FindClose(F);
  ASSERT_EQ(FindFirst(T / "*.txt", faAnyFile, F), 0);
  EXPECT_EQ(F.Attr, faNormal);
  FindClose(F);
  EXPECT_EQ(GetFileAttributesA(T / "a.txt"), FILE_ATTRIBUTE_NORMAL);
  ASSERT_EQ(setxattr((T / "a.txt").c_str(), "user.DOSATTRIB", "0x4", 3, 0), 0);  // system
  EXPECT_EQ(GetFileAttributesA(T / "a.txt"), FILE_ATTRIBUTE_SYSTEM);
  ASSERT_EQ(FindFirst(T / "*.txt", faAnyFile, F), 0);
  EXPECT_EQ(F.Attr, faSysFile);
  FindClose(F);
  EXPECT_NE(FindFirst(T / "*.txt", 0, F), 0);
  ASSERT_TRUE(CopyFileExA(T / "a.txt", T / "b.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(Tree(T.Path()), (std::vector<std::string>{"a.txt [0x4]", "b.txt [0x24]"}));
}

}  // namespace
}  // namespace zt::platform
