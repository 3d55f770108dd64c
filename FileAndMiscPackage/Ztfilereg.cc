#include "Ztfilereg.h"

#include "Ztplaceholders.h"
#include "Ztregistryreg.h"
#include "Ztservices.h"
#include "checksums/Ztfilecrcaction.h"
#include "checksums/Ztfilemd5action.h"
#include "files/BActions1.h"
#include "files/Ztconcatfiles.h"
#include "files/Ztcopymove.h"
#include "files/Ztdeletefilesaction.h"
#include "files/Ztdirectoryactions.h"
#include "files/Ztfileattrib.h"
#include "files/Ztfilecompare.h"
#include "files/Ztgetfilesize.h"
#include "files/Ztfilesetcopymove.h"
#include "files/Ztfileverinfo.h"
#include "files/Zttouchfile.h"
#include "images/Ztimages.h"
#include "images/Ztjpegtransform.h"
#include "iterators/Ztfileiterator.h"
#include "iterators/Ztfolderiteratoraction.h"
#include "iterators/Ztinifileiteratoraction.h"
#include "iterators/Ztlistiteratoractoin.h"
#include "iterators/Ztreadtextfileiteratoraction.h"
#include "system/Frunprog.h"
#include "system/Ztcloseprocessaction.h"
#include "system/Ztdatetimeaction.h"
#include "system/Ztdiskinfo.h"
#include "system/Ztifcomclassregistered.h"
#include "system/Ztrobocopy.h"
#include "system/Ztrobocopyoptions.h"
#include "system/Ztrunscriptaction.h"
#include "system/Ztshellexecute.h"
#include "system/Ztxcopyaction.h"
#include "text/Ztcreatetextfileaction.h"
#include "text/ZTTextFind.h"
#include "text/Ztinifile.h"
#include "text/Ztlogvariablevalues.h"
#include "text/Ztreadtextfileaction.h"
#include "text/Ztreplacevariablesaction.h"
#include "text/Zttextreplace.h"
#include "text/Ztvariablessaveloadaction.h"
#include "text/Ztwritetotextfileaction.h"

namespace zt::package {
namespace {

constexpr const char* kFiles = "Files & Directories";
constexpr const char* kIterators = "Iterators";
constexpr const char* kRegistryIni = "Registry & Ini";
constexpr const char* kWindows = "Windows OS";
constexpr const char* kMisc = "Misc";
constexpr const char* kVariables = "Variables";
constexpr const char* kFileSets = "File Sets";

// Registers Cls under the display name its class reports.
template <class Cls>
void RegisterNamed(const char* Category, const char* Icon) {
  ZTActionServices().RegisterAction(Cls::GetActionName(), Category, Cls::ClassType(), Icon);
}

// Loop actions get the script method "Reset" right after their registration.
template <class Cls>
void RegisterLoop(const char* Category, const char* Icon) {
  RegisterNamed<Cls>(Category, Icon);
  ZTScriptingServices().RegisterMethod(Cls::ClassType(), "Reset", "_Reset");
}

void RegisterActionTypes(bool Designing) {
  frame::IZTActionServices& A = ZTActionServices();
  A.RegisterAction("Check if File Exists", kFiles, TFileExistsAction::ClassType(), "HCHECKFILE");
  A.RegisterAction("Create Directory", kFiles, TCreateDirectoryAction::ClassType(), "HCREATE_DIR");
  A.RegisterAction("Delete Directory", kFiles, TDeleteDirectoryAction::ClassType(), "HDELETE_DIR");
  A.RegisterAction("Move Directory", kFiles, TZTMoveDirectoryAction::ClassType(), "HMOVEDIR");
  A.RegisterAction("Delete File(s)", kFiles, TDeleteFilesAction::ClassType(), "HDELETE_FILE");
  A.RegisterAction("Copy File(s)", kFiles, TCopyFilesAction::ClassType(), "HCOPYFILES");
  A.RegisterAction("Move File(s)", kFiles, TMoveFilesAction::ClassType(), "HMOVEFILES");
  A.RegisterAction("Set File Attributes", kFiles, TSetFileAttributesAction::ClassType(), "HSETFILEATTRIB");
  RegisterLoop<TFileIterator>(kIterators, "HFILEITERATOR");
  RegisterLoop<TFolderIterator>(kIterators, "FOLDERITERATOR");
  A.RegisterAction("Read Ini File", kRegistryIni, TReadIniFileAction::ClassType(), "HREADINI");
  A.RegisterAction("Write Ini File", kRegistryIni, TWriteIniFileAction::ClassType(), "HWRITEINI");
  A.RegisterAction("Run Script", kMisc, TZTScriptAction::ClassType(), "SCRIPTACTION");
  A.RegisterAction("Touch File(s)", kFiles, TTouchFilesAction::ClassType(), "HTOUCHFILES");
  A.RegisterAction("Execute Program", kWindows, TRunProgramAction::ClassType(), "HEXECUTEPROG");
  A.RegisterAction("Run DOS Command", kWindows, TRunDosCMDAction::ClassType(), "HRUNDOS");
  A.RegisterAction("Concatenate Files", kFiles, TConcatAction::ClassType(), "HCONCAT");
  RegisterNamed<TDiskInfoAction>(kWindows, "HDISKSPACE");
  A.RegisterAction("Get Date/Time", kMisc, TDateTimeAction::ClassType(), "HDATETIME");
  RegisterActions(Designing);  // the registry actions
  RegisterNamed<TRenameDirAction>(kFiles, "HRENAMEFILE");
  RegisterNamed<TZTCreateTextFileAction>(kFiles, "HCREATEFILE");
  RegisterNamed<TZTWriteToTextFileAction>(kFiles, "WRITETOTEXTFILE");
  RegisterNamed<TZTGetFileSizeAction>(kFiles, "FILESIZE");
  RegisterNamed<TZTIfCOMClassRegistered>(kWindows, "HIFCOMREG");
  RegisterNamed<TZTXCopyAction>(kFiles, "HXCOPY");
  ZTOptionsServices().RegisterOptions(TZTRobocopyOptions::ClassType(), "ROBOCOPYICON");
  RegisterNamed<TZTRobocopyCopyAction>(kFiles, "ROBOCOPYICON");
  RegisterNamed<TZTRobocopyJobAction>(kFiles, "ROBOCOPYJOB");
  RegisterNamed<TZTRobocopyMoveAction>(kFiles, "ROBOCOPYMOVE");
  RegisterNamed<TZTRobocopyMirrorAction>(kFiles, "ROBOCOPYMIRROR");
  RegisterNamed<TZTReadTextFileAction>(kFiles, "READTEXTFILE");
  RegisterLoop<TReadTextFileIterator>(kIterators, "READTEXTFILEITERATOR");
  RegisterLoop<TIniFileIterator>(kIterators, "INIFILEITERATOR");
  RegisterNamed<TZTExtractFileVerInfoAction>(kFiles, "EXTRACTFILEINFO");
  RegisterLoop<TZTListIterator>(kIterators, "LISTITERATOR");
  RegisterNamed<TZTFileCRCAction>(kFiles, "CRC32");
  RegisterNamed<TZTFileMD5Action>(kFiles, "MD5");
  RegisterNamed<TZTShellExecute>(kWindows, "HSHELLEXECUTE");
  RegisterNamed<TTextReplaceAction>(kFiles, "TEXTREPLACE");
  RegisterNamed<TZTVariablesSaveAction>(kVariables, "SAVEVARTOINI");
  RegisterNamed<TZTVariablesLoadAction>(kVariables, "LOADVARFROMINI");
  RegisterNamed<TZTTextFindAction>(kMisc, "TEXTFIND");
  RegisterNamed<TZTFileCompareAction>(kFiles, "FILECOMPARE");
  RegisterNamed<TZTLogVariablesAction>(kMisc, "LOGVARIABLEVALS");
  RegisterNamed<TZTCloseProcessAction>(kWindows, "CLOSEPROCESS");
  RegisterNamed<TZTFileSetCopyMoveAction>(kFileSets, "FILESETCOPY");
  RegisterNamed<TZTReplaceVariablesAction>(kMisc, "REPLACEVARS");
  // Both image actions share one icon.
  RegisterNamed<TZTImagesAction>(kMisc, "IMAGEACTION");
  RegisterNamed<TZTJPEGLosslessTransformAction>(kMisc, "IMAGEACTION");
}

void RegisterPropertyEditors() {
  frame::IZTActionServices& A = ZTActionServices();
  A.RegisterPropertyEditor("WideString", TFileExistsAction::ClassType(), "FileOrDirectory", "TFileNameEdit");
  A.RegisterPropertyEditor("WideString", TCreateDirectoryAction::ClassType(), "FileOrDirectory",
                           "TSelectDirectoryEditor");
  A.RegisterPropertyEditor("WideString", TDeleteDirectoryAction::ClassType(), "FileOrDirectory",
                           "TSelectDirectoryEditor");
  A.RegisterPropertyEditor("WideString", TDeleteFilesAction::ClassType(), "FileSpec", "TFileNameEditEx");
  // The delete action has no Target; the registration is harmless and kept.
  A.RegisterPropertyEditor("WideString", TDeleteFilesAction::ClassType(), "Target", "TFileNameEditEx");
  A.RegisterPropertyEditor("WideString", TCopyFilesAction::ClassType(), "FileSpec", "TFileNameEditEx");
  A.RegisterPropertyEditor("WideString", TCopyFilesAction::ClassType(), "Target", "TFileNameEditEx");
  A.RegisterPropertyEditor("WideString", TSetFileAttributesAction::ClassType(), "FileSpec", "TFileNameEdit");
  A.RegisterPropertyEditor("TAttributeSetting", TSetFileAttributesAction::ClassType(), "", "TFileAttributeEditor");
  A.RegisterPropertyEditor("WideString", TReadIniFileAction::ClassType(), "IniFile", "TIniFileNameEdit");
  A.RegisterPropertyEditor("WideString", TWriteIniFileAction::ClassType(), "IniFile", "TIniFileNameEdit");
  A.RegisterPropertyEditor("WideString", TReadIniFileAction::ClassType(), "VariableName", "TIniVariableEditor");
  A.RegisterPropertyEditor("string", TTouchFilesAction::ClassType(), "DateTimeString", "TTouchFilesDateEditor");
  A.RegisterPropertyEditor("WideString", TTouchFilesAction::ClassType(), "FileSpec", "TFileNameEdit");
  A.RegisterPropertyEditor("WideString", TRunProgramAction::ClassType(), "ProgramName", "TRunProgEditor");
  A.RegisterPropertyEditor("WideString", TRunProgramAction::ClassType(), "StartInDir", "TStartDirectoryEditor");
  A.RegisterPropertyEditor("WideString", TMoveFilesAction::ClassType(), "FileSpec", "TFileNameEditEx");
  A.RegisterPropertyEditor("WideString", TMoveFilesAction::ClassType(), "Target", "TFileNameEditEx");
}

// Pages in tab order.
void RegisterPages() {
  frame::IZTActionServices& A = ZTActionServices();
  A.RegisterActionPages(TFileExistsAction::ClassType(), {"TCheckFileFrame"});
  A.RegisterActionPages(TZTMoveDirectoryAction::ClassType(), {"TMoveDirectoryFrame"});
  A.RegisterActionPages(TDeleteDirectoryAction::ClassType(), {"TDeleteDirFrame"});
  A.RegisterActionPages(TDeleteFilesAction::ClassType(), {"TDeleteFilesFrame"});
  A.RegisterActionPages(TSetFileAttributesAction::ClassType(), {"TFileAttributeFrame"});
  A.RegisterActionPages(TFileIterator::ClassType(), {"TFileIteratorFrame"});
  A.RegisterActionPages(TFolderIterator::ClassType(), {"TFolderIteratorFrame"});
  A.RegisterActionPages(TMoveFilesAction::ClassType(), {"TMoveFrame"});
  A.RegisterActionPages(TReadIniFileAction::ClassType(), {"TReadIniFrame"});
  A.RegisterActionPages(TTouchFilesAction::ClassType(), {"TTouchFrame"});
  A.RegisterActionPages(TWriteIniFileAction::ClassType(), {"TWriteIniFrame"});
  A.RegisterActionPages(TCopyFilesAction::ClassType(), {"TCopyFrame"});
  A.RegisterActionPages(TCreateDirectoryAction::ClassType(), {"TCreateDirectoryFrame"});
  A.RegisterActionPages(TRunDosCMDAction::ClassType(), {"TRunDosCmdFrame"});
  A.RegisterActionPages(TRunProgramAction::ClassType(), {"TRunProgramFrame"});
  A.RegisterActionPages(TRenameDirAction::ClassType(), {"TRenameDirFrame"});
  A.RegisterActionPages(TZTGetFileSizeAction::ClassType(), {"TGetFileSizeFrame"});
  A.RegisterActionPages(TConcatAction::ClassType(), {"TConcatFilesFrame"});
  A.RegisterActionPages(TDiskInfoAction::ClassType(), {"TDiskFreeSpaceFrame"});
  A.RegisterActionPages(TDateTimeAction::ClassType(), {"TGetDateTimeFrame"});
  A.RegisterActionPages(TZTCreateTextFileAction::ClassType(), {"TCreateFileFrame"});
  A.RegisterActionPages(TZTWriteToTextFileAction::ClassType(), {"TWriteToTextFileFrame"});
  A.RegisterActionPages(TZTXCopyAction::ClassType(),
                        {"TXCopyMainFrame", "TXCopyOptionsFrame", "TXCopyAttribFrame", "TZTXcopyExcludeFilesFrame"});
  ZTOptionsServices().RegisterOptionsPages(TZTRobocopyOptions::ClassType(), {"TRobocopyOptionsFrame"});
  A.RegisterActionPages(TZTRobocopyCopyAction::ClassType(),
                        {"TRobocopyMainFrame", "TRobocopyCopyOptionsFrame", "TRobocopyIncludeFrame",
                         "TRobocopyExcludeFrame", "TZTRobocopyExcludeFilesFrame", "TZTRobocopyExcludeDirFrame",
                         "TRobocopyLogOptionsFrame"});
  A.RegisterActionPages(TZTRobocopyJobAction::ClassType(),
                        {"TRobocopyMainFrame", "TRobocopyJobsFrame", "TRobocopyLogOptionsFrame"});
  A.RegisterActionPages(TZTRobocopyMoveAction::ClassType(),
                        {"TRobocopyMainFrame", "TRobocopyMoveOptionsFrame", "TRobocopyIncludeFrame",
                         "TRobocopyExcludeFrame", "TZTRobocopyExcludeFilesFrame", "TZTRobocopyExcludeDirFrame",
                         "TRobocopyLogOptionsFrame"});
  A.RegisterActionPages(TZTRobocopyMirrorAction::ClassType(),
                        {"TRobocopyMainFrame", "TRobocopyIncludeFrame", "TRobocopyExcludeFrame",
                         "TZTRobocopyExcludeFilesFrame", "TZTRobocopyExcludeDirFrame", "TRobocopyLogOptionsFrame"});
  A.RegisterActionPages(TZTReadTextFileAction::ClassType(), {"TReadFileFrame"});
  A.RegisterActionPages(TReadTextFileIterator::ClassType(), {"TReadTextFileIteratorFrame"});
  A.RegisterActionPages(TIniFileIterator::ClassType(), {"TIniFileIteratorFrame"});
  A.RegisterActionPages(TZTExtractFileVerInfoAction::ClassType(), {"TExtractFileVersionInfoFrame"});
  A.RegisterActionPages(TZTListIterator::ClassType(), {"TListIteratorFrame", "TListIteratorSeparatorFrame"});
  A.RegisterActionPages(TZTFileCRCAction::ClassType(), {"TFileCRCFrame"});
  A.RegisterActionPages(TZTFileMD5Action::ClassType(), {"TFileMD5Frame"});
  A.RegisterActionPages(TZTShellExecute::ClassType(), {"TZTShellExecuteFrame"});
  A.RegisterActionPages(TTextReplaceAction::ClassType(), {"TfrmTextReplace"});
  A.RegisterActionPages(TZTVariablesSaveAction::ClassType(), {"TVariablesSaveLoadForm", "TVariablesSaveOptionsFrame"});
  A.RegisterActionPages(TZTVariablesLoadAction::ClassType(), {"TVariablesSaveLoadForm", "TVariablesLoadOptionsFrame"});
  A.RegisterActionPages(TZTLogVariablesAction::ClassType(), {"TLogVarFrame"});
  A.RegisterActionPages(TZTIfCOMClassRegistered::ClassType(), {"TZTIfCOMClassRegFrame"});
  A.RegisterActionPages(TZTTextFindAction::ClassType(),
                        {"TTextFindFrame", "TTextFindReplaceFrame", "TTextFindBehaviourFrame"});
  A.RegisterActionPages(TZTFileCompareAction::ClassType(), {"TFileCompareFrame"});
  A.RegisterActionPages(TZTCloseProcessAction::ClassType(), {"TCloseProcessFrame"});
  A.RegisterActionPages(TZTFileSetCopyMoveAction::ClassType(), {"TFileSetCopyMoveFrame"});
  A.RegisterActionPages(TZTReplaceVariablesAction::ClassType(), {"TReplaceVariablesFrame"});
  A.RegisterActionPages(TZTImagesAction::ClassType(),
                        {"TImagesFilesFrame", "TImagesOutputFrame", "TImagesRotateFrame", "TImagesResizeFrame"});
  A.RegisterActionPages(TZTJPEGLosslessTransformAction::ClassType(),
                        {"TJPEGLosslessTransformFilesFrame", "TJPEGLosslessTransformFrame"});
  // The run-script action has no page; the registry actions register theirs
  // with their own registration.
}

}  // namespace

void RegisterPackage(bool Designing) {
  RegisterActionTypes(Designing);
  if (!Designing) return;
  RegisterPropertyEditors();
  RegisterPages();
}

}  // namespace zt::package
