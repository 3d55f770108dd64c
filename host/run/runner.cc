#include "host/run/runner.h"

#include <cctype>
#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "host/run/child_actions.h"
#include "platform/dates.h"
#include "platform/stop.h"

namespace zt::host {

namespace {

class LogEntry : public frame::IZTActionLogMessage {
 public:
  frame::TStrings& Details() override { return Details_; }
  std::string GetText() const override { return Text_; }
  void SetText(const std::string& Text) override { Text_ = Text; }

 private:
  frame::TStrings Details_;
  std::string Text_;
};

std::int64_t MillisecondsSince(std::chrono::steady_clock::time_point Start) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - Start).count();
}

}  // namespace

Runner::Runner(Project& P, BuildLog& Log, const VariableList& Overrides)
    : Project_(P),
      Log_(Log),
      Vars_(P.File),
      Objects_(P.FileSets, std::filesystem::path(P.File).parent_path().string(),
               [this](frame::TZTAction& A, const std::string& Line) { HostMessage(A, Line); }),
      Processes_([this](frame::TZTAction& A, const std::string& Line) { HostMessage(A, Line); }),
      Scripts_(P, *this,
               [this](const frame::TZTAction& A, const std::string& Line) { HostMessage(A, Line); }) {
  for (const auto& [Name, Value] : P.InitialVariables) Vars_.Set(Name, Value);
  for (const auto& [Name, Value] : Overrides) Vars_.Set(Name, Value);
  ForEachAction(P.Actions, [this](ActionNode& N, int) {
    N.Action->SetHost(this);
    Nodes_[N.Action.get()] = &N;
  });
}

BuildResult Runner::Run() {
  Start_ = std::chrono::steady_clock::now();
  // `zt run` refuses a SOURCE_DATE_EPOCH that is no number before it gets here.
  const platform::TFileTime Now = platform::GetSystemTimeAsFileTime();
  const std::optional<std::string> Start = BuildStartText(Now, std::getenv("SOURCE_DATE_EPOCH"));
  Vars_.SetPredefined("ZT_BUILD_START", Start ? *Start : *BuildStartText(Now, nullptr));
  platform::ResumeLongOperations();
  Log_.BuildStart(Project_.Name, Project_.FileName);
  ForEachAction(Project_.Actions, [](ActionNode& N, int) { N.Action->ResetBuildStatus(); });
  BuildResult Result = RunActionList(*this, Project_.Actions) == ListResult::Failed ? BuildResult::Failure
                                                                                    : BuildResult::Success;
  if (Stop_) Result = BuildResult::Stopped;
  Log_.Variables(Vars_.Project());
  Log_.BuildEnd(Result, MillisecondsSince(Start_), Result == BuildResult::Failure ? FailedId_ : "");
  return Result;
}

void Runner::LogStart(ActionNode& Node) {
  frame::TZTAction& A = *Node.Action;
  std::string Description;
  try {
    Description = A.GetFormattedDescription();
  } catch (const std::exception& E) {
    Description = A.GetTitle();
  }
  Log_.ActionStart(Node.Id, A.GetTitle(), A.GetClass().ClassName, Description, Node.Line);
}

void Runner::SkipAction(ActionNode& Node) {
  LogStart(Node);
  Log_.ActionEnd(Node.Id, ActionResult::Skipped, 0, frame::asNone);
}

ActionResult Runner::RunAction(ActionNode& Node) {
  if (!Node.Enabled) {
    SkipAction(Node);
    return ActionResult::Skipped;
  }
  auto Start = std::chrono::steady_clock::now();
  frame::TZTAction& A = *Node.Action;
  LogStart(Node);
  A.SetActionStatus(frame::asNone);
  // BeforeAction may skip the run; AfterAction sees and may change its result.
  bool Skip = false;
  bool Ok = Scripts_.BeforeAction(Node, Skip);
  if (Ok && Skip) {
    Scripts_.EndRun(Node);
    Log_.ActionEnd(Node.Id, ActionResult::Skipped, MillisecondsSince(Start), frame::asNone);
    return ActionResult::Skipped;
  }
  if (Ok) {
    Ok = Execute(A);
    if (!Stop_) Scripts_.AfterAction(Node, Ok);
  }
  Scripts_.EndRun(Node);
  ActionResult R = Ok ? ActionResult::Success : Node.IgnoreFailure ? ActionResult::Ignored : ActionResult::Failure;
  if (R != ActionResult::Failure && A.GetIsFlowControlAction() &&
      RunOrSkipChildActions(*this, Node) == ListResult::Failed)
    R = Node.IgnoreFailure ? ActionResult::Ignored : ActionResult::Failure;
  // The build's failure is the deepest: a loop fails after its child, and an ignored loop absorbs it.
  bool Inner = FailedId_.rfind(Node.Id + ".", 0) == 0;
  if (R == ActionResult::Failure && !Inner) FailedId_ = Node.Id;
  if (R != ActionResult::Failure && Inner) FailedId_.clear();
  Log_.ActionEnd(Node.Id, R, MillisecondsSince(Start), A.GetActionStatus());
  return R;
}

bool Runner::Execute(frame::TZTAction& A) {
  bool Ok = false;
  frame::TZTAction* Outer = nullptr;  // the loop around a child action
  {
    std::lock_guard<std::mutex> Lock(RunningMutex_);
    Outer = Running_;
    Running_ = &A;
  }
  try {
    Ok = A.Execute();
  } catch (const std::exception& E) {
    HostMessage(A, E.what());
  } catch (...) {
    HostMessage(A, "unknown exception");
  }
  {
    std::lock_guard<std::mutex> Lock(RunningMutex_);
    Running_ = Outer;
  }
  return Ok;
}

void Runner::RequestStop() {
  Stop_ = true;
  {
    std::lock_guard<std::mutex> Lock(RunningMutex_);
    if (Running_ && Running_->CanTerminate()) Running_->TerminateAction();
  }
  // After the action's own flag, so an action that can tell its terminate
  // from a failure sees it set when the layer's operation ends.
  platform::CancelLongOperations();
}

void Runner::Abandon() {
  platform::AbandonPendingFiles();
  Log_.BuildEnd(BuildResult::Stopped, MillisecondsSince(Start_), "");
}

ActionNode* Runner::NodeOf(const frame::TZTAction& Action) const {
  auto It = Nodes_.find(&Action);
  return It == Nodes_.end() ? nullptr : It->second;
}

const std::string& Runner::IdOf(const frame::TZTAction& Action) const {
  static const std::string kNone;
  const ActionNode* Node = NodeOf(Action);
  return Node ? Node->Id : kNone;
}

void Runner::HostMessage(const frame::TZTAction& Action, const std::string& Text) {
  Log_.Message(IdOf(Action), Text, /*FromHost=*/true);
}

std::string Runner::ExpandExpression(frame::TZTAction&, const std::string& Text, bool) {
  try {
    return Expander_.Expand(Text, Vars_);
  } catch (const ExpansionError& E) {
    throw frame::EZTExpandError(E.what());
  }
}

frame::TZTVariant Runner::GetOptionValue(const std::string& OptionsClass, const std::string& Property) {
  if (auto C = Project_.Options.find(OptionsClass); C != Project_.Options.end())
    if (auto V = C->second.find(Property); V != C->second.end()) return V->second;
  const RegisteredOptions* O = Project_.Registry ? Project_.Registry->FindOptions(OptionsClass) : nullptr;
  const frame::TZTOptionProperty* P = O ? O->Find(Property) : nullptr;
  return P ? P->Default : frame::TZTVariant();
}

std::string Runner::ExpandExpressionCounted(frame::TZTAction&, const std::string& Text, bool FailOnUnknown,
                                            int& ReplaceCount) {
  try {
    return Expander_.ExpandCounting(Text, Vars_, FailOnUnknown, ReplaceCount);
  } catch (const ExpansionError& E) {
    throw frame::EZTExpandError(E.what());
  }
}

bool Runner::TryExpandExpression(frame::TZTAction& Action, const std::string& PropertyTitle, const std::string& Text,
                                 bool, std::string& Result) {
  try {
    Result = Expander_.Expand(Text, Vars_);
    return true;
  } catch (const ExpansionError& E) {
    std::string Why = E.what();
    Why[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(Why[0])));
    HostMessage(Action, "Cannot expand " + PropertyTitle + ": " + Why);
    return false;
  }
}

void Runner::SetVariable(const std::string& Name, const frame::TZTVariant& Value) { Vars_.Set(Name, Value); }

frame::TZTVariant Runner::GetVariableValue(const std::string& Name) {
  auto V = Vars_.Lookup(Name);
  return V ? *V : frame::TZTVariant();
}

bool Runner::IsVariableDefined(const std::string& Name) { return Vars_.IsDefined(Name); }

void Runner::AddNewVariable(const std::string& Name, const frame::TZTVariant& Value) { Vars_.Set(Name, Value); }

void Runner::GetVariablesList(frame::TStrings& List, bool IncludePredefined) {
  for (const auto& [Name, Value] : Vars_.Project()) List.Add(Name);
  if (IncludePredefined)
    for (const auto& [Name, Value] : Vars_.Predefined())
      if (!Vars_.FindProject(Name)) List.Add(Name);  // a project variable of that name hides it
}

void Runner::SendMessage(frame::TZTAction& Action, const std::string& Text) {
  Log_.Message(IdOf(Action), Text, /*FromHost=*/false);
}

void Runner::SendProgress(frame::TZTAction& Action, const std::string& Text, int Percent) {
  // A search reports every match: look its id up once, not a million times.
  if (&Action != ProgressAction_) {
    ProgressAction_ = &Action;
    ProgressId_ = &IdOf(Action);
  }
  Log_.Progress(*ProgressId_, Text, Percent);
}

frame::IZTActionLogMessagePtr Runner::CreateStatusMessage(frame::TZTAction&) { return std::make_shared<LogEntry>(); }

void Runner::SendStatusMessage(frame::TZTAction& Action, const frame::IZTActionLogMessagePtr& Message) {
  if (!Message) return;
  Log_.Status(IdOf(Action), Message->GetText(), Message->Details().Lines());
}

std::string Runner::GetScriptByName(frame::TZTAction& Action, const std::string& Name) {
  const ActionNode* Node = NodeOf(Action);
  const ScriptSource* Script = Node ? FindScript(*Node, Name) : nullptr;
  return Script ? Script->Source : std::string();
}

bool Runner::ExecuteScript(frame::TZTAction& Action, const std::string& Name,
                           frame::TZTScriptParams& Params) {
  ActionNode* Node = NodeOf(Action);
  if (!Node) throw std::logic_error("ExecuteScript: the action is not part of this project");
  return Scripts_.Execute(*Node, Name, Params);
}

}  // namespace zt::host
