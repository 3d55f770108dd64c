// The host's script service for one build: the scripts of an action's
// `scripts:` run by name (ExecuteScript), and the BeforeAction / AfterAction
// events around each run. Each run of an action has its own Lua state, made
// for its first script and gone when the run ends. A script that fails is
// one host line "<project file>:<line>: <message>", the file named as the
// user gave it (as load errors name it).
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

#include "frame/ZTAction.h"
#include "host/project/project.h"
#include "host/run/script_session.h"

namespace zt::host {

class ScriptRunner {
 public:
  // Writes one host line under an action.
  using HostLine = std::function<void(const frame::TZTAction&, const std::string&)>;

  // P and Host outlive the runner.
  ScriptRunner(const Project& P, frame::IZTActionHost& Host, HostLine Log);
  ~ScriptRunner();

  // Runs Node's script Name with Params. A script without text runs nothing
  // and succeeds, with a host line saying so. False when the script failed.
  bool Execute(ActionNode& Node, const std::string& Name, frame::TZTScriptParams& Params);
  // Runs Node's BeforeAction, if any, with Skip (in-out, false). False when
  // it failed; otherwise Skip is what the script left.
  bool BeforeAction(ActionNode& Node, bool& Skip);
  // Runs Node's AfterAction, if any, with ActionResult (in-out) = Result;
  // Result becomes what the script left, or false when it failed.
  void AfterAction(ActionNode& Node, bool& Result);
  // Node's run has ended: its Lua state goes.
  void EndRun(const ActionNode& Node);

 private:
  bool Run(ActionNode& Node, const ScriptSource& Script, frame::TZTScriptParams& Params);
  // Runs an event script whose one in-out parameter Flag is a Boolean.
  bool RunEvent(ActionNode& Node, const std::string& Name, const char* Flag, bool& Value);
  ScriptSession& SessionOf(ActionNode& Node);
  const std::string& FileName() const;

  const Project& Project_;
  frame::IZTActionHost& Host_;
  HostLine Log_;
  std::unordered_map<const ActionNode*, std::unique_ptr<ScriptSession>> Sessions_;
};

// The project file as error lines name it: as the user gave it.
const std::string& ScriptFileName(const Project& P);

// Node's script Name, or null.
const ScriptSource* FindScript(const ActionNode& Node, const std::string& Name);

}  // namespace zt::host
