// Design-time side of "Copy File(s)" and "Move File(s)": the coupled
// setters, published properties, validation and vocabulary.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "files/Ztcopymove.h"
#include "support/ActionTesting.h"

namespace zt::testing {
namespace {

using package::TCopyFilesAction;
using package::TMoveFilesAction;
using Lines = std::vector<std::string>;

TEST(CopyMoveSetters, WildcardFileSpecMakesTheTargetADirectory) {
  for (const char* Spec : {"src/*.txt", "src/a?.txt", "*"}) {
    TCopyFilesAction A;
    A.SetFileSpec(Spec);
    EXPECT_TRUE(A.GetTargetIsDir()) << Spec;
    EXPECT_FALSE(A.GetRecurse()) << Spec;
  }
  TCopyFilesAction Plain;
  Plain.SetFileSpec("src/a.txt");
  EXPECT_FALSE(Plain.GetTargetIsDir());
}

TEST(CopyMoveSetters, FileSpecWithoutWildcardLeavesTargetIsDirAlone) {
  TCopyFilesAction A;
  A.SetTargetIsDir(true);
  A.SetFileSpec("src/a.txt");
  EXPECT_TRUE(A.GetTargetIsDir());
}

TEST(CopyMoveSetters, SettingAnEqualFileSpecChangesNothing) {
  TCopyFilesAction A;
  A.SetFileSpec("src/*.txt");
  A.SetTargetIsDir(false);
  A.SetFileSpec("src/*.txt");  // same text: TargetIsDir stays as the user left it
  EXPECT_FALSE(A.GetTargetIsDir());
  A.SetFileSpec("src/*.log");
  EXPECT_TRUE(A.GetTargetIsDir());
}

TEST(CopyMoveSetters, ClearingTargetIsDirTurnsRecurseOff) {
  TCopyFilesAction A;
  A.SetRecurse(true);
  ASSERT_TRUE(A.GetRecurse());
  A.SetTargetIsDir(false);
  EXPECT_FALSE(A.GetTargetIsDir());
  EXPECT_FALSE(A.GetRecurse());
  A.SetTargetIsDir(true);
  EXPECT_FALSE(A.GetRecurse());  // setting it true does not bring Recurse back
}

TEST(CopyMoveSetters, RecurseTurnsTargetIsDirOnButNotOff) {
  TCopyFilesAction A;
  A.SetRecurse(true);
  EXPECT_TRUE(A.GetTargetIsDir());
  A.SetRecurse(false);
  EXPECT_TRUE(A.GetTargetIsDir());
}

TEST(CopyMoveSetters, PublishedSettersCoupleTheSameWayAsDirectCalls) {
  // The host applies project properties through the published setters, in
  // file order: the last write wins.
  const auto Props = TCopyFilesAction::ClassType().Properties();
  auto Set = [&](TCopyFilesAction& A, const std::string& Name, const frame::TZTVariant& V) {
    for (const auto& P : Props)
      if (P.Name == Name) return P.Set(A, V);
    FAIL() << Name;
  };
  TCopyFilesAction A;
  Set(A, "Recurse", frame::TZTVariant(true));
  Set(A, "TargetIsDir", frame::TZTVariant(false));
  EXPECT_FALSE(A.GetRecurse());
  Set(A, "FileSpec", frame::TZTVariant("a/*.c"));
  EXPECT_TRUE(A.GetTargetIsDir());
}

// Name:type=default for every published property, in order.
template <class Cls>
Lines Published() {
  Cls A;
  Lines R;
  for (const auto& P : Cls::ClassType().Properties())
    R.push_back(P.Name + ":" + P.TypeName + (P.ReadOnly() ? " ro" : "") + "=" + P.Get(A).AsString());
  return R;
}

TEST(CopyMoveDesign, CopyPublishesItsPropertiesInOrderWithDefaults) {
  EXPECT_EQ(Published<TCopyFilesAction>(),
            (Lines{"FileSpec:WideString=", "Target:WideString=", "Force:Boolean=False", "TargetIsDir:Boolean=False",
                   "FailIfExists:Boolean=False", "OverwriteReadOnly:Boolean=False", "Recurse:Boolean=False",
                   "ClearAttributes:Boolean=False", "FailIfZeroFiles:Boolean=False", "FilesAffected:Integer ro=0",
                   "ErrorCount:Integer ro=0"}));
}

TEST(CopyMoveDesign, MovePublishesStopOnAnyErrorsAndNoRecurse) {
  EXPECT_EQ(Published<TMoveFilesAction>(),
            (Lines{"FileSpec:WideString=", "Target:WideString=", "Force:Boolean=False", "TargetIsDir:Boolean=False",
                   "FailIfExists:Boolean=False", "OverwriteReadOnly:Boolean=False", "ClearAttributes:Boolean=False",
                   "FailIfZeroFiles:Boolean=False", "FilesAffected:Integer ro=0", "ErrorCount:Integer ro=0",
                   "StopOnAnyErrors:Boolean=False"}));
}

TEST(CopyMoveDesign, ValidateReportsEveryMissingSetting) {
  TMoveFilesAction A;
  ValidationErrors Both;
  EXPECT_FALSE(A.Validate(Both));
  EXPECT_EQ(Both.Errors, (Lines{"File Spec: The file spec has not been set",
                                "Target: The target file/directory has not been set"}));
  A.SetFileSpec("a.txt");
  ValidationErrors NoTarget;
  EXPECT_FALSE(A.Validate(NoTarget));
  EXPECT_EQ(NoTarget.Errors, Lines{"Target: The target file/directory has not been set"});
  A.SetTarget("out");
  ValidationErrors None;
  EXPECT_TRUE(A.Validate(None));
  EXPECT_TRUE(None.Errors.empty());
}

TEST(CopyMoveDesign, VocabularyIsSharedByCopyAndMove) {
  const Lines Alias{"[Misc]",
                    "Force=Force Directories",
                    "FileSpec=File Specification",
                    "Target=Destination",
                    "TargetIsDir=Destination Is Directory",
                    "FailIfExists=Fail if Exists",
                    "OverwriteReadOnly=Overwrite Read Only",
                    "Recurse",
                    "ClearAttributes=Clear Attributes"};
  const Lines Help{
      "Force=Use Force Directories to create a directory and all parent directories that do not already exist.",
      "FileSpec=The file specification of the files to copy. Wildcards (*, ?) may be used",
      "Target=The Destination File or Directory",
      "TargetIsDir=Specifies that the Destination Is a Directory",
      "FailIfExists=Fail if the target file Exists",
      "OverwriteReadOnly=Overwrite Read Only Files",
      "Recurse=Resurse Sub Directories",
      "ClearAttributes=Clear the copied/moved files attribute flags after the copy/move"};
  TCopyFilesAction Copy;
  TMoveFilesAction Move;
  for (package::TCustomCopyFilesAction* A : {static_cast<package::TCustomCopyFilesAction*>(&Copy),
                                             static_cast<package::TCustomCopyFilesAction*>(&Move)}) {
    frame::TStrings L, H, Hidden, ReadOnly;
    A->GetPropertyAlias(L);
    A->GetPropertyHelp(H);
    A->GetHiddenProperties(Hidden);
    A->GetReadOnlyProperties(ReadOnly);
    EXPECT_EQ(L.Lines(), Alias);
    EXPECT_EQ(H.Lines(), Help);
    EXPECT_EQ(Hidden.Lines(), Lines{"ErrorCount"});
    EXPECT_TRUE(ReadOnly.Lines().empty());
    EXPECT_TRUE(A->CanTerminate());
  }
}

TEST(CopyMoveDesign, NamesHelpAndDescription) {
  TCopyFilesAction Copy;
  Copy.SetTitle("Publish docs");
  Copy.SetFileSpec("%SRC%\\*.html");
  EXPECT_EQ(Copy.GetFormattedDescription(), "Publish docs [ %SRC%\\*.html ]");
  EXPECT_EQ(TCopyFilesAction::GetActionName(), "Copy File(s)");
  EXPECT_EQ(Copy.GetHelpTopicID(), 554);
  EXPECT_EQ(Copy.GetQuickHelpFilename(), "Plugins\\CopyFiles.html");

  TMoveFilesAction Move;
  Move.SetTitle("Move File(s)");
  EXPECT_EQ(Move.GetFormattedDescription(), "Move File(s) [  ]");
  EXPECT_EQ(TMoveFilesAction::GetActionName(), "Move File(s)");
  EXPECT_EQ(TMoveFilesAction::ClassType().GetActionName(), "Move File(s)");
  EXPECT_EQ(Move.GetHelpTopicID(), 555);
  EXPECT_EQ(Move.GetQuickHelpFilename(), "Plugins\\MoveFiles.html");
  EXPECT_TRUE(TMoveFilesAction::ClassType().InheritsFrom(package::TCustomCopyFilesAction::ClassType()));
  EXPECT_FALSE(TMoveFilesAction::ClassType().InheritsFrom(TCopyFilesAction::ClassType()));
}

}  // namespace
}  // namespace zt::testing
