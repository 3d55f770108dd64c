// The robocopy actions: Robocopy copies a tree, Robocopy Move moves it,
// Robocopy Mirror makes the destination equal the source, Run Robocopy Job
// runs a saved job file. Properties become robocopy switches (GetCommandLine);
// the layer's built-in robocopy runs them (the system's robocopy on Windows
// when the options say so), and InterpretResult judges the exit code.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "frame/ZTExecute.h"
#include "platform/win_types.h"

namespace zt::package {

// Bit n = value n; letters R A S H C N E T O.
enum TZTRobocopyAttribute { raReadOnly, raArchive, raSystem, raHidden, raCompressed, raNotIndexed, raEncrypted,
                            raTemporary, raOffline };
// "RA" for {raReadOnly, raArchive}.
std::string RobocopyAttributeLetters(int Set);
// "files copied, extra files or directories"; "no change" for 0.
std::string RobocopyExitWords(int Code);

#define ZT_ROBOCOPY_FLAG(Name)                  \
  bool Get##Name() const { return F##Name; }    \
  void Set##Name(bool Value) { F##Name = Value; } \
                                                \
 protected:                                     \
  bool F##Name = false;                         \
                                                \
 public:

#define ZT_ROBOCOPY_TEXT(Name)                                       \
  const std::string& Get##Name() const { return F##Name; }           \
  void Set##Name(const std::string& Value) { F##Name = Value; }      \
                                                                     \
 protected:                                                          \
  std::string F##Name;                                               \
                                                                     \
 public:

#define ZT_ROBOCOPY_INT(Name, Default)                          \
  std::int32_t Get##Name() const { return F##Name; }            \
  void Set##Name(std::int32_t Value) { F##Name = Value; }       \
                                                                \
 protected:                                                     \
  std::int32_t F##Name = Default;                               \
                                                                \
 public:

class TZTCustomRobocopyAction : public frame::TZTExecuteAbstractAction {
  ZT_DECLARE_CLASS(TZTCustomRobocopyAction, frame::TZTExecuteAbstractAction)

 public:
  static constexpr std::int32_t kNoReturnCode = 2147483647;
  static std::string GetActionName() { return "Robocopy"; }
  static void Publish(frame::TZTPublisher<TZTCustomRobocopyAction>& P);

  // The built-in engine on the recorded arguments, or (Windows, Engine =
  // reSystemTool) the system's robocopy through the host's process runner.
  bool Execute() override;
  void TerminateAction() override;
  bool GetCommandLine(frame::ICommandLineBuilder& Builder) override;
  void BeforeExecute(frame::ICommandLineBuilder& Builder) override;
  std::string GetExecutable() override;
  bool InterpretResult(int ExitCode) override;
  void OnFailure(int) override {}  // the exit-code line says it all
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  void GetHiddenProperties(frame::TStrings& List) override;
  void GetReadOnlyProperties(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 520; }
  std::string GetQuickHelpFilename() override { return "Plugins\\Robocopy.html"; }

  ZT_ROBOCOPY_TEXT(Source)
  ZT_ROBOCOPY_TEXT(Destination)
  std::string GetFilesText() const { return FFiles.Text(); }
  void SetFilesText(const std::string& Value) { FFiles.SetText(Value); }
  ZT_ROBOCOPY_INT(Retries, -1)
  ZT_ROBOCOPY_INT(RetryWait, -1)
  ZT_ROBOCOPY_INT(Threads, 0)
  ZT_ROBOCOPY_TEXT(AdditionalSwitches)
  ZT_ROBOCOPY_INT(FailureLevel, 8)
  std::int32_t GetReturnCode() const { return FReturnCode; }
  ZT_ROBOCOPY_FLAG(ListOnly)
  ZT_ROBOCOPY_FLAG(ReportExtra)
  ZT_ROBOCOPY_FLAG(Verbose)
  ZT_ROBOCOPY_FLAG(TimeStamps)
  ZT_ROBOCOPY_FLAG(FullPaths)
  ZT_ROBOCOPY_FLAG(NoSizes)
  ZT_ROBOCOPY_FLAG(NoClasses)
  ZT_ROBOCOPY_FLAG(NoFileList)
  ZT_ROBOCOPY_FLAG(NoDirList)
  ZT_ROBOCOPY_FLAG(Tee)
  ZT_ROBOCOPY_FLAG(NoJobHeader)
  ZT_ROBOCOPY_FLAG(NoJobSummary)
  ZT_ROBOCOPY_TEXT(LogFile)
  ZT_ROBOCOPY_FLAG(AppendLog)
  ZT_ROBOCOPY_FLAG(UnicodeLog)
  bool GetNoProgress() const { return FNoProgress; }
  void SetNoProgress(bool Value) { FNoProgress = Value; }

 protected:
  // The parts of the command line in their order; each adds its switches.
  virtual bool AddPaths(frame::ICommandLineBuilder& B);
  virtual bool AddTreeOptions(frame::ICommandLineBuilder& B) { (void)B; return true; }
  virtual bool AddSelection(frame::ICommandLineBuilder& B) { (void)B; return true; }
  virtual bool AddJob(frame::ICommandLineBuilder& B) { (void)B; return true; }
  bool Expand(const std::string& Caption, const std::string& Text, bool IsName, std::string& Out);
  // Adds the list's expanded lines after Switch (nothing for an empty list).
  bool AddList(frame::ICommandLineBuilder& B, const char* Switch, const char* Caption, const frame::TStrings& L);
  bool UsesSystemTool();

  frame::TStrings FFiles;
  bool FNoProgress = true;
  std::int32_t FReturnCode = kNoReturnCode;
  platform::BOOL FTerminate = 0;  // the engine's cancel flag; written through std::atomic_ref
};

class TZTRobocopyJobAction : public TZTCustomRobocopyAction {
  ZT_DECLARE_CLASS(TZTRobocopyJobAction, TZTCustomRobocopyAction)

 public:
  static std::string GetActionName() { return "Run Robocopy Job"; }
  static void Publish(frame::TZTPublisher<TZTRobocopyJobAction>& P);
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 521; }

  ZT_ROBOCOPY_TEXT(JobFile)
  ZT_ROBOCOPY_FLAG(NoSourceDir)
  ZT_ROBOCOPY_FLAG(NoDestDir)

 protected:
  bool AddPaths(frame::ICommandLineBuilder& B) override;
  bool AddJob(frame::ICommandLineBuilder& B) override;
};

class TZTRobocopySelectionAction : public TZTCustomRobocopyAction {
  ZT_DECLARE_CLASS(TZTRobocopySelectionAction, TZTCustomRobocopyAction)

 public:
  static void Publish(frame::TZTPublisher<TZTRobocopySelectionAction>& P);
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;

  ZT_ROBOCOPY_FLAG(OnlyArchive)
  ZT_ROBOCOPY_FLAG(ResetArchive)
  ZT_ROBOCOPY_FLAG(IncludeSame)
  ZT_ROBOCOPY_FLAG(IncludeTweaked)
  ZT_ROBOCOPY_INT(IncludeAttributes, 0)
  ZT_ROBOCOPY_INT(MaxSize, 0)
  ZT_ROBOCOPY_INT(MinSize, 0)
  ZT_ROBOCOPY_TEXT(MaxAge)
  ZT_ROBOCOPY_TEXT(MinAge)
  ZT_ROBOCOPY_INT(ExcludeAttributes, 0)
  ZT_ROBOCOPY_FLAG(ExcludeChanged)
  ZT_ROBOCOPY_FLAG(ExcludeNewer)
  ZT_ROBOCOPY_FLAG(ExcludeOlder)
  ZT_ROBOCOPY_FLAG(ExcludeExtra)
  ZT_ROBOCOPY_FLAG(ExcludeLonely)
  ZT_ROBOCOPY_FLAG(ExcludeLinks)
  ZT_ROBOCOPY_FLAG(FatFileTimes)
  ZT_ROBOCOPY_FLAG(CompensateDST)
  std::string GetExcludeFilesText() const { return FExcludeFiles.Text(); }
  void SetExcludeFilesText(const std::string& Value) { FExcludeFiles.SetText(Value); }
  std::string GetExcludeDirsText() const { return FExcludeDirs.Text(); }
  void SetExcludeDirsText(const std::string& Value) { FExcludeDirs.SetText(Value); }

 protected:
  bool AddSelection(frame::ICommandLineBuilder& B) override;
  frame::TStrings FExcludeFiles, FExcludeDirs;
};

class TZTRobocopyMirrorAction : public TZTRobocopySelectionAction {
  ZT_DECLARE_CLASS(TZTRobocopyMirrorAction, TZTRobocopySelectionAction)

 public:
  static std::string GetActionName() { return "Robocopy Mirror"; }
  int GetHelpTopicID() override { return 523; }

 protected:
  bool AddTreeOptions(frame::ICommandLineBuilder& B) override;
};

class TZTCustomRobocopyCopyAction : public TZTRobocopySelectionAction {
  ZT_DECLARE_CLASS(TZTCustomRobocopyCopyAction, TZTRobocopySelectionAction)

 public:
  static void Publish(frame::TZTPublisher<TZTCustomRobocopyCopyAction>& P);
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;

  ZT_ROBOCOPY_FLAG(CopySubDirs)
  ZT_ROBOCOPY_FLAG(CopyEmptySubDirs)
  ZT_ROBOCOPY_INT(Levels, 0)
  ZT_ROBOCOPY_INT(AddAttributes, 0)
  ZT_ROBOCOPY_INT(RemoveAttributes, 0)

 protected:
  bool AddTreeOptions(frame::ICommandLineBuilder& B) override;
};

class TZTRobocopyCopyAction : public TZTCustomRobocopyCopyAction {
  ZT_DECLARE_CLASS(TZTRobocopyCopyAction, TZTCustomRobocopyCopyAction)

 public:
  static void Publish(frame::TZTPublisher<TZTRobocopyCopyAction>& P);
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;

  std::string GetCopyFlags() const { return FCopyFlags; }
  void SetCopyFlags(const std::string& Value) { FCopyFlags = Value; }
  std::string GetDirCopyFlags() const { return FDirCopyFlags; }
  void SetDirCopyFlags(const std::string& Value) { FDirCopyFlags = Value; }
  ZT_ROBOCOPY_FLAG(Purge)
  ZT_ROBOCOPY_FLAG(CreateOnly)
  ZT_ROBOCOPY_FLAG(CopyLinks)
  ZT_ROBOCOPY_FLAG(Restartable)
  ZT_ROBOCOPY_FLAG(BackupMode)

 protected:
  bool AddTreeOptions(frame::ICommandLineBuilder& B) override;
  std::string FCopyFlags = "DAT", FDirCopyFlags = "DA";
};

class TZTRobocopyMoveAction : public TZTCustomRobocopyCopyAction {
  ZT_DECLARE_CLASS(TZTRobocopyMoveAction, TZTCustomRobocopyCopyAction)

 public:
  static std::string GetActionName() { return "Robocopy Move"; }
  static void Publish(frame::TZTPublisher<TZTRobocopyMoveAction>& P);
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 522; }

  ZT_ROBOCOPY_FLAG(MoveDirectories)

 protected:
  bool AddTreeOptions(frame::ICommandLineBuilder& B) override;
};

#undef ZT_ROBOCOPY_FLAG
#undef ZT_ROBOCOPY_TEXT
#undef ZT_ROBOCOPY_INT

}  // namespace zt::package
