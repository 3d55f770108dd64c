// Log Variable Values and Replace Variables through zt: the lines a user
// reads, the replaced texts byte for byte, and templates with mistakes.
#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

TEST(LogVariablesE2E, LogsAllSortedOrTheChosenOnes) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), R"(
variables:
  beta: 2
  Alpha: "%beta%-x"
  BAD: "%NOPE%"
  WHICH: beta
  gamma: true
actions:
  - {action: Log Variable Values, LogAllVariables: true}
  - {action: Log Variable Values, VariableStorageString: "Alpha\n%WHICH%\n\nmissing\nBAD",
     FailIfNotDefined: false}
  - {action: Log Variable Values, VariableStorageString: "gamma\nmissing\nbeta"}
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"),
            (Lines{"All variable values : ", "Alpha = 2-x", "BAD = (Cannot be represented as a string)",
                   "beta = 2", "gamma = True", "WHICH = beta"}));
  EXPECT_EQ(Messages(R, "2"),
            (Lines{"Current variable values : ", "Alpha = 2-x", "beta = 2", "Variable missing not defined.",
                   "BAD = (Cannot be represented as string)"}));
  EXPECT_EQ(Messages(R, "3"),
            (Lines{"Current variable values : ", "gamma = True", "Variable missing not defined."}));
  EXPECT_EQ(ActionResult(R, "3"), "failure");
}

TEST(ReplaceVariablesE2E, ReplacesInAFileAndWritesItBackWithCrLfLines) {
  TempDir D;
  WriteText(D / "app.conf", "version=%VER%\nname=%NAME% %VER%\r\nliteral=100%%\rlast");
  WriteText(D / "plain.txt", "no references\nhere");
  ZtResult R = RunZt(D.Path(), R"(
variables:
  VER: 1.4.2
  NAME: "zt %VER%"
actions:
  - {action: Replace Variables, SourceFile: app.conf, WriteToLog: true}
  - {action: Replace Variables, SourceFile: plain.txt}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  const std::string Replaced = "version=1.4.2\r\nname=zt 1.4.2 1.4.2\r\nliteral=100%\r\nlast\r\n";
  EXPECT_EQ(ReadText(D / "app.conf"), Replaced);
  EXPECT_EQ(Messages(R, "1"),
            (Lines{"Loading data from file app.conf...", "Made 3 replacements.",
                   "Contents with Replaced Variables:", Replaced, "Writing result back to source file."}));
  // Rewritten even without a reference.
  EXPECT_EQ(ReadText(D / "plain.txt"), "no references\r\nhere\r\n");
  EXPECT_EQ(Messages(R, "2")[1], "Made 0 replacements.");
}

TEST(ReplaceVariablesE2E, MovesTextsBetweenVariablesAndFiles) {
  TempDir D;
  WriteText(D / "tpl.txt", "v=%VER%");
  ZtResult R = RunZt(D.Path(), R"(
variables:
  VER: 2
  TPL: "a=%VER%\nb=%%"
  OUT: ""
actions:
  - {action: Replace Variables, SourceType: rfVariable, SourceVariable: TPL, WriteBackToSource: false,
     DestType: rfVariable, DestVariable: OUT}
  - {action: Replace Variables, SourceType: rfVariable, SourceVariable: TPL, WriteBackToSource: false,
     DestFile: out/result.txt, ignoreFailure: true}
  - {action: Replace Variables, SourceFile: tpl.txt, WriteBackToSource: false, DestFile: result.txt}
  - {action: Replace Variables, SourceType: rfVariable, SourceVariable: TPL}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  EXPECT_EQ(Messages(R, "1"), (Lines{"Loading data from variable TPL", "Made 1 replacements.",
                                     "Writing result to variable OUT"}));
  EXPECT_EQ(Messages(R, "2"), (Lines{"Loading data from variable TPL", "Made 1 replacements.",
                                     "Writing result to file out/result.txt", "An error occured:",
                                     "Could not save file: Cannot create file \"out/result.txt\". "
                                     "The system cannot find the path specified"}));
  EXPECT_EQ(Messages(R, "3"), (Lines{"Loading data from file tpl.txt...", "Made 1 replacements.",
                                     "Writing result to file result.txt"}));
  EXPECT_EQ(ReadText(D / "tpl.txt"), "v=%VER%");
  EXPECT_EQ(ReadText(D / "result.txt"), "v=2\r\n");
  EXPECT_EQ(Messages(R, "4").back(), "Writing result to source variable.");
  EXPECT_EQ(FinalVariables(R),
            nlohmann::json::parse(R"({"VER":2,"TPL":"a=2\r\nb=%\r\n","OUT":"a=2\r\nb=%\r\n"})"));
}

TEST(ReplaceVariablesE2E, MistakesFailWithoutTouchingTheSource) {
  TempDir D;
  WriteText(D / "tpl.txt", "a=%NOPE%\nb=%VER%");
  ZtResult R = RunZt(D.Path(), R"(
variables:
  VER: 3
actions:
  - {action: Replace Variables, SourceFile: tpl.txt, ignoreFailure: true}
  - {action: Replace Variables, SourceFile: missing.txt, ignoreFailure: true}
  - {action: Replace Variables, SourceType: rfVariable, SourceVariable: NONE, ignoreFailure: true}
  - {action: Replace Variables, SourceFile: tpl.txt, WriteBackToSource: false, DestType: rfVariable,
     DestVariable: NEW, FailOnVariableErrors: false, ignoreFailure: true}
  - {action: Replace Variables, SourceFile: tpl.txt, FailOnVariableErrors: false}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  EXPECT_EQ(Messages(R, "1"), (Lines{"Loading data from file tpl.txt...", "An error occured:",
                                     "Could not expand variables: Variable \"NOPE\" is not defined"}));
  EXPECT_EQ(Messages(R, "2"), (Lines{"An error occured:", "Source file not found: missing.txt"}));
  EXPECT_EQ(Messages(R, "3"), (Lines{"An error occured:", "Variable not defined: NONE"}));
  EXPECT_EQ(Messages(R, "4"), (Lines{"Loading data from file tpl.txt...", "Made 1 replacements.",
                                     "An error occured:", "Destination variable not defined: NEW"}));
  // Unknown references stay as written when they are not errors.
  EXPECT_EQ(Messages(R, "5")[1], "Made 1 replacements.");
  EXPECT_EQ(ReadText(D / "tpl.txt"), "a=%NOPE%\r\nb=3\r\n");
}

}  // namespace
}  // namespace zt::testing
