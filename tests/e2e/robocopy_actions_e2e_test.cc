// The robocopy actions through `zt run`: the command line they build (with
// the robocopy options' defaults), the judgement of the exit code, their
// settings checks, and Ctrl+C in the middle of a mirror.
#include <signal.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

TEST(RobocopyActionsEndToEnd, SwitchesFromPropertiesAndOptionsAndTheExitCodeJudged) {
  TempDir Dir;
  WriteText(Dir / "src/a.txt", "a");
  WriteText(Dir / "src/sub/b.txt", "b");
  WriteText(Dir / "src/skip.log", "log");
  WriteText(Dir / "mirror/stale.txt", "stale");
  ZtResult R = RunZt(Dir.Path(), R"(name: Copies
options:
  TZTRobocopyOptions:
    DefaultRetryWait: 0
actions:
  - {action: Robocopy Mirror, Source: src, Destination: mirror, ExcludeFiles: "*.log", NoJobHeader: true,
     NoJobSummary: true}
  - {action: Robocopy, Source: src, Destination: copy, Files: "*.txt", CopySubDirs: true, Levels: 1,
     Retries: 0, Threads: 2, FailureLevel: 1, ignoreFailure: true, NoJobSummary: true, NoJobHeader: true}
  - {action: Robocopy Move, Source: src/sub, Destination: moved, MoveDirectories: true, NoProgress: false,
     AdditionalSwitches: /NJH /NJS}
)");
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  Lines Mirror = Messages(R, "1");
  ASSERT_EQ(Mirror.size(), 6u);
  EXPECT_EQ(Mirror.front(), "Copying with the built-in engine : src mirror /MIR /XF '*.log' /R:3 /W:0 /NJH /NJS /NP");
  EXPECT_EQ(Mirror.back(), "Robocopy exit code : 3 (files copied, extra files or directories)");
  EXPECT_EQ(ActionResult(R, "1"), "success");
  EXPECT_FALSE(fs::exists(Dir / "mirror/stale.txt"));
  EXPECT_FALSE(fs::exists(Dir / "mirror/skip.log"));
  EXPECT_EQ(ReadText(Dir / "mirror/sub/b.txt"), "b");

  EXPECT_EQ(Messages(R, "2"), (Lines{"Copying with the built-in engine : src copy '*.txt' /S /LEV:1 /R:0 /W:0 /MT:2 "
                                     "/NJH /NJS /NP",
                                     "New File : a.txt (1 bytes)", "Robocopy exit code : 1 (files copied)"}));
  EXPECT_EQ(ActionResult(R, "2"), "ignored");  // FailureLevel 1: any copy fails the action
  EXPECT_FALSE(fs::exists(Dir / "copy/sub"));

  ASSERT_FALSE(Messages(R, "3").empty());
  EXPECT_EQ(Messages(R, "3").front(), "Copying with the built-in engine : src/sub moved /MOVE /R:3 /W:0 /NJH /NJS");
  EXPECT_FALSE(fs::exists(Dir / "src/sub"));
  EXPECT_EQ(ReadText(Dir / "moved/b.txt"), "b");
}

TEST(RobocopyActionsEndToEnd, SettingsChecksAndTheSystemToolOnPosix) {
  TempDir Dir;
  ZtResult V = RunZt(Dir.Path(), R"(name: Checks
actions:
  - {action: Robocopy, Threads: 200}
  - action: Run Robocopy Job
)",
                     {}, "validate");
  EXPECT_EQ(V.Stdout, "1 Robocopy: Source Directory: A source must be specified\n"
                      "1 Robocopy: Destination Directory: A destination must be specified\n"
                      "1 Robocopy: Threads: Threads must be between 0 and 128\n"
                      "2 Run Robocopy Job: Job File: A job file must be specified\n");
  WriteText(Dir / "src/a.txt", "a");
  ZtResult R = RunZt(Dir.Path(), R"(name: System tool
options:
  TZTRobocopyOptions:
    Engine: reSystemTool
actions:
  - {action: Robocopy Mirror, Source: src, Destination: dst}
)");
  ASSERT_FALSE(Messages(R, "1").empty()) << R.Stderr;
  EXPECT_EQ(Messages(R, "1").front(), "The system robocopy tool is not available here; using the built-in engine");
  EXPECT_EQ(ReadText(Dir / "dst/a.txt"), "a");
}

TEST(RobocopyActionsEndToEnd, CtrlCInTheMiddleOfAMirrorLeavesEveryFileWhole) {
  TempDir Dir;
  const std::string Block(256 * 1024, 'z');
  for (int I = 0; I < 400; ++I) WriteText(Dir / ("src/f" + std::to_string(I) + ".bin"), Block + std::to_string(I));
  ZtResult R = RunZtAndSignal(Dir.Path(), R"(name: Stop
actions:
  - {action: Robocopy Mirror, Source: src, Destination: dst}
)",
                              "New File", SIGINT);
  EXPECT_EQ(R.ExitCode, 130) << R.Stdout;
  EXPECT_EQ(Messages(R, "1").back(), "Robocopy exit code : 16 (serious error)");
  int Copied = 0;
  for (const auto& E : fs::directory_iterator(Dir / "dst")) {
    const std::string Name = E.path().filename().string();
    ASSERT_EQ(Name[0], 'f') << "a temporary file was left: " << Name;
    EXPECT_EQ(ReadText(E.path()), ReadText(Dir / ("src/" + Name))) << Name;
    ++Copied;
  }
  EXPECT_LT(Copied, 400);
}

}  // namespace
}  // namespace zt::testing
