// Project file sets through zt: a set defined under `filesets:` reaches the
// actions that name it, in any letter case, and is read once until
// refreshed; "FileSet Copy/Move" copies or moves its files below a
// destination with their paths (or flat), follows the rules for targets that
// exist, and refuses before copying what would copy a set onto itself.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

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

TEST(FileSetsE2E, CheckIfFileExistsFindsTheFilesOfAProjectFileSet) {
  TempDir D;
  MakeTree(D.Path(), {"src/a/main.cpp", "other/generated/gen.cpp", "other/readme.txt"});
  ZtResult R = RunZt(D.Path(), R"(filesets:
  Sources: {base: src, include: ["**/*.cpp"], exclude: ["**/generated/**"]}
  Other: {base: other, include: ["**/*.cpp"], exclude: ["**/generated/**"]}
  Nowhere: {base: nowhere, include: ["*.cpp"]}
actions:
  - {action: Check if File Exists, UseFileSpec: false, FileSet: sources, Variable: Found}
  - {action: Check if File Exists, UseFileSpec: false, FileSet: Other, Variable: Excluded, ignoreFailure: true}
  - {action: Check if File Exists, UseFileSpec: false, FileSet: Nowhere, Variable: NoBase, ignoreFailure: true}
  - {action: Check if File Exists, UseFileSpec: false, FileSet: Headers, Variable: Unknown, ignoreFailure: true}
  - {action: Delete File(s), FileSpec: src/a/main.cpp}
  - {action: Check if File Exists, UseFileSpec: false, FileSet: Sources, Variable: Refreshed, ignoreFailure: true}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  const std::string No = "Found no files from File Set";
  const struct {
    std::string Id, Said, Result, Variable;
  } Cases[] = {
      {"1", "Found files from File Set", "success", "Found"},
      {"2", No, "ignored", "Excluded"},
      {"3", No, "ignored", "NoBase"},
      {"4", "Could not find FileSet: Headers", "ignored", "Unknown"},
      {"6", No, "ignored", "Refreshed"},  // its one file is gone
  };
  for (const auto& C : Cases) {
    EXPECT_EQ(Said(R, C.Id), Lines{C.Said}) << C.Id;
    EXPECT_EQ(ActionResult(R, C.Id), C.Result) << C.Id;
    EXPECT_EQ(FinalValue(R, C.Variable), C.Result == "success") << C.Id;
  }
}

TEST(FileSetCopyMoveEndToEnd, CopiesAndMovesFilesKeepingTheirPathsBelowTheBase) {
  TempDir D;
  MakeTree(D.Path(), {"src/a.txt=a", "src/sub/b.txt=b", "src/sub/deep/c.txt=c", "src/sub/skip.log=log"});
  ZtResult R = RunZt(D.Path(), R"(filesets:
  Texts: {base: src, include: ["**/*.txt"]}
actions:
  - {action: FileSet Copy/Move, FileSetName: texts, TargetDir: out/tree}
  - {action: FileSet Copy/Move, FileSetName: Texts, TargetDir: flat, KeepStructure: false}
  - {action: FileSet Copy/Move, FileSetName: Texts, TargetDir: moved/, Operation: foMove}
  - {action: FileSet Copy/Move, FileSetName: Texts, TargetDir: again, FailIfZeroFiles: true}
)");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Copying file set texts -> out/tree", "3 Files Copied."}));
  EXPECT_EQ(StatusDetails(R, "3"), (Lines{"Moving file set Texts -> moved/", "3 Files Moved."}));
  // Refreshed after the move, the set is empty; a move leaves emptied directories.
  EXPECT_EQ(StatusDetails(R, "4"), (Lines{"Copying file set Texts -> again", "0 Files Copied."}));
  EXPECT_EQ(ActionResult(R, "4"), "failure");
  EXPECT_EQ(Tree(D / "out/tree"), (Lines{"a.txt=a [0x20]", "sub/b.txt=b [0x20]", "sub/deep/c.txt=c [0x20]"}));
  EXPECT_EQ(Tree(D / "moved"), (Lines{"a.txt=a", "sub/b.txt=b", "sub/deep/c.txt=c"}));
  EXPECT_EQ(Tree(D / "flat"), (Lines{"a.txt=a [0x20]", "b.txt=b [0x20]", "c.txt=c [0x20]"}));
  EXPECT_EQ(Tree(D / "src"), (Lines{"sub/deep/", "sub/skip.log=log"}));
}

TEST(FileSetCopyMoveEndToEnd, ExistingTargetsAreSkippedKeptOrReplacedAsTheOptionsSay) {
  TempDir D;
  WriteText(D / "src/f.txt", "new");
  const std::string Src = D / "src/f.txt";
  const struct {
    std::string Options;
    bool ReadOnly, TargetNewer;
    Lines Expected;     // after the header line
    std::string After;  // the target, as Tree() shows it
  } Cases[] = {
      // clang-format off
      {"OnlyIfNewer: true", false, true, {"0 Files Copied.", "1 Files Skipped."}, "f.txt=old"},
      {"OnlyIfNewer: true", false, false, {"1 Files Copied."}, "f.txt=new [0x20]"},
      {"OverwriteExisting: false", false, false,
       {"Failed to copy File : " + Src + " -> t2/f.txt", "File Already Exists!", "0 Files Copied."}, "f.txt=old"},
      {"Operation: foMove", true, false,
       {"Failed to move File : " + Src + " -> t3/f.txt", "File Already Exists and is marked as Read Only",
        "0 Files Moved."}, "f.txt=old [ro]"},
      {"OverwriteReadOnly: true, ClearAttributes: true", true, false, {"1 Files Copied."}, "f.txt=new"},
      // clang-format on
  };
  std::string Yaml = "filesets:\n  S:\n    base: src\nactions:\n";
  for (std::size_t I = 0; I < std::size(Cases); ++I) {
    const std::string Dir = "t" + std::to_string(I);
    WriteText(D / Dir + "/f.txt", "old", Cases[I].ReadOnly ? 0444 : 0);
    const auto Age = fs::last_write_time(Src);
    fs::last_write_time(D / (Dir + "/f.txt"),
                        Cases[I].TargetNewer ? Age + std::chrono::hours(1) : Age - std::chrono::hours(1));
    Yaml += "  - {action: FileSet Copy/Move, FileSetName: S, TargetDir: " + Dir + ", " + Cases[I].Options +
            ", ignoreFailure: true}\n";
  }
  ZtResult R = RunZt(D.Path(), Yaml);
  for (std::size_t I = 0; I < std::size(Cases); ++I) {
    Lines Got = StatusDetails(R, std::to_string(I + 1));
    ASSERT_FALSE(Got.empty()) << Cases[I].Options;
    EXPECT_EQ(Lines(Got.begin() + 1, Got.end()), Cases[I].Expected) << Cases[I].Options;
    EXPECT_EQ(Tree(D / ("t" + std::to_string(I))), Lines{Cases[I].After}) << Cases[I].Options;
  }
  EXPECT_EQ(Tree(D / "src"), Lines{"f.txt=new"});  // the refused move kept its source
}

TEST(FileSetCopyMoveEndToEnd, RefusesBeforeCopyingWhatWouldOverlapOrCollide) {
  TempDir D;
  MakeTree(D.Path(), {"out/old.txt=previous run", "a/x.txt=a", "b/x.txt=b"});
  ZtResult R = RunZt(D.Path(), R"(filesets:
  All: {base: ., include: ["**/*.txt"]}
  Sources: {base: ., include: ["a/*", "b/*"]}
actions:
  - {action: FileSet Copy/Move, FileSetName: All, TargetDir: out, ignoreFailure: true}
  - {action: FileSet Copy/Move, FileSetName: Sources, TargetDir: flat, KeepStructure: false, ignoreFailure: true}
  - {action: FileSet Copy/Move, FileSetName: Nope, TargetDir: flat, ignoreFailure: true}
  - {action: FileSet Copy/Move, FileSetName: All, TargetDir: "%NOPE%/out", ignoreFailure: true}
)");
  EXPECT_EQ(ActionResult(R, "1"), "ignored");
  EXPECT_EQ(StatusDetails(R, "1"),
            (Lines{"Copying file set All -> out",
                   " --> The destination holds files of the set : " + D.Path() + "/out/old.txt",
                   "0 Files Copied."}));
  EXPECT_FALSE(fs::exists(D / "out/a/x.txt"));
  EXPECT_EQ(StatusDetails(R, "2"),
            (Lines{"Copying file set Sources -> flat", " --> Two files of the set have the same name : x.txt",
                   "0 Files Copied."}));
  EXPECT_FALSE(fs::exists(D / "flat"));
  EXPECT_EQ(Messages(R, "3"), (Lines{"Could not find FileSet: Nope"}));
  EXPECT_EQ(Messages(R, "4"),
            (Lines{"Cannot expand Destination Directory: variable \"NOPE\" is not defined"}));
}

TEST(FileSetCopyMoveEndToEnd, AStopEndsTheCopyWithoutAPartialTarget) {
  TempDir D;
  WriteText(D / "src/z.txt", "z");  // after huge.bin in the set's order
  ASSERT_EQ(truncate(D.Write("src/huge.bin", "").c_str(), 1LL << 30), 0);  // sparse: no disk used
  ZtResult R = RunZtAndSignal(D.Path(), R"(filesets:
  S: {base: src, include: ["*"]}
actions:
  - {action: FileSet Copy/Move, FileSetName: S, TargetDir: out}
)",
                              "\"Copying File :", SIGINT);
  EXPECT_EQ(R.ExitCode, 130) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Copying file set S -> out", "Stopping...", "0 Files Copied."}));
  EXPECT_EQ(ListNames(D / "out"), Lines{});
}

}  // namespace
}  // namespace zt::testing
