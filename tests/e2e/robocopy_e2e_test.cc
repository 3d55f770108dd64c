// The built-in robocopy through `zt robocopy`: file classes against the
// class switches, the exit-code bits, and the safety rules (a mistyped
// source, a destination inside the source, a mirror onto a parent of the
// source, /MT keeping the order of lines); the robocopy actions through
// `zt run`: the command line they build, the judgement of the exit code, and
// Ctrl+C in the middle of a mirror.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// Files written with the same age have the same time to the nanosecond.
const fs::file_time_type Now = fs::file_time_type::clock::now();

void Write(const std::string& Path, const std::string& Text, int AgeSeconds = 1000) {
  fs::create_directories(fs::path(Path).parent_path());
  std::ofstream(Path) << Text;
  fs::last_write_time(Path, Now - std::chrono::seconds(AgeSeconds));
}

Lines OutputLines(const ZtResult& R) {
  Lines L;
  std::istringstream In(R.Stdout);
  for (std::string Line; std::getline(In, Line);) L.push_back(Line);
  return L;
}

Lines Sorted(Lines L) {
  std::sort(L.begin(), L.end());
  return L;
}

ZtResult Robocopy(const TempDir& Dir, Lines Args) {
  Args.insert(Args.begin(), "robocopy");
  return RunZtArgs(Dir.Path(), Args);
}

// One file of each class: lonely, changed, newer, older, same, tweaked
// (same but read-only at the destination), and a mismatch (a directory at
// the destination).
void MakeClasses(const TempDir& Dir) {
  Write(Dir / "src/lonely.txt", "lonely");
  Write(Dir / "src/changed.txt", "changed!", 500);
  Write(Dir / "dst/changed.txt", "old", 500);
  Write(Dir / "src/newer.txt", "newer", 100);
  Write(Dir / "dst/newer.txt", "stale", 900);
  Write(Dir / "src/older.txt", "older", 900);
  Write(Dir / "dst/older.txt", "fresh", 100);
  Write(Dir / "src/same.txt", "same", 700);
  Write(Dir / "dst/same.txt", "same", 700);
  Write(Dir / "src/tweaked.txt", "tweak", 600);
  Write(Dir / "dst/tweaked.txt", "tweak", 600);
  chmod((Dir / "dst/tweaked.txt").c_str(), 0444);
  Write(Dir / "src/mm", "file here");
  fs::create_directories(Dir / "dst/mm");
}

TEST(RobocopyEndToEnd, FileClassesAgainstClassSwitches) {
  const std::string Mismatch = "*MISMATCH : mm (9 bytes)";
  struct Row {
    Lines Switches;
    Lines Expected;  // the file lines; the files named there are copied, the others not
    int Code;
  } Rows[] = {
      // clang-format off
      {{}, {"Changed : changed.txt (8 bytes)", "New File : lonely.txt (6 bytes)", "Newer : newer.txt (5 bytes)",
            "Older : older.txt (5 bytes)", Mismatch}, 5},
      {{"/XL"}, {"Changed : changed.txt (8 bytes)", "Newer : newer.txt (5 bytes)", "Older : older.txt (5 bytes)",
                 Mismatch}, 5},
      {{"/XC", "/XN", "/XO"}, {"New File : lonely.txt (6 bytes)", Mismatch}, 5},
      {{"/XL", "/XC", "/XN", "/XO", "/IS"}, {"Same : same.txt (4 bytes)", "Same : tweaked.txt (5 bytes)", Mismatch}, 5},
      {{"/XL", "/XC", "/XN", "/XO", "/IT"}, {"Tweaked : tweaked.txt (5 bytes)", Mismatch}, 5},
      {{"/L"}, {"Changed : changed.txt (8 bytes)", "New File : lonely.txt (6 bytes)", "Newer : newer.txt (5 bytes)",
                "Older : older.txt (5 bytes)", Mismatch}, 5},
      // clang-format on
  };
  for (const Row& Case : Rows) {
    TempDir Dir;
    MakeClasses(Dir);
    Lines Args = {"src", "dst", "/NJH", "/NJS", "/R:0"};
    Args.insert(Args.end(), Case.Switches.begin(), Case.Switches.end());
    ZtResult R = Robocopy(Dir, Args);
    const std::string Row = ::testing::PrintToString(Case.Switches);
    EXPECT_EQ(R.ExitCode, Case.Code) << Row << R.Stdout;
    EXPECT_EQ(Sorted(OutputLines(R)), Sorted(Case.Expected)) << Row;
    const bool ListOnly = Case.Switches == Lines{"/L"};
    const std::string Listed = ::testing::PrintToString(Case.Expected);
    for (const char* Name :
         {"lonely.txt", "changed.txt", "newer.txt", "older.txt", "same.txt", "tweaked.txt"}) {
      const bool Copied = !ListOnly && Listed.find(std::string(" ") + Name + " ") != std::string::npos;
      const std::string Src = Dir / "src/" + Name, Dst = Dir / "dst/" + Name;
      const bool Equal = std::string(Name) == "same.txt" || std::string(Name) == "tweaked.txt";
      EXPECT_EQ(ReadText(Dst) == ReadText(Src), Copied || Equal) << Row << " " << Name;
      if (Copied) {
        EXPECT_EQ(fs::last_write_time(Dst), fs::last_write_time(Src)) << Name;
      }
    }
    EXPECT_TRUE(fs::is_directory(Dir / "dst/mm")) << Row;
  }
}

TEST(RobocopyEndToEnd, ExitBitsAddUpAndFatalStandsAlone) {
  struct Row {
    const char* What;
    Lines Args;
    int Code;
    Lines Output = {};  // checked when given
  } Rows[] = {
      // clang-format off
      {"nothing to do", {"src", "dst", "/XX"}, 0},
      {"switches that change nothing", {"src", "dst", "/XX", "/BYTES", "/ETA", "/UNICODE"}, 0},
      {"a copy", {"src", "dst", "/IS", "/XX"}, 1},
      {"an extra", {"src", "dst"}, 2},
      {"an extra not looked at", {"src", "dst", "/PURGE", "/XX"}, 0},
      {"a mismatch", {"src", "dst", "/S", "/XX", "/XD", "sub"}, 4},
      {"a failure", {"src", "dst", "/S", "/XX", "/XD", "mm", "/R:0"}, 8},
      {"everything", {"src", "dst", "/S", "/IS", "/PURGE", "/R:0"}, 15},
      {"a refused switch", {"src", "dst", "/PURGE", "/B"}, 16,
       {"ERROR : Invalid Parameter : /B (not supported by the built-in engine)"}},
      {"a bad value", {"src", "dst", "/PURGE", "/LEV:x"}, 16},
      {"a mistyped source", {"srx", "dst", "/MIR", "/NJH"}, 16,
       {"ERROR : The source directory does not exist or cannot be read : srx/",
        " --> The system cannot find the path specified"}},
      {"the same directory", {"src", "./src/", "/MIR"}, 16},
      // clang-format on
  };
  for (const Row& Case : Rows) {
    TempDir Dir;
    Write(Dir / "src/a.txt", "a");
    Write(Dir / "dst/a.txt", "a");  // the same file, to the nanosecond
    MakeTree(Dir.Path(),
             {"dst/extra.txt=x", "src/sub/fifo.txt=f", "dst/sub/", "src/mm/in.txt=m", "dst/mm=not a dir"});
    mkfifo((Dir / "dst/sub/fifo.txt").c_str(), 0644);
    ZtResult R = Robocopy(Dir, Case.Args);
    EXPECT_EQ(R.ExitCode, Case.Code) << Case.What << "\n" << R.Stdout;
    if (!Case.Output.empty()) {
      EXPECT_EQ(OutputLines(R), Case.Output) << Case.What;
    }
    // Fatal runs change nothing: the extra is still there.
    if (Case.Code == 16) {
      EXPECT_EQ(ReadText(Dir / "dst/extra.txt"), "x") << Case.What;
    }
  }
}

TEST(RobocopyEndToEnd, MirrorPurgesExtrasButNotExcludedOnes) {
  TempDir Dir;
  MakeTree(Dir.Path(), {"src/a.txt=a", "src/sub/b.txt=b", "dst/old.txt=old", "dst/build.log=log",
                        "dst/gone/deep/c.txt=c [ro]"});
  ZtResult R = Robocopy(Dir, {"src", "dst", "/MIR", "/XF", "*.log"});
  EXPECT_EQ(R.ExitCode, 3) << R.Stdout;
  const Lines Out = OutputLines(R);
  ASSERT_GE(Out.size(), 8u);
  EXPECT_EQ(Lines(Out.begin(), Out.begin() + 4),
            (Lines{"Source : src/", "Dest : dst/", "Files : *.*", "Options : /MIR /XF *.log"}));
  EXPECT_EQ(Sorted(Lines(Out.begin() + 4, Out.end() - 4)),
            Sorted({"*EXTRA File : old.txt (3 bytes) (purged)", "*EXTRA Dir : gone/ (purged)",
                    "New File : a.txt (1 bytes)", "New Dir : sub/", "New File : sub/b.txt (1 bytes)"}));
  EXPECT_EQ(Lines(Out.end() - 4, Out.end() - 1),
            (Lines{"Dirs : 2 total, 1 copied, 1 skipped, 0 mismatched, 0 failed, 1 extra",
                   "Files : 2 total, 2 copied, 0 skipped, 0 mismatched, 0 failed, 1 extra",
                   "Bytes : 2 total, 2 copied, 0 skipped, 0 mismatched, 0 failed, 3 extra"}));
  EXPECT_EQ(Out.back().rfind("Time : ", 0), 0u);
  EXPECT_EQ(Tree(Dir / "dst"), (Lines{"a.txt=a [0x20]", "build.log=log", "sub/b.txt=b [0x20]"}));
}

// A destination inside the source is not copied into itself; a mirror onto
// a parent of the source keeps the source.
TEST(RobocopyEndToEnd, NeitherTreeIsWalkedIntoOrPurgedThroughTheOther) {
  TempDir Dir;
  MakeTree(Dir.Path(), {"src/a.txt=a", "top/stage/a.txt=a"});
  ZtResult R = Robocopy(Dir, {"src", "src/copy", "/E", "/NJH", "/NJS"});
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stdout,
            "New File : a.txt (1 bytes)\nDestination is inside the source; it is not copied into itself\n");
  EXPECT_EQ(Tree(Dir / "src"), (Lines{"a.txt=a", "copy/a.txt=a [0x20]"}));
  EXPECT_EQ(Robocopy(Dir, {"top/stage", "top", "/MIR", "/NJH", "/NJS"}).ExitCode, 3);
  EXPECT_EQ(Tree(Dir / "top"), (Lines{"a.txt=a [0x20]", "stage/a.txt=a"}));
}

TEST(RobocopyEndToEnd, MoveTakesWhatTheDestinationHoldsAndLeavesSkippedFiles) {
  TempDir Dir;
  Write(Dir / "src/new.txt", "n");
  Write(Dir / "src/same.txt", "s", 300);
  Write(Dir / "dst/same.txt", "s", 300);
  Write(Dir / "src/older.txt", "o", 900);
  Write(Dir / "dst/older.txt", "O", 100);
  Write(Dir / "src/sub/deep/x.txt", "x");
  ZtResult R = Robocopy(Dir, {"src", "dst", "/MOVE", "/S", "/XO"});
  EXPECT_EQ(R.ExitCode, 1) << R.Stdout;
  EXPECT_EQ(Tree(Dir / "src"), Lines{"older.txt=o"});
  EXPECT_EQ(Tree(Dir / "dst"),
            (Lines{"new.txt=n [0x20]", "older.txt=O", "same.txt=s", "sub/deep/x.txt [0x20]"}));
}

TEST(RobocopyEndToEnd, ManyThreadsLogWhatOneThreadLogs) {
  TempDir Dir;
  for (int D = 0; D < 8; ++D)
    for (int F = 0; F < 40; ++F)
      Write(Dir / ("src/d" + std::to_string(D) + "/f" + std::to_string(F) + ".txt"),
            std::string(F * 50, 'x'));
  Write(Dir / "src/fifo.txt", "f");
  for (const char* Dst : {"one", "many"}) {
    fs::create_directories(Dir / Dst);
    mkfifo((Dir / Dst + "/fifo.txt").c_str(), 0644);
  }
  ZtResult One = Robocopy(Dir, {"src", "one", "/E", "/NJH", "/NJS", "/R:1", "/W:0"});
  ZtResult Many = Robocopy(Dir, {"src", "many", "/E", "/NJH", "/NJS", "/R:1", "/W:0", "/MT:8"});
  EXPECT_EQ(One.ExitCode, 9);
  EXPECT_EQ(Many.ExitCode, 9);
  EXPECT_EQ(OutputLines(Many), OutputLines(One));
  EXPECT_EQ(OutputLines(One).size(), 8u + 321u + 6u);  // dirs, files, the failure and its retry
  EXPECT_EQ(ReadText(Dir / "many/d7/f39.txt"), std::string(39 * 50, 'x'));
}

TEST(RobocopyEndToEnd, AJobFileGivesPathsAndSwitchesTheCommandLineAddsTo) {
  TempDir Dir;
  MakeTree(Dir.Path(),
           {"my src/app.dll=dll", "my src/app.pdb=pdb", "my src/obj/x.dll=obj", "my src/lib/y.dll=y",
            "out/stale.dll=old",
            "release.rcj=:: saved\n/SD:my src\t:: the source\n/DD:out\n/IF\n  *.dll\n/XD\n  obj\n/S\n"});
  ZtResult R = Robocopy(Dir, {"/JOB:release", "/PURGE", "/NJH", "/NJS"});
  EXPECT_EQ(R.ExitCode, 3) << R.Stdout;
  EXPECT_EQ(Tree(Dir / "out"), (Lines{"app.dll=dll [0x20]", "lib/y.dll=y [0x20]"}));
  EXPECT_EQ(Robocopy(Dir, {"/JOB:missing", "/PURGE"}).Stdout,
            "ERROR : Cannot read the job file : missing.RCJ\n");
}

TEST(RobocopyActionsEndToEnd, SwitchesFromPropertiesAndOptionsAndTheExitCodeJudged) {
  TempDir Dir;
  MakeTree(Dir.Path(), {"src/a.txt=a", "src/sub/b.txt=b", "src/skip.log=log", "mirror/stale.txt=stale"});
  ZtResult R = RunZt(Dir.Path(), R"(options:
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
  EXPECT_EQ(Mirror.front(),
            "Copying with the built-in engine : src mirror /MIR /XF '*.log' /R:3 /W:0 /NJH /NJS /NP");
  EXPECT_EQ(Mirror.back(), "Robocopy exit code : 3 (files copied, extra files or directories)");
  EXPECT_EQ(ActionResult(R, "1"), "success");
  EXPECT_EQ(Tree(Dir / "mirror"), (Lines{"a.txt=a [0x20]", "sub/b.txt=b [0x20]"}));

  EXPECT_EQ(Messages(R, "2"),
            (Lines{"Copying with the built-in engine : src copy '*.txt' /S /LEV:1 /R:0 /W:0 /MT:2 "
                   "/NJH /NJS /NP",
                   "New File : a.txt (1 bytes)", "Robocopy exit code : 1 (files copied)"}));
  EXPECT_EQ(ActionResult(R, "2"), "ignored");  // FailureLevel 1: any copy fails the action
  EXPECT_EQ(Tree(Dir / "copy"), Lines{"a.txt=a [0x20]"});

  ASSERT_FALSE(Messages(R, "3").empty());
  EXPECT_EQ(Messages(R, "3").front(),
            "Copying with the built-in engine : src/sub moved /MOVE /R:3 /W:0 /NJH /NJS");
  EXPECT_EQ(Tree(Dir / "src"), (Lines{"a.txt=a", "skip.log=log"}));
  EXPECT_EQ(Tree(Dir / "moved"), Lines{"b.txt=b [0x20]"});
}

TEST(RobocopyActionsEndToEnd, TheSystemToolFallsBackToTheBuiltInEngineOnPosix) {
  TempDir Dir;
  WriteText(Dir / "src/a.txt", "a");
  ZtResult R = RunZt(Dir.Path(), R"(options:
  TZTRobocopyOptions:
    Engine: reSystemTool
actions:
  - {action: Robocopy Mirror, Source: src, Destination: dst}
)");
  ASSERT_FALSE(Messages(R, "1").empty()) << R.Stderr;
  EXPECT_EQ(Messages(R, "1").front(),
            "The system robocopy tool is not available here; using the built-in engine");
  EXPECT_EQ(ReadText(Dir / "dst/a.txt"), "a");
}

TEST(RobocopyActionsEndToEnd, CtrlCInTheMiddleOfAMirrorLeavesEveryFileWhole) {
  TempDir Dir;
  const std::string Block(256 * 1024, 'z');
  for (int I = 0; I < 400; ++I)
    WriteText(Dir / ("src/f" + std::to_string(I) + ".bin"), Block + std::to_string(I));
  ZtResult R = RunZtAndSignal(Dir.Path(), R"(actions:
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
