#include "host/run/child_actions.h"

#include "host/run/runner.h"

namespace zt::host {

ListResult RunActionList(Runner& Host, std::vector<ActionNode>& Actions) {
  for (ActionNode& Node : Actions) {
    if (Host.StopSignalled()) return ListResult::Stopped;
    if (Host.RunAction(Node) == ActionResult::Failure) return ListResult::Failed;
  }
  return ListResult::Completed;
}

ListResult RunChildActions(Runner& Host, frame::TZTAction& Parent) {
  ActionNode* Node = Host.NodeOf(Parent);
  return Node ? RunActionList(Host, Node->Children) : ListResult::Completed;
}

ListResult RunOrSkipChildActions(Runner& Host, ActionNode& Node) {
  int Next = frame::naChildren;
  Node.Action->GetNextActionSource(frame::nsExecuted, Next);
  if (Next == frame::naChildren) return RunActionList(Host, Node.Children);
  if (Next == frame::naSkipChildren)
    for (ActionNode& Child : Node.Children) Host.SkipAction(Child);
  return ListResult::Completed;
}

}  // namespace zt::host
