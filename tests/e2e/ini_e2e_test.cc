// "Read Ini File" and "Write Ini File" through zt: the lines, the result,
// the variable read and the file afterwards, one row per rule.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

// The variables every case gets on the command line, and those it leaves.
const std::vector<std::string> kVars = {"--var", "D=fallback", "--var", "S= Build ", "--var", "VER=1.4.2"};
std::string Vars(const std::string& More = "") {
  return R"({"D": "fallback", "S": " Build ", "VER": "1.4.2")" + (More.empty() ? "" : ", " + More) + "}";
}

TEST(IniEndToEnd, ReadRules) {
  const std::string Read = "action: Read Ini File, VariableName: V, ";
  const std::string At = "IniFile: ./a.ini, Section: Build, ValueName: Version, ";
  const std::string Head =
      "Reading from IniFile: ./a.ini Section : Build ValueName: Version Default Value : ";
  const Lines Ini = {"a.ini=[build]\r\nversion = \"1.4.2\"\r\nWord=true\r\nHex=0x10\r\n"};
  // clang-format off
  ExpectCases(
      {
          {Read + At + "DefaultValue: none", Ini, {Head + "none", "New Value : 1.4.2"}, "success", Ini,
           Vars(R"("V": "1.4.2")")},
          {Read + At + "DefaultValue: '%D% '", {}, {Head + "fallback ", "New Value : fallback"}, "success", {},
           Vars(R"("V": "fallback")")},
          // The section is trimmed, the value's name is not; the variable's name is used as written.
          {"action: Read Ini File, IniFile: ./a.ini, Section: '%S%', ValueName: ' version ', VariableName: '%D%'", Ini,
           {"Reading from IniFile: ./a.ini Section : Build ValueName:  version  Default Value : ", "New Value : 1.4.2"},
           "success", Ini, Vars(R"("%D%": "1.4.2")")},
          // Booleans and integers: the key read as an integer, the default checked first.
          {Read + At + "ValueType: vtBool, DefaultValue: ' TRUE '", {}, {Head + " TRUE ", "New Value : True"}, "success", {},
           Vars(R"("V": true)")},
          {Read + "IniFile: ./a.ini, Section: Build, ValueType: vtBool, ValueName: Hex, DefaultValue: 'true'", Ini,
           {"Reading from IniFile: ./a.ini Section : Build ValueName: Hex Default Value : true", "New Value : True"},
           "success", Ini, Vars(R"("V": true)")},
          {Read + "IniFile: ./a.ini, Section: Build, ValueType: vtBool, ValueName: Word, DefaultValue: 'false'", Ini,
           {"Reading from IniFile: ./a.ini Section : Build ValueName: Word Default Value : false", "New Value : False"},
           "success", Ini, Vars(R"("V": false)")},
          {Read + At + "ValueType: vtBool, DefaultValue: 'yes'", Ini,
           {"Default Value is not True or False and the Value Type is Boolean"}, "failure", Ini, Vars()},
          {Read + "IniFile: ./a.ini, Section: Build, ValueType: vtInteger, ValueName: Hex, DefaultValue: '5'", Ini,
           {"Reading from IniFile: ./a.ini Section : Build ValueName: Hex Default Value : 5", "New Value : 16"},
           "success", Ini, Vars(R"("V": 16)")},
          {Read + At + "ValueType: vtInteger", Ini,
           {"Default Value :  : is not an integer and the Value Type is Integer"}, "failure", Ini, Vars()},
          {Read + At + "ValueType: vtInteger, DefaultValue: '-99098700'", Ini,
           {"Default Value : -99098700 : is not an integer and the Value Type is Integer"}, "failure", Ini},
          // Settings that cannot be used.
          {Read + "Section: Build, ValueName: Version, IniFile: a.ini", {}, {"No path to the Ini File specified!"}, "failure", {}},
          {Read + "IniFile: ./a.ini, ValueName: Version, Section: '   '", {}, {"Unable to Read from Section :    ", "Section Name not specified"}, "failure",
           {}},
          {Read + "Section: Build, ValueName: Version, IniFile: '%NOPE%/a.ini'", {},
           {"Unable to Read from Ini File : %NOPE%/a.ini", "Variable \"NOPE\" is not defined"}, "failure", {}},
          {Read + "IniFile: ./a.ini, Section: Build, ValueName: '%N1%'", {}, {"Unable to Read Value from Ini File : %N1%", "Variable \"N1\" is not defined"},
           "failure", {}},
          {Read + "IniFile: ./a.ini, ValueName: Version, Section: '%N2%'", {}, {"Unable to Read from Section : %N2%", "Variable \"N2\" is not defined"},
           "failure", {}},
          {Read + At + "DefaultValue: '%N3%'", {}, {"Unable to use default Value  : %N3%", "Variable \"N3\" is not defined"},
           "failure", {}},
      },
      kVars);
  // clang-format on
}

TEST(IniEndToEnd, WriteRules) {
  const std::string Write = "action: Write Ini File, ";
  const std::string At = "IniFile: ./a.ini, Section: Build, ValueName: Version, ";
  const std::string Head = "Writing to IniFile: ./a.iniSection : Build ValueName: Version Value: ";
  const Lines Ini = {"a.ini=; release\r\n[Build]\r\nVersion=1\r\nOther=x\r\n"};
  auto With = [](const std::string& Version) {
    return Lines{"a.ini=; release\r\n[Build]\r\nVersion=" + Version + "\r\nOther=x\r\n"};
  };
  // clang-format off
  ExpectCases(
      {
          {Write + At + "NewValue: '%VER%'", Ini, {Head + "1.4.2"}, "success", With("1.4.2")},
          {Write + At + "NewValue: '1'", {}, {"Unable to Write to Ini File : ./a.ini", "File does not Exist!"}, "failure", {}},
          {Write + At + "NewValue: '1', AllowCreate: true", {}, {Head + "1"}, "success", {"a.ini=[Build]\r\nVersion=1\r\n"}},
          {Write + At + "NewValue: '2'", {Ini[0] + " [ro]"}, {"File : ./a.ini is marked as Read Only!"}, "failure",
           {Ini[0] + " [ro]"}},
          {Write + At + "NewValue: 'TRUE', ValueType: vtBool", Ini, {Head + "True"}, "success", With("1")},
          {Write + At + "NewValue: '0', ValueType: vtBool", Ini, {Head + "False"}, "success", With("0")},
          {Write + At + "NewValue: 'yes', ValueType: vtBool", Ini,
           {"Unable to Write to Ini File : ./a.ini", "'yes' is not a valid boolean value"}, "failure", Ini},
          {Write + At + "NewValue: '$2A', ValueType: vtInteger", Ini, {Head + "42"}, "success", With("42")},
          // A value that is no integer drops the entry: nothing is logged.
          {Write + At + "NewValue: 'abc', ValueType: vtInteger", Ini, {}, "failure", Ini},
          {Write + At + "NewValue: '-990234', ValueType: vtInteger", Ini, {}, "failure", Ini},
          // Settings that cannot be used.
          {Write + "Section: Build, ValueName: Version, IniFile: '%NOPE%/a.ini'", {},
           {"Unable to Write to Ini File : %NOPE%/a.ini", "Variable \"NOPE\" is not defined"}, "failure", {}},
          {Write + "Section: Build, ValueName: Version, IniFile: a.ini", {}, {"No path to the Ini File specified!"}, "failure", {}},
          {Write + At + "NewValue: '%N1%'", {}, {"Unable to Write Value to Ini File : %N1%", "Variable \"N1\" is not defined"},
           "failure", {}},
          {Write + "IniFile: ./a.ini, Section: Build, ValueName: '%N2%'", {}, {"Unable to Write Value to Ini File : %N2%", "Variable \"N2\" is not defined"},
           "failure", {}},
          {Write + "IniFile: ./a.ini, ValueName: Version, Section: ' '", {}, {"Unable to Write to Section :  ", "Section Name not specified"}, "failure", {}},
          {Write + "Section: Build, ValueName: Version, IniFile: ./missing/a.ini, AllowCreate: true, NewValue: '1'", {},
           {"Unable to Write to Ini File : ./missing/a.ini", "Unable to write to ./missing/a.ini"}, "failure", {}},
      },
      kVars);
  // clang-format on
}

}  // namespace
}  // namespace zt::testing
