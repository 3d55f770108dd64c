// The process base's own judgement and failure line, which actions keep
// unless they override them (no registered type on this platform reaches
// them through zt: "XCopy" runs the built-in xcopy here).
#include "host/run/process_runner.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/FakeHost.h"

namespace zt::host {
namespace {

// Runs a shell command and keeps every reaction of the base.
class TShellAction : public frame::TZTExecuteAbstractAction {
 public:
  std::string Command;
  bool GetCommandLine(frame::ICommandLineBuilder& B) override {
    B.AddArgument("-c", "", frame::akLiteral);
    B.AddArgument(Command, "", frame::akLiteral);
    return true;
  }
  std::string GetExecutable() override { return "/bin/sh"; }
};

struct ProcessHost : testing::FakeHost {
  std::vector<std::string> Lines;  // the runner's own lines
  ProcessRunner Runner{[this](frame::TZTAction&, const std::string& L) { Lines.push_back(L); }};
  frame::IZTProcessRunner* GetProcessRunner() override { return &Runner; }
};

struct BaseCase {
  std::string Command;
  bool Wait, EnableTimeout;
  unsigned Timeout;
  bool Result;
  std::vector<std::string> Lines;
};

TEST(ProcessRunnerTest, TheBaseJudgesTheExitCodeAndSaysWhyARunFailed) {
  const std::vector<BaseCase> Cases = {
      {"exit 0", true, false, 0, true, {}},
      {"exit 3", true, false, 0, false, {"The program ended with exit code 3"}},
      {"exit 3", false, false, 0, true, {}},  // not waited for: started is success
      {"sleep 0.2", true, true, 0, true, {}},  // a time-out of 0 seconds is none
      {"sleep 5", true, true, 1, false, {"The program did not finish within 1 second and was stopped"}},
  };
  for (const auto& C : Cases) {
    ProcessHost Host;
    Host.Variables["DOSCMD"] = "/bin/sh";
    TShellAction A;
    A.SetHost(&Host);
    A.Command = C.Command;
    A.SetWaitForCompletion(C.Wait);
    A.SetEnableTimeout(C.EnableTimeout);
    A.SetTimeoutLength(C.Timeout);
    EXPECT_EQ(A.Execute(), C.Result) << C.Command;
    EXPECT_EQ(Host.Lines, C.Lines) << C.Command;
    EXPECT_EQ(A.GetTimedOut(), C.Timeout > 0) << C.Command;
  }
}

}  // namespace
}  // namespace zt::host
