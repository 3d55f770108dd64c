// Turns Ctrl+C (SIGINT) and SIGTERM into a stop request handled on a
// watcher thread, away from the build thread: the signal handler only
// writes one byte to a pipe. A second signal ends the process with exit
// code 130: the handler kills the programs the build started, then OnExit
// runs on the watcher thread, with a second to finish (it cleans up and ends
// the logs); a third signal does not wait.
#pragma once

#include <functional>
#include <thread>

namespace zt::host {

class StopSignal {
 public:
  // OnStop runs on the watcher thread for the first signal.
  explicit StopSignal(std::function<void()> OnStop, std::function<void()> OnExit = {});
  ~StopSignal();  // restores the previous handlers
  StopSignal(const StopSignal&) = delete;
  StopSignal& operator=(const StopSignal&) = delete;

 private:
  std::function<void()> OnStop_, OnExit_;
  std::thread Watcher_;
};

}  // namespace zt::host
