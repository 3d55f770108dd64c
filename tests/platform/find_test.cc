// FindFirst / FindNext: which entries an attribute mask lets through, what a
// record carries, the order, links, files vanishing during a search, and
// directories a path reaches twice.
#include <dirent.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <set>

#include "platform/env.h"
#include "platform/files.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using Names = std::set<std::string>;
using zt::testing::MakeTree;
using zt::testing::TempDir;

Names Find(const std::string& Spec, int Mask) {
  Names Found;
  TSearchRec F;
  if (FindFirst(Spec, Mask, F) == 0) {
    do Found.insert(F.Name);
    while (FindNext(F) == 0);
    FindClose(F);
  }
  return Found;
}

// The record of the one entry Spec names.
TSearchRec Record(const std::string& Spec, int Mask) {
  TSearchRec F;
  EXPECT_EQ(FindFirst(Spec, Mask, F), 0) << Spec;
  EXPECT_EQ(FindNext(F), static_cast<int>(ERROR_NO_MORE_FILES));
  FindClose(F);
  return F;
}

TEST(Find, TheMaskLetsHiddenSystemAndDirectoryEntriesThrough) {
  TempDir T;
  // Hidden: a leading dot or the stored bit; system, archive: stored bits.
  MakeTree(T.Path(), {"plain.txt", "ro.txt [ro]", ".dot.txt", "hid.txt [0x2]", "sys.txt [0x4]",
                      "arc.txt [0x20]", "sub/"});
  const Names Plain = {"plain.txt", "ro.txt", "arc.txt"};
  auto With = [&](Names More) { return More.insert(Plain.begin(), Plain.end()), More; };
  EXPECT_EQ(Find(T / "*", 0), Plain);
  EXPECT_EQ(Find(T / "*", faReadOnly | faHidden), With({".dot.txt", "hid.txt"}));
  EXPECT_EQ(Find(T / "*", faDirectory), With({".", "..", "sub"}));
  EXPECT_EQ(Find(T / "*", 47), With({".dot.txt", "hid.txt", "sys.txt"}));
  EXPECT_EQ(Find(T / "*", faAnyFile), With({".", "..", "sub", ".dot.txt", "hid.txt", "sys.txt"}));
  EXPECT_EQ(Record(T / "ro.txt", 0).Attr, faReadOnly);
  EXPECT_EQ(Record(T / "hid*", faHidden).Attr, faHidden);
  EXPECT_EQ(Record(T / ".dot*", faHidden).Attr, faHidden);
  EXPECT_EQ(Record(T / "arc*", 0).Attr, faArchive);
}

TEST(Find, ARecordCarriesSizeAndTimeAndLinksAreFollowed) {
  TempDir T;
  MakeTree(T.Path(), {"data.bin=12345 [ro]", "good.bin -> data.bin", "broken.bin -> missing"});
  const TSearchRec Data = Record(T / "d*.bin", 0), Good = Record(T / "g*", 0), Dangling = Record(T / "b*", 0);
  EXPECT_EQ(Data.Name, "data.bin");
  EXPECT_EQ(Data.Size, 5);
  EXPECT_EQ(Data.Attr, faReadOnly);
  EXPECT_EQ(Data.Time, FileAge(T / "data.bin"));
  EXPECT_NE(Data.Time, 0);
  EXPECT_EQ(Good.Size, 5);
  EXPECT_EQ(Good.Attr, faReadOnly | faSymLink);
  EXPECT_EQ(Dangling.Attr, faSymLink);  // still an entry
}

TEST(Find, EntriesComeInDirectoryOrderAndMissingOnesSayWhy) {
  TempDir T;
  for (int I = 0; I < 50; ++I) zt::testing::WriteText(T / ("f" + std::to_string(I) + ".txt"));
  std::vector<std::string> Expected, Seen;
  DIR* D = opendir(T.Path().c_str());
  while (dirent* E = readdir(D))
    if (std::string(E->d_name).ends_with(".txt")) Expected.push_back(E->d_name);
  closedir(D);
  TSearchRec F;
  ASSERT_EQ(FindFirst(T / "*.txt", 0, F), 0);
  do Seen.push_back(F.Name);
  while (FindNext(F) == 0);
  FindClose(F);
  EXPECT_EQ(Seen, Expected);
  EXPECT_EQ(FindFirst(T / "*.none", faAnyFile, F), static_cast<int>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(FindFirst(T / "missing.txt", faAnyFile, F), static_cast<int>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(FindFirst(T / "nodir/*.txt", faAnyFile, F), static_cast<int>(ERROR_PATH_NOT_FOUND));
  EXPECT_EQ(FindFirst(T / "nodir/a.txt", faAnyFile, F), static_cast<int>(ERROR_PATH_NOT_FOUND));
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

TEST(Find, AFileVanishingInMidSearchIsSkipped) {
  TempDir T;
  MakeTree(T.Path(), {"a.txt", "b.txt", "c.txt"});
  VanishingFile Env(T / "b.txt");
  ScopedEnv Installed(&Env);
  EXPECT_EQ(Find(T / "*.txt", 0), (Names{"a.txt", "c.txt"}));
}

TEST(Find, ADirectoryThePathReachesASecondTimeIsNotListed) {
  TempDir T;
  MakeTree(T.Path(), {"a/x.txt", "a/up -> ..", "a/self -> ."});
  for (const char* Again : {"a/up/*", "a/self/*", "a/up/a/*"}) {
    TSearchRec F;
    EXPECT_EQ(FindFirst(T / Again, faAnyFile, F), static_cast<int>(ERROR_PATH_NOT_FOUND)) << Again;
  }
  // "." and ".." are no second visit; an exact name is looked up, not listed.
  for (const char* Once : {"a/*.txt", "a/./*.txt", "a/../a/*.txt", "a/self/x.txt"})
    EXPECT_EQ(Find(T / Once, 0), Names{"x.txt"}) << Once;
}

}  // namespace
}  // namespace zt::platform
