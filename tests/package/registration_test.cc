// The package registration: what ZTRegister hands the host, in which order.
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "RecordingServices.h"
#include "Ztplaceholders.h"
#include "files/Ztdeletefilesaction.h"
#include "frame/ZTServices.h"
#include "system/Ztregaction.h"
#include "support/FakeHost.h"

namespace zt::testing {
namespace {

// Runs the exported entry points against recording services.
RecordingServices Register(bool Designing) {
  RecordingServices S;
  frame::TZTServices Svc = S.Services();
  ZTSetServices(&Svc);
  ZTRegister(Designing);
  ZTSetServices(nullptr);
  return S;
}

const std::vector<std::string> kPalette = {
    "action Check if File Exists | Files & Directories | TFileExistsAction | HCHECKFILE",
    "action Create Directory | Files & Directories | TCreateDirectoryAction | HCREATE_DIR",
    "action Delete Directory | Files & Directories | TDeleteDirectoryAction | HDELETE_DIR",
    "action Move Directory | Files & Directories | TZTMoveDirectoryAction | HMOVEDIR",
    "action Delete File(s) | Files & Directories | TDeleteFilesAction | HDELETE_FILE",
    "action Copy File(s) | Files & Directories | TCopyFilesAction | HCOPYFILES",
    "action Move File(s) | Files & Directories | TMoveFilesAction | HMOVEFILES",
    "action Set File Attributes | Files & Directories | TSetFileAttributesAction | HSETFILEATTRIB",
    "action File Iterator | Iterators | TFileIterator | HFILEITERATOR",
    "action Folder Iterator | Iterators | TFolderIterator | FOLDERITERATOR",
    "action Read Ini File | Registry & Ini | TReadIniFileAction | HREADINI",
    "action Write Ini File | Registry & Ini | TWriteIniFileAction | HWRITEINI",
    "action Run Script | Misc | TZTScriptAction | SCRIPTACTION",
    "action Touch File(s) | Files & Directories | TTouchFilesAction | HTOUCHFILES",
    "action Execute Program | Windows OS | TRunProgramAction | HEXECUTEPROG",
    "action Run DOS Command | Windows OS | TRunDosCMDAction | HRUNDOS",
    "action Concatenate Files | Files & Directories | TConcatAction | HCONCAT",
    "action Get Disk Free Space | Windows OS | TDiskInfoAction | HDISKSPACE",
    "action Get Date/Time | Misc | TDateTimeAction | HDATETIME",
    "action Read Registry Value | Registry & Ini | TReadRegValueAction | ZTREADREG",
    "action Set Registry Value | Registry & Ini | TSetRegValueAction | ZTSETREG",
    "action Delete Registry Value | Registry & Ini | TDeleteRegValueAction | ZTDELREG",
    "action Rename File or Directory | Files & Directories | TRenameDirAction | HRENAMEFILE",
    "action Create Text File | Files & Directories | TZTCreateTextFileAction | HCREATEFILE",
    "action Write to Text File | Files & Directories | TZTWriteToTextFileAction | WRITETOTEXTFILE",
    "action Get File Size | Files & Directories | TZTGetFileSizeAction | FILESIZE",
    "action If COM Class Registered | Windows OS | TZTIfCOMClassRegistered | HIFCOMREG",
    "action XCopy | Files & Directories | TZTXCopyAction | HXCOPY",
    "action Robocopy | Files & Directories | TZTRobocopyCopyAction | ROBOCOPYICON",
    "action Run Robocopy Job | Files & Directories | TZTRobocopyJobAction | ROBOCOPYJOB",
    "action Robocopy Move | Files & Directories | TZTRobocopyMoveAction | ROBOCOPYMOVE",
    "action Robocopy Mirror | Files & Directories | TZTRobocopyMirrorAction | ROBOCOPYMIRROR",
    "action Read Text File | Files & Directories | TZTReadTextFileAction | READTEXTFILE",
    "action File Contents Iterator | Iterators | TReadTextFileIterator | READTEXTFILEITERATOR",
    "action Ini File Iterator | Iterators | TIniFileIterator | INIFILEITERATOR",
    "action Extract Version Info | Files & Directories | TZTExtractFileVerInfoAction | EXTRACTFILEINFO",
    "action List Iterator | Iterators | TZTListIterator | LISTITERATOR",
    "action Calculate File CRC32 | Files & Directories | TZTFileCRCAction | CRC32",
    "action Calculate File MD5 | Files & Directories | TZTFileMD5Action | MD5",
    "action Shell Execute | Windows OS | TZTShellExecute | HSHELLEXECUTE",
    "action Text Replace (Deprecated) | Files & Directories | TTextReplaceAction | TEXTREPLACE",
    "action Save Variables to INI | Variables | TZTVariablesSaveAction | SAVEVARTOINI",
    "action Load Variables from INI | Variables | TZTVariablesLoadAction | LOADVARFROMINI",
    "action Text Find / Replace | Misc | TZTTextFindAction | TEXTFIND",
    "action File Compare | Files & Directories | TZTFileCompareAction | FILECOMPARE",
    "action Log Variable Values | Misc | TZTLogVariablesAction | LOGVARIABLEVALS",
    "action Close Process | Windows OS | TZTCloseProcessAction | CLOSEPROCESS",
    "action FileSet Copy/Move | File Sets | TZTFileSetCopyMoveAction | FILESETCOPY",
    "action Replace Variables | Misc | TZTReplaceVariablesAction | REPLACEVARS",
    "action Image Manipulation | Misc | TZTImagesAction | IMAGEACTION",
    "action JPEG Lossless Transform | Misc | TZTJPEGLosslessTransformAction | IMAGEACTION",
};

const std::vector<std::string> kConstants = {
    "constant rtInteger=0",
    "constant rtString=1",
    "constant HKEY_CLASSES_ROOT=2147483648",
    "constant HKEY_CLASSES_ROOT=2147483648",
    "constant HKEY_CURRENT_USER=2147483649",
    "constant HKEY_LOCAL_MACHINE=2147483650",
    "constant HKEY_USERS=2147483651",
    "constant HKEY_CURRENT_CONFIG=2147483653",
};

int IndexOf(const std::vector<std::string>& V, const std::string& S) {
  for (std::size_t I = 0; I < V.size(); ++I)
    if (V[I] == S) return static_cast<int>(I);
  return -1;
}

TEST(Registration, RegistersEveryActionTypeInPaletteOrder) {
  RecordingServices S = Register(false);
  EXPECT_EQ(S.Only("action "), kPalette);
}

TEST(Registration, WithoutDesignerMakesOnlyRunTimeRegistrations) {
  RecordingServices S = Register(false);
  EXPECT_EQ(S.Only("action ").size(), 51u);
  EXPECT_EQ(S.Only("method ").size(), 5u);
  EXPECT_EQ(S.Only("constant "), kConstants);
  EXPECT_EQ(S.Only("options "), std::vector<std::string>{"options TZTRobocopyOptions | ROBOCOPYICON"});
  EXPECT_TRUE(S.Only("editor ").empty());
  EXPECT_TRUE(S.Only("pages ").empty());
  EXPECT_TRUE(S.Only("options-pages ").empty());
  EXPECT_EQ(S.Calls.size(), 51u + 5u + kConstants.size() + 1u);
}

TEST(Registration, ResetMethodFollowsEachLoopAction) {
  RecordingServices S = Register(false);
  const std::vector<std::pair<std::string, std::string>> Loops = {
      {"File Iterator | Iterators | TFileIterator", "TFileIterator"},
      {"Folder Iterator | Iterators | TFolderIterator", "TFolderIterator"},
      {"File Contents Iterator | Iterators | TReadTextFileIterator", "TReadTextFileIterator"},
      {"Ini File Iterator | Iterators | TIniFileIterator", "TIniFileIterator"},
      {"List Iterator | Iterators | TZTListIterator", "TZTListIterator"},
  };
  std::vector<std::string> Methods;
  for (const auto& [Action, Cls] : Loops) {
    int At = -1;
    for (std::size_t I = 0; I < S.Calls.size(); ++I)
      if (S.Calls[I].rfind("action " + Action + " |", 0) == 0) At = static_cast<int>(I);
    ASSERT_GE(At, 0) << Action;
    ASSERT_LT(At + 1, static_cast<int>(S.Calls.size()));
    EXPECT_EQ(S.Calls[At + 1], "method " + Cls + ".Reset _Reset");
    Methods.push_back("method " + Cls + ".Reset _Reset");
  }
  EXPECT_EQ(S.Only("method "), Methods);
}

TEST(Registration, RegistryRegistrationSitsBetweenDateTimeAndRename) {
  RecordingServices S = Register(false);
  int DateTime = IndexOf(S.Calls, "action Get Date/Time | Misc | TDateTimeAction | HDATETIME");
  ASSERT_GE(DateTime, 0);
  std::vector<std::string> Next(S.Calls.begin() + DateTime + 1, S.Calls.begin() + DateTime + 1 + 12);
  std::vector<std::string> Expected = kConstants;
  Expected.push_back("action Read Registry Value | Registry & Ini | TReadRegValueAction | ZTREADREG");
  Expected.push_back("action Set Registry Value | Registry & Ini | TSetRegValueAction | ZTSETREG");
  Expected.push_back("action Delete Registry Value | Registry & Ini | TDeleteRegValueAction | ZTDELREG");
  Expected.push_back("action Rename File or Directory | Files & Directories | TRenameDirAction | HRENAMEFILE");
  EXPECT_EQ(Next, Expected);
}

TEST(Registration, RobocopyOptionsComeRightBeforeRobocopyActions) {
  RecordingServices S = Register(false);
  int Options = IndexOf(S.Calls, "options TZTRobocopyOptions | ROBOCOPYICON");
  ASSERT_GT(Options, 0);
  EXPECT_EQ(S.Calls[Options - 1], "action XCopy | Files & Directories | TZTXCopyAction | HXCOPY");
  EXPECT_EQ(S.Calls[Options + 1], "action Robocopy | Files & Directories | TZTRobocopyCopyAction | ROBOCOPYICON");
}

TEST(Registration, DesignerAddsEditorsThenPagesAfterEverythingElse) {
  RecordingServices Run = Register(false);
  RecordingServices S = Register(true);
  // Run-time registrations come first and are the same, with the registry's
  // design-time registrations right after the registry actions.
  const std::vector<std::string> RegistryDesign = {
      "editor string TReadRegValueAction.ZTVariable TVariablesListPropertyEditor",
      "editor HKEY TCustomRegAction.RegRoot TRegRootPropertyEditor",
      "pages TReadRegValueAction: TReadRegistryFrame",
      "pages TSetRegValueAction: TReadRegistryFrame",
      "pages TDeleteRegValueAction: TReadRegistryFrame",
  };
  int DeleteReg = IndexOf(S.Calls, "action Delete Registry Value | Registry & Ini | TDeleteRegValueAction | ZTDELREG");
  ASSERT_GE(DeleteReg, 0);
  EXPECT_EQ(std::vector<std::string>(S.Calls.begin() + DeleteReg + 1, S.Calls.begin() + DeleteReg + 6),
            RegistryDesign);
  std::vector<std::string> Prefix(S.Calls.begin(), S.Calls.begin() + Run.Calls.size() + RegistryDesign.size());
  Prefix.erase(Prefix.begin() + DeleteReg + 1, Prefix.begin() + DeleteReg + 6);
  EXPECT_EQ(Prefix, Run.Calls);

  std::vector<std::string> Rest(S.Calls.begin() + Run.Calls.size() + RegistryDesign.size(), S.Calls.end());
  const std::vector<std::string> Editors = {
      "editor WideString TFileExistsAction.FileOrDirectory TFileNameEdit",
      "editor WideString TCreateDirectoryAction.FileOrDirectory TSelectDirectoryEditor",
      "editor WideString TDeleteDirectoryAction.FileOrDirectory TSelectDirectoryEditor",
      "editor WideString TDeleteFilesAction.FileSpec TFileNameEditEx",
      "editor WideString TDeleteFilesAction.Target TFileNameEditEx",
      "editor WideString TCopyFilesAction.FileSpec TFileNameEditEx",
      "editor WideString TCopyFilesAction.Target TFileNameEditEx",
      "editor WideString TSetFileAttributesAction.FileSpec TFileNameEdit",
      "editor TAttributeSetting TSetFileAttributesAction. TFileAttributeEditor",
      "editor WideString TReadIniFileAction.IniFile TIniFileNameEdit",
      "editor WideString TWriteIniFileAction.IniFile TIniFileNameEdit",
      "editor WideString TReadIniFileAction.VariableName TIniVariableEditor",
      "editor string TTouchFilesAction.DateTimeString TTouchFilesDateEditor",
      "editor WideString TTouchFilesAction.FileSpec TFileNameEdit",
      "editor WideString TRunProgramAction.ProgramName TRunProgEditor",
      "editor WideString TRunProgramAction.StartInDir TStartDirectoryEditor",
      "editor WideString TMoveFilesAction.FileSpec TFileNameEditEx",
      "editor WideString TMoveFilesAction.Target TFileNameEditEx",
  };
  ASSERT_GE(Rest.size(), Editors.size());
  EXPECT_EQ(std::vector<std::string>(Rest.begin(), Rest.begin() + Editors.size()), Editors);
  const std::vector<std::string> Pages(Rest.begin() + Editors.size(), Rest.end());
  const std::vector<std::string> ExpectedPages = {
      "pages TFileExistsAction: TCheckFileFrame",
      "pages TZTMoveDirectoryAction: TMoveDirectoryFrame",
      "pages TDeleteDirectoryAction: TDeleteDirFrame",
      "pages TDeleteFilesAction: TDeleteFilesFrame",
      "pages TSetFileAttributesAction: TFileAttributeFrame",
      "pages TFileIterator: TFileIteratorFrame",
      "pages TFolderIterator: TFolderIteratorFrame",
      "pages TMoveFilesAction: TMoveFrame",
      "pages TReadIniFileAction: TReadIniFrame",
      "pages TTouchFilesAction: TTouchFrame",
      "pages TWriteIniFileAction: TWriteIniFrame",
      "pages TCopyFilesAction: TCopyFrame",
      "pages TCreateDirectoryAction: TCreateDirectoryFrame",
      "pages TRunDosCMDAction: TRunDosCmdFrame",
      "pages TRunProgramAction: TRunProgramFrame",
      "pages TRenameDirAction: TRenameDirFrame",
      "pages TZTGetFileSizeAction: TGetFileSizeFrame",
      "pages TConcatAction: TConcatFilesFrame",
      "pages TDiskInfoAction: TDiskFreeSpaceFrame",
      "pages TDateTimeAction: TGetDateTimeFrame",
      "pages TZTCreateTextFileAction: TCreateFileFrame",
      "pages TZTWriteToTextFileAction: TWriteToTextFileFrame",
      "pages TZTXCopyAction: TXCopyMainFrame TXCopyOptionsFrame TXCopyAttribFrame TZTXcopyExcludeFilesFrame",
      "options-pages TZTRobocopyOptions: TRobocopyOptionsFrame",
      "pages TZTRobocopyCopyAction: TRobocopyMainFrame TRobocopyCopyOptionsFrame TRobocopyIncludeFrame "
      "TRobocopyExcludeFrame TZTRobocopyExcludeFilesFrame TZTRobocopyExcludeDirFrame TRobocopyLogOptionsFrame",
      "pages TZTRobocopyJobAction: TRobocopyMainFrame TRobocopyJobsFrame TRobocopyLogOptionsFrame",
      "pages TZTRobocopyMoveAction: TRobocopyMainFrame TRobocopyMoveOptionsFrame TRobocopyIncludeFrame "
      "TRobocopyExcludeFrame TZTRobocopyExcludeFilesFrame TZTRobocopyExcludeDirFrame TRobocopyLogOptionsFrame",
      "pages TZTRobocopyMirrorAction: TRobocopyMainFrame TRobocopyIncludeFrame TRobocopyExcludeFrame "
      "TZTRobocopyExcludeFilesFrame TZTRobocopyExcludeDirFrame TRobocopyLogOptionsFrame",
      "pages TZTReadTextFileAction: TReadFileFrame",
      "pages TReadTextFileIterator: TReadTextFileIteratorFrame",
      "pages TIniFileIterator: TIniFileIteratorFrame",
      "pages TZTExtractFileVerInfoAction: TExtractFileVersionInfoFrame",
      "pages TZTListIterator: TListIteratorFrame TListIteratorSeparatorFrame",
      "pages TZTFileCRCAction: TFileCRCFrame",
      "pages TZTFileMD5Action: TFileMD5Frame",
      "pages TZTShellExecute: TZTShellExecuteFrame",
      "pages TTextReplaceAction: TfrmTextReplace",
      "pages TZTVariablesSaveAction: TVariablesSaveLoadForm TVariablesSaveOptionsFrame",
      "pages TZTVariablesLoadAction: TVariablesSaveLoadForm TVariablesLoadOptionsFrame",
      "pages TZTLogVariablesAction: TLogVarFrame",
      "pages TZTIfCOMClassRegistered: TZTIfCOMClassRegFrame",
      "pages TZTTextFindAction: TTextFindFrame TTextFindReplaceFrame TTextFindBehaviourFrame",
      "pages TZTFileCompareAction: TFileCompareFrame",
      "pages TZTCloseProcessAction: TCloseProcessFrame",
      "pages TZTFileSetCopyMoveAction: TFileSetCopyMoveFrame",
      "pages TZTReplaceVariablesAction: TReplaceVariablesFrame",
      "pages TZTImagesAction: TImagesFilesFrame TImagesOutputFrame TImagesRotateFrame TImagesResizeFrame",
      "pages TZTJPEGLosslessTransformAction: TJPEGLosslessTransformFilesFrame TJPEGLosslessTransformFrame",
  };
  EXPECT_EQ(Pages, ExpectedPages);
}

TEST(Registration, EveryTypeCreatesAnActionNamedAsRegistered) {
  RecordingServices S = Register(false);
  ASSERT_EQ(S.ActionClasses.size(), kPalette.size());
  for (std::size_t I = 0; I < S.ActionClasses.size(); ++I) {
    const frame::TZTActionClass& C = *S.ActionClasses[I];
    ASSERT_NE(C.Create, nullptr) << C.ClassName;
    std::unique_ptr<frame::TZTAction> A(C.Create());
    EXPECT_EQ(A->GetClass().ClassName, C.ClassName);
    EXPECT_EQ(kPalette[I].rfind("action " + C.GetActionName() + " | ", 0), 0u) << C.ClassName;
  }
}

// A stand-in as a type registered before it is built is declared.
using package::MakePlaceholderClass;
using package::TZTPlaceholderAction;
ZT_PLACEHOLDER(TZTStandInForTests, "Stand-in for Tests")

TEST(Registration, BuiltTypesReportAvailable) {
  EXPECT_TRUE(package::TDeleteFilesAction::ClassType().IsAvailable());
  EXPECT_FALSE(TZTStandInForTests::ClassType().IsAvailable());
  // Abstract classes cannot be created.
  EXPECT_EQ(package::TCustomRegAction::ClassType().Create, nullptr);
}

TEST(Registration, StandInFailsWithOneLine) {
  const frame::TZTActionClass& C = TZTStandInForTests::ClassType();
  FakeHost Host;
  std::unique_ptr<frame::TZTAction> A(C.Create());
  A->SetHost(&Host);
  A->SetTitle(C.GetActionName());
  EXPECT_FALSE(A->Execute());
  EXPECT_EQ(Host.Messages, std::vector<std::string>{"Stand-in for Tests is not available yet"});
  EXPECT_TRUE(Host.StatusEntries.empty());
  EXPECT_TRUE(C.Properties().empty());
}

TEST(Registration, RegisterBeforeServicesAreSetDoesNothing) {
  ZTSetServices(nullptr);
  ZTRegister(true);  // must neither crash nor throw
  EXPECT_EQ(ZTPackageApiVersion(), frame::ZT_HOST_API_VERSION);
}

}  // namespace
}  // namespace zt::testing
