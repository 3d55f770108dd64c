#include <gtest/gtest.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "platform/env.h"
#include "platform/files.h"
#include "support/Files.h"
#include "tests/support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::ModeOf;
using zt::testing::TempDir;
using zt::testing::WriteText;

std::string StoredValue(const std::string& Path) {
  char Value[64] = {};
  ssize_t N = getxattr(Path.c_str(), "user.DOSATTRIB", Value, sizeof Value - 1);
  return N < 0 ? "" : std::string(Value, static_cast<size_t>(N));
}

TEST(Attributes, PlainFileIsNormalAndDirectoryIsDirectory) {
  TempDir T;
  WriteText(T / "a.txt", "x");
  EXPECT_EQ(GetFileAttributesA(T / "a.txt"), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(GetFileAttributesA(T.Path()), FILE_ATTRIBUTE_DIRECTORY);
}

TEST(Attributes, MissingFileAndMissingFolderGiveTwoAndThree) {
  TempDir T;
  EXPECT_EQ(GetFileAttributesA(T / "nope.txt"), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(GetFileAttributesA(T / "nodir/nope.txt"), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST(Attributes, LinksAreFollowedAndMarkedAndADanglingLinkDescribesItself) {
  TempDir T;
  WriteText(T / "a.txt", "x");
  ASSERT_TRUE(SetFileAttributesA(T / "a.txt", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM));
  ASSERT_EQ(symlink("a.txt", (T / "to-file").c_str()), 0);
  ASSERT_EQ(symlink(T.Path().c_str(), (T / "to-dir").c_str()), 0);
  ASSERT_EQ(symlink("missing", (T / "dangling").c_str()), 0);
  constexpr DWORD Link = FILE_ATTRIBUTE_REPARSE_POINT;
  EXPECT_EQ(GetFileAttributesA(T / "to-file"), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM | Link);
  EXPECT_EQ(GetFileAttributesA(T / "to-dir"), FILE_ATTRIBUTE_DIRECTORY | Link);
  EXPECT_EQ(GetFileAttributesA(T / "dangling"), Link);
  // The bit is reported, never set: writing attributes back changes nothing.
  EXPECT_TRUE(SetFileAttributesA(T / "to-dir", GetFileAttributesA(T / "to-dir")));
  EXPECT_EQ(GetFileAttributesA(T.Path()), FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(GetFileAttributesA(T / "a.txt/x"), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST(Attributes, ReadOnlyRemovesEveryWriteBitAndClearingGivesOwnerWriteBack) {
  TempDir T;
  WriteText(T / "a.txt", "x");
  chmod((T / "a.txt").c_str(), 0666);
  ASSERT_TRUE(SetFileAttributesA(T / "a.txt", FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(ModeOf(T / "a.txt"), 0444u);
  EXPECT_EQ(GetFileAttributesA(T / "a.txt"), FILE_ATTRIBUTE_READONLY);
  ASSERT_TRUE(SetFileAttributesA(T / "a.txt", FILE_ATTRIBUTE_NORMAL));
  EXPECT_EQ(ModeOf(T / "a.txt"), 0644u);
  EXPECT_EQ(GetFileAttributesA(T / "a.txt"), FILE_ATTRIBUTE_NORMAL);
}

TEST(Attributes, HiddenSystemArchiveRoundTripThroughTheExtendedAttribute) {
  TempDir T;
  WriteText(T / "a.txt", "x");
  const DWORD All =
      FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY;
  ASSERT_TRUE(SetFileAttributesA(T / "a.txt", All));
  EXPECT_EQ(GetFileAttributesA(T / "a.txt"), All);
  EXPECT_EQ(StoredValue(T / "a.txt"), "0x26");
  ASSERT_TRUE(SetFileAttributesA(T / "a.txt", FILE_ATTRIBUTE_ARCHIVE));
  EXPECT_EQ(GetFileAttributesA(T / "a.txt"), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(StoredValue(T / "a.txt"), "0x20");
  // Normal clears everything the file keeps.
  ASSERT_TRUE(SetFileAttributesA(T / "a.txt", FILE_ATTRIBUTE_NORMAL));
  EXPECT_EQ(GetFileAttributesA(T / "a.txt"), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(StoredValue(T / "a.txt"), "");
}

TEST(Attributes, ReadsTheSambaTextFormWrittenByOthers) {
  TempDir T;
  WriteText(T / "a.txt", "x");
  ASSERT_EQ(setxattr((T / "a.txt").c_str(), "user.DOSATTRIB", "0x4", 3, 0), 0);
  EXPECT_EQ(GetFileAttributesA(T / "a.txt"), FILE_ATTRIBUTE_SYSTEM);
}

TEST(Attributes, LeadingDotIsHiddenAndCannotBeCleared) {
  TempDir T;
  WriteText(T / ".env", "x");
  EXPECT_EQ(GetFileAttributesA(T / ".env"), FILE_ATTRIBUTE_HIDDEN);
  ASSERT_TRUE(SetFileAttributesA(T / ".env", FILE_ATTRIBUTE_NORMAL));
  EXPECT_EQ(GetFileAttributesA(T / ".env"), FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(GetFileAttributesA(T.Path() + "/."), FILE_ATTRIBUTE_DIRECTORY);
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
  EXPECT_EQ(StoredValue(T / "b.txt"), "0x24");
}

}  // namespace
}  // namespace zt::platform
