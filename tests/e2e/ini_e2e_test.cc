// "Read Ini File" and "Write Ini File" run through zt: log lines, the file
// afterwards, the variables the build leaves, failures and validation.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

void Write(const std::string& Path, const std::string& Contents) { std::ofstream(Path, std::ios::binary) << Contents; }

std::string Read(const std::string& Path) {
  std::ifstream In(Path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(In), std::istreambuf_iterator<char>());
}

TEST(IniEndToEnd, WritesThenReadsBackTypedValues) {
  TempDir Dir;
  Write(Dir / "app.ini", "; app settings\r\n[Build]\r\nVersion=1.4.1\r\nCount=3\r\n\r\n[Other]\r\nx=1\r\n");
  ZtResult R = RunZt(Dir.Path(), R"(name: Ini
variables:
  NEXT: 1.4.2
actions:
  - action: Write Ini File
    IniFile: ./app.ini
    Section: Build
    ValueName: Version
    NewValue: "%NEXT%"
  - action: TWriteIniFileAction
    IniFile: ./app.ini
    Section: Build
    ValueName: Count
    NewValue: "4"
    ValueType: vtInteger
  - action: Read Ini File
    IniFile: ./app.ini
    Section: build
    ValueName: VERSION
    VariableName: VER
    DefaultValue: none
  - action: Read Ini File
    IniFile: ./app.ini
    Section: Build
    ValueName: Count
    VariableName: COUNT
    DefaultValue: "0"
    ValueType: vtInteger
  - action: Read Ini File
    IniFile: ./app.ini
    Section: Build
    ValueName: Release
    VariableName: REL
    DefaultValue: " TRUE"
    ValueType: vtBool
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Writing to IniFile: ./app.iniSection : Build ValueName: Version Value: 1.4.2"}));
  EXPECT_EQ(StatusTexts(R, "2"), (Lines{"Writing to IniFile: ./app.iniSection : Build ValueName: Count Value: 4"}));
  EXPECT_EQ(StatusDetails(R, "3"), (Lines{"Reading from IniFile: ./app.ini Section : build ValueName: VERSION"
                                          " Default Value : none",
                                          "New Value : 1.4.2"}));
  EXPECT_EQ(StatusDetails(R, "5"), (Lines{"Reading from IniFile: ./app.ini Section : Build ValueName: Release"
                                          " Default Value :  TRUE",
                                          "New Value : True"}));
  EXPECT_EQ(Read(Dir / "app.ini"), "; app settings\r\n[Build]\r\nVersion=1.4.2\r\nCount=4\r\n\r\n[Other]\r\nx=1\r\n");
  EXPECT_EQ(FinalVariables(R),
            nlohmann::json::parse(R"({"NEXT":"1.4.2","VER":"1.4.2","COUNT":4,"REL":true})"));
}

TEST(IniEndToEnd, RefusedWritesFailAndLeaveFilesAlone) {
  TempDir Dir;
  Write(Dir / "ro.ini", "[s]\r\nk=1\r\n");
  std::filesystem::permissions(Dir / "ro.ini", std::filesystem::perms::owner_read);
  ZtResult R = RunZt(Dir.Path(), R"(name: Refused
actions:
  - action: Write Ini File
    IniFile: new.ini
    Section: s
    ValueName: k
    NewValue: "1"
    AllowCreate: true
    ignoreFailure: true
  - action: Write Ini File
    IniFile: ./missing.ini
    Section: s
    ValueName: k
    NewValue: "1"
    ignoreFailure: true
  - action: Write Ini File
    IniFile: ./ro.ini
    Section: s
    ValueName: k
    NewValue: "2"
)");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"No path to the Ini File specified!"}));
  EXPECT_EQ(ActionResult(R, "1"), "ignored");
  EXPECT_EQ(StatusDetails(R, "2"), (Lines{"Unable to Write to Ini File : ./missing.ini", "File does not Exist!"}));
  EXPECT_EQ(ActionResult(R, "2"), "ignored");
  EXPECT_EQ(Messages(R, "3"), (Lines{"File : ./ro.ini is marked as Read Only!"}));
  EXPECT_EQ(ActionResult(R, "3"), "failure");
  EXPECT_FALSE(std::filesystem::exists(Dir / "new.ini"));
  EXPECT_FALSE(std::filesystem::exists(Dir / "missing.ini"));
  EXPECT_EQ(Read(Dir / "ro.ini"), "[s]\r\nk=1\r\n");
}

TEST(IniEndToEnd, ValidateNamesMissingSettings) {
  TempDir Dir;
  ZtResult R = RunZt(Dir.Path(), R"(name: Incomplete
actions:
  - action: Read Ini File
    IniFile: ./a.ini
  - action: Write Ini File
    IniFile: ./a.ini
    Section: s
    ValueName: k
)",
                     {}, "validate");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  EXPECT_EQ(R.Stdout,
            "1 Read Ini File: Section: The section has not been set\n"
            "1 Read Ini File: Value Name: The value name has not been set\n"
            "1 Read Ini File: Variable: The variable name has not been set\n");
}

}  // namespace
}  // namespace zt::testing
