// One Lua state for one run of one action. The action's scripts are compiled
// on first use and run as often as the action asks, sharing the state's
// globals; the state goes when the run ends.
//
// A script sees: its parameters as globals ("Action" is the action: its
// published properties by name, Action:Method() for the script methods the
// package registered on its class), the constants the package registered,
// the full standard library, and Log(text), print(...), GetVariable(name),
// SetVariable(name, value), Expand(text).
//
// Thread use: the build thread only; the stop state is polled from a count
// hook, so a script that never ends stops when the build is stopped.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "frame/ZTAction.h"
#include "host/project/project.h"

struct lua_State;

namespace zt::host {

// What a session serves its scripts. Pointers stay valid for its life.
struct ScriptScope {
  frame::TZTAction* Action = nullptr;
  frame::IZTActionHost* Host = nullptr;
  const RegisteredAction* Type = nullptr;
  const std::vector<ScriptSource>* Scripts = nullptr;  // the action's `scripts:`
  std::vector<std::string> Methods;                    // registered for its class or an ancestor
  const std::vector<std::pair<std::string, frame::TZTVariant>>* Constants = nullptr;
  std::string File;  // the project file, named in error lines
};

class ScriptSession {
 public:
  explicit ScriptSession(ScriptScope Scope);
  ~ScriptSession();
  ScriptSession(const ScriptSession&) = delete;
  ScriptSession& operator=(const ScriptSession&) = delete;

  // Sets Params as globals, runs Script and reads the in-out parameters
  // back. False after an error, with Error set to one line
  // "<file>:<line in the project file>: <message>".
  bool Run(const ScriptSource& Script, frame::TZTScriptParams& Params, std::string& Error);

 private:
  struct Call;
  struct Api;

  int ChunkOf(const ScriptSource& Script);
  const std::vector<frame::TZTPropInfo>& Properties();
  // The project-file line of line ChunkLine of the script named Name, or 0.
  int FileLine(const char* Name, int ChunkLine) const;

  ScriptScope Scope_;
  lua_State* L_ = nullptr;
  int ActionRef_ = 0;                                // the Action userdata
  std::vector<std::pair<std::string, int>> Chunks_;  // script name -> compiled function
  std::vector<frame::TZTPropInfo> Props_;            // the action's, read on first use
  frame::TStrings ReadOnly_;
  bool PropsRead_ = false;
  const ScriptSource* Current_ = nullptr;  // the script Run is running
  std::string SetupError_;
};

// Compiles Script without running it: "" when it compiles, else the error
// line "<File>:<line>: <message>".
std::string CompileScript(const std::string& File, const ScriptSource& Script);

}  // namespace zt::host
