// "Delete File(s)": the run's exact log lines, the files left on disk, the
// result, and the design-time vocabulary.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "files/Ztdeletefilesaction.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "support/ActionTesting.h"
#include "support/FakeHost.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
namespace pf = zt::platform;
using package::TDeleteFilesAction;
using Lines = std::vector<std::string>;

void Touch(const std::string& Path) { std::ofstream(Path) << "x"; }
bool Exists(const std::string& Path) { return fs::exists(fs::symlink_status(Path)); }

// Names a delete run visits for Spec (its mask: read-only and hidden), in
// the order the file system gives them.
Lines FoundNames(const std::string& Spec) { return testing::FoundNames(Spec, pf::faReadOnly | pf::faHidden); }

class DeleteFilesTest : public ::testing::Test {
 protected:
  DeleteFilesTest() {
    Action.SetHost(&Host);
    Action.SetTitle("Delete File(s)");
  }
  bool Run(const std::string& Spec) {
    Action.SetFileSpec(Spec);
    return Action.Execute();
  }

  TempDir Dir;
  FakeHost Host;
  TDeleteFilesAction Action;
};

TEST_F(DeleteFilesTest, DeletesEveryMatchAndCountsThem) {
  for (auto* N : {"a.txt", "b.txt", "c.txt", "keep.log"}) Touch(Dir / N);
  const std::string Spec = Dir / "*.txt";
  EXPECT_TRUE(Run(Spec));
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{"Deleting files : " + Spec, "3 Files Deleted."}}));
  EXPECT_FALSE(Exists(Dir / "a.txt"));
  EXPECT_FALSE(Exists(Dir / "b.txt"));
  EXPECT_FALSE(Exists(Dir / "c.txt"));
  EXPECT_TRUE(Exists(Dir / "keep.log"));
  EXPECT_EQ(Action.GetFilesAffected(), 3);
  EXPECT_TRUE(Host.Messages.empty());
}

TEST_F(DeleteFilesTest, StopsAtFirstReadOnlyFile) {
  for (auto* N : {"a.dat", "b.dat", "c.dat", "d.dat"}) Touch(Dir / N);
  ASSERT_TRUE(pf::SetFileAttributesA(Dir / "c.dat", pf::faReadOnly));
  const std::string Spec = Dir / "*.dat";
  const Lines Order = FoundNames(Spec);
  ASSERT_EQ(Order.size(), 4u);
  std::size_t Stop = 0;
  while (Order[Stop] != "c.dat") ++Stop;

  EXPECT_FALSE(Run(Spec));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Deleting files : " + Spec, " --> Error Deleting File : " + (Dir / "c.dat"),
                                      " --> Access is denied", std::to_string(Stop) + " Files Deleted."}));
  for (std::size_t I = 0; I < Order.size(); ++I)
    EXPECT_EQ(Exists(Dir / Order[I]), I >= Stop) << Order[I];
  EXPECT_EQ(Action.GetFilesAffected(), static_cast<int>(Stop));
}

TEST_F(DeleteFilesTest, DeleteReadOnlyClearsTheAttributeFirst) {
  for (auto* N : {"a.dat", "b.dat"}) Touch(Dir / N);
  ASSERT_TRUE(pf::SetFileAttributesA(Dir / "a.dat", pf::faReadOnly));
  Action.SetDeleteReadOnly(true);
  EXPECT_TRUE(Run(Dir / "*.dat"));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Deleting files : " + (Dir / "*.dat"), "2 Files Deleted."}));
  EXPECT_FALSE(Exists(Dir / "a.dat"));
  EXPECT_FALSE(Exists(Dir / "b.dat"));
}

TEST_F(DeleteFilesTest, HiddenFilesAreFoundAndDeletedWithOrWithoutDeleteHidden) {
  for (bool DeleteHidden : {false, true}) {
    Host.StatusEntries.clear();
    Touch(Dir / ".hidden.txt");
    Touch(Dir / "plain.txt");
    Action.SetDeleteHidden(DeleteHidden);
    EXPECT_TRUE(Run(Dir / "*.txt")) << DeleteHidden;
    EXPECT_EQ(Host.AllDetails(), (Lines{"Deleting files : " + (Dir / "*.txt"), "2 Files Deleted."}));
    EXPECT_FALSE(Exists(Dir / ".hidden.txt"));
    EXPECT_FALSE(Exists(Dir / "plain.txt"));
  }
}

TEST_F(DeleteFilesTest, SubdirectoriesAreNeverTouched) {
  fs::create_directory(Dir / "sub.txt");
  Touch(Dir / "sub.txt/inner.txt");
  Touch(Dir / "top.txt");
  EXPECT_TRUE(Run(Dir / "*.txt"));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Deleting files : " + (Dir / "*.txt"), "1 Files Deleted."}));
  EXPECT_TRUE(Exists(Dir / "sub.txt/inner.txt"));
  EXPECT_FALSE(Exists(Dir / "top.txt"));
}

TEST_F(DeleteFilesTest, SpecWithoutWildcardsDeletesThatOneFile) {
  Touch(Dir / "one.txt");
  Touch(Dir / "two.txt");
  EXPECT_TRUE(Run(Dir / "one.txt"));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Deleting files : " + (Dir / "one.txt"), "1 Files Deleted."}));
  EXPECT_FALSE(Exists(Dir / "one.txt"));
  EXPECT_TRUE(Exists(Dir / "two.txt"));
}

TEST_F(DeleteFilesTest, MissingFileLogsZeroAndFailsUnlessAllowed) {
  const std::string Spec = Dir / "missing.txt";
  EXPECT_FALSE(Run(Spec));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Deleting files : " + Spec, "0 Files Deleted."}));

  Host.StatusEntries.clear();
  Action.SetFailIfNoFile(false);
  EXPECT_TRUE(Run(Spec));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Deleting files : " + Spec, "0 Files Deleted."}));
  EXPECT_TRUE(Run(Dir / "no-such-dir/*.txt"));
}

TEST_F(DeleteFilesTest, SpecOfSpacesOnlyBehavesAsEmptyAndLogsNothing) {
  EXPECT_FALSE(Run("   "));
  Host.Variables["BLANK"] = " ";
  EXPECT_FALSE(Run(" %BLANK%\t"));
  Action.SetFailIfNoFile(false);
  EXPECT_TRUE(Run("   "));
  EXPECT_TRUE(Host.StatusEntries.empty());
  EXPECT_TRUE(Host.Messages.empty());
}

TEST_F(DeleteFilesTest, SpecIsExpandedAndTrimmed) {
  Touch(Dir / "x.log");
  Host.Variables["OUT"] = Dir.Path();
  EXPECT_TRUE(Run("  %OUT%/*.log  "));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Deleting files : " + (Dir / "*.log"), "1 Files Deleted."}));
  EXPECT_FALSE(Exists(Dir / "x.log"));
}

TEST_F(DeleteFilesTest, UndefinedVariablePassesToTheHostUnlogged) {
  EXPECT_THROW(Run("%NOPE%/*.txt"), frame::EZTExpandError);
  EXPECT_TRUE(Host.StatusEntries.empty());
}

TEST_F(DeleteFilesTest, CountOfLastRunIsResetByTheNextRun) {
  Touch(Dir / "a.txt");
  EXPECT_TRUE(Run(Dir / "a.txt"));
  EXPECT_EQ(Action.GetFilesAffected(), 1);
  EXPECT_FALSE(Run(Dir / "a.txt"));
  EXPECT_EQ(Action.GetFilesAffected(), 0);
  EXPECT_FALSE(Run(""));
  EXPECT_EQ(Action.GetFilesAffected(), 0);
}

// File systems that report a delete but keep the file, or fail without an
// error code, injected through the platform's replaceable Env.
class FaultyDeleteEnv : public pf::EnvWrapper {
 public:
  enum class Mode { KeepFile, FailSilently };
  FaultyDeleteEnv(Mode M, std::string Victim) : EnvWrapper(pf::Env::Platform()), M_(M), Victim_(std::move(Victim)) {}
  bool DeleteFile(const std::string& Path) override {
    if (Path != Victim_) return Target()->DeleteFile(Path);
    if (M_ == Mode::KeepFile) {
      pf::SetLastError(pf::ERROR_SHARING_VIOLATION);
      return true;
    }
    pf::SetLastError(0);
    return false;
  }

 private:
  Mode M_;
  std::string Victim_;
};

TEST_F(DeleteFilesTest, FileThatSurvivesAReportedDeleteStopsTheRun) {
  Touch(Dir / "stays.txt");
  FaultyDeleteEnv Env(FaultyDeleteEnv::Mode::KeepFile, Dir / "stays.txt");
  pf::ScopedEnv Use(&Env);
  EXPECT_FALSE(Run(Dir / "stays.txt"));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Deleting files : " + (Dir / "stays.txt"),
                                      " --> Error Deleting File : " + (Dir / "stays.txt"),
                                      " --> " + pf::SysErrorMessage(pf::ERROR_SHARING_VIOLATION),
                                      "0 Files Deleted."}));
}

TEST_F(DeleteFilesTest, FailureWithoutErrorCodeSkipsToTheNextFile) {
  for (auto* N : {"a.txt", "b.txt", "c.txt"}) Touch(Dir / N);
  FaultyDeleteEnv Env(FaultyDeleteEnv::Mode::FailSilently, Dir / "b.txt");
  pf::ScopedEnv Use(&Env);
  EXPECT_TRUE(Run(Dir / "*.txt"));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Deleting files : " + (Dir / "*.txt"), "2 Files Deleted."}));
  EXPECT_TRUE(Exists(Dir / "b.txt"));
  EXPECT_FALSE(Exists(Dir / "a.txt"));
  EXPECT_FALSE(Exists(Dir / "c.txt"));
}

TEST(DeleteFilesDesign, ValidateRequiresAFileSpec) {
  TDeleteFilesAction A;
  ValidationErrors E;
  EXPECT_FALSE(A.Validate(E));
  EXPECT_EQ(E.Errors, Lines{"File Spec: The file spec has not been set"});
  A.SetFileSpec("  ");
  ValidationErrors E2;
  EXPECT_TRUE(A.Validate(E2));
  EXPECT_TRUE(E2.Errors.empty());
}

TEST(DeleteFilesDesign, PublishesItsPropertiesInOrderWithDefaults) {
  const auto Props = TDeleteFilesAction::ClassType().Properties();
  TDeleteFilesAction A;
  Lines Seen;
  for (const auto& P : Props) Seen.push_back(P.Name + ":" + P.TypeName + "=" + P.Get(A).AsString());
  EXPECT_EQ(Seen, (Lines{"FileSpec:string=", "DeleteReadOnly:Boolean=False", "DeleteHidden:Boolean=False",
                         "FailIfNoFile:Boolean=True"}));
}

TEST(DeleteFilesDesign, EachSetterChangesOnlyItsOwnProperty) {
  const auto Props = TDeleteFilesAction::ClassType().Properties();
  for (const auto& Written : Props) {
    TDeleteFilesAction A;
    TDeleteFilesAction Fresh;
    Written.Set(A, Written.Kind == frame::TZTPropertyKind::Boolean ? frame::TZTVariant(!Written.Get(A).AsBoolean())
                                                                   : frame::TZTVariant("c:/x/*.tmp"));
    for (const auto& P : Props) {
      if (P.Name == Written.Name) EXPECT_NE(P.Get(A).AsString(), P.Get(Fresh).AsString()) << P.Name;
      else EXPECT_EQ(P.Get(A).AsString(), P.Get(Fresh).AsString()) << Written.Name << " changed " << P.Name;
    }
  }
}

TEST(DeleteFilesDesign, VocabularyDescriptionAndHelp) {
  TDeleteFilesAction A;
  A.SetTitle("Clean output");
  A.SetFileSpec("%OUT%\\*.obj");
  EXPECT_EQ(A.GetFormattedDescription(), "Clean output [ %OUT%\\*.obj ]");
  frame::TStrings Alias, Help, Hidden, ReadOnly;
  A.GetPropertyAlias(Alias);
  A.GetPropertyHelp(Help);
  A.GetHiddenProperties(Hidden);
  A.GetReadOnlyProperties(ReadOnly);
  EXPECT_EQ(Alias.Lines(), (Lines{"[Files]", "FileSpec=File Specification", "DeleteReadOnly=Delete Read Only Files",
                                  "DeleteHidden=Delete Hidden Files", "FailIfNoFile=Fail If No File"}));
  EXPECT_EQ(Help.Lines(), (Lines{"FileSpec=File Specification, can include wilde cards (* or ?)",
                                 "DeleteReadOnly=Delete Read Only Files", "DeleteHidden=Delete Hidden Files",
                                 "FailIfNoFile=Fail if no file to Delete"}));
  EXPECT_TRUE(Hidden.Lines().empty());
  EXPECT_TRUE(ReadOnly.Lines().empty());
  EXPECT_EQ(A.GetHelpTopicID(), 550);
  EXPECT_EQ(A.GetQuickHelpFilename(), "Plugins\\DeleteFiles.html");
  EXPECT_EQ(TDeleteFilesAction::GetActionName(), "Delete File(s)");
  EXPECT_EQ(TDeleteFilesAction::ClassType().GetActionName(), "Delete File(s)");
  EXPECT_FALSE(A.CanTerminate());
}

}  // namespace
}  // namespace zt::testing
