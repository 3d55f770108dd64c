// Actions on one directory: "Delete Directory" (by default with everything
// in it), "Move Directory" (also across file systems, by copy and delete)
// and "Rename File or Directory" (a new name in the same directory).
#pragma once

#include <string>

#include "files/BActions1.h"

namespace zt::package {

class TDeleteDirectoryAction : public TFileOrDirectoryAction {
  ZT_DECLARE_CLASS(TDeleteDirectoryAction, TFileOrDirectoryAction)

 public:
  static std::string GetActionName() { return "Delete Directory"; }
  static void Publish(frame::TZTPublisher<TDeleteDirectoryAction>& P);
  TFileDirFlags GetFlags() const override { return {fdIsDir, fdMustExist, fdDelTree}; }
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 553; }
  std::string GetQuickHelpFilename() override { return "Plugins\\DeleteDirectory.html"; }
  int GetFilesAffected() override { return FFilesDeleted; }

  bool GetDeleteTree() const { return FDeleteTree; }
  void SetDeleteTree(bool Value) { FDeleteTree = Value; }
  bool GetDeleteReadOnly() const { return FDeleteReadOnly; }
  void SetDeleteReadOnly(bool Value) { FDeleteReadOnly = Value; }
  bool GetFailIfMissing() const { return FFailIfMissing; }
  void SetFailIfMissing(bool Value) { FFailIfMissing = Value; }

 private:
  bool FDeleteTree = true;
  bool FDeleteReadOnly = true;
  bool FFailIfMissing = false;
  int FFilesDeleted = 0;
};

class TZTMoveDirectoryAction : public TFileOrDirectoryAction {
  ZT_DECLARE_CLASS(TZTMoveDirectoryAction, TFileOrDirectoryAction)

 public:
  static std::string GetActionName() { return "Move Directory"; }
  static void Publish(frame::TZTPublisher<TZTMoveDirectoryAction>& P);
  TFileDirFlags GetFlags() const override { return {fdIsDir, fdMustExist, fdHasTarget, fdForce}; }
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 557; }
  std::string GetQuickHelpFilename() override { return "Plugins\\MoveDirectory.html"; }

  const std::string& GetTarget() const { return FTarget; }
  void SetTarget(const std::string& Value) { FTarget = Value; }
  bool GetMoveInto() const { return FMoveInto; }
  void SetMoveInto(bool Value) { FMoveInto = Value; }
  bool GetForce() const { return FForce; }
  void SetForce(bool Value) { FForce = Value; }
  bool GetReplaceExisting() const { return FReplaceExisting; }
  void SetReplaceExisting(bool Value) { FReplaceExisting = Value; }

 private:
  // The move itself, once Src and Dst passed every check; false after
  // adding the reason to Details.
  bool MoveTree(const std::string& Src, const std::string& Dst, frame::TStrings& Details);

  std::string FTarget;
  bool FMoveInto = false;
  bool FForce = false;
  bool FReplaceExisting = false;
};

class TRenameDirAction : public TFileOrDirectoryAction {
  ZT_DECLARE_CLASS(TRenameDirAction, TFileOrDirectoryAction)

 public:
  static std::string GetActionName() { return "Rename File or Directory"; }
  static void Publish(frame::TZTPublisher<TRenameDirAction>& P);
  TFileDirFlags GetFlags() const override { return {fdMustExist, fdHasTarget}; }
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 558; }
  std::string GetQuickHelpFilename() override { return "Plugins\\RenameFile.html"; }

  const std::string& GetNewName() const { return FNewName; }
  void SetNewName(const std::string& Value) { FNewName = Value; }
  bool GetOverwriteExisting() const { return FOverwriteExisting; }
  void SetOverwriteExisting(bool Value) { FOverwriteExisting = Value; }

 private:
  std::string FNewName;
  bool FOverwriteExisting = false;
};

}  // namespace zt::package
