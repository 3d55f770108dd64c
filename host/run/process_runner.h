// Runs process actions (frame::TZTExecuteAbstractAction): collects the
// command line, starts the program through the platform layer, passes its
// output to the build log line by line, applies the time-out and the stop
// request, and hands the exit code to the action.
//
// A time-out or a stop (TerminateProcess) sends SIGTERM to the program's
// whole process group, then SIGKILL to whatever is left once the program has
// ended or after kGraceMs, and reports exit code 999.
// Thread use: ExecuteProcess and the callbacks run on the build thread;
// TerminateProcess may come from any thread.
#pragma once

#include <functional>
#include <mutex>
#include <string>

#include "frame/ZTExecute.h"

namespace zt::host {

class ProcessRunner : public frame::IZTProcessRunner {
 public:
  // Writes one line of the host's own about Action (a `host: true` message).
  using HostLine = std::function<void(frame::TZTAction& Action, const std::string& Text)>;
  static constexpr int kGraceMs = 2000;

  explicit ProcessRunner(HostLine Line) : HostLine_(std::move(Line)) {}
  // Output that is not captured goes to zt's standard error instead of its
  // standard output (which then carries the JSON log).
  void SendUncapturedOutputToErrorStream() { UncapturedToError_ = true; }

  bool ExecuteProcess(frame::TZTExecuteAbstractAction& Action) override;
  // Success: exit code 0 when waiting, 259 when not; never after the run
  // went wrong.
  bool InterpretResult(frame::TZTExecuteAbstractAction& Action, int ExitCode) override;
  void OnSuccess(frame::TZTExecuteAbstractAction&) override {}
  // "The program ended with exit code N", unless the host already said why
  // the run failed.
  void OnFailure(frame::TZTExecuteAbstractAction& Action, int ExitCode) override;
  void OnExeNotFound(frame::TZTExecuteAbstractAction& Action, const std::string& FileName) override;
  // Live capture: the lines of each read from the program go to the log as
  // one status entry. Otherwise they are kept for OnProcessOutput.
  void OnStdOutData(frame::TZTExecuteAbstractAction& Action, frame::IZTProcess& Process,
                    const std::string& Text) override;
  void OnStdErrData(frame::TZTExecuteAbstractAction& Action, frame::IZTProcess& Process,
                    const std::string& Text) override;
  // All the lines as one status entry.
  void OnProcessOutput(frame::TZTExecuteAbstractAction& Action, const frame::TStrings& Lines) override;
  void TerminateProcess(frame::TZTExecuteAbstractAction& Action) override;

 private:
  struct Run;
  int WaitForExit(Run& R);
  bool Conclude(frame::TZTExecuteAbstractAction& Action, int ExitCode);
  void Capture(frame::TZTExecuteAbstractAction& Action, const std::string& Text);
  void SendBatch(Run& R);

  HostLine HostLine_;
  bool UncapturedToError_ = false;
  std::mutex Mutex_;     // guards Current_->Child and Current_->Terminate against TerminateProcess
  Run* Current_ = nullptr;  // the run going on; written by the build thread under Mutex_
};

}  // namespace zt::host
