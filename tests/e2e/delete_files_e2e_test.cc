// "Delete File(s)" run through zt: the log entry, the files left, the exit
// code, and validation of an empty file specification.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

void Touch(const std::string& Path) { std::ofstream(Path) << "data"; }

TEST(DeleteFilesEndToEnd, DeletesMatchesAndLeavesOthers) {
  TempDir Dir;
  fs::create_directory(Dir / "out");
  for (auto* N : {"a.tmp", "b.tmp", "keep.txt"}) Touch(Dir / ("out/" + std::string(N)));
  ZtResult R = RunZt(Dir.Path(), R"(name: Clean
actions:
  - action: Delete File(s)
    FileSpec: "out/*.tmp"
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Deleting files : out/*.tmp", "2 Files Deleted."}));
  EXPECT_EQ(ActionResult(R, "1"), "success");
  EXPECT_FALSE(fs::exists(Dir / "out/a.tmp"));
  EXPECT_FALSE(fs::exists(Dir / "out/b.tmp"));
  EXPECT_TRUE(fs::exists(Dir / "out/keep.txt"));
}

TEST(DeleteFilesEndToEnd, ReadOnlyFileStopsTheBuild) {
  TempDir Dir;
  fs::create_directory(Dir / "out");
  const Lines Names = {"a.dat", "b.dat", "c.dat", "d.dat"};
  for (const auto& N : Names) Touch(Dir / ("out/" + N));
  fs::permissions(Dir / "out/c.dat", fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                  fs::perm_options::remove);
  ZtResult R = RunZt(Dir.Path(), R"(name: Clean
actions:
  - action: TDeleteFilesAction
    FileSpec: out/*.dat
  - action: Delete File(s)
    FileSpec: out/never.dat
)");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  // The files visited before the read-only one are gone; the count says how many.
  int Deleted = 0;
  for (const auto& N : Names)
    if (!fs::exists(Dir / ("out/" + N))) ++Deleted;
  EXPECT_TRUE(fs::exists(Dir / "out/c.dat"));
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Deleting files : out/*.dat", " --> Error Deleting File : out/c.dat",
                                          " --> Access is denied", std::to_string(Deleted) + " Files Deleted."}));
  EXPECT_EQ(ActionResult(R, "1"), "failure");
  EXPECT_EQ(ActionResult(R, "2"), "");  // the build stopped before it
}

TEST(DeleteFilesEndToEnd, NothingToDeleteFailsUnlessAllowed) {
  TempDir Dir;
  ZtResult R = RunZt(Dir.Path(), R"(name: Clean
actions:
  - action: Delete File(s)
    FileSpec: missing.txt
    FailIfNoFile: false
  - action: Delete File(s)
    FileSpec: missing.txt
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Deleting files : missing.txt", "0 Files Deleted."}));
  EXPECT_EQ(ActionResult(R, "1"), "success");
  EXPECT_EQ(StatusDetails(R, "2"), (Lines{"Deleting files : missing.txt", "0 Files Deleted."}));
  EXPECT_EQ(ActionResult(R, "2"), "failure");
}

TEST(DeleteFilesEndToEnd, ValidateReportsAnEmptyFileSpec) {
  TempDir Dir;
  ZtResult R = RunZt(Dir.Path(), R"(name: Clean
actions:
  - action: Delete File(s)
    title: Clean output
)",
                     {}, "validate");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_NE(R.Stdout.find("1 Clean output: File Spec: The file spec has not been set\n"), std::string::npos)
      << R.Stdout;
}

TEST(DeleteFilesEndToEnd, DescribeShowsTheUnexpandedSpec) {
  TempDir Dir;
  ZtResult R = RunZt(Dir.Path(), R"(name: Clean
actions:
  - action: Delete File(s)
    FileSpec: "%OUT%/*.obj"
)",
                     {}, "describe");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(R.Stdout, "Delete File(s) [ %OUT%/*.obj ]\n");
}

}  // namespace
}  // namespace zt::testing
