#include "test_action.h"

#include <stdexcept>

namespace zt::testing {

ZT_IMPLEMENT_CLASS(TTestAction, &TTestAction::Publish)
ZT_IMPLEMENT_CLASS(TTestGroup, nullptr)

void TTestAction::Publish(frame::TZTPublisher<TTestAction>& P) {
  P.String("Text", &TTestAction::GetText, &TTestAction::SetText);
  P.Boolean("Flag", &TTestAction::GetFlag, &TTestAction::SetFlag);
  P.Integer("Count", &TTestAction::GetCount, &TTestAction::SetCount);
  P.Enumeration("Mode", "TTestMode", {"tmOne", "tmTwo", "tmThree"}, &TTestAction::GetMode,
                &TTestAction::SetMode);
  P.Set("Options", "TTestOptions", {"toFirst", "toSecond", "toThird"}, &TTestAction::GetOptions,
        &TTestAction::SetOptions);
  P.StringList("Lines", &TTestAction::GetLines, &TTestAction::SetLines);
  P.DateTime("When", &TTestAction::GetWhen, &TTestAction::SetWhen);
  P.WideString("Path", &TTestAction::GetPath, &TTestAction::SetPath);
  P.WideString("Folder", &TTestAction::GetFolder, &TTestAction::SetFolder);
  P.Integer("ResultCount", &TTestAction::GetResultCount);
  P.Integer("Shown", &TTestAction::GetShown, &TTestAction::SetShown);
}

bool TTestAction::Execute() {
  if (Behaviour == "throw") throw std::runtime_error("disk on fire");
  if (Behaviour != "script") return true;
  for (int I = 1; I <= Count_; ++I) {
    frame::TZTScriptParams Params;
    InitialiseScriptParams("OnRun", Params);
    frame::ScriptParam(Params, "Index").Value = I;
    frame::ScriptParam(Params, "Text").Value = Text_;
    if (!ExecuteScript("OnRun", Params)) return false;
    ScriptRuns.push_back(Params);
  }
  return true;
}

void TTestAction::InitialiseScriptParams(const std::string& ScriptName, frame::TZTScriptParams& Params) {
  inherited::InitialiseScriptParams(ScriptName, Params);
  if (ScriptName != "OnRun") return;
  Params.push_back({"Action", {}, false});
  Params.push_back({"Index", 0, false});
  Params.push_back({"Text", "", true});
  Params.push_back({"Flag", false, true});
  Params.push_back({"Ratio", 0.5, true});
  Params.push_back({"Extra", {}, true});
}

bool TTestAction::ExecuteScriptMethod(const std::string& MethodName) {
  if (MethodName != "Rewind") return inherited::ExecuteScriptMethod(MethodName);
  ++Rewound;
  return true;
}

void RegisterTestAction(host::ActionRegistry& Registry) {
  Registry.RegisterAction("Test Action", "Misc", TTestAction::ClassType(), "TESTICON");
  Registry.RegisterAction("Test Group", "Misc", TTestGroup::ClassType(), "TESTICON");
  Registry.RegisterMethod(TTestAction::ClassType(), "Rewind", "_Reset");
  Registry.RegisterConstant("tcAnswer", 42);
}

}  // namespace zt::testing
