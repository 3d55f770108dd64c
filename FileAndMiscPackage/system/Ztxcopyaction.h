// "XCopy": copies files and directory trees with the system's xcopy tool
// (where there is none, with the layer's built-in xcopy). The properties become xcopy switches; an exclusion list goes into a
// temporary file that is removed when the run ends, whatever happened.
#pragma once

#include <string>

#include "frame/ZTExecute.h"
#include "platform/dates.h"

namespace zt::package {

enum TZTXCopyMode { mdNormal, mdRecursive, mdTest, mdDirStructure };
enum TZTXCopyLogMode { logNormal, logQuiet, logVerbose };

class TZTXCopyAction : public frame::TZTExecuteAbstractAction {
  ZT_DECLARE_CLASS(TZTXCopyAction, frame::TZTExecuteAbstractAction)

 public:
  TZTXCopyAction();

  static std::string GetActionName() { return "XCopy"; }
  static void Publish(frame::TZTPublisher<TZTXCopyAction>& P);
  // Also removes the exclusion file when the program could not be started.
  bool Execute() override;
  void TerminateAction() override;
  bool GetCommandLine(frame::ICommandLineBuilder& Builder) override;
  std::string GetExecutable() override;
  std::string GetStartingDir(const std::string& Default) override;
  bool InterpretResult(int ExitCode) override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  std::string GetQuickHelpFilename() override { return "Plugins\\XCopy.html"; }

  const std::string& GetSource() const { return FSource; }
  void SetSource(const std::string& Value) { FSource = Value; }
  const std::string& GetDestination() const { return FDestination; }
  void SetDestination(const std::string& Value) { FDestination = Value; }
  const frame::TStrings& GetExcludeFiles() const { return FExcludeFiles; }
  // The list as text (lines ended by CR LF), as the property system keeps it.
  std::string GetExcludeFilesText() const { return FExcludeFiles.Text(); }
  void SetExcludeFilesText(const std::string& Value) { FExcludeFiles.SetText(Value); }
  TZTXCopyMode GetXCopyMode() const { return FXCopyMode; }
  void SetXCopyMode(TZTXCopyMode Value) { FXCopyMode = Value; }
  TZTXCopyLogMode GetXCopyLogMode() const { return FXCopyLogMode; }
  void SetXCopyLogMode(TZTXCopyLogMode Value) { FXCopyLogMode = Value; }
  platform::TDateTime GetChangedAfterDate() const { return FChangedAfterDate; }
  void SetChangedAfterDate(platform::TDateTime Value) { FChangedAfterDate = Value; }
  // The temporary exclusion file of the run going on; empty when none.
  const std::string& GetExclusionFileName() const { return FTempFileName; }

#define ZT_XCOPY_FLAG(Name)                           \
  bool Get##Name() const { return F##Name; }          \
  void Set##Name(bool Value) { F##Name = Value; }
  ZT_XCOPY_FLAG(OnlyArchiveFiles)
  ZT_XCOPY_FLAG(TurnOffArchiveBit)
  ZT_XCOPY_FLAG(CopyHiddenAndSys)
  ZT_XCOPY_FLAG(OverwriteReadOnly)
  ZT_XCOPY_FLAG(CopyAttributes)
  ZT_XCOPY_FLAG(OnlyFilesThatAlreadyExist)
  ZT_XCOPY_FLAG(CopyUsingShortNames)
  ZT_XCOPY_FLAG(CopyNetworkedFiles)
  ZT_XCOPY_FLAG(CopyNewerFiles)
  ZT_XCOPY_FLAG(CopyFilesChnagedAfter)
  ZT_XCOPY_FLAG(Verify)
  ZT_XCOPY_FLAG(IgnoreErrors)
  ZT_XCOPY_FLAG(CopyOwnershipAndACL)
  ZT_XCOPY_FLAG(CopyFileAuditSettings)
  ZT_XCOPY_FLAG(CopyEncryptedIfNotSupportedInDest)
  ZT_XCOPY_FLAG(CopyEmptyDirectories)
#undef ZT_XCOPY_FLAG

 private:
  // Adds "/EXCLUDE:" and its file when the list holds a line. False when a
  // line does not expand.
  bool AddExclusionList(frame::ICommandLineBuilder& Builder);
  void RemoveExclusionFile();

  std::string FSource, FDestination;
  frame::TStrings FExcludeFiles;
  TZTXCopyMode FXCopyMode = mdNormal;
  TZTXCopyLogMode FXCopyLogMode = logNormal;
  bool FOnlyArchiveFiles = false, FTurnOffArchiveBit = false, FCopyHiddenAndSys = false,
       FOverwriteReadOnly = false, FCopyAttributes = false, FOnlyFilesThatAlreadyExist = false,
       FCopyUsingShortNames = false, FCopyNetworkedFiles = false, FCopyNewerFiles = false,
       FCopyFilesChnagedAfter = false, FVerify = false, FIgnoreErrors = false, FCopyOwnershipAndACL = false,
       FCopyFileAuditSettings = false, FCopyEncryptedIfNotSupportedInDest = false, FCopyEmptyDirectories = false;
  platform::TDateTime FChangedAfterDate;
  std::string FTempFileName;
  platform::BOOL FTerminate = 0;  // the built-in xcopy's cancel flag; written through std::atomic_ref
};

// FormatDateTime("m-d-yyyy"): 5 March 2024 gives "3-5-2024".
std::string FormatXCopyDate(platform::TDateTime D);

}  // namespace zt::package
