#include "host/cli/tool_commands.h"

#include <atomic>
#include <iostream>

#include "host/run/stop_signal.h"
#include "platform/stop.h"
#include "platform/tools/robocopy.h"
#include "platform/tools/xcopy.h"

namespace zt::host {

namespace {

class ConsoleOutput : public platform::IToolOutput {
 public:
  void Line(const std::string& Text) override { std::cout << Text << '\n'; }
};

// Runs Tool with Ctrl+C as in a build: the first stop ends the tool after
// the file in hand, a second leaves no temporary file behind.
template <class Tool>
int RunTool(Tool&& Run) {
  platform::BOOL Cancel = 0;
  StopSignal Stop(
      [&Cancel] {
        std::atomic_ref<platform::BOOL>(Cancel).store(1);
        platform::CancelLongOperations();
      },
      [] { platform::AbandonPendingFiles(); });
  ConsoleOutput Out;
  const int Code = Run(Out, &Cancel);
  std::cout.flush();
  return Code;
}

}  // namespace

int RobocopyCommand(const std::vector<std::string>& Args) {
  return RunTool([&Args](platform::IToolOutput& Out, platform::BOOL* Cancel) {
    return platform::RunRobocopy(Args, Out, Cancel);
  });
}

int XCopyCommand(const std::vector<std::string>& Args) {
  return RunTool([&Args](platform::IToolOutput& Out, platform::BOOL* Cancel) {
    return platform::RunXCopy(Args, Out, Cancel);
  });
}

}  // namespace zt::host
