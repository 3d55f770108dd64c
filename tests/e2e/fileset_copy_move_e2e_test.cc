// "FileSet Copy/Move" through zt: a project file set's files copied or moved
// below a destination with their paths (or flat), the rules for targets that
// exist, and the refusals that keep a set from copying onto itself.
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
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


TEST(FileSetCopyMoveEndToEnd, CopiesAndMovesFilesKeepingTheirPathsBelowTheBase) {
  TempDir D;
  WriteText(D / "src/a.txt", "a");
  WriteText(D / "src/sub/b.txt", "b");
  WriteText(D / "src/sub/deep/c.txt", "c");
  WriteText(D / "src/sub/skip.log", "log");
  ZtResult R = RunZt(D.Path(), R"(filesets:
  Texts:
    base: src
    include: ["**/*.txt"]
actions:
  - {action: FileSet Copy/Move, FileSetName: texts, TargetDir: out/tree}
  - {action: FileSet Copy/Move, FileSetName: Texts, TargetDir: flat, KeepStructure: false}
  - {action: FileSet Copy/Move, FileSetName: Texts, TargetDir: moved/, Operation: foMove}
  - {action: FileSet Copy/Move, FileSetName: Texts, TargetDir: again, FailIfZeroFiles: true}
)");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Copying file set texts -> out/tree", "3 Files Copied."}));
  EXPECT_EQ(D.Read("out/tree/a.txt") + D.Read("out/tree/sub/b.txt") + D.Read("out/tree/sub/deep/c.txt"), "abc");
  EXPECT_EQ(D.Read("flat/a.txt") + D.Read("flat/b.txt") + D.Read("flat/c.txt"), "abc");
  EXPECT_FALSE(fs::exists(D / "out/tree/sub/skip.log"));
  EXPECT_EQ(StatusDetails(R, "3"), (Lines{"Moving file set Texts -> moved/", "3 Files Moved."}));
  EXPECT_EQ(D.Read("moved/a.txt") + D.Read("moved/sub/b.txt") + D.Read("moved/sub/deep/c.txt"), "abc");
  EXPECT_FALSE(fs::exists(D / "src/sub/deep/c.txt"));
  EXPECT_TRUE(fs::is_directory(D / "src/sub/deep"));  // a move leaves emptied directories
  // Refreshed after the move, the set is empty.
  EXPECT_EQ(StatusDetails(R, "4"), (Lines{"Copying file set Texts -> again", "0 Files Copied."}));
  EXPECT_EQ(ActionResult(R, "4"), "failure");
}

TEST(FileSetCopyMoveEndToEnd, ExistingTargetsAreSkippedKeptOrReplacedAsTheOptionsSay) {
  TempDir D;
  WriteText(D / "src/f.txt", "new");
  const std::string Src = D / "src/f.txt";
  const struct {
    std::string Options;
    bool ReadOnly, TargetNewer;
    Lines Expected;
    std::string Contents;
  } Cases[] = {
      {"OnlyIfNewer: true", false, true, {"0 Files Copied.", "1 Files Skipped."}, "old"},
      {"OnlyIfNewer: true", false, false, {"1 Files Copied."}, "new"},
      {"OverwriteExisting: false", false, false,
       {"Failed to copy File : " + Src + " -> t2/f.txt", "File Already Exists!", "0 Files Copied."}, "old"},
      {"Operation: foMove", true, false,
       {"Failed to move File : " + Src + " -> t3/f.txt", "File Already Exists and is marked as Read Only",
        "0 Files Moved."},
       "old"},
      {"OverwriteReadOnly: true\n    ClearAttributes: true", true, false, {"1 Files Copied."}, "new"},
  };
  std::string Yaml = "filesets:\n  S:\n    base: src\nactions:\n";
  for (std::size_t I = 0; I < std::size(Cases); ++I) {
    const std::string Dir = "t" + std::to_string(I);
    WriteText(D / Dir + "/f.txt", "old");
    const auto Age = fs::last_write_time(Src);
    fs::last_write_time(D / (Dir + "/f.txt"), Cases[I].TargetNewer ? Age + std::chrono::hours(1)
                                                                    : Age - std::chrono::hours(1));
    if (Cases[I].ReadOnly) chmod((D / (Dir + "/f.txt")).c_str(), 0444);
    Yaml += "  - action: FileSet Copy/Move\n    FileSetName: S\n    TargetDir: " + Dir + "\n    " + Cases[I].Options +
            "\n    ignoreFailure: true\n";
  }
  ZtResult R = RunZt(D.Path(), Yaml);
  for (std::size_t I = 0; I < std::size(Cases); ++I) {
    const std::string Dir = "t" + std::to_string(I);
    Lines Got = StatusDetails(R, std::to_string(I + 1));
    ASSERT_FALSE(Got.empty()) << Cases[I].Options;
    EXPECT_EQ(Lines(Got.begin() + 1, Got.end()), Cases[I].Expected) << Cases[I].Options;
    EXPECT_EQ(D.Read(Dir + "/f.txt"), Cases[I].Contents) << Cases[I].Options;
  }
  EXPECT_TRUE(fs::exists(Src));  // the refused move kept its source
  EXPECT_EQ(fs::status(D / "t3/f.txt").permissions() & fs::perms::owner_write, fs::perms::none);
  EXPECT_NE(fs::status(D / "t4/f.txt").permissions() & fs::perms::owner_write, fs::perms::none);
}

TEST(FileSetCopyMoveEndToEnd, RefusesBeforeCopyingWhatWouldOverlapOrCollide) {
  TempDir D;
  WriteText(D / "out/old.txt", "previous run");
  WriteText(D / "a/x.txt", "a");
  WriteText(D / "b/x.txt", "b");
  ZtResult R = RunZt(D.Path(), R"(filesets:
  All:
    base: .
    include: ["**/*.txt"]
  Sources:
    base: .
    include: ["a/*", "b/*"]
actions:
  - {action: FileSet Copy/Move, FileSetName: All, TargetDir: out, ignoreFailure: true}
  - {action: FileSet Copy/Move, FileSetName: Sources, TargetDir: flat, KeepStructure: false,
     ignoreFailure: true}
  - {action: FileSet Copy/Move, FileSetName: Nope, TargetDir: flat, ignoreFailure: true}
  - {action: FileSet Copy/Move, FileSetName: All, TargetDir: "%NOPE%/out", ignoreFailure: true}
)");
  EXPECT_EQ(ActionResult(R, "1"), "ignored");
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Copying file set All -> out",
                                    " --> The destination holds files of the set : " + D.Path() + "/out/old.txt",
                                    "0 Files Copied."}));
  EXPECT_FALSE(fs::exists(D / "out/a/x.txt"));
  EXPECT_EQ(StatusDetails(R, "2"), (Lines{"Copying file set Sources -> flat",
                                    " --> Two files of the set have the same name : x.txt", "0 Files Copied."}));
  EXPECT_FALSE(fs::exists(D / "flat"));
  EXPECT_EQ(Messages(R, "3"), (Lines{"Could not find FileSet: Nope"}));
  EXPECT_EQ(Messages(R, "4"), (Lines{"Cannot expand Destination Directory: variable \"NOPE\" is not defined"}));

  R = RunZt(D.Path(), "actions:\n  - action: FileSet Copy/Move\n", {}, "validate");
  EXPECT_EQ(R.Stdout, "1 FileSet Copy/Move: File Set: A File Set must be provided\n"
                      "1 FileSet Copy/Move: Destination Directory: The target directory has not been set\n");
}

TEST(FileSetCopyMoveEndToEnd, AStopEndsTheCopyWithoutAPartialTarget) {
  TempDir D;
  WriteText(D / "src/z.txt", "z");  // after huge.bin in the set's order
  ASSERT_EQ(truncate(D.Write("src/huge.bin", "").c_str(), 1LL << 30), 0);  // sparse: no disk used
  ZtResult R = RunZtAndSignal(D.Path(), R"(filesets:
  S:
    base: src
    include: ["*"]
actions:
  - {action: FileSet Copy/Move, FileSetName: S, TargetDir: out}
)", "\"Copying File :", SIGINT);
  EXPECT_EQ(R.ExitCode, 130) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Copying file set S -> out", "Stopping...", "0 Files Copied."}));
  EXPECT_FALSE(fs::exists(D / "out/huge.bin"));
  EXPECT_FALSE(fs::exists(D / "out/z.txt"));
}

}  // namespace
}  // namespace zt::testing
