// A loaded project: its variables, file sets and the tree of configured
// action objects. Built by LoadProject; run by the Runner.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "frame/ZTAction.h"
#include "host/project/registry_of_actions.h"

namespace zt::host {

// One entry of an action's `scripts:` map.
struct ScriptSource {
  std::string Name;
  std::string Source;
  int Line = 0;  // of the source's first line in the project file
  bool operator==(const ScriptSource&) const = default;
};

// Scripts the host itself runs around every action's run: BeforeAction may
// skip the run, AfterAction may change its result.
inline const std::string kBeforeAction = "BeforeAction";
inline const std::string kAfterAction = "AfterAction";
inline const std::vector<std::string> kEventScripts = {kBeforeAction, kAfterAction};

struct ActionNode {
  std::string Id;  // path in the tree: "1", "2", "2.1"
  int Line = 0;    // of the action's mapping in the project file
  const RegisteredAction* Type = nullptr;
  std::unique_ptr<frame::TZTAction> Action;
  bool Enabled = true;
  bool IgnoreFailure = false;
  std::vector<ScriptSource> Scripts;  // in file order
  std::vector<ActionNode> Children;
};

// A file set as the project defines it; evaluated by the host when used.
struct FileSetDefinition {
  std::string Name;
  std::string Base;
  std::vector<std::string> Include, Exclude;
  int Line = 0;
};

struct Project {
  std::string File;      // absolute path
  std::string FileName;  // as the user gave it: in messages and the build log
  const ActionRegistry* Registry = nullptr;  // what it was loaded with (script methods, constants)
  std::string Name;
  std::vector<std::pair<std::string, frame::TZTVariant>> InitialVariables;
  std::vector<FileSetDefinition> FileSets;
  // `options:`: options class -> property -> value, names as registered.
  std::map<std::string, std::map<std::string, frame::TZTVariant>> Options;
  std::vector<ActionNode> Actions;
};

// Calls Visit(Node, Depth) for every node of the tree, parents first.
template <class Fn>
void ForEachAction(std::vector<ActionNode>& Nodes, Fn&& Visit, int Depth = 0) {
  for (auto& N : Nodes) {
    Visit(N, Depth);
    ForEachAction(N.Children, Visit, Depth + 1);
  }
}

}  // namespace zt::host
