#include "host/run/process_runner.h"

#include <signal.h>

#include <chrono>
#include <cstdio>
#include <memory>

#include "host/run/command_line_builder.h"
#include "host/run/output_lines.h"
#include "platform/child_process.h"
#include "platform/errors.h"

namespace zt::host {

namespace pf = zt::platform;
using Clock = std::chrono::steady_clock;

namespace {

class RunContext : public frame::IZTExecuteContext {
 public:
  bool GetStatus() const override { return WentWrong; }
  bool WentWrong = false;
};

class ProcessInfo : public frame::IZTProcess {
 public:
  explicit ProcessInfo(int Pid) : Pid_(Pid) {}
  int GetProcessID() const override { return Pid_; }

 private:
  int Pid_;
};

int MillisecondsUntil(Clock::time_point T) {
  const auto Ms = std::chrono::duration_cast<std::chrono::milliseconds>(T - Clock::now()).count();
  return Ms > 0 ? static_cast<int>(Ms) : 0;
}

// Whether Exe is the command interpreter, which gets its command text whole.
bool IsCommandInterpreter(frame::TZTExecuteAbstractAction& A, const std::string& Exe) {
  try {
    return Exe == A.ExpandExpression("%DOSCMD%", true);
  } catch (const std::exception&) {
    return false;
  }
}

std::string CannotStart(const std::string& Exe, const std::string& Dir, pf::DWORD Error) {
  const std::string Where = Error == pf::ERROR_DIRECTORY ? " in " + Dir : "";
  return "Cannot start " + Exe + Where + ": " + pf::SysErrorMessage(Error);
}

}  // namespace

struct ProcessRunner::Run {
  explicit Run(frame::TZTExecuteAbstractAction& A) : Action(A) {}
  frame::TZTExecuteAbstractAction& Action;
  RunContext Context;
  std::unique_ptr<pf::ChildProcess> Child;
  bool Terminate = false;
  frame::IZTActionLogMessagePtr Batch;  // live lines not sent yet (BatchLines)
  bool BatchLines = false;
  frame::TStrings Collected;            // lines for OnProcessOutput
};

bool ProcessRunner::ExecuteProcess(frame::TZTExecuteAbstractAction& A) {
  Run R(A);
  A.SetTimedOut(false);
  A.SetContext(&R.Context);
  {
    std::lock_guard<std::mutex> Lock(Mutex_);
    Current_ = &R;
  }
  struct EndOfRun {
    ProcessRunner& Self;
    Run& R;
    ~EndOfRun() {
      std::lock_guard<std::mutex> Lock(Self.Mutex_);
      Self.Current_ = nullptr;
      R.Child.reset();  // a program still running is killed with its group
      R.Action.SetContext(nullptr);
    }
  } End{*this, R};

  A.BeforeGetCommandLine();
  CommandLineBuilder Builder;
  const bool Ok = A.GetCommandLine(Builder);
  A.AfterGetCommandLine();
  if (!Ok) return false;
  A.BeforeExecute(Builder);

  pf::ChildProcessOptions O;
  O.Program = A.GetExecutable();
  O.Arguments = Builder.Arguments(IsCommandInterpreter(A, O.Program));
  O.WorkingDirectory = A.GetStartingDir("");
  const bool Wait = A.GetWaitForCompletion();
  if (!Wait) {
    O.Output = O.Error = pf::StreamTarget::Null;  // it outlives the action: nothing of ours holds on to it
  } else if (A.GetCaptureOutput()) {
    O.Output = pf::StreamTarget::Pipe;
    O.Error = A.GetRedirectStdErr() ? pf::StreamTarget::SameAsOutput : pf::StreamTarget::Pipe;
  } else {
    if (UncapturedToError_) O.Output = pf::StreamTarget::HostError;
    std::fflush(nullptr);  // the console log's lines come first
  }

  std::unique_ptr<pf::ChildProcess> Child;
  bool Stop;
  {
    std::lock_guard<std::mutex> Lock(Mutex_);
    Stop = R.Terminate;
  }
  if (Stop || A.StopSignalled()) {
    R.Context.WentWrong = true;
    return Conclude(A, frame::kExitTerminated);
  }
  const pf::DWORD Error = pf::ChildProcess::Start(O, Child);
  if (Error == pf::ERROR_FILE_NOT_FOUND) {
    R.Context.WentWrong = true;
    A.OnExeNotFound(O.Program);
    return false;
  }
  if (Error != pf::ERROR_SUCCESS) {
    R.Context.WentWrong = true;
    HostLine_(A, CannotStart(O.Program, O.WorkingDirectory, Error));
    return false;
  }
  if (!Wait) {
    Child->Detach();
    return Conclude(A, frame::kExitStillActive);
  }
  {
    std::lock_guard<std::mutex> Lock(Mutex_);
    R.Child = std::move(Child);
  }
  return Conclude(A, WaitForExit(R));
}

int ProcessRunner::WaitForExit(Run& R) {
  frame::TZTExecuteAbstractAction& A = R.Action;
  pf::ChildProcess& Child = *R.Child;
  ProcessInfo Info(Child.Pid());
  OutputLines Out, Err;
  const auto Sink = [&](pf::ChildProcess::Stream S, const char* Data, std::size_t Size) {
    if (S == pf::ChildProcess::Stream::Output) Out.Feed(Data, Size, [&](const std::string& L) { A.OnStdOutData(Info, L); });
    else Err.Feed(Data, Size, [&](const std::string& L) { A.OnStdErrData(Info, L); });
    SendBatch(R);  // the lines of one read reach the log together
  };

  const bool TimeoutOn = A.GetEnableTimeout() && A.GetTimeoutLength() > 0;
  const auto TimeoutAt = Clock::now() + std::chrono::seconds(A.GetTimeoutLength());
  bool Terminating = false, Killed = false;
  Clock::time_point KillAt;
  const auto StartTerminating = [&] {
    Terminating = true;
    R.Context.WentWrong = true;
    Child.SignalGroup(SIGTERM);
    KillAt = Clock::now() + std::chrono::milliseconds(kGraceMs);
  };
  for (;;) {
    bool Stop;
    {
      std::lock_guard<std::mutex> Lock(Mutex_);
      Stop = R.Terminate;
    }
    if (Stop && !Terminating) StartTerminating();
    const int MaxWait = Killed        ? -1
                        : Terminating ? MillisecondsUntil(KillAt)
                        : TimeoutOn   ? MillisecondsUntil(TimeoutAt)
                                      : -1;
    const auto Event = Child.Pump(MaxWait, Sink);
    if (Event == pf::ChildProcess::Event::Exited) break;
    if (Event != pf::ChildProcess::Event::TimedOut) continue;
    if (Terminating) {
      Child.SignalGroup(SIGKILL);
      Killed = true;
    } else {
      A.SetTimedOut(true);
      const unsigned N = A.GetTimeoutLength();
      HostLine_(A, "The program did not finish within " + std::to_string(N) + (N == 1 ? " second" : " seconds") +
                       " and was stopped");
      StartTerminating();
    }
  }
  if (Terminating) Child.SignalGroup(SIGKILL);  // what is left of the tree it started
  const int Code = Child.Finish();
  Out.Finish([&](const std::string& L) { A.OnStdOutData(Info, L); });
  Err.Finish([&](const std::string& L) { A.OnStdErrData(Info, L); });
  SendBatch(R);
  if (R.Collected.Count() > 0) A.OnProcessOutput(R.Collected);
  return Terminating ? frame::kExitTerminated : Code;
}

bool ProcessRunner::Conclude(frame::TZTExecuteAbstractAction& A, int ExitCode) {
  const bool Ok = A.InterpretResult(ExitCode);
  if (Ok) A.OnSuccess();
  else A.OnFailure(ExitCode);
  return Ok;
}

bool ProcessRunner::InterpretResult(frame::TZTExecuteAbstractAction& A, int ExitCode) {
  if (A.GetContext() && A.GetContext()->GetStatus()) return false;
  return ExitCode == (A.GetWaitForCompletion() ? 0 : frame::kExitStillActive);
}

void ProcessRunner::OnFailure(frame::TZTExecuteAbstractAction& A, int ExitCode) {
  if (A.GetContext() && A.GetContext()->GetStatus()) return;
  HostLine_(A, "The program ended with exit code " + std::to_string(ExitCode));
}

void ProcessRunner::OnExeNotFound(frame::TZTExecuteAbstractAction& A, const std::string& FileName) {
  HostLine_(A, CannotStart(FileName, "", pf::ERROR_FILE_NOT_FOUND));
}

void ProcessRunner::Capture(frame::TZTExecuteAbstractAction& A, const std::string& Text) {
  Run* R = Current_;
  if (!R) return;
  if (!A.GetLiveCapture()) {
    R->Collected.Add(Text);
    return;
  }
  if (!R->Batch) R->Batch = A.CreateStatusMessage();
  R->Batch->Details().Add(Text);
  R->BatchLines = true;
}

void ProcessRunner::OnStdOutData(frame::TZTExecuteAbstractAction& A, frame::IZTProcess&, const std::string& Text) {
  Capture(A, Text);
}

void ProcessRunner::OnStdErrData(frame::TZTExecuteAbstractAction& A, frame::IZTProcess&, const std::string& Text) {
  Capture(A, Text);
}

void ProcessRunner::OnProcessOutput(frame::TZTExecuteAbstractAction& A, const frame::TStrings& Lines) {
  if (Lines.Count() == 0) return;
  frame::IZTActionLogMessagePtr Entry = A.CreateStatusMessage();
  for (const std::string& L : Lines.Lines()) Entry->Details().Add(L);
  A.SendStatusMessage(Entry);
}

void ProcessRunner::SendBatch(Run& R) {
  if (!R.BatchLines) return;
  R.Action.SendStatusMessage(R.Batch);
  // The host's log copies what it is sent, so the entry is used again: its
  // list keeps the room the last read needed.
  R.Batch->Details().Clear();
  R.BatchLines = false;
}

void ProcessRunner::TerminateProcess(frame::TZTExecuteAbstractAction& A) {
  std::lock_guard<std::mutex> Lock(Mutex_);
  if (!Current_ || &Current_->Action != &A) return;
  Current_->Terminate = true;
  if (Current_->Child) Current_->Child->Wake();
}

}  // namespace zt::host
