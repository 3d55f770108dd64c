// Save / Load Variables to and from INI, Log Variable Values and Replace
// Variables through zt: the files byte for byte, the typed values loaded
// back, the lines a user reads, and the failure flags with their order.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

TEST(VariablesFileE2E, SavedVariablesLoadBackWithTheirTypesOrFallBackAndAreNeverExpanded) {
  TempDir D;
  WriteText(D / "vars.ini", "[ZTVariables]\r\nGONE=1\r\n[Other]\r\nk=v\r\n");
  ZtResult Save = RunZt(D.Path(), R"(
variables: {VER: 1.4.2, COUNT: 7, ON: true, DIST: dist/app-%VER%}
actions:
  - {action: Save Variables to INI, INIFile: vars.ini, Variables: [VER, COUNT, ON, DIST]}
)");
  EXPECT_EQ(Save.ExitCode, 0) << Save.Stdout;
  EXPECT_EQ(Messages(Save, "1"), (Lines{"Variables saved to vars.ini"}));
  // The section is erased and written again at the end; other sections stay.
  EXPECT_EQ(ReadText(D / "vars.ini"),
            "[Other]\r\nk=v\r\n[ZTVariables]\r\nVER=1.4.2\r\nCOUNT=7\r\nON=True\r\nDIST=dist/app-1.4.2\r\n");

  // Duplicate keys: the first one wins; values that are no Boolean or integer fall back by type.
  WriteText(D / "v.ini", "[Build]\nB1=maybe\nB2=yes\nB3=0\nI1=12abc\nI2=$1F\nS=%PATH% $(x)\nS=second\n");
  ZtResult Load = RunZt(D.Path(), R"(
variables: {VER: "0", COUNT: 0, ON: false, DIST: "", B1: true, B2: abc, B3: true, I1: 5, I2: 0, S: ""}
actions:
  - {action: Load Variables from INI, INIFile: vars.ini, Variables: [VER, COUNT, ON, DIST],
     VariableTypes: [string, INTEGER, Boolean, STRING]}
  - {action: Load Variables from INI, INIFile: v.ini, SectionName: Build, Variables: [B1, B2, B3, I1, I2, S],
     VariableTypes: [BOOLEAN, BOOLEAN, BOOLEAN, INTEGER, INTEGER, STRING]}
)");
  EXPECT_EQ(Load.ExitCode, 0) << Load.Stdout;
  EXPECT_EQ(Messages(Load, "1"), (Lines{"Variables loaded from vars.ini"}));
  EXPECT_EQ(FinalVariables(Load), nlohmann::json::parse(R"j({"VER":"1.4.2","COUNT":7,"ON":true,
      "DIST":"dist/app-1.4.2","B1":true,"B2":false,"B3":false,"I1":5,"I2":31,"S":"%PATH% $(x)"})j"));
}

// One build, one load per case, each failing or not as its flags say.
TEST(VariablesFileE2E, LoadFailsByItsFlagsInTheirOrder) {
  TempDir D;
  WriteText(D / "v.ini", "[ZTVariables]\r\nA=1\r\nB=2\r\n");
  WriteText(D / "nosection.ini", "A=1\r\n");
  // clang-format off
  const struct {
    std::string Settings;
    Lines Said;
    std::string Result;
  } Cases[] = {
      // A missing key or an undefined variable fails by default.
      {"Variables: [A, C, B], VariableTypes: [INTEGER, STRING, INTEGER]", {"Variable not found in INI: C"}, "ignored"},
      {"Variables: [NOPE]", {"Variable not defined: NOPE"}, "ignored"},
      // Both flags: the first wins, nothing is created.
      {"Variables: [C], CreateVarInINIifNotExists: true", {"Variable not found in INI: C"}, "ignored"},
      // Created with the current value, which stays.
      {"Variables: [C, NOPE, B], VariableTypes: [STRING, STRING, STRING], FailIfVariableNotInIniFile: false, "
       "FailIfVariableNotDefined: false, CreateVarInINIifNotExists: true",
       {"Variable not found in INI, created: C", "Variable not defined: NOPE", "Variables loaded from v.ini"},
       "success"},
      {"Variables: [A, B], VariableTypes: [STRING]", {"Error setting variable B"}, "ignored"},  // types run out
      {"Variables: [A], VariableTypes: [FLOAT]", {"Invalid value for variable type: FLOAT"}, "ignored"},
      {"Variables: [A], INIFile: none.ini", {"File none.ini does not exist."}, "ignored"},
      // Ignored, but its keys are missing too.
      {"Variables: [A], INIFile: none.ini, IgnoreFileNotFound: true",
       {"File none.ini does not exist.", "Variable not found in INI: A"}, "ignored"},
      // Keys before any section belong to none.
      {"Variables: [A], INIFile: nosection.ini, FailIfVariableNotInIniFile: false",
       {"Variable not found in INI: A", "Variables loaded from nosection.ini"}, "success"},
  };
  // clang-format on
  std::string Yaml = "variables: {A: 0, B: 0, C: c}\nactions:\n";
  for (const auto& C : Cases)
    Yaml += "  - {action: Load Variables from INI, " +
            std::string(C.Settings.find("INIFile") == std::string::npos ? "INIFile: v.ini, " : "") +
            C.Settings + (C.Result == "ignored" ? ", ignoreFailure: true}\n" : "}\n");
  ZtResult R = RunZt(D.Path(), Yaml);
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  for (std::size_t I = 0; I < std::size(Cases); ++I) {
    EXPECT_EQ(Messages(R, std::to_string(I + 1)), Cases[I].Said) << Cases[I].Settings;
    EXPECT_EQ(ActionResult(R, std::to_string(I + 1)), Cases[I].Result) << Cases[I].Settings;
  }
  // A load that fails keeps what it loaded before: A as text from the types that ran out.
  EXPECT_EQ(FinalVariables(R), nlohmann::json::parse(R"({"A":"1","B":"2","C":"c"})"));
  EXPECT_EQ(ReadText(D / "v.ini"), "[ZTVariables]\r\nA=1\r\nB=2\r\nC=c\r\n");
  EXPECT_EQ(ReadText(D / "nosection.ini"), "A=1\r\n");
}

TEST(VariablesFileE2E, SaveStopsAtTheFirstBadNameKeepingWhatItWrote) {
  TempDir D;
  WriteText(D / "v.ini", "[ZTVariables]\r\nOLD=1\r\n");
  WriteText(D / "locked.ini", "[ZTVariables]\r\n");
  chmod((D / "locked.ini").c_str(), 0444);
  ZtResult R = RunZt(D.Path(), R"(
variables: {A: a, LOOP: "%LOOP%"}
actions:
  - {action: Save Variables to INI, INIFile: v.ini, Variables: [A, LOOP, NOPE], EraseSection: false,
     ignoreFailure: true}
  - {action: Save Variables to INI, INIFile: locked.ini, Variables: [A]}
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), (Lines{"Error expanding variable: LOOP"}));
  EXPECT_EQ(ReadText(D / "v.ini"), "[ZTVariables]\r\nOLD=1\r\nA=a\r\n");
  EXPECT_EQ(Messages(R, "2"), (Lines{"Error Opening Ini File : Unable to write to locked.ini"}));
  EXPECT_EQ(ReadText(D / "locked.ini"), "[ZTVariables]\r\n");
}

TEST(LogVariablesE2E, LogsAllSortedOrTheChosenOnes) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), R"(
variables: {beta: 2, Alpha: "%beta%-x", BAD: "%NOPE%", WHICH: beta, gamma: true}
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
variables: {VER: 1.4.2, NAME: "zt %VER%"}
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

// Mistakes fail without touching the source.
TEST(ReplaceVariablesE2E, MovesTextsBetweenVariablesAndFiles) {
  TempDir D;
  WriteText(D / "tpl.txt", "v=%VER%");
  WriteText(D / "bad.txt", "a=%NOPE%\nb=%VER%");
  ZtResult R = RunZt(D.Path(), R"(
variables: {VER: 2, TPL: "a=%VER%\nb=%%", OUT: ""}
actions:
  - {action: Replace Variables, SourceType: rfVariable, SourceVariable: TPL, WriteBackToSource: false,
     DestType: rfVariable, DestVariable: OUT}
  - {action: Replace Variables, SourceType: rfVariable, SourceVariable: TPL, WriteBackToSource: false,
     DestFile: out/result.txt, ignoreFailure: true}
  - {action: Replace Variables, SourceFile: tpl.txt, WriteBackToSource: false, DestFile: result.txt}
  - {action: Replace Variables, SourceType: rfVariable, SourceVariable: TPL}
  - {action: Replace Variables, SourceFile: bad.txt, ignoreFailure: true}
  - {action: Replace Variables, SourceFile: missing.txt, ignoreFailure: true}
  - {action: Replace Variables, SourceType: rfVariable, SourceVariable: NONE, ignoreFailure: true}
  - {action: Replace Variables, SourceFile: bad.txt, WriteBackToSource: false, DestType: rfVariable,
     DestVariable: NEW, FailOnVariableErrors: false, ignoreFailure: true}
  - {action: Replace Variables, SourceFile: bad.txt, FailOnVariableErrors: false}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  const std::string Error = "An error occured:";
  EXPECT_EQ(Messages(R, "1"), (Lines{"Loading data from variable TPL", "Made 1 replacements.",
                                     "Writing result to variable OUT"}));
  EXPECT_EQ(Messages(R, "2"), (Lines{"Loading data from variable TPL", "Made 1 replacements.",
                                     "Writing result to file out/result.txt", Error,
                                     "Could not save file: Cannot create file \"out/result.txt\". "
                                     "The system cannot find the path specified"}));
  EXPECT_EQ(Messages(R, "3"), (Lines{"Loading data from file tpl.txt...", "Made 1 replacements.",
                                     "Writing result to file result.txt"}));
  EXPECT_EQ(ReadText(D / "tpl.txt"), "v=%VER%");
  EXPECT_EQ(ReadText(D / "result.txt"), "v=2\r\n");
  EXPECT_EQ(Messages(R, "4").back(), "Writing result to source variable.");
  EXPECT_EQ(Messages(R, "5"), (Lines{"Loading data from file bad.txt...", Error,
                                     "Could not expand variables: Variable \"NOPE\" is not defined"}));
  EXPECT_EQ(Messages(R, "6"), (Lines{Error, "Source file not found: missing.txt"}));
  EXPECT_EQ(Messages(R, "7"), (Lines{Error, "Variable not defined: NONE"}));
  EXPECT_EQ(Messages(R, "8"), (Lines{"Loading data from file bad.txt...", "Made 1 replacements.", Error,
                                     "Destination variable not defined: NEW"}));
  // Unknown references stay as written when they are not errors.
  EXPECT_EQ(Messages(R, "9")[1], "Made 1 replacements.");
  EXPECT_EQ(ReadText(D / "bad.txt"), "a=%NOPE%\r\nb=2\r\n");
  EXPECT_EQ(FinalVariables(R),
            nlohmann::json::parse(R"({"VER":2,"TPL":"a=2\r\nb=%\r\n","OUT":"a=2\r\nb=%\r\n"})"));
}

}  // namespace
}  // namespace zt::testing
