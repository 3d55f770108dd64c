// "Read Ini File" and "Write Ini File" run on an in-memory host: exact log
// lines, variables and files afterwards.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Files.h"
#include "platform/files.h"
#include "support/ActionTesting.h"
#include "support/FakeHost.h"
#include "support/TempDir.h"
#include "text/Ztinifile.h"

namespace zt::package {
namespace {

using frame::TZTVariant;
using Lines = std::vector<std::string>;
using zt::testing::ReadText;
using zt::testing::TempDir;
using zt::testing::ValidationErrors;
using zt::testing::WriteText;

// Also records each sent entry's own text and how many entries were made.
class Host : public zt::testing::FakeHost {
 public:
  std::vector<std::string> EntryTexts;
  int Created = 0;
  frame::IZTActionLogMessagePtr CreateStatusMessage(frame::TZTAction& A) override {
    ++Created;
    return FakeHost::CreateStatusMessage(A);
  }
  void SendStatusMessage(frame::TZTAction& A, const frame::IZTActionLogMessagePtr& M) override {
    EntryTexts.push_back(M->GetText());
    FakeHost::SendStatusMessage(A, M);
  }
};

class IniActionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    H.Variables["DIR"] = TZTVariant(Dir.Path());
    Read.SetHost(&H);
    Write.SetHost(&H);
    Read.SetIniFile("%DIR%/a.ini");
    Read.SetSection("Build");
    Read.SetValueName("Version");
    Read.SetVariableName("V");
    Write.SetIniFile("%DIR%/a.ini");
    Write.SetSection("Build");
    Write.SetValueName("Version");
  }
  std::string Path() const { return Dir / "a.ini"; }

  TempDir Dir;
  Host H;
  TReadIniFileAction Read;
  TWriteIniFileAction Write;
};

// ---- Read Ini File ----

TEST_F(IniActionTest, ReadStoresValueInVariable) {
  WriteText(Path(), "[build]\r\nversion = \"1.4.2\"\r\n");
  Read.SetDefaultValue("none");
  EXPECT_TRUE(Read.Execute());
  EXPECT_EQ(H.StatusEntries,
            (std::vector<Lines>{{"Reading from IniFile: " + Path() + " Section : Build ValueName: Version"
                                 " Default Value : none",
                                 "New Value : 1.4.2"}}));
  EXPECT_EQ(H.Variables["V"], TZTVariant("1.4.2"));
}

TEST_F(IniActionTest, ReadOfAbsentKeyGivesExpandedDefault) {
  H.Variables["D"] = TZTVariant("fallback");
  Read.SetDefaultValue("%D% ");
  EXPECT_TRUE(Read.Execute());  // no file at all
  EXPECT_EQ(H.AllDetails(), (Lines{"Reading from IniFile: " + Path() +
                                       " Section : Build ValueName: Version Default Value : fallback ",
                                   "New Value : fallback"}));
  EXPECT_EQ(H.Variables["V"], TZTVariant("fallback"));
}

TEST_F(IniActionTest, ReadExpandsNamesAndTrimsSectionOnly) {
  WriteText(Path(), "[Build]\r\nVersion=7\r\n");
  H.Variables["S"] = TZTVariant(" Build ");
  Read.SetSection("%S%");
  Read.SetValueName(" Version ");
  EXPECT_TRUE(Read.Execute());
  EXPECT_EQ(H.AllDetails()[0],
            "Reading from IniFile: " + Path() + " Section : Build ValueName:  Version  Default Value : ");
  EXPECT_EQ(H.Variables["V"], TZTVariant("7"));
}

TEST_F(IniActionTest, ReadUsesVariableNameUnexpanded) {
  WriteText(Path(), "[Build]\r\nVersion=7\r\n");
  Read.SetVariableName("%DIR%");
  EXPECT_TRUE(Read.Execute());
  EXPECT_EQ(H.Variables["%DIR%"], TZTVariant("7"));
}

TEST_F(IniActionTest, ReadBooleanAcceptsTrueDefaultInAnyCaseWithBlanks) {
  Read.SetValueType(vtBool);
  Read.SetDefaultValue(" TRUE ");
  EXPECT_TRUE(Read.Execute());
  EXPECT_EQ(H.AllDetails()[1], "New Value : True");
  EXPECT_EQ(H.Variables["V"], TZTVariant(true));
}

TEST_F(IniActionTest, ReadBooleanReadsKeyAsInteger) {
  WriteText(Path(), "[Build]\r\nVersion=2\r\nWord=true\r\n");
  Read.SetValueType(vtBool);
  Read.SetDefaultValue("false");
  EXPECT_TRUE(Read.Execute());
  EXPECT_EQ(H.Variables["V"], TZTVariant(true));
  Read.SetValueName("Word");
  EXPECT_TRUE(Read.Execute());
  EXPECT_EQ(H.AllDetails().back(), "New Value : False");
  EXPECT_EQ(H.Variables["V"], TZTVariant(false));
}

TEST_F(IniActionTest, ReadBooleanRefusesOtherDefaults) {
  Read.SetValueType(vtBool);
  for (const char* Default : {"yes", ""}) {
    H.Messages.clear();
    Read.SetDefaultValue(Default);
    EXPECT_FALSE(Read.Execute());
    EXPECT_EQ(H.Messages, (Lines{"Default Value is not True or False and the Value Type is Boolean"}));
  }
  EXPECT_EQ(H.Created, 0);
  EXPECT_EQ(H.Variables.count("V"), 0u);
}

TEST_F(IniActionTest, ReadIntegerConvertsHexAndStoresInteger) {
  WriteText(Path(), "[Build]\r\nVersion=0x10\r\n");
  Read.SetValueType(vtInteger);
  Read.SetDefaultValue("5");
  EXPECT_TRUE(Read.Execute());
  EXPECT_EQ(H.AllDetails()[1], "New Value : 16");
  EXPECT_EQ(H.Variables["V"], TZTVariant(16));
}

TEST_F(IniActionTest, ReadIntegerRefusesEmptyOrSentinelDefaultBeforeOpening) {
  Read.SetValueType(vtInteger);
  Read.SetDefaultValue("");
  EXPECT_FALSE(Read.Execute());
  Read.SetDefaultValue("-99098700");
  EXPECT_FALSE(Read.Execute());
  EXPECT_EQ(H.Messages, (Lines{"Default Value :  : is not an integer and the Value Type is Integer",
                               "Default Value : -99098700 : is not an integer and the Value Type is Integer"}));
  EXPECT_EQ(H.Created, 0);
}

TEST_F(IniActionTest, ReadRefusesBareFileName) {
  Read.SetIniFile("a.ini");
  EXPECT_FALSE(Read.Execute());
  EXPECT_EQ(H.StatusEntries, (std::vector<Lines>{{"No path to the Ini File specified!"}}));
}

TEST_F(IniActionTest, ReadRefusesBlankSection) {
  Read.SetSection("   ");
  EXPECT_FALSE(Read.Execute());
  EXPECT_EQ(H.StatusEntries, (std::vector<Lines>{{"Unable to Read from Section :    ", "Section Name not specified"}}));
}

TEST_F(IniActionTest, ReadReportsEachFailedExpansion) {
  Read.SetIniFile("%NOPE%/a.ini");
  EXPECT_FALSE(Read.Execute());
  Read.SetIniFile("%DIR%/a.ini");
  Read.SetValueName("%N1%");
  EXPECT_FALSE(Read.Execute());
  Read.SetValueName("k");
  Read.SetSection("%N2%");
  EXPECT_FALSE(Read.Execute());
  Read.SetSection("s");
  Read.SetDefaultValue("%N3%");
  EXPECT_FALSE(Read.Execute());
  EXPECT_EQ(H.StatusEntries,
            (std::vector<Lines>{{"Unable to Read from Ini File : %NOPE%/a.ini", "Variable \"NOPE\" is not defined"},
                                {"Unable to Read Value from Ini File : %N1%", "Variable \"N1\" is not defined"},
                                {"Unable to Read from Section : %N2%", "Variable \"N2\" is not defined"},
                                {"Unable to use default Value  : %N3%", "Variable \"N3\" is not defined"}}));
}

// ---- Write Ini File ----

TEST_F(IniActionTest, WriteStringSplicesLineWithoutBlankBeforeSection) {
  WriteText(Path(), "; release\r\n[Build]\r\nVersion=1\r\nOther=x\r\n");
  H.Variables["VER"] = TZTVariant("1.4.2");
  Write.SetNewValue("%VER%");
  EXPECT_TRUE(Write.Execute());
  EXPECT_EQ(H.StatusEntries,
            (std::vector<Lines>{{"Writing to IniFile: " + Path() + "Section : Build ValueName: Version Value: 1.4.2"}}));
  EXPECT_EQ(ReadText(Path()), "; release\r\n[Build]\r\nVersion=1.4.2\r\nOther=x\r\n");
}

TEST_F(IniActionTest, WriteToMissingFileNeedsAllowCreate) {
  Write.SetNewValue("1");
  EXPECT_FALSE(Write.Execute());
  EXPECT_EQ(H.StatusEntries, (std::vector<Lines>{{"Unable to Write to Ini File : " + Path(), "File does not Exist!"}}));
  EXPECT_FALSE(platform::FileExists(Path()));
  Write.SetAllowCreate(true);
  EXPECT_TRUE(Write.Execute());
  EXPECT_EQ(ReadText(Path()), "[Build]\r\nVersion=1\r\n");
}

TEST_F(IniActionTest, WriteToReadOnlyFileLeavesItUntouched) {
  WriteText(Path(), "[Build]\r\nVersion=1\r\n");
  ASSERT_TRUE(platform::SetFileAttributesA(Path(), platform::FILE_ATTRIBUTE_READONLY));
  Write.SetNewValue("2");
  EXPECT_FALSE(Write.Execute());
  EXPECT_EQ(H.Messages, (Lines{"File : " + Path() + " is marked as Read Only!"}));
  EXPECT_EQ(H.Created, 0);
  EXPECT_EQ(ReadText(Path()), "[Build]\r\nVersion=1\r\n");
}

TEST_F(IniActionTest, WriteBooleanStoresOneOrZero) {
  WriteText(Path(), "[Build]\r\n");
  Write.SetValueType(vtBool);
  Write.SetNewValue("TRUE");
  EXPECT_TRUE(Write.Execute());
  EXPECT_EQ(ReadText(Path()), "[Build]\r\nVersion=1\r\n");
  Write.SetNewValue("0");
  EXPECT_TRUE(Write.Execute());
  EXPECT_EQ(ReadText(Path()), "[Build]\r\nVersion=0\r\n");
  EXPECT_EQ(H.AllDetails(), (Lines{"Writing to IniFile: " + Path() + "Section : Build ValueName: Version Value: True",
                                   "Writing to IniFile: " + Path() + "Section : Build ValueName: Version Value: False"}));
}

TEST_F(IniActionTest, WriteBooleanRefusesOtherText) {
  WriteText(Path(), "[Build]\r\nVersion=1\r\n");
  Write.SetValueType(vtBool);
  Write.SetNewValue("yes");
  EXPECT_FALSE(Write.Execute());
  EXPECT_EQ(H.StatusEntries,
            (std::vector<Lines>{{"Unable to Write to Ini File : " + Path(), "'yes' is not a valid boolean value"}}));
  EXPECT_EQ(ReadText(Path()), "[Build]\r\nVersion=1\r\n");
}

TEST_F(IniActionTest, WriteIntegerPutsLineAsEntryText) {
  WriteText(Path(), "[Build]\r\n");
  Write.SetValueType(vtInteger);
  Write.SetNewValue("$2A");
  EXPECT_TRUE(Write.Execute());
  EXPECT_EQ(H.EntryTexts, (Lines{"Writing to IniFile: " + Path() + "Section : Build ValueName: Version Value: 42"}));
  EXPECT_EQ(H.StatusEntries, (std::vector<Lines>{{}}));
  EXPECT_EQ(ReadText(Path()), "[Build]\r\nVersion=42\r\n");
}

TEST_F(IniActionTest, WriteIntegerDropsEntryForNonInteger) {
  WriteText(Path(), "[Build]\r\nVersion=1\r\n");
  Write.SetValueType(vtInteger);
  for (const char* Value : {"abc", "-990234"}) {
    Write.SetNewValue(Value);
    EXPECT_FALSE(Write.Execute());
  }
  EXPECT_EQ(H.Created, 2);
  EXPECT_TRUE(H.StatusEntries.empty());
  EXPECT_TRUE(H.Messages.empty());
  EXPECT_EQ(ReadText(Path()), "[Build]\r\nVersion=1\r\n");
}

TEST_F(IniActionTest, WriteReportsEachFailedStep) {
  Write.SetIniFile("%NOPE%/a.ini");
  EXPECT_FALSE(Write.Execute());
  Write.SetIniFile("a.ini");
  EXPECT_FALSE(Write.Execute());
  Write.SetIniFile("%DIR%/a.ini");
  Write.SetNewValue("%N1%");
  EXPECT_FALSE(Write.Execute());
  Write.SetNewValue("v");
  Write.SetValueName("%N2%");
  EXPECT_FALSE(Write.Execute());
  Write.SetValueName("k");
  Write.SetSection(" ");
  EXPECT_FALSE(Write.Execute());
  EXPECT_EQ(H.StatusEntries,
            (std::vector<Lines>{{"Unable to Write to Ini File : %NOPE%/a.ini", "Variable \"NOPE\" is not defined"},
                                {"No path to the Ini File specified!"},
                                {"Unable to Write Value to Ini File : %N1%", "Variable \"N1\" is not defined"},
                                {"Unable to Write Value to Ini File : %N2%", "Variable \"N2\" is not defined"},
                                {"Unable to Write to Section :  ", "Section Name not specified"}}));
}

TEST_F(IniActionTest, WriteFailureInFileReportsPlatformMessage) {
  Write.SetIniFile("%DIR%/missing/a.ini");
  Write.SetAllowCreate(true);
  Write.SetNewValue("1");
  EXPECT_FALSE(Write.Execute());
  const std::string P = Dir / "missing/a.ini";
  // The entry with the writing line is never sent; the report is a new one.
  EXPECT_EQ(H.Created, 2);
  EXPECT_EQ(H.StatusEntries, (std::vector<Lines>{{"Unable to Write to Ini File : " + P, "Unable to write to " + P}}));
}

// ---- Design time ----

TEST_F(IniActionTest, ValidateReportsMissingSettingsInOrder) {
  TReadIniFileAction R;
  TWriteIniFileAction W;
  ValidationErrors ER, EW;
  EXPECT_FALSE(R.Validate(ER));
  EXPECT_FALSE(W.Validate(EW));
  const std::vector<std::string> Common = {"Ini File: Ini file has not been set",
                                           "Section: The section has not been set",
                                           "Value Name: The value name has not been set"};
  auto ReadErrors = Common;
  ReadErrors.push_back("Variable: The variable name has not been set");
  EXPECT_EQ(ER.Errors, ReadErrors);
  EXPECT_EQ(EW.Errors, Common);
  ValidationErrors None;
  EXPECT_TRUE(Read.Validate(None));
  EXPECT_TRUE(Write.Validate(None));
  EXPECT_TRUE(None.Errors.empty());
}

TEST_F(IniActionTest, AliasAndHelpLinesInOrder) {
  frame::TStrings A, Hp;
  Read.GetPropertyAlias(A);
  Read.GetPropertyHelp(Hp);
  EXPECT_EQ(A.Lines(), (Lines{"[Ini File]", "IniFile=Ini File", "Section=Section", "ValueName=Value Name",
                              "ValueType=Value Type", "[Ini File]", "VariableName=Variable Name",
                              "DefaultValue=Default Value"}));
  EXPECT_EQ(Hp.Lines(),
            (Lines{"IniFile=The fully qualified path to the ini file.", "Section=The ini file section to read or write",
                   "ValueName=The name of the value to read/write", "ValueType=The type of the value to read/write",
                   "VariableName=Name of the Variable which will store the ini file value",
                   "DefaultValue=The default value to apply if the value is not present in the ini file."}));
  frame::TStrings WA, WH;
  Write.GetPropertyAlias(WA);
  Write.GetPropertyHelp(WH);
  EXPECT_EQ(Lines(WA.Lines().begin() + 5, WA.Lines().end()),
            (Lines{"[Ini File]", "NewValue=New Value", "AllowCreate=AllowCreate"}));
  EXPECT_EQ(Lines(WH.Lines().begin() + 4, WH.Lines().end()),
            (Lines{"NewValue=New Value to write to the ini file. Can include project variables",
                   "AllowCreate=Allow the Ini File to be created if it does not exist."}));
}

TEST_F(IniActionTest, PublishedPropertiesAndIdentity) {
  auto Names = [](const frame::TZTActionClass& C) {
    Lines R;
    for (const auto& P : C.Properties()) R.push_back(P.Name);
    return R;
  };
  EXPECT_EQ(Names(TReadIniFileAction::ClassType()),
            (Lines{"IniFile", "Section", "ValueName", "VariableName", "DefaultValue", "ValueType"}));
  EXPECT_EQ(Names(TWriteIniFileAction::ClassType()),
            (Lines{"IniFile", "Section", "ValueName", "NewValue", "AllowCreate", "ValueType"}));
  TWriteIniFileAction Fresh;
  EXPECT_EQ(Fresh.GetValueType(), vtString);
  EXPECT_FALSE(Fresh.GetAllowCreate());
  EXPECT_TRUE(TWriteIniFileAction::ClassType().InheritsFrom(TCustomIniFileAction::ClassType()));
  EXPECT_EQ(TCustomIniFileAction::ClassType().Create, nullptr);
  EXPECT_EQ(TReadIniFileAction::GetActionName(), "Read Ini File");
  EXPECT_EQ(TWriteIniFileAction::GetActionName(), "Write Ini File");
  EXPECT_EQ(Read.GetHelpTopicID(), 930);
  EXPECT_EQ(Write.GetHelpTopicID(), 940);
  EXPECT_EQ(Read.GetQuickHelpFilename(), "Plugins\\ReadIniFile.html");
  EXPECT_EQ(Write.GetQuickHelpFilename(), "Plugins\\WriteIniFile.html");
}

}  // namespace
}  // namespace zt::package
