// "Delete Directory", "Move Directory" and "Rename File or Directory" run
// through zt: the log entry, the trees left on disk, and the guards that keep
// a careless path from deleting the root, the home directory or the tree
// being moved.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// out/ with a nested tree, a read-only file, a link to a directory outside
// and a dangling link.
const Lines kOut = {"out/a.txt=a", "out/sub/deep/b.txt=b [ro]", "out/sub/link -> ../../outside",
                    "out/dangling -> /no/such/file", "outside/keep.txt=keep"};

// kOut with a read-only directory too.
void MakeOut(const TempDir& Dir) {
  MakeTree(Dir.Path(), kOut);
  chmod((Dir / "out/sub/deep").c_str(), 0555);
}

TEST(DeleteDirectoryEndToEnd, DeletesTheTreeButNeverWhatALinkLeadsTo) {
  TempDir Dir;
  MakeOut(Dir);
  ZtResult R = RunZt(Dir.Path(), "actions:\n  - {action: Delete Directory, FileOrDirectory: out/}\n");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  // Files: a.txt, b.txt, the dangling link; directories: deep, the link, sub, out.
  EXPECT_EQ(StatusDetails(R, "1"),
            (Lines{"Deleting directory : out", "3 Files Deleted.", "4 Directories Deleted."}));
  EXPECT_EQ(ListNames(Dir.Path()), (Lines{"log.jsonl", "outside", "project.yml"}));
  EXPECT_EQ(Tree(Dir / "outside"), Lines{"keep.txt=keep"});
}

TEST(DeleteDirectoryEndToEnd, FailuresStopAndSayWhy) {
  const std::string Delete = "action: Delete Directory, FileOrDirectory: ";
  const std::string Failed = " --> Error Deleting Directory : ";
  const Lines None = {"0 Files Deleted.", "0 Directories Deleted."};
  const Lines Missing = {"Deleting directory : missing", "Directory does not exist : missing"};
  // clang-format off
  ExpectCases({
      {Delete + "out/a.txt", kOut,
       {"Deleting directory : out/a.txt", Failed + "out/a.txt", " --> The directory name is invalid", None[0], None[1]},
       "failure", kOut},
      {Delete + "out, DeleteTree: false", kOut,
       {"Deleting directory : out", Failed + "out", " --> The directory is not empty", None[0], None[1]}, "failure",
       kOut},
      {Delete + "out/sub/deep, DeleteReadOnly: false", kOut,
       {"Deleting directory : out/sub/deep", " --> Error Deleting File : out/sub/deep/b.txt", " --> Access is denied",
        None[0], None[1]},
       "failure", kOut},
      {Delete + "missing, FailIfMissing: true", {}, Missing, "failure", {}},
      {Delete + "missing", {}, Missing, "success", {}},
  });
  // clang-format on
}

TEST(DeleteDirectoryEndToEnd, RefusesTheRootAndTheHomeDirectoryHoweverSpelt) {
  TempDir Dir;
  MakeTree(Dir.Path(), {"home/user/precious.txt=mine"});
  fs::create_directory_symlink("/", Dir / "rootlink");
  const std::string OldHome = getenv("HOME") ? getenv("HOME") : "";
  setenv("HOME", (Dir / "home/user").c_str(), 1);
  // A root is asked only to remove an empty directory: were the guard to
  // fail, nothing would go.
  const struct {
    std::string Path, Shown, Options;
  } Cases[] = {
      {"%EMPTY%/", "/", "DeleteTree: false"},
      {"/.", "/.", "DeleteTree: false"},
      {"%EMPTY%/tmp/../", "/tmp/..", "DeleteTree: false"},
      {"rootlink", "rootlink", "DeleteTree: false"},
      {"%HOME%", Dir / "home/user", "DeleteTree: true"},
      {"home", "home", "DeleteTree: true"},
      {"home/user/../user/", "home/user/../user", "DeleteTree: true"},
  };
  for (const auto& C : Cases) {
    ZtResult R = RunZt(Dir.Path(),
                       "variables: {EMPTY: ''}\nactions:\n  - {action: Delete Directory, FileOrDirectory: '" +
                           C.Path + "', DeleteReadOnly: false, " + C.Options + "}\n");
    EXPECT_EQ(R.ExitCode, 1) << C.Path;
    EXPECT_EQ(Said(R, "1"), Lines{"Refusing to delete : " + C.Shown}) << C.Path;
  }
  setenv("HOME", OldHome.c_str(), 1);
  EXPECT_EQ(Dir.Read("home/user/precious.txt"), "mine");
}

// The device a path lies on.
dev_t DeviceOf(const std::string& Path) {
  struct stat St {};
  return stat(Path.c_str(), &St) == 0 ? St.st_dev : 0;
}

// A move to another file system copies and deletes; a copy that fails keeps
// the source whole and leaves nothing at the destination.
TEST(MoveDirectoryEndToEnd, MovesWithinAndAcrossFileSystemsKeepingAttributesAndTimes) {
  TempDir Dir;
  TempDir Other("/dev/shm");
  if (Other.Path().empty() || DeviceOf(Other.Path()) == DeviceOf(Dir.Path()))
    GTEST_SKIP() << "no second file system at /dev/shm";
  MakeOut(Dir);
  fs::remove(Dir / "out/dangling");  // a copy cannot follow it
  MakeTree(Dir.Path(), {"bad/a.txt=a", "bad/sub/b.txt=b"});
  ASSERT_EQ(mkfifo((Dir / "bad/sub/pipe").c_str(), 0644), 0);  // no copy can read it
  const auto Stamp = fs::file_time_type::clock::now() - std::chrono::hours(24 * 400);
  fs::last_write_time(Dir / "out/sub/deep", Stamp);
  const std::string Moved = Other / "staged", Bad = Other / "bad";
  ZtResult R =
      RunZt(Dir.Path(),
            "actions:\n  - {action: Move Directory, FileOrDirectory: out, Target: staged}\n"
            "  - {action: Move Directory, FileOrDirectory: staged, MoveInto: true, Target: " +
                Other.Path() + "}\n  - {action: Move Directory, FileOrDirectory: bad, Target: " + Bad +
                ", ignoreFailure: true}\n");
  ASSERT_EQ(R.ExitCode, 0) << R.Stderr;
  const std::string Across = "Moving across volumes : copying and deleting";
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Moving directory : out -> staged", "Directory Moved."}));
  EXPECT_EQ(StatusDetails(R, "2"),
            (Lines{"Moving directory : staged -> " + Moved, Across, "Directory Moved."}));
  EXPECT_EQ(StatusDetails(R, "3"),
            (Lines{"Moving directory : bad -> " + Bad, Across, " --> Error Moving Directory : bad -> " + Bad,
                   " --> Error Copying File : bad/sub/pipe", " --> Access is denied"}));
  // The link was copied through, not emptied.
  EXPECT_EQ(ListNames(Dir.Path()), (Lines{"bad", "log.jsonl", "outside", "project.yml"}));
  EXPECT_EQ(Tree(Dir / "outside"), Lines{"keep.txt=keep"});
  EXPECT_EQ(Dir.Read("bad/a.txt") + Dir.Read("bad/sub/b.txt"), "ab");
  EXPECT_EQ(ListNames(Other.Path()), Lines{"staged"});
  EXPECT_EQ(Tree(Moved), (Lines{"a.txt=a", "sub/deep/b.txt=b [ro]", "sub/link/keep.txt=keep"}));
  EXPECT_EQ(ModeOf(Moved + "/sub/deep") & 0200, 0u);
  EXPECT_EQ(std::chrono::duration_cast<std::chrono::seconds>(fs::last_write_time(Moved + "/sub/deep") - Stamp)
                .count(),
            0);
}

TEST(MoveDirectoryEndToEnd, RefusesWhatWouldLoseData) {
  Lines Before = kOut;
  Before.push_back("outside/back -> ../out/sub");
  auto Refused = [&](const std::string& Src, const std::string& Dst, const std::string& Reason,
                     const std::string& Options = "") {
    return ActionCase{"action: Move Directory, FileOrDirectory: " + Src + ", Target: " + Dst + Options,
                      Before,
                      {"Moving directory : " + Src + " -> " + Dst,
                       " --> Error Moving Directory : " + Src + " -> " + Dst, " --> " + Reason},
                      "failure",
                      Before};
  };
  const std::string Inside = "The destination is inside the directory being moved";
  // clang-format off
  ExpectCases({
      Refused("out", "out/sub/inner", Inside),
      Refused("out", "outside/back/new", Inside),
      Refused("out", "outside", "Cannot create a file when that file already exists"),
      Refused("out/sub", "out", "The directory being moved is inside the destination", ", ReplaceExisting: true"),
      Refused("out/a.txt", "moved", "The directory name is invalid"),
      Refused("missing", "moved", "The system cannot find the file specified"),
      Refused("out", "no/parent", "The system cannot find the path specified"),
  });
  // clang-format on
}

TEST(MoveDirectoryEndToEnd, ReplacesAnExistingDirectoryOrMakesParentsWhenAsked) {
  Lines Before = kOut, After = {"out/a.txt=a", "out/dangling -> /no/such/file", "outside/keep.txt=keep",
                                "dist/old/deep/b.txt=b [ro]", "dist/old/link -> ../../outside"};
  Before.push_back("dist/old/stale.txt=stale [ro]");
  const std::string Move = "action: Move Directory, FileOrDirectory: ";
  // Nothing set aside is left behind.
  // clang-format off
  ExpectCases({
      {Move + "out/sub/, Target: dist/old, ReplaceExisting: true", Before,
       {"Moving directory : out/sub -> dist/old", "Replacing existing directory : dist/old", "Directory Moved."},
       "success", After},
      {Move + "dist/old, Target: new/parents/here, Force: true", {"dist/old/a.txt=a"},
       {"Moving directory : dist/old -> new/parents/here", "Directory Moved."}, "success",
       {"dist/", "new/parents/here/a.txt=a"}},
  });
  // clang-format on
}

TEST(RenameEndToEnd, RenamesInPlaceOrSaysWhyNot) {
  const Lines Here = {"out/a.txt=a", "out/keep.txt=keep", "out/ro.txt=ro [ro]", "out/sub/x", "out/other/x/"};
  auto Renamed = [&](const std::string& From, const std::string& To) {
    Lines After;
    for (const std::string& L : Here)
      if (!L.starts_with(To)) After.push_back(L.starts_with(From) ? To + L.substr(From.size()) : L);
    return After;
  };
  const std::string Rename = "action: Rename File or Directory, FileOrDirectory: ";
  const std::string Exists = " --> Cannot create a file when that file already exists";
  // clang-format off
  ExpectCases({
      {Rename + "out/a.txt, NewName: b.txt", Here, {"Renamed : out/a.txt -> out/b.txt"}, "success",
       Renamed("out/a.txt", "out/b.txt")},
      {Rename + "out/sub/, NewName: SUB", Here, {"Renamed : out/sub -> out/SUB"}, "success",
       Renamed("out/sub", "out/SUB")},
      {Rename + "out/a.txt, NewName: a.txt", Here, {"Renamed : out/a.txt -> out/a.txt"}, "success", Here},
      {Rename + "out/a.txt, NewName: keep.txt, OverwriteExisting: true", Here, {"Renamed : out/a.txt -> out/keep.txt"},
       "success", Renamed("out/a.txt", "out/keep.txt")},
      {Rename + "'out/*.txt', NewName: b.txt", Here, {"Error: Wildcards are not allowed : out/*.txt"}, "failure", Here},
      {Rename + "out/a.txt, NewName: ../b.txt", Here, {"Error: The new name must be a plain name : ../b.txt"},
       "failure", Here},
      {Rename + "out/a.txt, NewName: '..'", Here, {"Error: The new name must be a plain name : .."}, "failure", Here},
      {Rename + "out/a.txt, NewName: keep.txt", Here, {"Unable to rename : out/a.txt -> out/keep.txt", Exists},
       "failure", Here},
      {Rename + "out/a.txt, NewName: ro.txt, OverwriteExisting: true", Here,
       {"Unable to rename : out/a.txt -> out/ro.txt", " --> Access is denied"}, "failure", Here},
      {Rename + "out/sub, NewName: other, OverwriteExisting: true", Here,
       {"Unable to rename : out/sub -> out/other", Exists}, "failure", Here},
      {Rename + "out/none, NewName: x", Here,
       {"Unable to rename : out/none -> out/x", " --> The system cannot find the file specified"}, "failure", Here},
  });
  // clang-format on
}

}  // namespace
}  // namespace zt::testing
