// "Create Directory": the directories on disk afterwards, the log entry and
// the result, with and without Force, and the class's flags.
#include <filesystem>

#include <gtest/gtest.h>

#include "FileActionTesting.h"
#include "files/BActions1.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using package::TCreateDirectoryAction;

class CreateDirectoryTest : public ::testing::Test {
 protected:
  CreateDirectoryTest() { Action.SetHost(&Host); }
  bool Create(const std::string& Path) {
    Action.SetFileOrDirectory(Path);
    return Action.Execute();
  }

  TempDir Dir;
  FakeHost Host;
  TCreateDirectoryAction Action;
};

TEST_F(CreateDirectoryTest, CreatesTheDirectory) {
  Host.Variables["OUT"] = Dir / "out";
  EXPECT_TRUE(Create("  %OUT%  "));
  EXPECT_TRUE(fs::is_directory(Dir / "out"));
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{"Created directory : " + (Dir / "out")}}));
}

TEST_F(CreateDirectoryTest, ExistingDirectorySucceedsWithTheSameLine) {
  fs::create_directories(Dir / "here");
  WriteFile(Dir / "here/keep.txt");
  EXPECT_TRUE(Create(Dir / "here"));
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{"Created directory : " + (Dir / "here")}}));
  EXPECT_TRUE(fs::exists(Dir / "here/keep.txt"));
}

TEST_F(CreateDirectoryTest, MissingParentFailsWithoutForce) {
  EXPECT_FALSE(Create(Dir / "a/b/c"));
  EXPECT_FALSE(fs::exists(Dir / "a"));
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{"Unable to Create directory : " + (Dir / "a/b/c")}}));
}

TEST_F(CreateDirectoryTest, ForceCreatesEveryMissingLevel) {
  Action.SetForce(true);
  EXPECT_TRUE(Create(Dir / "a/b/c"));
  EXPECT_TRUE(fs::is_directory(Dir / "a/b/c"));
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{"Created directory : " + (Dir / "a/b/c")}}));
}

TEST_F(CreateDirectoryTest, PathOfAnExistingFileFailsAndKeepsTheFile) {
  WriteFile(Dir / "taken", "data");
  Action.SetForce(true);
  EXPECT_FALSE(Create(Dir / "taken"));
  EXPECT_TRUE(fs::is_regular_file(Dir / "taken"));
  EXPECT_EQ(fs::file_size(Dir / "taken"), 4u);
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{"Unable to Create directory : " + (Dir / "taken")}}));
}

TEST_F(CreateDirectoryTest, NamesWithSpacesAndNonAsciiLetters) {
  EXPECT_TRUE(Create(Dir / "Päckchen für alle"));
  EXPECT_TRUE(fs::is_directory(Dir / "Päckchen für alle"));
}

TEST_F(CreateDirectoryTest, BlankNameSucceedsAndLogsNothing) {
  EXPECT_TRUE(Create(""));
  EXPECT_TRUE(Create(" \t "));
  EXPECT_TRUE(Host.StatusEntries.empty());
  EXPECT_TRUE(Host.Messages.empty());
}

TEST_F(CreateDirectoryTest, ExpansionErrorIsCaughtAndLogged) {
  EXPECT_FALSE(Create("%MISSING%/x"));
  EXPECT_EQ(Host.StatusEntries,
            (std::vector<Lines>{{"Unable to Create directory : ", "Variable \"MISSING\" is not defined"}}));
}

TEST(CreateDirectoryProperties, FlagsAndVocabulary) {
  TCreateDirectoryAction A;
  EXPECT_EQ(A.GetFlags(), (package::TFileDirFlags{package::fdIsDir, package::fdForce}));
  EXPECT_TRUE(A.GetFlags().Contains(package::fdForce));
  EXPECT_FALSE(A.GetFlags().Contains(package::fdIsFile));
  EXPECT_EQ(A.GetFlags().Bits(), 0x11u);
  EXPECT_FALSE(A.GetForce());

  A.SetFileOrDirectory("%OUT%\\bin");
  EXPECT_EQ(A.GetFormattedDescription(), "Create Directory [ %OUT%\\bin ]");
  frame::TStrings Alias;
  A.GetPropertyAlias(Alias);
  EXPECT_EQ(Alias.Lines(), (Lines{"FileOrDirectory=Directory"}));
  EXPECT_EQ(PropertyNames(TCreateDirectoryAction::ClassType()), (Lines{"FileOrDirectory", "Force"}));
  EXPECT_EQ(package::TFileOrDirectoryAction::ClassType().Create, nullptr);  // the base is abstract

  ValidationErrors E;
  EXPECT_TRUE(A.Validate(E));
  A.SetFileOrDirectory("");
  EXPECT_FALSE(A.Validate(E));
  EXPECT_EQ(E.Errors, (Lines{"Directory: The directory to create has not been set"}));
}

}  // namespace
}  // namespace zt::testing
