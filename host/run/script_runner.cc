#include "host/run/script_runner.h"

#include <utility>

namespace zt::host {

namespace {

bool IsBlank(const std::string& S) { return S.find_first_not_of(" \t\r\n") == std::string::npos; }

}  // namespace

const std::string& ScriptFileName(const Project& P) { return P.FileName.empty() ? P.File : P.FileName; }

const ScriptSource* FindScript(const ActionNode& Node, const std::string& Name) {
  for (const auto& S : Node.Scripts)
    if (S.Name == Name) return &S;
  return nullptr;
}

ScriptRunner::ScriptRunner(const Project& P, frame::IZTActionHost& Host, HostLine Log)
    : Project_(P), Host_(Host), Log_(std::move(Log)) {}

ScriptRunner::~ScriptRunner() = default;

bool ScriptRunner::Execute(ActionNode& Node, const std::string& Name, frame::TZTScriptParams& Params) {
  const ScriptSource* Script = FindScript(Node, Name);
  if (!Script || IsBlank(Script->Source)) {
    Log_(*Node.Action, "Script " + Name + " is empty: nothing to run");
    return true;
  }
  return Run(Node, *Script, Params);
}

bool ScriptRunner::BeforeAction(ActionNode& Node, bool& Skip) {
  Skip = false;
  return RunEvent(Node, kBeforeAction, "Skip", Skip);
}

void ScriptRunner::AfterAction(ActionNode& Node, bool& Result) {
  if (!RunEvent(Node, kAfterAction, "ActionResult", Result)) Result = false;
}

void ScriptRunner::EndRun(const ActionNode& Node) { Sessions_.erase(&Node); }

const std::string& ScriptRunner::FileName() const { return ScriptFileName(Project_); }

bool ScriptRunner::RunEvent(ActionNode& Node, const std::string& Name, const char* Flag, bool& Value) {
  const ScriptSource* Script = FindScript(Node, Name);
  if (!Script || IsBlank(Script->Source)) return true;
  frame::TZTScriptParams Params = {{"Action", {}, false}, {Flag, Value, true}};
  if (!Run(Node, *Script, Params)) return false;
  try {
    Value = Params[1].Value.AsBoolean();
    return true;
  } catch (const std::exception& E) {
    Log_(*Node.Action, FileName() + ":" + std::to_string(Script->Line) + ": " + Flag + ": " + E.what());
    return false;
  }
}

bool ScriptRunner::Run(ActionNode& Node, const ScriptSource& Script, frame::TZTScriptParams& Params) {
  std::string Error;
  if (SessionOf(Node).Run(Script, Params, Error)) return true;
  Log_(*Node.Action, Error);
  return false;
}

ScriptSession& ScriptRunner::SessionOf(ActionNode& Node) {
  auto It = Sessions_.find(&Node);
  if (It != Sessions_.end()) return *It->second;
  ScriptScope Scope;
  Scope.Action = Node.Action.get();
  Scope.Host = &Host_;
  Scope.Type = Node.Type;
  Scope.Scripts = &Node.Scripts;
  Scope.File = FileName();
  if (Project_.Registry) {
    Scope.Constants = &Project_.Registry->Constants();
    for (const auto& M : Project_.Registry->Methods())
      for (const frame::TZTActionClass* C = Node.Type->Class; C; C = C->Parent)
        if (C->ClassName == M.ClassName) Scope.Methods.push_back(M.MethodName);
  }
  return *Sessions_.emplace(&Node, std::make_unique<ScriptSession>(std::move(Scope))).first->second;
}

}  // namespace zt::host
