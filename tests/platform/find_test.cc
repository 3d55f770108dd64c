#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <set>

#include "platform/env.h"
#include "platform/files.h"
#include "support/Files.h"
#include "tests/support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::TempDir;
using zt::testing::WriteText;

std::set<std::string> Find(const std::string& Spec, int Mask) {
  std::set<std::string> Names;
  TSearchRec F;
  if (FindFirst(Spec, Mask, F) == 0) {
    do Names.insert(F.Name);
    while (FindNext(F) == 0);
    FindClose(F);
  }
  return Names;
}

// plain.txt, ro.txt (read-only), .dot.txt and hid.txt (hidden), sys.txt
// (system), arc.txt (archive), sub/ (directory).
class FindMaskTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* Name : {"plain.txt", "ro.txt", ".dot.txt", "hid.txt", "sys.txt", "arc.txt"})
      WriteText(T / Name, "x");
    mkdir((T / "sub").c_str(), 0777);
    ASSERT_TRUE(SetFileAttributesA(T / "ro.txt", FILE_ATTRIBUTE_READONLY));
    ASSERT_TRUE(SetFileAttributesA(T / "hid.txt", FILE_ATTRIBUTE_HIDDEN));
    ASSERT_TRUE(SetFileAttributesA(T / "sys.txt", FILE_ATTRIBUTE_SYSTEM));
    ASSERT_TRUE(SetFileAttributesA(T / "arc.txt", FILE_ATTRIBUTE_ARCHIVE));
  }
  TempDir T;
};

TEST_F(FindMaskTest, MaskZeroFindsOnlyFilesWithoutHiddenSystemOrDirectoryBits) {
  EXPECT_EQ(Find(T / "*", 0), (std::set<std::string>{"plain.txt", "ro.txt", "arc.txt"}));
}

TEST_F(FindMaskTest, MaskThreeAddsHiddenFiles) {
  EXPECT_EQ(Find(T / "*", faReadOnly | faHidden),
            (std::set<std::string>{"plain.txt", "ro.txt", "arc.txt", ".dot.txt", "hid.txt"}));
}

TEST_F(FindMaskTest, MaskSixteenAddsDirectoriesWithDotEntries) {
  EXPECT_EQ(Find(T / "*", faDirectory),
            (std::set<std::string>{".", "..", "sub", "plain.txt", "ro.txt", "arc.txt"}));
}

TEST_F(FindMaskTest, MaskFortySevenFindsEveryFileButNoDirectory) {
  EXPECT_EQ(Find(T / "*", 47),
            (std::set<std::string>{"plain.txt", "ro.txt", "arc.txt", ".dot.txt", "hid.txt", "sys.txt"}));
}

TEST_F(FindMaskTest, MaskSixtyThreeFindsEverything) {
  EXPECT_EQ(Find(T / "*", faAnyFile), (std::set<std::string>{".", "..", "sub", "plain.txt", "ro.txt",
                                                             "arc.txt", ".dot.txt", "hid.txt", "sys.txt"}));
}

TEST_F(FindMaskTest, RecordCarriesAttributesSizeAndTime) {
  WriteText(T / "data.bin", "12345");
  TSearchRec F;
  ASSERT_EQ(FindFirst(T / "ro.txt", 0, F), 0);
  EXPECT_EQ(F.Name, "ro.txt");
  EXPECT_EQ(F.Attr, faReadOnly);
  FindClose(F);
  ASSERT_EQ(FindFirst(T / "d*.bin", 0, F), 0);
  EXPECT_EQ(F.Name, "data.bin");
  EXPECT_EQ(F.Size, 5);
  EXPECT_EQ(F.Attr, faNormal);
  EXPECT_EQ(F.Time, FileAge(T / "data.bin"));
  EXPECT_NE(F.Time, 0);
  EXPECT_EQ(FindNext(F), static_cast<int>(ERROR_NO_MORE_FILES));
  FindClose(F);
}

TEST(Find, ReturnsEntriesInDirectoryOrder) {
  TempDir T;
  for (int I = 0; I < 50; ++I) WriteText(T / ("f" + std::to_string(I) + ".txt"), "x");
  std::vector<std::string> Expected;
  DIR* D = opendir(T.Path().c_str());
  while (dirent* E = readdir(D))
    if (std::string(E->d_name).ends_with(".txt")) Expected.push_back(E->d_name);
  closedir(D);
  std::vector<std::string> Seen;
  TSearchRec F;
  ASSERT_EQ(FindFirst(T / "*.txt", 0, F), 0);
  do Seen.push_back(F.Name);
  while (FindNext(F) == 0);
  FindClose(F);
  EXPECT_EQ(Seen, Expected);
}

TEST(Find, NoMatchGivesTwoAndMissingFolderGivesThree) {
  TempDir T;
  TSearchRec F;
  EXPECT_EQ(FindFirst(T / "*.none", faAnyFile, F), static_cast<int>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(FindFirst(T / "missing.txt", faAnyFile, F), static_cast<int>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(FindFirst(T / "nodir/*.txt", faAnyFile, F), static_cast<int>(ERROR_PATH_NOT_FOUND));
  EXPECT_EQ(FindFirst(T / "nodir/a.txt", faAnyFile, F), static_cast<int>(ERROR_PATH_NOT_FOUND));
}

TEST(Find, WildcardsFollowWindowsRules) {
  TempDir T;
  for (const char* Name : {"a.txt", "ab.txt", "abc.txt", "a.txt.bak", "README"}) WriteText(T / Name, "x");
  EXPECT_EQ(Find(T / "a?.txt", 0), (std::set<std::string>{"a.txt", "ab.txt"}));
  EXPECT_EQ(Find(T / "*.txt", 0), (std::set<std::string>{"a.txt", "ab.txt", "abc.txt"}));
  EXPECT_EQ(Find(T / "*.", 0), (std::set<std::string>{"README"}));
  EXPECT_EQ(Find(T / "*.*", 0).size(), 5u);
}

// Removes a named file the moment the search is about to read it.
class VanishingFile : public EnvWrapper {
 public:
  explicit VanishingFile(std::string Victim) : EnvWrapper(Env::Default()), Victim_(std::move(Victim)) {}
  DWORD QueryFileInfo(const std::string& Path, FileInfo& Info) override {
    if (Path == Victim_) unlink(Path.c_str());
    return EnvWrapper::QueryFileInfo(Path, Info);
  }

 private:
  std::string Victim_;
};

TEST(Find, FileVanishingInMidWalkIsSkipped) {
  TempDir T;
  for (const char* Name : {"a.txt", "b.txt", "c.txt"}) WriteText(T / Name, "x");
  VanishingFile Env(T / "b.txt");
  ScopedEnv Installed(&Env);
  EXPECT_EQ(Find(T / "*.txt", 0), (std::set<std::string>{"a.txt", "c.txt"}));
}

TEST(Find, LinksAreFollowedMarkedAndADanglingLinkIsStillAnEntry) {
  TempDir T;
  WriteText(T / "a.txt", "12345");
  ASSERT_TRUE(SetFileAttributesA(T / "a.txt", FILE_ATTRIBUTE_READONLY));
  ASSERT_EQ(symlink("a.txt", (T / "good.txt").c_str()), 0);
  ASSERT_EQ(symlink("missing", (T / "dangling.txt").c_str()), 0);
  EXPECT_EQ(Find(T / "*.txt", 0), (std::set<std::string>{"a.txt", "good.txt", "dangling.txt"}));
  TSearchRec F;
  ASSERT_EQ(FindFirst(T / "g*.txt", 0, F), 0);
  EXPECT_EQ(F.Name, "good.txt");
  EXPECT_EQ(F.Size, 5);
  EXPECT_EQ(F.Attr, faReadOnly | faSymLink);
  FindClose(F);
  ASSERT_EQ(FindFirst(T / "d*.txt", 0, F), 0);
  EXPECT_EQ(F.Name, "dangling.txt");
  EXPECT_EQ(F.Attr, faSymLink);
  FindClose(F);
}

TEST(Find, StoredAndDotHiddenEntriesNeedTheHiddenBitInTheMask) {
  TempDir T;
  for (const char* Name : {"a.txt", ".b.txt", "c.txt"}) WriteText(T / Name, "x");
  ASSERT_TRUE(SetFileAttributesA(T / "c.txt", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE));
  EXPECT_EQ(Find(T / "*.txt", 0), (std::set<std::string>{"a.txt"}));
  TSearchRec F;
  ASSERT_EQ(FindFirst(T / "c*", faHidden, F), 0);
  EXPECT_EQ(F.Attr, faHidden | faArchive);
  FindClose(F);
  ASSERT_EQ(FindFirst(T / ".b*", faHidden, F), 0);
  EXPECT_EQ(F.Attr, faHidden);
  FindClose(F);
}

TEST(Find, ADirectoryThePathReachesASecondTimeIsNotListed) {
  TempDir T;
  mkdir((T / "a").c_str(), 0777);
  WriteText(T / "a/x.txt", "x");
  ASSERT_EQ(symlink("..", (T / "a/up").c_str()), 0);
  ASSERT_EQ(symlink(".", (T / "a/self").c_str()), 0);
  for (const char* Again : {"a/up/*", "a/self/*", "a/up/a/*"}) {
    TSearchRec F;
    EXPECT_EQ(FindFirst(T / Again, faAnyFile, F), static_cast<int>(ERROR_PATH_NOT_FOUND)) << Again;
  }
  // "." and ".." are no second visit; an exact name is looked up, not listed.
  for (const char* Once : {"a/*.txt", "a/./*.txt", "a/../a/*.txt", "a/self/x.txt"})
    EXPECT_EQ(Find(T / Once, 0), std::set<std::string>{"x.txt"}) << Once;
}

}  // namespace
}  // namespace zt::platform
