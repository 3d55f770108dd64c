#include "host/run/loop_runner.h"

#include <optional>

#include "host/run/child_actions.h"
#include "host/run/runner.h"

namespace zt::host {

namespace {

std::string PassText(int Pass, const frame::TZTBaseIterator& Loop) {
  return "pass " + std::to_string(Pass) + " of " + std::to_string(Loop.GetIterationCount());
}

}  // namespace

template <class Fn>
bool LoopRunner::Guarded(frame::TZTBaseIterator& Loop, Fn&& Step) {
  try {
    return Step();
  } catch (const std::exception& E) {
    Host_.HostMessage(Loop, E.what());
  } catch (...) {
    Host_.HostMessage(Loop, "unknown exception");
  }
  return false;
}

bool LoopRunner::ExecuteLoop(frame::TZTBaseIterator& Loop) {
  Loop.Reset();
  if (!Guarded(Loop, [&] { return Loop.BeforeFirstIteration(); })) return false;
  const bool Ok = Guarded(Loop, [&] { return RunPasses(Loop); });
  const bool Ended = Guarded(Loop, [&] {
    Loop.AfterLastIteration();
    return true;
  });
  return Ok && Ended;
}

bool LoopRunner::RunPasses(frame::TZTBaseIterator& Loop) {
  const std::string& Id = Host_.IdOf(Loop);
  while (!Loop.NoMoreIterations()) {
    if (Host_.StopSignalled()) {
      Host_.HostMessage(Loop, "Stopped before " + PassText(Loop.GetCurrentIteration() + 1, Loop));
      return false;
    }
    Loop.NextIteration();
    frame::TZTVariant Value = Loop.GetCurrentValue();
    std::optional<std::string> Shown;
    if (!Loop.GetNoLoopVariable()) {
      Shown = Value.AsString();
      if (!Loop.GetZTVariable().empty()) Host_.SetVariable(Loop.GetZTVariable(), Value);
    }
    Host_.Log().Iteration(Id, Loop.GetCurrentIteration(), Loop.GetIterationCount(), Shown);
    switch (RunChildActions(Host_, Loop)) {
      case ListResult::Completed:
        break;
      case ListResult::Failed:
        return false;
      case ListResult::Stopped:
        Host_.HostMessage(Loop, "Stopped in " + PassText(Loop.GetCurrentIteration(), Loop));
        return false;
    }
    Loop.AfterEachIteration();
  }
  return true;
}

}  // namespace zt::host
