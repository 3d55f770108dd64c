// "Concatenate Files": writes the bytes of the files that a list of file
// specifications names, in order, into one target file, which is replaced
// whole or not at all.
#pragma once

#include <string>
#include <vector>

#include "frame/ZTAction.h"

namespace zt::package {

class TConcatAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TConcatAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Concatenate Files"; }
  static void Publish(frame::TZTPublisher<TConcatAction>& P);
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 559; }
  std::string GetQuickHelpFilename() override { return "Plugins\\ConcatFiles.html"; }
  int GetFilesAffected() override { return FFilesAffected; }

  // One file specification per line.
  std::string GetSourceFiles() const { return FSourceFiles.Text(); }
  void SetSourceFiles(const std::string& Value) { FSourceFiles.SetText(Value); }
  const std::string& GetTargetFile() const { return FTargetFile; }
  void SetTargetFile(const std::string& Value) { FTargetFile = Value; }
  bool GetAppendToTarget() const { return FAppendToTarget; }
  void SetAppendToTarget(bool Value) { FAppendToTarget = Value; }
  const std::string& GetSeparator() const { return FSeparator; }
  void SetSeparator(const std::string& Value) { FSeparator = Value; }
  bool GetSkipByteOrderMarks() const { return FSkipByteOrderMarks; }
  void SetSkipByteOrderMarks(bool Value) { FSkipByteOrderMarks = Value; }
  bool GetFailIfMissing() const { return FFailIfMissing; }
  void SetFailIfMissing(bool Value) { FFailIfMissing = Value; }
  bool GetForce() const { return FForce; }
  void SetForce(bool Value) { FForce = Value; }

 private:
  // The files of every line, each line's sorted by name; false after the
  // reason is in Details.
  bool CollectSources(const std::string& Target, std::vector<std::string>& Files, frame::TStrings& Details);
  // Writes the parts into a replacement of Target; false after the reason is
  // in Details.
  bool WriteTarget(const std::string& Target, const std::vector<std::string>& Files, frame::TStrings& Details);

  frame::TStrings FSourceFiles;
  std::string FTargetFile;
  bool FAppendToTarget = false;
  std::string FSeparator;
  bool FSkipByteOrderMarks = false;
  bool FFailIfMissing = true;
  bool FForce = false;
  int FFilesAffected = 0;
};

}  // namespace zt::package
