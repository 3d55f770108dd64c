// "Delete Directory", "Move Directory" and "Rename File or Directory" run
// through zt: the log entry, the trees left on disk, and the guards that keep
// a careless path from deleting the root, the home directory or the tree
// being moved.
#include <sys/stat.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

void MakeReadOnly(const std::string& Path) {
  fs::permissions(Path, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                  fs::perm_options::remove);
}

// out/ with a nested tree, read-only entries, a link to a directory outside
// and a dangling link.
void MakeTree(const TempDir& Dir) {
  fs::create_directories(Dir / "out/sub/deep");
  fs::create_directories(Dir / "outside");
  Dir.Write("outside/keep.txt", "keep");
  Dir.Write("out/a.txt", "a");
  Dir.Write("out/sub/deep/b.txt", "b");
  MakeReadOnly(Dir / "out/sub/deep/b.txt");
  MakeReadOnly(Dir / "out/sub/deep");
  fs::create_directory_symlink("../../outside", Dir / "out/sub/link");
  fs::create_symlink("/no/such/file", Dir / "out/dangling");
}

TEST(DeleteDirectoryEndToEnd, DeletesTheTreeButNeverWhatALinkLeadsTo) {
  TempDir Dir;
  MakeTree(Dir);
  ZtResult R = RunZt(Dir.Path(), R"(name: Clean
actions:
  - {action: Delete Directory, FileOrDirectory: out/}
  - {action: Delete Directory, FileOrDirectory: out}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  // Files: a.txt, b.txt, the dangling link; directories: deep, the link, sub, out.
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Deleting directory : out", "3 Files Deleted.", "4 Directories Deleted."}));
  EXPECT_EQ(StatusDetails(R, "2"), (Lines{"Deleting directory : out", "Directory does not exist : out"}));
  EXPECT_FALSE(fs::exists(Dir / "out"));
  EXPECT_EQ(Dir.Read("outside/keep.txt"), "keep");
}

TEST(DeleteDirectoryEndToEnd, RefusesTheRootAndTheHomeDirectoryHoweverSpelt) {
  TempDir Dir;
  fs::create_directories(Dir / "home/user");
  Dir.Write("home/user/precious.txt", "mine");
  fs::create_directory_symlink("/", Dir / "rootlink");
  const std::string OldHome = getenv("HOME") ? getenv("HOME") : "";
  setenv("HOME", (Dir / "home/user").c_str(), 1);
  // A root is asked only to remove an empty directory: were the guard to
  // fail, nothing would go.
  struct Case {
    std::string Path, Shown, Options;
  };
  const std::vector<Case> Cases = {
      {"%EMPTY%/", "/", "DeleteTree: false"},
      {"/.", "/.", "DeleteTree: false"},
      {"%EMPTY%/tmp/../", "/tmp/..", "DeleteTree: false"},
      {"rootlink", "rootlink", "DeleteTree: false"},
      {"%HOME%", Dir / "home/user", "DeleteTree: true"},
      {"home", "home", "DeleteTree: true"},
      {"home/user/../user/", "home/user/../user", "DeleteTree: true"},
  };
  for (const Case& C : Cases) {
    ZtResult R = RunZt(Dir.Path(), "name: Clean\nvariables:\n  EMPTY: \"\"\nactions:\n"
                                   "  - action: Delete Directory\n    FileOrDirectory: \"" +
                                       C.Path + "\"\n    DeleteReadOnly: false\n    " + C.Options + "\n");
    EXPECT_EQ(R.ExitCode, 1) << C.Path;
    EXPECT_EQ(Messages(R, "1"), Lines{"Refusing to delete : " + C.Shown}) << C.Path;
    EXPECT_TRUE(StatusDetails(R, "1").empty()) << C.Path;
  }
  setenv("HOME", OldHome.c_str(), 1);
  EXPECT_EQ(Dir.Read("home/user/precious.txt"), "mine");
}

TEST(DeleteDirectoryEndToEnd, FailuresStopAndSayWhy) {
  struct Case {
    std::string Options;
    Lines Details;
  };
  const std::vector<Case> Cases = {
      {"FileOrDirectory: out/a.txt",
       {"Deleting directory : out/a.txt", " --> Error Deleting Directory : out/a.txt",
        " --> The directory name is invalid", "0 Files Deleted.", "0 Directories Deleted."}},
      {"FileOrDirectory: out\n    DeleteTree: false",
       {"Deleting directory : out", " --> Error Deleting Directory : out", " --> The directory is not empty",
        "0 Files Deleted.", "0 Directories Deleted."}},
      {"FileOrDirectory: out/sub/deep\n    DeleteReadOnly: false",
       {"Deleting directory : out/sub/deep", " --> Error Deleting File : out/sub/deep/b.txt", " --> Access is denied",
        "0 Files Deleted.", "0 Directories Deleted."}},
      {"FileOrDirectory: missing\n    FailIfMissing: true",
       {"Deleting directory : missing", "Directory does not exist : missing"}},
  };
  for (const Case& C : Cases) {
    TempDir Dir;
    MakeTree(Dir);
    ZtResult R = RunZt(Dir.Path(), "name: Clean\nactions:\n  - action: Delete Directory\n    " + C.Options + "\n");
    EXPECT_EQ(R.ExitCode, 1) << C.Options;
    EXPECT_EQ(StatusDetails(R, "1"), C.Details) << C.Options;
    EXPECT_TRUE(fs::exists(Dir / "out/a.txt")) << C.Options;
  }
}

// The device a path lies on.
dev_t DeviceOf(const std::string& Path) {
  struct stat St {};
  return stat(Path.c_str(), &St) == 0 ? St.st_dev : 0;
}

TEST(MoveDirectoryEndToEnd, MovesWithinAndAcrossFileSystemsKeepingAttributesAndTimes) {
  TempDir Dir;
  TempDir Other("/dev/shm");
  if (Other.Path().empty() || DeviceOf(Other.Path()) == DeviceOf(Dir.Path()))
    GTEST_SKIP() << "no second file system at /dev/shm";
  MakeTree(Dir);
  fs::remove(Dir / "out/dangling");  // a copy cannot follow it (see the next test)
  const auto Stamp = fs::file_time_type::clock::now() - std::chrono::hours(24 * 400);
  fs::last_write_time(Dir / "out/sub/deep", Stamp);
  ZtResult R = RunZt(Dir.Path(), "name: Move\nactions:\n"
                                 "  - action: Move Directory\n    FileOrDirectory: out\n    Target: staged\n"
                                 "  - action: Move Directory\n    FileOrDirectory: staged\n    Target: " +
                                     Other.Path() + "\n    MoveInto: true\n");
  ASSERT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Moving directory : out -> staged", "Directory Moved."}));
  const std::string Moved = Other / "staged";
  EXPECT_EQ(StatusDetails(R, "2"), (Lines{"Moving directory : staged -> " + Moved,
                                          "Moving across volumes : copying and deleting", "Directory Moved."}));
  EXPECT_FALSE(fs::exists(Dir / "staged"));
  EXPECT_EQ(Dir.Read("outside/keep.txt"), "keep");  // the link was copied through, not emptied
  EXPECT_EQ(Other.Read("staged/sub/link/keep.txt"), "keep");
  EXPECT_EQ(Other.Read("staged/sub/deep/b.txt"), "b");
  EXPECT_EQ(fs::status(Moved + "/sub/deep/b.txt").permissions() & fs::perms::owner_write, fs::perms::none);
  EXPECT_EQ(fs::status(Moved + "/sub/deep").permissions() & fs::perms::owner_write, fs::perms::none);
  EXPECT_EQ(std::chrono::duration_cast<std::chrono::seconds>(fs::last_write_time(Moved + "/sub/deep") - Stamp).count(),
            0);
}

TEST(MoveDirectoryEndToEnd, AFailedCopyAcrossFileSystemsKeepsTheSourceWhole) {
  TempDir Dir;
  TempDir Other("/dev/shm");
  if (Other.Path().empty() || DeviceOf(Other.Path()) == DeviceOf(Dir.Path()))
    GTEST_SKIP() << "no second file system at /dev/shm";
  MakeTree(Dir);
  fs::remove(Dir / "out/dangling");
  ASSERT_EQ(mkfifo((Dir / "out/sub/pipe").c_str(), 0644), 0);  // no copy can read it
  ZtResult R = RunZt(Dir.Path(), "name: Move\nactions:\n  - action: Move Directory\n    FileOrDirectory: out\n"
                                 "    Target: " + Other.Path() + "/out\n");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(StatusDetails(R, "1"),
            (Lines{"Moving directory : out -> " + Other.Path() + "/out", "Moving across volumes : copying and deleting",
                   " --> Error Moving Directory : out -> " + Other.Path() + "/out",
                   " --> Error Copying File : out/sub/pipe", " --> Access is denied"}));
  EXPECT_FALSE(fs::exists(Other / "out"));
  EXPECT_EQ(Dir.Read("out/a.txt"), "a");
  EXPECT_EQ(Dir.Read("out/sub/deep/b.txt"), "b");
}

TEST(MoveDirectoryEndToEnd, RefusesWhatWouldLoseData) {
  struct Case {
    std::string Src, Dst, Options, Reason;
  };
  const std::vector<Case> Cases = {
      {"out", "out/sub/inner", "", " --> The destination is inside the directory being moved"},
      {"out", "outside/back/new", "", " --> The destination is inside the directory being moved"},
      {"out", "outside", "", " --> Cannot create a file when that file already exists"},
      {"out/sub", "out", "ReplaceExisting: true", " --> The directory being moved is inside the destination"},
      {"out/a.txt", "moved", "", " --> The directory name is invalid"},
      {"missing", "moved", "", " --> The system cannot find the file specified"},
      {"out", "no/parent", "", " --> The system cannot find the path specified"},
  };
  for (const Case& C : Cases) {
    TempDir Dir;
    MakeTree(Dir);
    fs::create_directory_symlink("../out/sub", Dir / "outside/back");
    ZtResult R = RunZt(Dir.Path(), "name: Move\nactions:\n  - action: Move Directory\n    FileOrDirectory: " + C.Src +
                                       "\n    Target: " + C.Dst + "\n    " + C.Options + "\n");
    EXPECT_EQ(R.ExitCode, 1) << C.Dst;
    EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Moving directory : " + C.Src + " -> " + C.Dst,
                                            " --> Error Moving Directory : " + C.Src + " -> " + C.Dst, C.Reason}))
        << C.Dst;
    EXPECT_EQ(Dir.Read("out/sub/deep/b.txt"), "b") << C.Dst;
    EXPECT_EQ(Dir.Read("outside/keep.txt"), "keep") << C.Dst;
  }
}

TEST(MoveDirectoryEndToEnd, ReplacesAnExistingDirectoryOnlyWhenAsked) {
  TempDir Dir;
  MakeTree(Dir);
  fs::create_directories(Dir / "dist/old");
  Dir.Write("dist/old/stale.txt", "stale");
  MakeReadOnly(Dir / "dist/old/stale.txt");
  ZtResult R = RunZt(Dir.Path(), R"(name: Move
actions:
  - {action: Move Directory, FileOrDirectory: out/sub/, Target: dist/old, ReplaceExisting: true}
  - {action: Move Directory, FileOrDirectory: dist/old, Target: new/parents/here, Force: true}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Moving directory : out/sub -> dist/old",
                                          "Replacing existing directory : dist/old", "Directory Moved."}));
  EXPECT_EQ(Dir.Read("new/parents/here/deep/b.txt"), "b");
  EXPECT_FALSE(fs::exists(Dir / "new/parents/here/stale.txt"));
  EXPECT_EQ(Dir.Read("outside/keep.txt"), "keep");
  Lines Left;
  for (const auto& E : fs::directory_iterator(Dir / "dist")) Left.push_back(E.path().filename());
  EXPECT_TRUE(Left.empty());  // nothing set aside is left behind
}

TEST(RenameEndToEnd, RenamesInPlaceOrSaysWhyNot) {
  struct Case {
    std::string Path, NewName, Options;
    Lines Messages;
    bool Ok;
  };
  const std::vector<Case> Cases = {
      {"out/a.txt", "b.txt", "", {"Renamed : out/a.txt -> out/b.txt"}, true},
      {"out/sub/", "SUB", "", {"Renamed : out/sub -> out/SUB"}, true},
      {"out/a.txt", "a.txt", "", {"Renamed : out/a.txt -> out/a.txt"}, true},
      {"out/a.txt", "keep.txt", "OverwriteExisting: true", {"Renamed : out/a.txt -> out/keep.txt"}, true},
      {"out/*.txt", "b.txt", "", {"Error: Wildcards are not allowed : out/*.txt"}, false},
      {"out/a.txt", "../b.txt", "", {"Error: The new name must be a plain name : ../b.txt"}, false},
      {"out/a.txt", "..", "", {"Error: The new name must be a plain name : .."}, false},
      {"out/a.txt",
       "keep.txt",
       "",
       {"Unable to rename : out/a.txt -> out/keep.txt", " --> Cannot create a file when that file already exists"},
       false},
      {"out/a.txt",
       "ro.txt",
       "OverwriteExisting: true",
       {"Unable to rename : out/a.txt -> out/ro.txt", " --> Access is denied"},
       false},
      {"out/sub", "other", "OverwriteExisting: true",
       {"Unable to rename : out/sub -> out/other", " --> Cannot create a file when that file already exists"},
       false},
      {"out/none", "x", "",
       {"Unable to rename : out/none -> out/x", " --> The system cannot find the file specified"}, false},
  };
  for (const Case& C : Cases) {
    TempDir Dir;
    MakeTree(Dir);
    Dir.Write("out/keep.txt", "keep");
    Dir.Write("out/ro.txt", "ro");
    MakeReadOnly(Dir / "out/ro.txt");
    fs::create_directories(Dir / "out/other/x");
    ZtResult R = RunZt(Dir.Path(), "name: Rename\nactions:\n  - action: Rename File or Directory\n"
                                   "    FileOrDirectory: \"" + C.Path + "\"\n    NewName: \"" + C.NewName + "\"\n    " +
                                       C.Options + "\n");
    EXPECT_EQ(R.ExitCode, C.Ok ? 0 : 1) << C.Path << " " << C.NewName;
    EXPECT_EQ(Messages(R, "1"), C.Messages) << C.Path << " " << C.NewName;
    if (!C.Ok) {
      EXPECT_EQ(Dir.Read("out/a.txt"), "a");
    }
  }
}

TEST(DirectoryActionsEndToEnd, ValidateAndDescribeNameWhatIsMissing) {
  TempDir Dir;
  const std::string Project = R"(name: Dirs
actions:
  - action: Delete Directory
  - {action: Move Directory, FileOrDirectory: "%OUT%"}
  - {action: Rename File or Directory, NewName: b}
)";
  ZtResult R = RunZt(Dir.Path(), Project, {}, "validate");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stdout,
            "1 Delete Directory: Directory: The directory to delete has not been set\n"
            "2 Move Directory: Destination: The destination has not been set\n"
            "3 Rename File or Directory: File or Directory: The file or directory to rename has not been set\n");
  R = RunZt(Dir.Path(), "", {}, "describe");
  EXPECT_EQ(R.Stdout, "Delete Directory [  ]\nMove Directory [ %OUT% ->  ]\nRename [  -> b ]\n");
}

}  // namespace
}  // namespace zt::testing
