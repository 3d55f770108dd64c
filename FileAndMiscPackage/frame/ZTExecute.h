// Process actions. TZTExecuteAbstractAction is the base of actions that run
// an external program; the host's process runner (IZTProcessRunner) creates
// the process, waits, captures output and applies the time-out. An action
// supplies the command line and judges the exit code.
//
// One run, as the runner performs it:
//   BeforeGetCommandLine(); ok = GetCommandLine(Builder); AfterGetCommandLine();
//   if (!ok) the action fails;
//   BeforeExecute(Builder);
//   start GetExecutable() in GetStartingDir(...) with the builder's arguments
//     (missing executable: OnExeNotFound, failure; any other start failure:
//     one host line, failure);
//   without WaitForCompletion: exit code 259 ("still running") at once;
//   otherwise, while it runs: OnStdOutData / OnStdErrData per complete line
//     (live capture), OnProcessOutput with the captured lines at the end
//     (without live capture);
//   a run the host stopped (time-out, TerminateAction) reports exit code 999;
//   InterpretResult(exit code) ? OnSuccess() : OnFailure(exit code).
#pragma once

#include <string>

#include "frame/ZTAction.h"
#include "frame/ZTCommandLine.h"

namespace zt::frame {

class TZTExecuteAbstractAction;

// Exit codes with a meaning of their own.
constexpr int kExitStillActive = 259;  // the program runs on (not waited for)
constexpr int kExitTerminated = 999;   // the host stopped the program

// A running or finished process, as the output callbacks see it.
class IZTProcess {
 public:
  virtual ~IZTProcess() = default;
  virtual int GetProcessID() const = 0;
};

// The host's record of one process run.
class IZTExecuteContext {
 public:
  virtual ~IZTExecuteContext() = default;
  // True when the host saw the run go wrong (the process could not be
  // started, or was stopped or timed out); actions that do not check the
  // exit code succeed exactly when this is false.
  virtual bool GetStatus() const = 0;
};

// Implemented by the host: runs a process action, and provides the base's
// default reactions that actions keep unless they override them.
class IZTProcessRunner {
 public:
  virtual ~IZTProcessRunner() = default;
  virtual bool ExecuteProcess(TZTExecuteAbstractAction& Action) = 0;
  // The host's judgement of an exit code.
  virtual bool InterpretResult(TZTExecuteAbstractAction& Action, int ExitCode) = 0;
  virtual void OnSuccess(TZTExecuteAbstractAction& Action) = 0;
  virtual void OnFailure(TZTExecuteAbstractAction& Action, int ExitCode) = 0;
  virtual void OnExeNotFound(TZTExecuteAbstractAction& Action, const std::string& FileName) = 0;
  // Text is one line of output, without its line end.
  virtual void OnStdOutData(TZTExecuteAbstractAction& Action, IZTProcess& Process, const std::string& Text) = 0;
  virtual void OnStdErrData(TZTExecuteAbstractAction& Action, IZTProcess& Process, const std::string& Text) = 0;
  virtual void OnProcessOutput(TZTExecuteAbstractAction& Action, const TStrings& Lines) = 0;
  // Stops the running process (from another thread).
  virtual void TerminateProcess(TZTExecuteAbstractAction& Action) = 0;
};

class TZTExecuteAbstractAction : public TCustomZTAction {
  ZT_DECLARE_CLASS(TZTExecuteAbstractAction, TCustomZTAction)

 public:
  // --- what the action provides ---
  // Appends the arguments; false aborts the run (the action fails).
  virtual bool GetCommandLine(ICommandLineBuilder& Builder) = 0;
  // After a successful GetCommandLine; overrides call the inherited one first.
  virtual void BeforeExecute(ICommandLineBuilder& Builder) { (void)Builder; }
  virtual std::string GetExecutable() = 0;
  // The working directory; Default is what the host would use.
  virtual std::string GetStartingDir(const std::string& Default) { return Default; }
  virtual std::string GetCommandLineParams() { return {}; }
  // Whether BeforeExecute logs the program and its command line.
  virtual bool GetShowCommandLine() { return false; }
  // True = success. The base's is the host's judgement.
  virtual bool InterpretResult(int ExitCode) { return Runner().InterpretResult(*this, ExitCode); }

  // --- the base's reactions (the host's unless overridden) ---
  virtual void BeforeGetCommandLine() {}
  virtual void AfterGetCommandLine() {}
  virtual void OnSuccess() { Runner().OnSuccess(*this); }
  virtual void OnFailure(int ExitCode) { Runner().OnFailure(*this, ExitCode); }
  virtual void OnExeNotFound(const std::string& FileName) { Runner().OnExeNotFound(*this, FileName); }
  virtual void OnStdOutData(IZTProcess& Process, const std::string& Text) {
    Runner().OnStdOutData(*this, Process, Text);
  }
  virtual void OnStdErrData(IZTProcess& Process, const std::string& Text) {
    Runner().OnStdErrData(*this, Process, Text);
  }
  virtual void OnProcessOutput(const TStrings& Lines) { Runner().OnProcessOutput(*this, Lines); }

  bool Execute() override { return Runner().ExecuteProcess(*this); }
  bool CanTerminate() override { return true; }
  void TerminateAction() override {
    if (GetHost() && GetHost()->GetProcessRunner()) GetHost()->GetProcessRunner()->TerminateProcess(*this);
  }

  void GetPropertyAlias(TStrings& List) override {
    inherited::GetPropertyAlias(List);
    List.Add("[Time-out]");
    List.Add("EnableTimeout=Enable Time-out");
    List.Add("TimeoutLength=Time-out (seconds)");
  }
  void GetPropertyHelp(TStrings& List) override {
    inherited::GetPropertyHelp(List);
    List.Add("EnableTimeout=Stop the program, and everything it started, when it runs longer than the time-out");
    List.Add("TimeoutLength=Seconds the program may run (Wait For Completion must be enabled)");
  }

  // Published by the base: the time-out.
  static void Publish(TZTPublisher<TZTExecuteAbstractAction>& P) {
    using A = TZTExecuteAbstractAction;
    P.Boolean("EnableTimeout", &A::GetEnableTimeout, &A::SetEnableTimeout);
    P.Integer("TimeoutLength", &A::GetTimeoutLength, &A::SetTimeoutLength);
  }

  // --- the base's settings and run state ---
  // Seconds; the time-out applies when enabled and longer than 0.
  void SetTimeoutLength(unsigned Seconds) { TimeoutLength_ = Seconds; }
  unsigned GetTimeoutLength() const { return TimeoutLength_; }
  void SetEnableTimeout(bool Enable) { EnableTimeout_ = Enable; }
  bool GetEnableTimeout() const { return EnableTimeout_; }
  // Pass output to the log while the process runs.
  void SetLiveCapture(bool Enable) { LiveCapture_ = Enable; }
  bool GetLiveCapture() const { return LiveCapture_; }
  // Wait for the program to end (otherwise it runs on by itself).
  void SetWaitForCompletion(bool Wait) { WaitForCompletion_ = Wait; }
  bool GetWaitForCompletion() const { return WaitForCompletion_; }
  // Capture the output stream into the action's log (only when waiting).
  void SetCaptureOutput(bool Capture) { CaptureOutput_ = Capture; }
  bool GetCaptureOutput() const { return CaptureOutput_; }
  // Capture the error stream together with the output stream, in the order
  // written; otherwise it is captured on its own.
  void SetRedirectStdErr(bool Redirect) { RedirectStdErr_ = Redirect; }
  bool GetRedirectStdErr() const { return RedirectStdErr_; }
  // Start the program's window hidden (no meaning where programs have none).
  void SetHideWindow(bool Hide) { HideWindow_ = Hide; }
  bool GetHideWindow() const { return HideWindow_; }
  bool GetTimedOut() const { return TimedOut_; }
  // The current run's context; null outside a run.
  IZTExecuteContext* GetContext() const { return Context_; }

  // Runner side.
  void SetTimedOut(bool TimedOut) { TimedOut_ = TimedOut; }
  void SetContext(IZTExecuteContext* Context) { Context_ = Context; }

 private:
  IZTProcessRunner& Runner() {
    IZTProcessRunner* R = Host().GetProcessRunner();
    if (!R) throw std::logic_error("this host does not run processes");
    return *R;
  }

  unsigned TimeoutLength_ = 0;
  bool EnableTimeout_ = false;
  bool LiveCapture_ = true;
  bool WaitForCompletion_ = true;
  bool CaptureOutput_ = true;
  bool RedirectStdErr_ = true;
  bool HideWindow_ = false;
  bool TimedOut_ = false;
  IZTExecuteContext* Context_ = nullptr;
};

inline ZT_IMPLEMENT_CLASS(TZTExecuteAbstractAction, &TZTExecuteAbstractAction::Publish)

}  // namespace zt::frame
