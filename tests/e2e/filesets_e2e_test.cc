// Project file sets through zt: a set defined under `filesets:` reaches the
// actions that name it; a set that is not defined is "not found", never a
// crash.
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

void Make(const TempDir& D, const std::string& Relative) {
  fs::create_directories(fs::path(D / Relative).parent_path());
  std::ofstream(D / Relative) << "x";
}

const char* kProject = R"(
filesets:
  Sources:
    base: src
    include: ["**/*.cpp"]
    exclude: ["**/generated/**"]
actions:
  - action: Check if File Exists
    UseFileSpec: false
    FileSet: %s
    Variable: Any
)";

std::string Project(const std::string& SetName) {
  std::string P = kProject;
  P.replace(P.find("%s"), 2, SetName);
  return P;
}

TEST(FileSetsE2E, CheckFindsTheFilesOfAProjectFileSet) {
  TempDir D;
  Make(D, "src/a/main.cpp");
  ZtResult R = RunZt(D.Path(), Project("sources"));
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  EXPECT_EQ(Messages(R, "1"), (Lines{"Found files from File Set"}));
  EXPECT_EQ(R.Events[R.Events.size() - 2]["values"]["Any"], true);
}

TEST(FileSetsE2E, ExcludedAndUnmatchedFilesDoNotCount) {
  TempDir D;
  Make(D, "src/generated/gen.cpp");
  Make(D, "src/readme.txt");
  ZtResult R = RunZt(D.Path(), Project("Sources"));
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), (Lines{"Found no files from File Set"}));
  EXPECT_EQ(R.Events[R.Events.size() - 2]["values"]["Any"], false);
}

TEST(FileSetsE2E, MissingBaseDirectoryIsAnEmptySet) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), Project("Sources"));
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), (Lines{"Found no files from File Set"}));
}

TEST(FileSetsE2E, UndefinedFileSetIsNotFound) {
  TempDir D;
  Make(D, "src/main.cpp");
  ZtResult R = RunZt(D.Path(), Project("Headers"));
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), (Lines{"Could not find FileSet: Headers"}));
  EXPECT_EQ(ActionResult(R, "1"), "failure");
}

TEST(FileSetsE2E, ProjectWithoutFileSetsFindsNone) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), R"(
actions:
  - action: Check if File Exists
    UseFileSpec: false
    FileSet: Anything
    ExistsMode: feIgnore
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(Messages(R, "1"), (Lines{"Could not find FileSet: Anything"}));
}

}  // namespace
}  // namespace zt::testing
