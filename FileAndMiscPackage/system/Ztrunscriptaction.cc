#include "system/Ztrunscriptaction.h"

namespace zt::package {

namespace {
const char* const kOnExecute = "OnExecute";
}  // namespace

ZT_IMPLEMENT_CLASS(TZTCustomScriptAction, nullptr)
ZT_IMPLEMENT_CLASS(TZTScriptAction, nullptr)

TZTCustomScriptAction::TZTCustomScriptAction() { AddScript(kOnExecute); }

void TZTCustomScriptAction::InitialiseScriptParams(const std::string& ScriptName,
                                                   frame::TZTScriptParams& Params) {
  inherited::InitialiseScriptParams(ScriptName, Params);
  if (ScriptName != kOnExecute) return;
  Params.push_back({"Action", {}, false});
  Params.push_back({"ActionResult", false, true});
}

bool TZTCustomScriptAction::Execute() {
  frame::TZTScriptParams Params;
  InitialiseScriptParams(kOnExecute, Params);
  frame::TZTScriptParam& Result = frame::ScriptParam(Params, "ActionResult");
  Result.Value = true;
  if (!ExecuteScript(kOnExecute, Params)) return false;
  return Result.Value.AsBoolean();
}

}  // namespace zt::package
