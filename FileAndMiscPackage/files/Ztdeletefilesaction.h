// "Delete File(s)": deletes every file matching one file specification (a
// path whose last component may hold * and ?). Never enters subdirectories
// and never deletes directories.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

class TCustomDeleteFilesAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TCustomDeleteFilesAction, frame::TCustomZTAction)

 public:
  TCustomDeleteFilesAction();

  static std::string GetActionName() { return "Delete File(s)"; }
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 550; }
  std::string GetQuickHelpFilename() override { return "Plugins\\DeleteFiles.html"; }
  // Files deleted by the last run.
  int GetFilesAffected() override { return FFilesDeleted; }

  const std::string& GetFileSpec() const { return FFileSpec; }
  void SetFileSpec(const std::string& Value) { FFileSpec = Value; }
  bool GetDeleteReadOnly() const { return FDeleteReadOnly; }
  void SetDeleteReadOnly(bool Value) { FDeleteReadOnly = Value; }
  bool GetDeleteHidden() const { return FDeleteHidden; }
  void SetDeleteHidden(bool Value) { FDeleteHidden = Value; }
  bool GetFailIfNoFile() const { return FFailIfNoFile; }
  void SetFailIfNoFile(bool Value) { FFailIfNoFile = Value; }

 protected:
  std::string FFileSpec;
  bool FDeleteReadOnly;
  bool FDeleteHidden;
  bool FFailIfNoFile;
  int FFilesDeleted = 0;
};

// The registered type: publishes the properties.
class TDeleteFilesAction : public TCustomDeleteFilesAction {
  ZT_DECLARE_CLASS(TDeleteFilesAction, TCustomDeleteFilesAction)

 public:
  static void Publish(frame::TZTPublisher<TDeleteFilesAction>& P);
};

}  // namespace zt::package
