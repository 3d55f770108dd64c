// File attributes as GetFileAttributes reports them and SetFileAttributes
// leaves them, kept in extended attributes; FindFirst / FindNext: which
// entries an attribute mask lets through, what a record carries, the order,
// links, files vanishing during a search, and directories a path reaches twice.
#include <gtest/gtest.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <thread>

#include "platform/env.h"
#include "platform/files.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using Names = std::set<std::string>;
using namespace zt::testing;

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
      // Read-only takes every write bit (read through Set File Attributes); clearing it gives the owner's back.
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
  EXPECT_EQ(Record(T / "a.txt", faAnyFile).Attr, faNormal);
  EXPECT_EQ(Record(T / "*.txt", faAnyFile).Attr, faNormal);
  EXPECT_EQ(GetFileAttributesA(T / "a.txt"), FILE_ATTRIBUTE_NORMAL);
  ASSERT_EQ(setxattr((T / "a.txt").c_str(), "user.DOSATTRIB", "0x4", 3, 0), 0);  // system
  EXPECT_EQ(GetFileAttributesA(T / "a.txt"), FILE_ATTRIBUTE_SYSTEM);
  EXPECT_EQ(Record(T / "*.txt", faAnyFile).Attr, faSysFile);
  EXPECT_EQ(Find(T / "*.txt", 0), Names{});
  ASSERT_TRUE(CopyFileExA(T / "a.txt", T / "b.txt", nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(Tree(T.Path()), (std::vector<std::string>{"a.txt [0x4]", "b.txt [0x24]"}));
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
  for (int I = 0; I < 50; ++I) WriteText(T / ("f" + std::to_string(I) + ".txt"));
  std::vector<std::string> Expected, Seen;
  for (const auto& E : std::filesystem::directory_iterator(T.Path())) Expected.push_back(E.path().filename());
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
