// Save Variables to INI and Load Variables from INI through zt: the
// variables file byte for byte, the typed values loaded back, and the
// failure flags with their order.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

TEST(VariablesFileE2E, SavedVariablesLoadBackWithTheirTypesInTheNextBuild) {
  TempDir D;
  WriteText(D / "vars.ini", "[ZTVariables]\r\nGONE=1\r\n[Other]\r\nk=v\r\n");
  ZtResult Save = RunZt(D.Path(), R"(
variables:
  VER: 1.4.2
  COUNT: 7
  ON: true
  DIST: dist/app-%VER%
actions:
  - action: Save Variables to INI
    INIFile: vars.ini
    Variables: [VER, COUNT, ON, DIST]
)");
  EXPECT_EQ(Save.ExitCode, 0) << Save.Stdout;
  EXPECT_EQ(Messages(Save, "1"), (Lines{"Variables saved to vars.ini"}));
  // The section is erased and written again at the end; other sections stay.
  EXPECT_EQ(ReadText(D / "vars.ini"),
            "[Other]\r\nk=v\r\n[ZTVariables]\r\nVER=1.4.2\r\nCOUNT=7\r\nON=True\r\nDIST=dist/app-1.4.2\r\n");

  ZtResult Load = RunZt(D.Path(), R"(
variables:
  VER: "0"
  COUNT: 0
  ON: false
  DIST: ""
actions:
  - action: Load Variables from INI
    INIFile: vars.ini
    Variables: [VER, COUNT, ON, DIST]
    VariableTypes: [string, INTEGER, Boolean, STRING]
)");
  EXPECT_EQ(Load.ExitCode, 0) << Load.Stdout;
  EXPECT_EQ(Messages(Load, "1"), (Lines{"Variables loaded from vars.ini"}));
  EXPECT_EQ(FinalVariables(Load),
            nlohmann::json::parse(R"({"VER":"1.4.2","COUNT":7,"ON":true,"DIST":"dist/app-1.4.2"})"));
}

TEST(VariablesFileE2E, LoadedValuesFallBackByTypeAndAreNeverExpanded) {
  TempDir D;
  // Duplicate keys: the first one wins.
  WriteText(D / "v.ini", "[Build]\nB1=maybe\nB2=yes\nB3=0\nI1=12abc\nI2=$1F\nS=%PATH% $(x)\nS=second\n");
  ZtResult R = RunZt(D.Path(), R"(
variables:
  B1: true
  B2: abc
  B3: true
  I1: 5
  I2: 0
  S: ""
actions:
  - action: Load Variables from INI
    INIFile: v.ini
    SectionName: Build
    Variables: [B1, B2, B3, I1, I2, S]
    VariableTypes: [BOOLEAN, BOOLEAN, BOOLEAN, INTEGER, INTEGER, STRING]
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  EXPECT_EQ(FinalVariables(R),
            nlohmann::json::parse(R"j({"B1":true,"B2":false,"B3":false,"I1":5,"I2":31,"S":"%PATH% $(x)"})j"));
}

// One build, one load per case, each failing or not as its flags say.
TEST(VariablesFileE2E, LoadFailsByItsFlagsInTheirOrder) {
  TempDir D;
  WriteText(D / "v.ini", "[ZTVariables]\r\nA=1\r\nB=2\r\n");
  WriteText(D / "nosection.ini", "A=1\r\n");
  ZtResult R = RunZt(D.Path(), R"(
variables:
  A: 0
  B: 0
  C: "c"
actions:
  - action: Load Variables from INI     # 1: a missing key fails by default
    INIFile: v.ini
    Variables: [A, C, B]
    VariableTypes: [INTEGER, STRING, INTEGER]
    ignoreFailure: true
  - action: Load Variables from INI     # 2: both flags: the first wins, nothing is created
    INIFile: v.ini
    Variables: [C]
    CreateVarInINIifNotExists: true
    ignoreFailure: true
  - action: Load Variables from INI     # 3: created with the current value, which stays
    INIFile: v.ini
    Variables: [C, NOPE, B]
    VariableTypes: [STRING, STRING, STRING]
    FailIfVariableNotInIniFile: false
    FailIfVariableNotDefined: false
    CreateVarInINIifNotExists: true
  - action: Load Variables from INI     # 4: an undefined variable fails by default
    INIFile: v.ini
    Variables: [NOPE]
    ignoreFailure: true
  - action: Load Variables from INI     # 5: a type list shorter than the names
    INIFile: v.ini
    Variables: [A, B]
    VariableTypes: [STRING]
    ignoreFailure: true
  - action: Load Variables from INI     # 6
    INIFile: v.ini
    Variables: [A]
    VariableTypes: [FLOAT]
    ignoreFailure: true
  - action: Load Variables from INI     # 7: a missing file
    INIFile: none.ini
    Variables: [A]
    ignoreFailure: true
  - action: Load Variables from INI     # 8: ignored, but its keys are missing too
    INIFile: none.ini
    Variables: [A]
    IgnoreFileNotFound: true
    ignoreFailure: true
  - action: Load Variables from INI     # 9: keys before any section belong to none
    INIFile: nosection.ini
    Variables: [A]
    FailIfVariableNotInIniFile: false
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  const std::vector<Lines> Expected = {
      {"Variable not found in INI: C"},
      {"Variable not found in INI: C"},
      {"Variable not found in INI, created: C", "Variable not defined: NOPE", "Variables loaded from v.ini"},
      {"Variable not defined: NOPE"},
      {"Error setting variable B"},
      {"Invalid value for variable type: FLOAT"},
      {"File none.ini does not exist."},
      {"File none.ini does not exist.", "Variable not found in INI: A"},
      {"Variable not found in INI: A", "Variables loaded from nosection.ini"},
  };
  for (std::size_t I = 0; I < Expected.size(); ++I) {
    const std::string Id = std::to_string(I + 1);
    EXPECT_EQ(Messages(R, Id), Expected[I]) << "action " << Id;
    EXPECT_EQ(ActionResult(R, Id), I == 2 || I == 8 ? "success" : "ignored") << "action " << Id;
  }
  // A load that fails keeps what it loaded before: A as text from the fifth action.
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
variables:
  A: a
  LOOP: "%LOOP%"
actions:
  - action: Save Variables to INI
    INIFile: v.ini
    Variables: [A, LOOP, NOPE]
    EraseSection: false
    ignoreFailure: true
  - action: Save Variables to INI
    INIFile: locked.ini
    Variables: [A]
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), (Lines{"Error expanding variable: LOOP"}));
  EXPECT_EQ(ReadText(D / "v.ini"), "[ZTVariables]\r\nOLD=1\r\nA=a\r\n");
  EXPECT_EQ(Messages(R, "2"), (Lines{"Error Opening Ini File : Unable to write to locked.ini"}));
  EXPECT_EQ(ReadText(D / "locked.ini"), "[ZTVariables]\r\n");
}

}  // namespace
}  // namespace zt::testing
