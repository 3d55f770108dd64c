// "Create Text File": writes a new file holding exactly the bytes of the
// expanded contents (no byte-order mark, line breaks as written),
// optionally over an existing file and into directories it creates.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

class TZTCreateTextFileAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTCreateTextFileAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Create Text File"; }
  static void Publish(frame::TZTPublisher<TZTCreateTextFileAction>& P);

  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 3220; }
  std::string GetQuickHelpFilename() override { return "Plugins\\CreateTextFile.html"; }

  const std::string& GetFileContents() const { return FFileContents; }
  void SetFileContents(const std::string& Value) { FFileContents = Value; }
  bool GetOverwriteExisting() const { return FOverwriteExisting; }
  void SetOverwriteExisting(bool Value) { FOverwriteExisting = Value; }
  const std::string& GetNewFileName() const { return FNewFileName; }
  void SetNewFileName(const std::string& Value) { FNewFileName = Value; }
  bool GetCreateDirectory() const { return FCreateDirectory; }
  void SetCreateDirectory(bool Value) { FCreateDirectory = Value; }

 private:
  std::string FFileContents;
  bool FOverwriteExisting = false;
  std::string FNewFileName;
  bool FCreateDirectory = true;
};

}  // namespace zt::package
