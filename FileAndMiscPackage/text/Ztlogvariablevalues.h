// "Log Variable Values": writes the current values of chosen build
// variables, or of all of them sorted by name, into the build log.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

class TZTLogVariablesAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTLogVariablesAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Log Variable Values"; }
  static void Publish(frame::TZTPublisher<TZTLogVariablesAction>& P);

  bool Execute() override;
  void GetHiddenProperties(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 6170; }
  std::string GetQuickHelpFilename() override { return "Plugins\\LogVariableValues.html"; }

  // Names to log, one per line (each may hold %Var% references). Read-only
  // as a property: projects store the list as VariableStorageString.
  std::string GetVariablesToLog() const { return FVariablesToLog.Text(); }
  std::string GetVariableStorageString() const { return FVariablesToLog.Text(); }
  void SetVariableStorageString(const std::string& Value) { FVariablesToLog.SetText(Value); }
  bool GetFailIfNotDefined() const { return FFailIfNotDefined; }
  void SetFailIfNotDefined(bool Value) { FFailIfNotDefined = Value; }
  bool GetLogAllVariables() const { return FLogAllVariables; }
  void SetLogAllVariables(bool Value) { FLogAllVariables = Value; }

 private:
  bool LogAll();
  bool LogSelected();
  // The variable's value as expanding %Name% gives it; false when it has none.
  bool ValueText(const std::string& Name, std::string& Text);

  frame::TStrings FVariablesToLog;
  bool FFailIfNotDefined = true;
  bool FLogAllVariables = false;
};

}  // namespace zt::package
