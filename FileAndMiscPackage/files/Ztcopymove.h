// "Copy File(s)" and "Move File(s)": copy or move the files that one file
// specification names (wildcards * and ? in its last component) to a target
// file or directory. Copy can descend into sub-directories and rebuild the
// tree under the target; move works on one directory level and can stop on
// its first error. Both report progress per file and count what they handled.
#pragma once

#include <cstdint>
#include <string>

#include "frame/ZTAction.h"
#include "platform/files.h"
#include "platform/win_types.h"

namespace zt::package {

// Holds every property and the copy algorithm; move reuses the properties
// and the progress routine.
class TCustomCopyFilesAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TCustomCopyFilesAction, frame::TCustomZTAction)

 public:
  TCustomCopyFilesAction();

  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  void GetHiddenProperties(frame::TStrings& List) override;
  int GetFilesAffected() override { return FFilesAffected; }
  bool CanTerminate() override { return true; }
  // Thread use: may be called from any thread while Execute runs; it only
  // raises the terminate flag, which the running copy polls.
  void TerminateAction() override;

  // Called by the copy and move routines of the platform (through a plain
  // routine that forwards to it) while one file is being transferred: sends
  // the file's progress line whenever the rounded percentage changes.
  void ProgressCallback(std::int64_t TotalFileSize, std::int64_t TotalBytesTransferred);

  // Coupled setters: a FileSpec with a wildcard makes the target a
  // directory; a target that is not a directory cannot be recursed into.
  const std::string& GetFileSpec() const { return FFileSpec; }
  void SetFileSpec(const std::string& Value);
  const std::string& GetTarget() const { return FTarget; }
  void SetTarget(const std::string& Value) { FTarget = Value; }
  bool GetForce() const { return FForce; }
  void SetForce(bool Value) { FForce = Value; }
  bool GetTargetIsDir() const { return FTargetIsDir; }
  void SetTargetIsDir(bool Value);
  bool GetFailIfExists() const { return FFailIfExists; }
  void SetFailIfExists(bool Value) { FFailIfExists = Value; }
  bool GetOverwriteReadOnly() const { return FOverwriteReadOnly; }
  void SetOverwriteReadOnly(bool Value) { FOverwriteReadOnly = Value; }
  bool GetRecurse() const { return FRecurse; }
  void SetRecurse(bool Value);
  bool GetClearAttributes() const { return FClearAttributes; }
  void SetClearAttributes(bool Value) { FClearAttributes = Value; }
  bool GetFailIfZeroFiles() const { return FFailIfZeroFiles; }
  void SetFailIfZeroFiles(bool Value) { FFailIfZeroFiles = Value; }
  // The published read-only counts (GetFilesAffected is the host's query).
  int ReadFilesAffected() const { return FFilesAffected; }
  int GetErrorCount() const { return FErrorCount; }

 protected:
  // Copies the matches of Spec at one directory level into Target, then
  // (with Recurse) each sub-directory into Target's sub-directory of the same
  // name. Count grows by the files copied, also those of a level that fails.
  // True when no file of this level failed; a sub-directory's failure is
  // logged but does not change it.
  bool DoRecursiveCopyMove(frame::IZTActionLogMessage& Entry, const std::string& Spec, const std::string& Target,
                           int& Count);
  // Copies one file; false (after its log lines) when it was not copied.
  virtual bool ProcessFile(frame::IZTActionLogMessage& Entry, const std::string& SourceFile,
                           const std::string& TargetFile);

  // ForceDirectories for Dir, skipped when the previous file of the run
  // already made or found that same directory (a level's files share one).
  void ForceTargetDirectory(const std::string& Dir);
  // True when Dir is the run's target directory (same device and inode),
  // which a walk must not enter: it would copy the copy into itself.
  bool IsRunTargetDirectory(const std::string& Dir);
  // Starts a new file's progress line (percent 0).
  void BeginProgress(const std::string& Text);
  bool Terminated() const;
  void ResetTerminated();
  // The cancel flag handed to the platform's copy routine.
  platform::BOOL* CancelFlag() { return &FTerminate; }

  std::int32_t FLastPercent = 0;
  std::string FProgressText;
  std::string FFileSpec;
  bool FForce = false;
  std::string FTarget;
  bool FTargetIsDir = false;
  bool FFailIfExists = false;
  bool FOverwriteReadOnly = false;
  bool FRecurse = false;
  std::int32_t FFilesAffected = 0;
  std::int32_t FErrorCount = 0;
  bool FClearAttributes = false;
  bool FFailIfZeroFiles = false;
  std::string FLastForcedDir;  // run state of ForceTargetDirectory
  std::string FRunTarget;      // run state of IsRunTargetDirectory: the expanded target,
  std::uint64_t FRunTargetDevice = 0, FRunTargetInode = 0;  // and its identity once it exists
  bool FRunTargetKnown = false;

 private:
  // Written by TerminateAction on another thread and read by the build
  // thread and by the platform's copy loop. Every access of ours goes through
  // std::atomic_ref; the copy loop reads it once per chunk through the
  // pointer (an aligned 32-bit load, reloaded after each opaque chunk call).
  alignas(4) platform::BOOL FTerminate = 0;
};

class TCopyFilesAction : public TCustomCopyFilesAction {
  ZT_DECLARE_CLASS(TCopyFilesAction, TCustomCopyFilesAction)

 public:
  static std::string GetActionName() { return "Copy File(s)"; }
  int GetHelpTopicID() override { return 554; }
  std::string GetQuickHelpFilename() override { return "Plugins\\CopyFiles.html"; }
  static void Publish(frame::TZTPublisher<TCopyFilesAction>& P);
};

// Moves the matches of one directory level; has its own algorithm and does
// not descend into sub-directories.
class TMoveFilesAction : public TCustomCopyFilesAction {
  ZT_DECLARE_CLASS(TMoveFilesAction, TCustomCopyFilesAction)

 public:
  TMoveFilesAction();

  static std::string GetActionName() { return "Move File(s)"; }
  bool Execute() override;
  int GetHelpTopicID() override { return 555; }
  std::string GetQuickHelpFilename() override { return "Plugins\\MoveFiles.html"; }
  static void Publish(frame::TZTPublisher<TMoveFilesAction>& P);

  bool GetStopOnAnyErrors() const { return FStopOnAnyErrors; }
  void SetStopOnAnyErrors(bool Value) { FStopOnAnyErrors = Value; }

 protected:
  bool FStopOnAnyErrors;
};

}  // namespace zt::package
