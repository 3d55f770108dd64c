// "Set File Attributes": the bits on disk afterwards, the exact log lines and
// results, recursion, the first failure stopping the walk, and the
// design-time vocabulary.
#include <filesystem>

#include <gtest/gtest.h>

#include "FileActionTesting.h"
#include "files/Ztfileattrib.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using package::asClear;
using package::asNone;
using package::asSet;
using package::TSetFileAttributesAction;

class SetAttributesTest : public ::testing::Test {
 protected:
  SetAttributesTest() {
    Action.SetHost(&Host);
    Action.SetTitle("Set File Attributes");
  }
  bool Run(const std::string& Spec) {
    Action.SetFileSpec(Spec);
    return Action.Execute();
  }
  static int Attr(const std::string& Path) { return static_cast<int>(pf::GetFileAttributesA(Path)); }

  TempDir Dir;
  FakeHost Host;
  TSetFileAttributesAction Action;
};

TEST_F(SetAttributesTest, SetsReadOnlyOnEveryMatchAndLogsEachFile) {
  for (auto* N : {"a.txt", "b.txt", "c.log"}) WriteFile(Dir / N);
  Action.SetReadOnly(asSet);
  Action.SetLogAllFiles(true);
  const std::string Spec = Dir / "*.txt";
  EXPECT_TRUE(Run(Spec));

  Lines Expected;
  for (const auto& N : FoundNames(Spec, pf::faAnyFile)) Expected.push_back("Processed File : " + (Dir / N));
  ASSERT_EQ(Expected.size(), 2u);
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{Expected}));
  EXPECT_EQ(Host.Messages, (Lines{"File spec : " + Spec}));
  EXPECT_TRUE(Attr(Dir / "a.txt") & pf::faReadOnly);
  EXPECT_TRUE(Attr(Dir / "b.txt") & pf::faReadOnly);
  EXPECT_FALSE(Attr(Dir / "c.log") & pf::faReadOnly);
}

TEST_F(SetAttributesTest, SetsAndClearsEachBitAsConfigured) {
  const std::string F = Dir / "f.dat";
  WriteFile(F);
  ASSERT_TRUE(pf::SetFileAttributesA(F, pf::FILE_ATTRIBUTE_READONLY | pf::FILE_ATTRIBUTE_HIDDEN));
  Action.SetReadOnly(asClear);
  Action.SetHidden(asClear);
  Action.SetArchive(asSet);
  Action.SetSystemFile(asSet);
  EXPECT_TRUE(Run(F));
  EXPECT_EQ(Attr(F), pf::faArchive | pf::faSysFile);
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{}}));  // LogAllFiles off: an entry without lines
}

TEST_F(SetAttributesTest, LeavesBitsSetToNoneAlone) {
  const std::string F = Dir / "f.dat";
  WriteFile(F);
  ASSERT_TRUE(pf::SetFileAttributesA(F, pf::FILE_ATTRIBUTE_SYSTEM));
  Action.SetArchive(asSet);
  EXPECT_TRUE(Run(F));
  EXPECT_EQ(Attr(F), pf::faArchive | pf::faSysFile);
}

TEST_F(SetAttributesTest, ProcessesHiddenAndSystemFiles) {
  const std::string Dot = Dir / ".hidden.txt", Sys = Dir / "sys.txt";
  WriteFile(Dot);
  WriteFile(Sys);
  ASSERT_TRUE(pf::SetFileAttributesA(Sys, pf::FILE_ATTRIBUTE_SYSTEM));
  Action.SetReadOnly(asSet);
  EXPECT_TRUE(Run(Dir / "*.txt"));
  EXPECT_EQ(Attr(Dot), pf::faReadOnly | pf::faHidden);
  EXPECT_EQ(Attr(Sys), pf::faReadOnly | pf::faSysFile);
}

TEST_F(SetAttributesTest, SpecWithoutWildcardNamesOneFile) {
  for (auto* N : {"one.txt", "two.txt"}) WriteFile(Dir / N);
  Action.SetReadOnly(asSet);
  Action.SetLogAllFiles(true);
  EXPECT_TRUE(Run(Dir / "one.txt"));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Processed File : " + (Dir / "one.txt")}));
  EXPECT_FALSE(Attr(Dir / "two.txt") & pf::faReadOnly);
}

TEST_F(SetAttributesTest, QuotedSpecWithSpacesAndNonAsciiNamesWorks) {
  const std::string F = Dir / "grüße an alle.txt";
  WriteFile(F);
  Action.SetReadOnly(asSet);
  Action.SetLogAllFiles(true);
  Host.Variables["D"] = Dir.Path();
  EXPECT_TRUE(Run("  \"%D%/grüße *.txt\"  "));
  EXPECT_EQ(Host.Messages, (Lines{"File spec : " + (Dir / "grüße *.txt")}));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Processed File : " + F}));
  EXPECT_TRUE(Attr(F) & pf::faReadOnly);
}

TEST_F(SetAttributesTest, RecursesIntoSubdirectoriesButNotHiddenOnes) {
  std::filesystem::create_directories(Dir / "sub/deeper");
  std::filesystem::create_directories(Dir / ".git");
  for (auto* N : {"top.txt", "sub/mid.txt", "sub/deeper/low.txt", ".git/skip.txt", "sub/other.bin"})
    WriteFile(Dir / N);
  Action.SetReadOnly(asSet);
  Action.SetRecurse(true);
  EXPECT_TRUE(Run(Dir / "*.txt"));
  for (auto* N : {"top.txt", "sub/mid.txt", "sub/deeper/low.txt"}) EXPECT_TRUE(Attr(Dir / N) & pf::faReadOnly) << N;
  EXPECT_FALSE(Attr(Dir / ".git/skip.txt") & pf::faReadOnly);
  EXPECT_FALSE(Attr(Dir / "sub/other.bin") & pf::faReadOnly);
}

TEST_F(SetAttributesTest, NoMatchSucceedsUnlessFailIfFileNotFound) {
  Action.SetReadOnly(asSet);
  const std::string Spec = Dir / "*.none";
  EXPECT_TRUE(Run(Spec));
  EXPECT_EQ(Host.Messages, (Lines{"File spec : " + Spec, "No files were found matching the file spec."}));
  EXPECT_EQ(Host.StatusEntries.size(), 1u);

  Host.Messages.clear();
  Action.SetFailIfFileNotFound(true);
  EXPECT_FALSE(Run(Spec));
  EXPECT_EQ(Host.Messages, (Lines{"File spec : " + Spec, "No files were found matching the file spec."}));
}

TEST_F(SetAttributesTest, DirectoriesAndMissingFoldersAreNoMatch) {
  std::filesystem::create_directories(Dir / "folder");
  Action.SetReadOnly(asSet);
  Action.SetFailIfFileNotFound(true);
  EXPECT_FALSE(Run(Dir / "folder"));
  EXPECT_FALSE(Attr(Dir / "folder") & pf::faReadOnly);
  EXPECT_FALSE(Run(Dir / "missing/*.txt"));
  EXPECT_EQ(Host.Messages.back(), "No files were found matching the file spec.");
}

TEST_F(SetAttributesTest, NoSettingsFailBeforeAnythingElse) {
  WriteFile(Dir / "a.txt");
  EXPECT_FALSE(Run(Dir / "a.txt"));
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{"No attributes were specified to change."}}));
  EXPECT_TRUE(Host.Messages.empty());
}

TEST_F(SetAttributesTest, BlankOrQuotedEmptySpecFails) {
  Action.SetHidden(asSet);
  EXPECT_FALSE(Run("   "));
  EXPECT_FALSE(Run("\"\""));
  EXPECT_EQ(Host.StatusEntries,
            (std::vector<Lines>{{"No file spec was specified."}, {"No file spec was specified."}}));
  EXPECT_TRUE(Host.Messages.empty());
}

TEST_F(SetAttributesTest, FirstFailureStopsTheWalkWithTheSystemMessage) {
  for (auto* N : {"a.txt", "b.txt", "c.txt"}) WriteFile(Dir / N);
  const std::string Spec = Dir / "*.txt";
  const Lines Order = FoundNames(Spec, pf::faAnyFile);
  ASSERT_EQ(Order.size(), 3u);
  const std::string Victim = Dir / Order[1];
  FaultyFilesEnv Faulty({Victim});
  Action.SetReadOnly(asSet);
  Action.SetLogAllFiles(true);

  EXPECT_FALSE(Run(Spec));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Processed File : " + (Dir / Order[0]),
                                      "Error processing File Spec : Error Processing File " + Victim +
                                          " : Access is denied"}));
  EXPECT_TRUE(Attr(Dir / Order[0]) & pf::faReadOnly);
  EXPECT_FALSE(Attr(Dir / Order[2]) & pf::faReadOnly);
  EXPECT_EQ(Host.Messages, (Lines{"File spec : " + Spec}));
}

TEST_F(SetAttributesTest, UndefinedVariablePassesToTheHost) {
  Action.SetReadOnly(asSet);
  EXPECT_THROW(Run("%NOPE%/*.txt"), frame::EZTExpandError);
}

TEST(SetAttributesVocabulary, DescribesItself) {
  TSetFileAttributesAction A;
  A.SetTitle("Set File Attributes");
  A.SetFileSpec("%OUT%\\*.dll");
  EXPECT_EQ(A.GetFormattedDescription(), "Set File Attributes [ %OUT%\\*.dll ]");
  EXPECT_EQ(TSetFileAttributesAction::GetActionName(), "Set File Attributes");

  EXPECT_EQ(PropertyNames(TSetFileAttributesAction::ClassType()),
            (Lines{"FileSpec", "Recurse", "Archive", "Hidden", "ReadOnly", "SystemFile", "LogAllFiles",
                   "FailIfFileNotFound"}));
}

TEST(SetAttributesVocabulary, ValidateAsksForTheFileSpec) {
  TSetFileAttributesAction A;
  ValidationErrors E;
  EXPECT_FALSE(A.Validate(E));
  EXPECT_EQ(E.Errors, (Lines{"File Spec: The file spec has not been set"}));
  A.SetFileSpec("x");
  EXPECT_TRUE(A.Validate(E));
  EXPECT_EQ(E.Errors.size(), 1u);
}

TEST(SetAttributesVocabulary, EditorTextReadsSetAndClearInAnyCase) {
  EXPECT_EQ(package::AttributeSettingFromText("set"), asSet);
  EXPECT_EQ(package::AttributeSettingFromText("Clear"), asClear);
  EXPECT_EQ(package::AttributeSettingFromText("Don't Touch"), asNone);
  EXPECT_EQ(package::AttributeSettingFromText(""), asNone);
}

}  // namespace
}  // namespace zt::testing
