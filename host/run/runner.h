// Runs a project: the host side of every action (IZTActionHost: expansion,
// variables, the build log) and the one run path of each action.
//
// Thread use: Run is called on the build thread; RequestStop may be called
// from any other thread (the signal watcher) while Run is going on.
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <unordered_map>

#include "frame/ZTAction.h"
#include "frame/ZTStringBuilder.h"
#include "host/log/build_log.h"
#include "host/project/expander.h"
#include "host/project/file_set.h"
#include "host/project/project.h"
#include "host/project/variables.h"
#include "host/run/loop_runner.h"
#include "host/run/process_runner.h"
#include "host/run/script_runner.h"

namespace zt::host {

class Runner : public frame::IZTActionHost {
 public:
  // Attaches itself to every action of P and defines P's initial variables;
  // Overrides (from --var) replace their initial values. Both must outlive it.
  Runner(Project& P, BuildLog& Log, const VariableList& Overrides = {});

  // Runs the top-level actions in order; stops at the first failure that is
  // not ignored, or when a stop was requested. Logs build-start to build-end.
  BuildResult Run();
  // Sets the stop state, terminates the running action when it can be, and
  // cancels the platform layer's long operations (reads, copies).
  void RequestStop();
  // For a build that must end at once (a second Ctrl+C), from any thread:
  // cleans up the files the platform layer is in the middle of writing or
  // has set aside, and ends the log with build-end "stopped".
  void Abandon();

  const Variables& Vars() const { return Vars_; }
  ProcessRunner& Processes() { return Processes_; }
  Expander& GetExpander() { return Expander_; }
  BuildLog& Log() { return Log_; }

  // The one run path of an action: logs its start, runs it (unless it is
  // disabled), logs any exception as a host line, runs or skips the child
  // actions of a flow-control action (RunOrSkipChildActions), logs its end
  // with the action's status.
  ActionResult RunAction(ActionNode& Node);
  // Logs the action's start and its end as skipped; it does not run.
  void SkipAction(ActionNode& Node);
  // The project's node of Action; null for an action not in the project.
  ActionNode* NodeOf(const frame::TZTAction& Action) const;
  // The id of Action in the tree ("2.1"); "" for an action not in the project.
  const std::string& IdOf(const frame::TZTAction& Action) const;
  // One line that the host itself writes under Action (host: true).
  void HostMessage(const frame::TZTAction& Action, const std::string& Text);

  // IZTActionHost
  std::string ExpandExpression(frame::TZTAction& Action, const std::string& Text, bool IsName) override;
  bool TryExpandExpression(frame::TZTAction& Action, const std::string& PropertyTitle, const std::string& Text,
                           bool IsName, std::string& Result) override;
  void SetVariable(const std::string& Name, const frame::TZTVariant& Value) override;
  frame::TZTVariant GetVariableValue(const std::string& Name) override;
  bool IsVariableDefined(const std::string& Name) override;
  void AddNewVariable(const std::string& Name, const frame::TZTVariant& Value) override;
  void GetVariablesList(frame::TStrings& List, bool IncludePredefined) override;
  void SendMessage(frame::TZTAction& Action, const std::string& Text) override;
  void SendProgress(frame::TZTAction& Action, const std::string& Text, int Percent) override;
  frame::IZTActionLogMessagePtr CreateStatusMessage(frame::TZTAction& Action) override;
  void SendStatusMessage(frame::TZTAction& Action, const frame::IZTActionLogMessagePtr& Message) override;
  bool StopSignalled() override { return Stop_.load(); }
  std::string GetScriptByName(frame::TZTAction& Action, const std::string& Name) override;
  bool ExecuteScript(frame::TZTAction& Action, const std::string& Name, frame::TZTScriptParams& Params) override;
  frame::IZTProjectObjectAPI* GetProjectObjectAPI() override { return &Objects_; }
  std::shared_ptr<frame::IZTStringBuilder> CreateStringBuilder() override {
    return std::make_shared<frame::TZTStringBuilder>();
  }
  frame::IZTLoopRunner* GetLoopRunner() override { return &Loops_; }
  frame::IZTProcessRunner* GetProcessRunner() override { return &Processes_; }
  frame::TZTVariant GetOptionValue(const std::string& OptionsClass, const std::string& Property) override;
  std::string ExpandExpressionCounted(frame::TZTAction& Action, const std::string& Text, bool FailOnUnknown,
                                      int& ReplaceCount) override;

 private:
  void LogStart(ActionNode& Node);
  // Execute with the host's catch: false, with a host line, for an exception.
  bool Execute(frame::TZTAction& A);

  Project& Project_;
  BuildLog& Log_;
  Variables Vars_;
  Expander Expander_;
  ProjectObjects Objects_;  // the project's file sets; they log through the asking action
  ProcessRunner Processes_;
  std::unordered_map<const frame::TZTAction*, ActionNode*> Nodes_;
  std::string FailedId_;  // the action whose failure fails the build
  ScriptRunner Scripts_;
  std::atomic<bool> Stop_{false};
  std::chrono::steady_clock::time_point Start_ = std::chrono::steady_clock::now();
  std::mutex RunningMutex_;  // guards Running_ against RequestStop from another thread
  frame::TZTAction* Running_ = nullptr;  // the innermost running action
  LoopRunner Loops_{*this};
  // The last action that sent progress and its id (build thread only).
  const frame::TZTAction* ProgressAction_ = nullptr;
  const std::string* ProgressId_ = nullptr;
};

}  // namespace zt::host
