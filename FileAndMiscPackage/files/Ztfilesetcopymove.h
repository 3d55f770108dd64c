// "FileSet Copy/Move": copies or moves the files of a project file set into
// a directory, keeping their paths below the set's base directory (or all
// straight into it). A copy never leaves half a file; a move deletes a
// source only once its copy is whole (the layer's copy and move services).
#pragma once

#include <cstdint>
#include <string>

#include "frame/ZTFileSet.h"
#include "platform/win_types.h"

namespace zt::package {

enum class TZTFileSetOperation { foCopy, foMove };

class TZTFileSetCopyMoveAction : public frame::TFileSetBaseAction {
  ZT_DECLARE_CLASS(TZTFileSetCopyMoveAction, frame::TFileSetBaseAction)

 public:
  static std::string GetActionName() { return "FileSet Copy/Move"; }
  static void Publish(frame::TZTPublisher<TZTFileSetCopyMoveAction>& P);

  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override {
    return "FileSet Copy/Move [ " + GetFileSetName() + " -> " + FTargetDir + " ]";
  }
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 562; }
  std::string GetQuickHelpFilename() override { return "Plugins\\FileSetCopyMove.html"; }
  int GetFilesAffected() override { return FFilesAffected; }
  bool CanTerminate() override { return true; }
  // Any thread, while Execute runs: raises the flag the transfer polls.
  void TerminateAction() override;

  // Called by the layer's copy and move routines while one file moves.
  void ProgressCallback(std::int64_t TotalFileSize, std::int64_t TotalBytesTransferred);
  bool Terminated() const;

  const std::string& GetTargetDir() const { return FTargetDir; }
  void SetTargetDir(const std::string& Value) { FTargetDir = Value; }
  TZTFileSetOperation GetOperation() const { return FOperation; }
  void SetOperation(TZTFileSetOperation Value) { FOperation = Value; }
  bool GetKeepStructure() const { return FKeepStructure; }
  void SetKeepStructure(bool Value) { FKeepStructure = Value; }
  bool GetRefreshFileSet() const { return FRefreshFileSet; }
  void SetRefreshFileSet(bool Value) { FRefreshFileSet = Value; }
  bool GetOverwriteExisting() const { return FOverwriteExisting; }
  void SetOverwriteExisting(bool Value) { FOverwriteExisting = Value; }
  bool GetOnlyIfNewer() const { return FOnlyIfNewer; }
  void SetOnlyIfNewer(bool Value) { FOnlyIfNewer = Value; }
  bool GetOverwriteReadOnly() const { return FOverwriteReadOnly; }
  void SetOverwriteReadOnly(bool Value) { FOverwriteReadOnly = Value; }
  bool GetClearAttributes() const { return FClearAttributes; }
  void SetClearAttributes(bool Value) { FClearAttributes = Value; }
  bool GetFailIfZeroFiles() const { return FFailIfZeroFiles; }
  void SetFailIfZeroFiles(bool Value) { FFailIfZeroFiles = Value; }
  int ReadFilesAffected() const { return FFilesAffected; }

 private:
  enum class TFileOutcome { Done, Skipped, Failed };
  TFileOutcome TransferFile(frame::TStrings& Details, const std::string& Source, const std::string& Target);

  std::string FTargetDir;
  TZTFileSetOperation FOperation = TZTFileSetOperation::foCopy;
  bool FKeepStructure = true;
  bool FRefreshFileSet = true;
  bool FOverwriteExisting = true;
  bool FOnlyIfNewer = false;
  bool FOverwriteReadOnly = false;
  bool FClearAttributes = false;
  bool FFailIfZeroFiles = false;
  int FFilesAffected = 0;
  std::string FProgressText;  // the current file's progress line
  std::int32_t FLastPercent = 0;
  // Set by TerminateAction on another thread; read through std::atomic_ref.
  alignas(4) platform::BOOL FTerminate = 0;
};

}  // namespace zt::package
