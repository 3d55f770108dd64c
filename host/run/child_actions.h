// The running of a list of actions in order: the project's top-level
// actions, and the children of a flow-control action (a loop's pass, the
// branch of a condition). Each action goes through the runner's one run
// path; the list ends at the first failure that is not ignored, and no
// action starts once a stop has been asked.
#pragma once

#include <vector>

#include "frame/ZTAction.h"
#include "host/project/project.h"

namespace zt::host {

class Runner;

enum class ListResult {
  Completed,  // every action ran (successful, ignored or disabled)
  Failed,     // an action failed without ignoreFailure; the rest did not start
  Stopped,    // a stop was asked before an action could start
};

ListResult RunActionList(Runner& Host, std::vector<ActionNode>& Actions);

// Runs the child actions of Parent, a flow-control action of the project
// (its children as the project file lists them).
ListResult RunChildActions(Runner& Host, frame::TZTAction& Parent);

// After the flow-control action of Node has run: runs its child actions,
// skips them (each logged as skipped), or leaves them to the action (a loop
// has run them), as the action's GetNextActionSource says.
ListResult RunOrSkipChildActions(Runner& Host, ActionNode& Node);

}  // namespace zt::host
