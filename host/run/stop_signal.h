// Turns Ctrl+C (SIGINT) and SIGTERM into a stop request handled on a
// watcher thread, away from the build thread: the signal handler only
// writes one byte to a pipe. A second signal ends the process at once with
// exit code 130.
#pragma once

#include <functional>
#include <thread>

namespace zt::host {

class StopSignal {
 public:
  // OnStop runs on the watcher thread, once per signal received.
  explicit StopSignal(std::function<void()> OnStop);
  ~StopSignal();  // restores the previous handlers
  StopSignal(const StopSignal&) = delete;
  StopSignal& operator=(const StopSignal&) = delete;

 private:
  std::function<void()> OnStop_;
  std::thread Watcher_;
};

}  // namespace zt::host
