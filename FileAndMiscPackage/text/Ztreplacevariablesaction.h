// "Replace Variables": expands every %Var% reference inside a text taken
// from a file or a variable, counts the replacements, and stores the result
// back in the source or in another file or variable. The text is held as a
// string list's text (frame::LineListText), so every line of the result
// ends with CR LF.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

enum TZTReplaceDataType { rfVariable, rfFile };

class TZTReplaceVariablesAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTReplaceVariablesAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Replace Variables"; }
  static void Publish(frame::TZTPublisher<TZTReplaceVariablesAction>& P);

  bool Execute() override;
  int GetHelpTopicID() override { return 7770; }
  std::string GetQuickHelpFilename() override { return "Plugins\\ReplaceVars.html"; }

  const std::string& GetSourceFile() const { return FSourceFile; }
  void SetSourceFile(const std::string& Value) { FSourceFile = Value; }
  TZTReplaceDataType GetSourceType() const { return FSourceType; }
  void SetSourceType(TZTReplaceDataType Value) { FSourceType = Value; }
  const std::string& GetSourceVariable() const { return FSourceVariable; }
  void SetSourceVariable(const std::string& Value) { FSourceVariable = Value; }
  bool GetWriteBackToSource() const { return FWriteBackToSource; }
  void SetWriteBackToSource(bool Value) { FWriteBackToSource = Value; }
  TZTReplaceDataType GetDestType() const { return FDestType; }
  void SetDestType(TZTReplaceDataType Value) { FDestType = Value; }
  const std::string& GetDestFile() const { return FDestFile; }
  void SetDestFile(const std::string& Value) { FDestFile = Value; }
  const std::string& GetDestVariable() const { return FDestVariable; }
  void SetDestVariable(const std::string& Value) { FDestVariable = Value; }
  bool GetFailOnVariableErrors() const { return FFailOnVariableErrors; }
  void SetFailOnVariableErrors(bool Value) { FFailOnVariableErrors = Value; }
  bool GetWriteToLog() const { return FWriteToLog; }
  void SetWriteToLog(bool Value) { FWriteToLog = Value; }

 private:
  // The steps of Execute. They raise with the message logged after "An
  // error occured:"; false means a property could not be expanded (the host
  // has said why).
  bool Replace();
  bool Load(std::string& Text, std::string& Path);
  bool Store(const std::string& Text, const std::string& SourcePath);
  static void Save(const std::string& Text, const std::string& Path);

  std::string FSourceFile;
  TZTReplaceDataType FSourceType = rfFile;
  std::string FSourceVariable;
  bool FWriteBackToSource = true;
  TZTReplaceDataType FDestType = rfFile;
  std::string FDestFile;
  std::string FDestVariable;
  bool FFailOnVariableErrors = true;
  bool FWriteToLog = false;
};

}  // namespace zt::package
