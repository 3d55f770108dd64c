// "File Compare": compares two files byte for byte, or as text with every
// kind of line end taken as one; fails, or stores the answer, when they
// differ.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

enum TZTCompareMode { cmBinary, cmText };

class TZTFileCompareAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTFileCompareAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "File Compare"; }
  static void Publish(frame::TZTPublisher<TZTFileCompareAction>& P);
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 561; }
  std::string GetQuickHelpFilename() override { return "Plugins\\FileCompare.html"; }

  const std::string& GetFileName() const { return FFileName; }
  void SetFileName(const std::string& Value) { FFileName = Value; }
  const std::string& GetCompareToFile() const { return FCompareToFile; }
  void SetCompareToFile(const std::string& Value) { FCompareToFile = Value; }
  TZTCompareMode GetCompareMode() const { return FCompareMode; }
  void SetCompareMode(TZTCompareMode Value) { FCompareMode = Value; }
  const std::string& GetZTVariable() const { return FZTVariable; }
  void SetZTVariable(const std::string& Value) { FZTVariable = Value; }
  bool GetFailIfDifferent() const { return FFailIfDifferent; }
  void SetFailIfDifferent(bool Value) { FFailIfDifferent = Value; }

 private:
  std::string FFileName;
  std::string FCompareToFile;
  TZTCompareMode FCompareMode = cmBinary;
  std::string FZTVariable;
  bool FFailIfDifferent = true;
};

}  // namespace zt::package
