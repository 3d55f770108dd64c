// "Extract Version Info": reads the version resource of a Windows
// executable (on any platform) into variables: the version text, its four
// numbers, and any strings of the resource's string table.
#pragma once

#include <string>

#include "frame/ZTAction.h"
#include "frame/ZTStrings.h"

namespace zt::package {

enum class TZTVersionSource { vsFileVersion, vsProductVersion, vsFileVersionString, vsProductVersionString };

class TZTExtractFileVerInfoAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTExtractFileVerInfoAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Extract Version Info"; }
  static void Publish(frame::TZTPublisher<TZTExtractFileVerInfoAction>& P);

  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override { return "Extract Version Info [ " + FFileName + " ]"; }
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 3310; }
  std::string GetQuickHelpFilename() override { return "Plugins\\ExtractVersionInfo.html"; }

  const std::string& GetFileName() const { return FFileName; }
  void SetFileName(const std::string& Value) { FFileName = Value; }
  const std::string& GetZTVariable() const { return FZTVariable; }
  void SetZTVariable(const std::string& Value) { FZTVariable = Value; }
  TZTVersionSource GetVersionSource() const { return FVersionSource; }
  void SetVersionSource(TZTVersionSource Value) { FVersionSource = Value; }
  const std::string& GetMajorVariable() const { return FMajorVariable; }
  void SetMajorVariable(const std::string& Value) { FMajorVariable = Value; }
  const std::string& GetMinorVariable() const { return FMinorVariable; }
  void SetMinorVariable(const std::string& Value) { FMinorVariable = Value; }
  const std::string& GetReleaseVariable() const { return FReleaseVariable; }
  void SetReleaseVariable(const std::string& Value) { FReleaseVariable = Value; }
  const std::string& GetBuildVariable() const { return FBuildVariable; }
  void SetBuildVariable(const std::string& Value) { FBuildVariable = Value; }
  std::string GetStringValues() const { return FStringValues.Text(); }
  void SetStringValues(const std::string& Value) { FStringValues.SetText(Value); }
  const std::string& GetLanguage() const { return FLanguage; }
  void SetLanguage(const std::string& Value) { FLanguage = Value; }
  bool GetFailIfNoVersionInfo() const { return FFailIfNoVersionInfo; }
  void SetFailIfNoVersionInfo(bool Value) { FFailIfNoVersionInfo = Value; }

 private:
  std::string FFileName;
  std::string FZTVariable;
  TZTVersionSource FVersionSource = TZTVersionSource::vsFileVersion;
  std::string FMajorVariable, FMinorVariable, FReleaseVariable, FBuildVariable;
  frame::TStrings FStringValues;
  std::string FLanguage;
  bool FFailIfNoVersionInfo = true;
};

}  // namespace zt::package
