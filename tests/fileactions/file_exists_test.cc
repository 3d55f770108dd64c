// "Check if File Exists": the one message line, the variable's raw answer
// and the result under each mode, by file specification and by file set.
#include <filesystem>

#include <gtest/gtest.h>

#include "FileActionTesting.h"
#include "files/BActions1.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using package::feFailIfExists;
using package::feFailIfMissing;
using package::feIgnore;
using package::TFileExistsAction;

class FileExistsTest : public ::testing::Test {
 protected:
  FileExistsTest() {
    Action.SetHost(&Host);
    Action.SetVariable("Found");
  }
  bool Check(const std::string& Spec) {
    Action.SetFileOrDirectory(Spec);
    return Action.Execute();
  }
  std::string Answer() { return Host.GetVariableValue("Found").AsString(); }

  TempDir Dir;
  FileSetHost Host;
  TFileExistsAction Action;
};

TEST_F(FileExistsTest, ExistingFileIsFound) {
  WriteFile(Dir / "a.txt");
  EXPECT_TRUE(Check(Dir / "a.txt"));
  EXPECT_EQ(Host.Messages, (Lines{"Found a match for the File Spec"}));
  EXPECT_EQ(Host.GetVariableValue("Found"), frame::TZTVariant(true));
}

TEST_F(FileExistsTest, WildcardWithTwoMatchesIsFound) {
  WriteFile(Dir / "a.txt");
  WriteFile(Dir / "b.txt");
  EXPECT_TRUE(Check(Dir / "*.txt"));
  EXPECT_EQ(Host.Messages, (Lines{"Found a match for the File Spec"}));
  EXPECT_EQ(Answer(), "True");
}

TEST_F(FileExistsTest, MissingFileFailsAndTheVariableSaysFalse) {
  EXPECT_FALSE(Check(Dir / "nothing.txt"));
  EXPECT_FALSE(Check(Dir / "no folder/*.txt"));
  EXPECT_EQ(Host.Messages, (Lines{"No match found for File Spec", "No match found for File Spec"}));
  EXPECT_EQ(Host.GetVariableValue("Found"), frame::TZTVariant(false));
}

TEST_F(FileExistsTest, AFileSpecAlsoMatchesDirectoriesAndHiddenFiles) {
  std::filesystem::create_directories(Dir / "folder");
  WriteFile(Dir / ".hidden");
  EXPECT_TRUE(Check(Dir / "folder"));
  EXPECT_TRUE(Check(Dir / ".hid*"));
}

TEST_F(FileExistsTest, TrailingDelimiterAsksForADirectory) {
  std::filesystem::create_directories(Dir / "folder");
  WriteFile(Dir / "file");
  EXPECT_TRUE(Check(Dir / "folder/"));
  EXPECT_FALSE(Check(Dir / "file/"));
  EXPECT_TRUE(Check(Dir / "fol*\\"));
  EXPECT_EQ(Host.Messages, (Lines{"Found a match for the directory", "No match found for the directory",
                                  "Found a match for the directory"}));
}

TEST_F(FileExistsTest, FailIfExistsFailsOnAPresentFileButStoresTrue) {
  WriteFile(Dir / "lock");
  Action.SetExistsMode(feFailIfExists);
  EXPECT_FALSE(Check(Dir / "lock"));
  EXPECT_EQ(Answer(), "True");
  EXPECT_TRUE(Check(Dir / "nolock"));
  EXPECT_EQ(Answer(), "False");
}

TEST_F(FileExistsTest, IgnoreSucceedsEitherWayAndStillStoresTheAnswer) {
  WriteFile(Dir / "here");
  Action.SetExistsMode(feIgnore);
  EXPECT_TRUE(Check(Dir / "here"));
  EXPECT_EQ(Answer(), "True");
  EXPECT_TRUE(Check(Dir / "gone"));
  EXPECT_EQ(Answer(), "False");
}

TEST_F(FileExistsTest, NoVariableNameSetsNoVariable) {
  WriteFile(Dir / "a");
  Action.SetVariable("");
  EXPECT_TRUE(Check(Dir / "a"));
  EXPECT_TRUE(Host.Variables.empty());
}

TEST_F(FileExistsTest, UnexpandableSpecIsAnAbsentFile) {
  Action.SetExistsMode(feFailIfExists);
  EXPECT_TRUE(Check("%UNDEFINED%/a.txt"));
  EXPECT_EQ(Host.HostLines, (Lines{"FileMask: Variable \"UNDEFINED\" is not defined"}));
  EXPECT_EQ(Host.Messages, (Lines{"Could not expand file mask"}));
  EXPECT_EQ(Answer(), "False");
  Action.SetExistsMode(feFailIfMissing);
  EXPECT_FALSE(Check("%UNDEFINED%/a.txt"));
}

TEST_F(FileExistsTest, SpecWithSpacesAndNonAsciiLetters) {
  WriteFile(Dir / "Übersicht 2024.txt");
  Host.Variables["D"] = Dir.Path();
  EXPECT_TRUE(Check("%D%/Übersicht 2024.txt"));
}

TEST_F(FileExistsTest, FileSetWithOneExistingFileIsFound) {
  WriteFile(Dir / "kept.txt");
  Host.Sets.emplace_back("Sources", Lines{Dir / "deleted.txt", Dir / "kept.txt"});
  Action.SetUseFileSpec(false);
  Action.SetFileSet("sources");
  EXPECT_TRUE(Action.Execute());
  EXPECT_EQ(Host.Messages, (Lines{"Found files from File Set"}));
  EXPECT_EQ(Answer(), "True");
}

TEST_F(FileExistsTest, FileSetWhoseFilesAreAllGoneFindsNothing) {
  std::filesystem::create_directories(Dir / "dir");
  Host.Sets.emplace_back("Old", Lines{Dir / "x.txt", Dir / "dir"});
  Action.SetUseFileSpec(false);
  Action.SetFileSet("Old");
  EXPECT_FALSE(Action.Execute());
  EXPECT_EQ(Host.Messages, (Lines{"Found no files from File Set"}));
  EXPECT_EQ(Answer(), "False");
}

TEST_F(FileExistsTest, UnknownFileSetIsNotFound) {
  Action.SetUseFileSpec(false);
  Action.SetFileSet("Nope");
  EXPECT_FALSE(Action.Execute());
  EXPECT_EQ(Host.Messages, (Lines{"Could not find FileSet: Nope"}));
  EXPECT_EQ(Answer(), "False");
}

TEST_F(FileExistsTest, HostWithoutProjectObjectsFindsNoFileSet) {
  FakeHost Plain;
  Action.SetHost(&Plain);
  Action.SetUseFileSpec(false);
  Action.SetFileSet("Any");
  EXPECT_FALSE(Action.Execute());
  EXPECT_EQ(Plain.Messages, (Lines{"Could not find FileSet: Any"}));
}

TEST_F(FileExistsTest, EmptyFileSetNameAnswersFalseSilently) {
  Action.SetUseFileSpec(false);
  Action.SetExistsMode(feFailIfExists);
  EXPECT_TRUE(Action.Execute());
  EXPECT_TRUE(Host.Messages.empty());
  EXPECT_EQ(Answer(), "False");
}

TEST(FileExistsProperties, FailIfExistsWritesTheMode) {
  TFileExistsAction A;
  EXPECT_EQ(A.GetExistsMode(), feFailIfMissing);
  A.SetExistsMode(feIgnore);
  A.SetFailIfExists(false);
  EXPECT_EQ(A.GetExistsMode(), feFailIfMissing);
  EXPECT_FALSE(A.GetFailIfExists());
  A.SetFailIfExists(true);
  EXPECT_EQ(A.GetExistsMode(), feFailIfExists);
  EXPECT_TRUE(A.GetFailIfExists());
}

TEST(FileExistsProperties, PublishedInOrderWithTheLegacyFlagNotStored) {
  EXPECT_EQ(PropertyNames(TFileExistsAction::ClassType()),
            (Lines{"FileOrDirectory", "FileSet", "FailIfExists", "ExistsMode", "Variable", "UseFileSpec"}));
  for (const auto& P : TFileExistsAction::ClassType().Properties())
    EXPECT_EQ(P.Stored, P.Name != "FailIfExists") << P.Name;
}

TEST(FileExistsProperties, DescriptionFollowsTheMode) {
  TFileExistsAction A;
  A.SetFileOrDirectory("%OUT%\\app.exe");
  A.SetFileSet("Sources");
  EXPECT_EQ(A.GetFormattedDescription(), "Check if [ %OUT%\\app.exe ] Exists");
  A.SetUseFileSpec(false);
  EXPECT_EQ(A.GetFormattedDescription(), "Check if Files in [ Sources ] Exist");

  frame::TStrings Hidden;
  A.GetHiddenProperties(Hidden);
  EXPECT_EQ(Hidden.Lines(), (Lines{"FailIfExists"}));
}

TEST(FileExistsProperties, ValidateChecksTheSpecThenTheFileSet) {
  TFileExistsAction A;
  ValidationErrors E;
  EXPECT_FALSE(A.Validate(E));
  A.SetUseFileSpec(false);
  EXPECT_FALSE(A.Validate(E));
  EXPECT_EQ(E.Errors, (Lines{"File Spec: A File Spec must be provided", "File Set: A File Set must be provided"}));
  A.SetFileSet("S");
  EXPECT_TRUE(A.Validate(E));
  A.SetUseFileSpec(true);
  A.SetFileOrDirectory("x");
  A.SetFileSet("");
  EXPECT_TRUE(A.Validate(E));
  EXPECT_EQ(E.Errors.size(), 2u);
}

}  // namespace
}  // namespace zt::testing
