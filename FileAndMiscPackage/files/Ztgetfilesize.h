// "Get File Size": the total size of a file, of the files a wildcard
// specification matches (in sub-directories too on request), or of every
// file below a directory, into a variable.
#pragma once

#include <cstdint>
#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

class TZTGetFileSizeAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTGetFileSizeAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Get File Size"; }
  static void Publish(frame::TZTPublisher<TZTGetFileSizeAction>& P);
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 560; }
  std::string GetQuickHelpFilename() override { return "Plugins\\GetFileSize.html"; }

  const std::string& GetFileName() const { return FFileName; }
  void SetFileName(const std::string& Value) { FFileName = Value; }
  bool GetRecurse() const { return FRecurse; }
  void SetRecurse(bool Value) { FRecurse = Value; }
  const std::string& GetZTVariable() const { return FZTVariable; }
  void SetZTVariable(const std::string& Value) { FZTVariable = Value; }
  bool GetFailIfMissing() const { return FFailIfMissing; }
  void SetFailIfMissing(bool Value) { FFailIfMissing = Value; }

 private:
  // Adds the sizes of Spec's matches, and with Recurse those of Spec's mask
  // in every sub-directory (links to directories are not entered). False
  // when the build was stopped.
  bool AddSizes(const std::string& Spec, bool Recurse);

  std::string FFileName;
  bool FRecurse = false;
  std::string FZTVariable;
  bool FFailIfMissing = true;
  std::int64_t FBytes = 0, FFiles = 0;  // the run's totals
};

}  // namespace zt::package
