// The host's side of loop actions (TZTBaseIterator): it drives the passes
// as frame/ZTIterator.h sets out, puts each pass's value into the loop
// variable, logs an `iteration` event as each pass starts, and runs the
// loop's children through the run path (child_actions.h), so a nested loop
// runs afresh in every pass of the outer one.
//
// Thread use: the build thread only.
#pragma once

#include <string>

#include "frame/ZTIterator.h"

namespace zt::host {

class Runner;

class LoopRunner : public frame::IZTLoopRunner {
 public:
  explicit LoopRunner(Runner& Host) : Host_(Host) {}

  // True when every pass ran to its end. Exceptions of the loop action are
  // logged as host lines and give false; none escapes.
  bool ExecuteLoop(frame::TZTBaseIterator& Loop) override;

 private:
  bool RunPasses(frame::TZTBaseIterator& Loop);
  // Runs Step; an exception becomes a host line and false.
  template <class Fn>
  bool Guarded(frame::TZTBaseIterator& Loop, Fn&& Step);

  Runner& Host_;
};

}  // namespace zt::host
