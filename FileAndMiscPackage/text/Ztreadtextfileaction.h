// "Read Text File": puts a file's contents into a build variable (NUL bytes
// removed, optionally escaped so that expanding the variable gives the text
// back) and runs the OnReadLine script once per line.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

class TZTReadTextFileAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTReadTextFileAction, frame::TCustomZTAction)

 public:
  TZTReadTextFileAction();
  static std::string GetActionName() { return "Read Text File"; }
  static void Publish(frame::TZTPublisher<TZTReadTextFileAction>& P);

  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 3260; }
  std::string GetQuickHelpFilename() override { return "Plugins\\ReadTextFile.html"; }
  // OnReadLine: "Action" and "LineText".
  void InitialiseScriptParams(const std::string& ScriptName, frame::TZTScriptParams& Params) override;

  const std::string& GetFileName() const { return FFileName; }
  void SetFileName(const std::string& Value) { FFileName = Value; }
  const std::string& GetZTVariable() const { return FZTVariable; }
  void SetZTVariable(const std::string& Value) { FZTVariable = Value; }
  bool GetPutContentsInVar() const { return FPutContentsInVar; }
  void SetPutContentsInVar(bool Value) { FPutContentsInVar = Value; }
  bool GetEscapeVariables() const { return FEscapeVariables; }
  void SetEscapeVariables(bool Value) { FEscapeVariables = Value; }

 private:
  // Steps after the checks; raises for a file that cannot be read.
  void ReadContents(const std::string& Path, const std::string& Script);

  std::string FFileName;
  std::string FZTVariable;
  bool FPutContentsInVar = false;
  bool FEscapeVariables = false;
};

}  // namespace zt::package
