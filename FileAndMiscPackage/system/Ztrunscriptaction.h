// "Run Script": runs the action's own user script "OnExecute" and takes the
// action's result from it.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

class TZTCustomScriptAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTCustomScriptAction, frame::TCustomZTAction)

 public:
  TZTCustomScriptAction();
  static std::string GetActionName() { return "Run Script"; }

  // Runs "OnExecute" with "Action" and "ActionResult" (in-out, true before
  // the run); the result is ActionResult as the script left it, false when
  // the script failed.
  bool Execute() override;
  void InitialiseScriptParams(const std::string& ScriptName, frame::TZTScriptParams& Params) override;
  int GetHelpTopicID() override { return 1590; }
  std::string GetQuickHelpFilename() override { return "Plugins\\RunScript.html"; }
};

// The registered type; publishes nothing of its own.
class TZTScriptAction : public TZTCustomScriptAction {
  ZT_DECLARE_CLASS(TZTScriptAction, TZTCustomScriptAction)
};

}  // namespace zt::package
