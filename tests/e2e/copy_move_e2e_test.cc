// "Copy File(s)" and "Move File(s)" run through zt: the JSON log entries and
// progress events, the files on disk, results, and property order in a
// project file.
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

void Write(const std::string& Path, const std::string& Text) {
  fs::create_directories(fs::path(Path).parent_path());
  std::ofstream(Path) << Text;
}

std::string Read(const std::string& Path) {
  std::ifstream In(Path);
  std::stringstream S;
  S << In.rdbuf();
  return S.str();
}

// (text, percent) of every progress event of action Id.
std::vector<std::pair<std::string, int>> ProgressEvents(const ZtResult& R, const std::string& Id) {
  std::vector<std::pair<std::string, int>> P;
  for (const auto& E : R.Events)
    if (E.value("event", "") == "progress" && E.value("id", "") == Id)
      P.emplace_back(E.value("text", ""), E.value("percent", -1));
  return P;
}

TEST(CopyMoveEndToEnd, RecursiveCopyLogsOneEntryAndProgressPerFile) {
  TempDir Dir;
  Write(Dir / "src/a.txt", "alpha");
  Write(Dir / "src/sub/b.txt", "bravo");
  Write(Dir / "src/sub/skip.log", "log");
  ZtResult R = RunZt(Dir.Path(), R"(name: Publish
actions:
  - action: Copy File(s)
    FileSpec: src/*.txt
    Target: out
    Recurse: true
    Force: true
)");
  ASSERT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Copying files : src/*.txt -> out", "2 Files Copied."}));
  EXPECT_EQ(ActionResult(R, "1"), "success");
  EXPECT_EQ(Read(Dir / "out/a.txt"), "alpha");
  EXPECT_EQ(Read(Dir / "out/sub/b.txt"), "bravo");
  EXPECT_FALSE(fs::exists(Dir / "out/sub/skip.log"));
  const auto P = ProgressEvents(R, "1");
  ASSERT_EQ(P.size(), 4u);
  EXPECT_EQ(P[0], std::make_pair(std::string("Copying File : src/a.txt to : out/a.txt"), 0));
  EXPECT_EQ(P[1], std::make_pair(std::string("Copying File : src/a.txt to : out/a.txt"), 100));
  EXPECT_EQ(P[3], std::make_pair(std::string("Copying File : src/sub/b.txt to : out/sub/b.txt"), 100));
}

TEST(CopyMoveEndToEnd, FailedCopyFailsTheBuildUnlessIgnored) {
  TempDir Dir;
  Write(Dir / "src/a.txt", "new");
  Write(Dir / "out/a.txt", "old");
  const std::string Project = R"(actions:
  - action: Copy File(s)
    FileSpec: src/a.txt
    Target: out/a.txt
    FailIfExists: true
    ignoreFailure: IGNORE
  - action: TMoveFilesAction
    FileSpec: src/a.txt
    Target: moved
    TargetIsDir: true
    Force: true
)";
  ZtResult R = RunZt(Dir.Path(), std::regex_replace(Project, std::regex("IGNORE"), "false"));
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Copying files : src/a.txt -> out/a.txt",
                                          "Failed to copy File : src/a.txt -> out/a.txt", "File Already Exists!",
                                          "0 Files Copied."}));
  EXPECT_EQ(ActionResult(R, "1"), "failure");
  EXPECT_EQ(ActionResult(R, "2"), "");
  EXPECT_EQ(Read(Dir / "out/a.txt"), "old");

  R = RunZt(Dir.Path(), std::regex_replace(Project, std::regex("IGNORE"), "true"));
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(ActionResult(R, "1"), "ignored");
  EXPECT_EQ(StatusDetails(R, "2"), (Lines{"Moving files : src/a.txt -> moved", "1 Files Moved."}));
  EXPECT_EQ(ActionResult(R, "2"), "success");
  EXPECT_EQ(Read(Dir / "moved/a.txt"), "new");
  EXPECT_FALSE(fs::exists(Dir / "src/a.txt"));
}

TEST(CopyMoveEndToEnd, PropertiesApplyInFileOrderThroughTheCoupledSetters) {
  TempDir Dir;
  Write(Dir / "src/a.txt", "alpha");
  Write(Dir / "src/deep/b.txt", "bravo");
  // Recurse turns TargetIsDir on; the later TargetIsDir: false turns Recurse
  // off again, so only the first match is copied, onto the file "single".
  ZtResult R = RunZt(Dir.Path(), R"(actions:
  - action: Copy File(s)
    Recurse: true
    FileSpec: src/a.txt
    Target: single
    TargetIsDir: false
  - action: Copy File(s)
    TargetIsDir: false
    FileSpec: src/*.txt
    Target: tree
    Recurse: true
    Force: true
)");
  ASSERT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Copying files : src/a.txt -> single", "1 Files Copied."}));
  EXPECT_EQ(Read(Dir / "single"), "alpha");
  EXPECT_EQ(StatusDetails(R, "2"), (Lines{"Copying files : src/*.txt -> tree", "2 Files Copied."}));
  EXPECT_EQ(Read(Dir / "tree/deep/b.txt"), "bravo");
}

TEST(CopyMoveEndToEnd, EmptyPropertiesFailCopyButAreASilentSuccessForMove) {
  TempDir Dir;
  ZtResult R = RunZt(Dir.Path(), R"(variables:
  NOTHING: ""
actions:
  - action: Move File(s)
    FileSpec: "%NOTHING%"
    Target: out
  - action: Copy File(s)
    FileSpec: "  %NOTHING%  "
    Target: out
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(ActionResult(R, "1"), "success");
  EXPECT_TRUE(StatusDetails(R, "1").empty());
  EXPECT_TRUE(Messages(R, "1").empty());
  EXPECT_EQ(ActionResult(R, "2"), "failure");
  EXPECT_EQ(Messages(R, "2"), Lines{"Error: No source file specified."});
  EXPECT_TRUE(StatusDetails(R, "2").empty());
}

TEST(CopyMoveEndToEnd, MoveLogsAnUndefinedVariableInItsOwnEntry) {
  TempDir Dir;
  ZtResult R = RunZt(Dir.Path(), R"(actions:
  - action: Move File(s)
    FileSpec: "%UNDEFINED_DIR%/*.txt"
    Target: out
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(StatusDetails(R, "1"),
            (Lines{" --> Unable to Move files : ", " --> Variable \"UNDEFINED_DIR\" is not defined"}));
  EXPECT_EQ(ActionResult(R, "1"), "failure");
}

TEST(CopyMoveEndToEnd, ValidateNamesBothMissingProperties) {
  TempDir Dir;
  ZtResult R = RunZt(Dir.Path(), R"(actions:
  - action: Copy File(s)
  - action: Move File(s)
    FileSpec: a.txt
)",
                     {}, "validate");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stdout,
            "1 Copy File(s): File Spec: The file spec has not been set\n"
            "1 Copy File(s): Target: The target file/directory has not been set\n"
            "2 Move File(s): Target: The target file/directory has not been set\n");
}

TEST(CopyMoveEndToEnd, ReadOnlyCountsCannotBeSetInAProject) {
  TempDir Dir;
  ZtResult R = RunZt(Dir.Path(), R"(actions:
  - action: Copy File(s)
    FileSpec: a.txt
    Target: b.txt
    FilesAffected: 3
)");
  EXPECT_EQ(R.ExitCode, 2);
  EXPECT_NE(R.Stderr.find("FilesAffected"), std::string::npos) << R.Stderr;
}

}  // namespace
}  // namespace zt::testing
