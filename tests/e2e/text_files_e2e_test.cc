// Create Text File, Write to Text File and Read Text File through zt: the
// exact bytes on disk, the log lines, and that no failure loses a file.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

TEST(TextFilesE2E, CreateWritesExactBytesAndOverwritesOnlyWhenAsked) {
  TempDir D;
  WriteText(D / "keep.txt", "old, longer contents");
  ZtResult R = RunZt(D.Path(), R"(variables: {VER: 1.4.2}
actions:
  - {action: Create Text File, NewFileName: out/sub/version.txt, FileContents: "v=%VER%\nsecond\r\n100%%"}
  - {action: Create Text File, NewFileName: keep.txt, FileContents: other, ignoreFailure: true}
  - {action: Create Text File, NewFileName: " keep.txt ", FileContents: "%VER%", OverwriteExisting: true,
     CreateDirectory: false}
  - {action: Create Text File, NewFileName: never.txt, FileContents: "%NOPE%"}
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), (Lines{"File created: out/sub/version.txt"}));
  EXPECT_EQ(ReadText(D / "out/sub/version.txt"), "v=1.4.2\nsecond\r\n100%");
  EXPECT_EQ(Messages(R, "2"), (Lines{"ERROR - File already exists: keep.txt"}));
  EXPECT_EQ(ActionResult(R, "2"), "ignored");
  EXPECT_EQ(Messages(R, "3"), (Lines{"File created: keep.txt"}));
  EXPECT_EQ(ReadText(D / "keep.txt"), "1.4.2");  // truncated and rewritten
  // A reference that cannot be expanded fails before any file is made.
  EXPECT_EQ(Messages(R, "4"), (Lines{"Cannot expand File Contents: variable \"NOPE\" is not defined"}));
  EXPECT_FALSE(fs::exists(D / "never.txt"));
}

// The CR LF comes even after a line break; a file is rewritten in place, so
// its second name sees it too and its mode stays.
TEST(TextFilesE2E, AppendAndPrependPutCrLfBetweenOldAndNewContent) {
  TempDir D;
  MakeTree(D.Path(), {"t/append.txt=A", "t/append-eol.txt=A\n", "t/empty.txt=", "t/prepend.txt=A\nB",
                      "t/prepend-empty.txt=", "t/shared.txt=A", "t/shared-link.txt => t/shared.txt"});
  chmod((D / "t/prepend.txt").c_str(), 0640);
  ZtResult R = RunZt(D.Path(), R"(variables: {NEW: "n%%1"}
actions:
  - {action: Write to Text File, FileName: t/append.txt, NewContent: "%NEW%"}
  - {action: Write to Text File, FileName: t/append-eol.txt, NewContent: B}
  - {action: Write to Text File, FileName: t/empty.txt, NewContent: B}
  - {action: Write to Text File, FileName: t/prepend.txt, NewContent: "x\ny", WriteToPosition: toStart}
  - {action: Write to Text File, FileName: t/prepend-empty.txt, NewContent: B, WriteToPosition: toStart}
  - {action: Write to Text File, FileName: t/shared.txt, NewContent: B, WriteToPosition: toStart}
  - {action: Write to Text File, FileName: t/created.txt, NewContent: "C\n", CreateIfNotExists: true,
     WriteToPosition: toStart}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  EXPECT_EQ(Tree(D / "t"), (Lines{"append-eol.txt=A\n\r\nB", "append.txt=A\r\nn%1", "created.txt=C\n",
                                  "empty.txt=B", "prepend-empty.txt=B", "prepend.txt=x\ny\r\nA\nB",
                                  "shared-link.txt=B\r\nA", "shared.txt=B\r\nA"}));
  EXPECT_EQ(fs::status(D / "t/prepend.txt").permissions(), fs::perms(0640));
  for (const char* Id : {"1", "4", "6", "7"}) EXPECT_EQ(Messages(R, Id), Lines{}) << Id;
}

TEST(TextFilesE2E, FailedWritesLeaveEveryFileAsItWas) {
  TempDir D;
  MakeTree(D.Path(), {"locked.txt=old [ro]", "folder/"});
  ZtResult R = RunZt(D.Path(), R"(
actions:
  - {action: Write to Text File, FileName: missing.txt, NewContent: B, ignoreFailure: true}
  - {action: Write to Text File, FileName: locked.txt, NewContent: B, WriteToPosition: toStart,
     ignoreFailure: true}
  - {action: Write to Text File, FileName: locked.txt, NewContent: B, ignoreFailure: true}
  - {action: Write to Text File, FileName: folder, NewContent: B, CreateIfNotExists: true,
     ignoreFailure: true}
  - {action: Create Text File, NewFileName: locked.txt, FileContents: B, OverwriteExisting: true,
     ignoreFailure: true}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  EXPECT_EQ(Messages(R, "1"), (Lines{"ERROR - File doesn't exist: missing.txt"}));
  EXPECT_EQ(Messages(R, "2"),
            (Lines{"Error writing to text file:",
                   "Could not open target file for writing : Cannot open file \"locked.txt\". "
                   "Access is denied"}));
  EXPECT_EQ(Messages(R, "3"),
            (Lines{"Error writing to text file:", "Cannot open file \"locked.txt\". Access is denied"}));
  EXPECT_EQ(Messages(R, "4"),
            (Lines{"Error writing to text file:", "Cannot create file \"folder\". Access is denied"}));
  EXPECT_EQ(Messages(R, "5"),
            (Lines{"File creation failed: Cannot create file \"locked.txt\". Access is denied"}));
  for (const char* Id : {"1", "2", "3", "4", "5"}) EXPECT_EQ(ActionResult(R, Id), "ignored") << Id;
  EXPECT_EQ(ReadText(D / "locked.txt"), "old");
  EXPECT_EQ(ListNames(D.Path()), (Lines{"folder", "locked.txt", "log.jsonl", "project.yml"}));
  EXPECT_TRUE(fs::is_empty(D / "folder"));
}

TEST(TextFilesE2E, ReadPutsContentsInAVariableThatExpandsBackToTheText) {
  TempDir D;
  WriteText(D / "in.txt", std::string("a%PATH%b$(pwd)\0c\r\nz", 20));
  ZtResult R = RunZt(D.Path(), R"(
actions:
  - {action: Read Text File, FileName: in.txt, ZTVariable: RAW, PutContentsInVar: true}
  - {action: Read Text File, FileName: in.txt, ZTVariable: ESC, PutContentsInVar: true,
     EscapeVariables: true}
  - {action: Create Text File, NewFileName: out.txt, FileContents: "%ESC%"}
  - {action: Read Text File, FileName: in.txt, ZTVariable: UNUSED}
  - {action: Read Text File, FileName: missing.txt, ZTVariable: V, PutContentsInVar: true}
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), (Lines{"Reading file...", "Done."}));
  EXPECT_EQ(Messages(R, "2"), (Lines{"Reading file...", "Escaping variables...", "Done."}));
  // The NUL is removed; without PutContentsInVar and a script the file is only opened.
  EXPECT_EQ(FinalVariables(R),
            nlohmann::json::parse(R"({"RAW": "a%PATH%b$(pwd)c\r\nz", "ESC": "a%%PATH%%b$$(pwd)c\r\nz"})"));
  EXPECT_EQ(ReadText(D / "out.txt"), "a%PATH%b$(pwd)c\r\nz");
  EXPECT_EQ(Messages(R, "4"), (Lines{"Reading file...", "Done."}));
  EXPECT_EQ(Messages(R, "5"), (Lines{"ERROR - File does not exists: missing.txt"}));
}

}  // namespace
}  // namespace zt::testing
