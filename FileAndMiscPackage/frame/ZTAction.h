// The action contract: TZTAction (what the host calls), TCustomZTAction (the
// host services an action calls), the build-log entry, the validation error
// collector, and the class description (TZTActionClass) the host creates and
// describes actions through. Header-only: the package links to nothing of
// the host's; the host attaches itself to each action through IZTActionHost.
#pragma once

#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "frame/ZTProperties.h"
#include "frame/ZTStrings.h"
#include "frame/ZTVariant.h"

namespace zt::frame {

// Version of this contract; the host refuses a package built for another.
// 2: GetNextActionSource, action status, IZTFileSet::GetBaseDir, options
// objects (IZTActionHost::GetOptionValue).
constexpr int ZT_HOST_API_VERSION = 2;

// GetNextActionSource: State nsExecuted is the moment after the action's
// Execute; Next tells the host where to go on from there.
constexpr int nsExecuted = 0;
constexpr int naChildren = 0;      // run the child actions (the host's default)
constexpr int naChildrenRun = 1;   // Execute has run the child actions itself (loops)
constexpr int naSkipChildren = 4;  // skip the child actions: each ends "skipped"

// Host action status values an action may set during Execute
// (SetActionStatus); the log's action-end event carries them.
constexpr int asNone = 0;
constexpr int asConditionNotMet = 9;  // a condition action's test came out false

class TZTAction;
class IZTProjectObjectAPI;
class IZTStringBuilder;
class IZTLoopRunner;     // frame/ZTIterator.h
class IZTProcessRunner;  // frame/ZTExecute.h

// One structured build-log entry. The action appends detail lines to Details
// and hands the entry to the host once, with SendStatusMessage.
class IZTActionLogMessage {
 public:
  virtual ~IZTActionLogMessage() = default;
  virtual TStrings& Details() = 0;
  // The entry's own text (empty unless an action sets it).
  virtual std::string GetText() const = 0;
  virtual void SetText(const std::string& Text) = 0;
};
using IZTActionLogMessagePtr = std::shared_ptr<IZTActionLogMessage>;

// Design-time error collector filled by Validate.
class IZTActionValidationError {
 public:
  virtual ~IZTActionValidationError() = default;
  // PropertyTitle is the property's caption ("File Spec"), not its name.
  virtual void AddError(const std::string& PropertyTitle, const std::string& Message) = 0;
};

// Parameters of one script run: name -> value, in declaration order. The
// parameter "Action" stands for the action itself and carries no value.
// A script sees each parameter as a global of its value's type (a declared
// integer arrives as an integer); the host reads in-out ones back after the
// run, as the type the script left them.
struct TZTScriptParam {
  std::string Name;
  TZTVariant Value;
  bool InOut = false;  // read back after the script ends
};
using TZTScriptParams = std::vector<TZTScriptParam>;

// The declared parameter Name of Params (exact name); raises
// std::out_of_range when the action did not declare it.
inline TZTScriptParam& ScriptParam(TZTScriptParams& Params, const std::string& Name) {
  for (auto& P : Params)
    if (P.Name == Name) return P;
  throw std::out_of_range("script parameter \"" + Name + "\" is not declared");
}

// Raised by ExpandExpression when a text refers to an undefined variable.
class EZTExpandError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The host's side of one action: every host service an action calls goes
// through this interface. Implemented by the host; the package only calls it.
class IZTActionHost {
 public:
  virtual ~IZTActionHost() = default;
  virtual std::string ExpandExpression(TZTAction& Action, const std::string& Text, bool IsName) = 0;
  virtual bool TryExpandExpression(TZTAction& Action, const std::string& PropertyTitle, const std::string& Text,
                                   bool IsName, std::string& Result) = 0;
  virtual void SetVariable(const std::string& Name, const TZTVariant& Value) = 0;
  virtual TZTVariant GetVariableValue(const std::string& Name) = 0;
  virtual bool IsVariableDefined(const std::string& Name) = 0;
  virtual void AddNewVariable(const std::string& Name, const TZTVariant& Value) = 0;
  virtual void GetVariablesList(TStrings& List, bool IncludePredefined) = 0;
  virtual void SendMessage(TZTAction& Action, const std::string& Text) = 0;
  virtual void SendProgress(TZTAction& Action, const std::string& Text, int Percent) = 0;
  virtual IZTActionLogMessagePtr CreateStatusMessage(TZTAction& Action) = 0;
  virtual void SendStatusMessage(TZTAction& Action, const IZTActionLogMessagePtr& Message) = 0;
  virtual bool StopSignalled() = 0;
  virtual std::string GetScriptByName(TZTAction& Action, const std::string& Name) = 0;
  virtual bool ExecuteScript(TZTAction& Action, const std::string& Name, TZTScriptParams& Params) = 0;
  virtual IZTProjectObjectAPI* GetProjectObjectAPI() = 0;
  // A new, empty builder; never null (TZTStringBuilder will do).
  virtual std::shared_ptr<IZTStringBuilder> CreateStringBuilder() = 0;
  // The host's runners of loop actions and process actions. Null from a host
  // that runs neither (unit-test hosts); such a host never calls Execute on
  // those actions.
  virtual IZTLoopRunner* GetLoopRunner() { return nullptr; }
  virtual IZTProcessRunner* GetProcessRunner() { return nullptr; }
  // ExpandExpression that also counts the references of Text it replaced.
  // With FailOnUnknown false, a reference to an undefined name stays in the
  // text as written instead of raising EZTExpandError. Hosts that do not
  // offer it raise std::logic_error.
  virtual std::string ExpandExpressionCounted(TZTAction& Action, const std::string& Text, bool FailOnUnknown,
                                              int& ReplaceCount) {
    (void)Action, (void)Text, (void)FailOnUnknown, (void)ReplaceCount;
    throw std::logic_error("this host does not count replaced references");
  }
  // The value of an options object's property (IZTOptionsServices): the
  // project's `options:` setting, else the declared default. Empty for an
  // options class or property nobody registered, and from hosts without
  // options objects.
  virtual TZTVariant GetOptionValue(const std::string& OptionsClass, const std::string& Property) {
    (void)OptionsClass, (void)Property;
    return {};
  }
};

// Class description: the identity of an action type (Delphi's class
// reference). Built once per class by ZT_IMPLEMENT_CLASS.
struct TZTActionClass {
  std::string ClassName;
  const TZTActionClass* Parent = nullptr;
  TZTAction* (*Create)() = nullptr;           // null for abstract classes
  std::string (*GetActionName)() = nullptr;   // the class operation
  void (*PublishOwn)(std::vector<TZTPropInfo>&) = nullptr;
  // False for a type that is registered but not built yet: its Execute
  // fails with one line saying so (the palette marks it).
  bool Available = true;

  bool IsAvailable() const { return Available; }

  // Published properties: the ancestors' first, then this class's own.
  std::vector<TZTPropInfo> Properties() const {
    std::vector<TZTPropInfo> R = Parent ? Parent->Properties() : std::vector<TZTPropInfo>{};
    if (PublishOwn) PublishOwn(R);
    return R;
  }
  bool InheritsFrom(const TZTActionClass& Other) const {
    for (const TZTActionClass* C = this; C; C = C->Parent)
      if (C == &Other) return true;
    return false;
  }
};

// Declares the class description members; use in the public part of every
// action class, with its direct base class.
#define ZT_DECLARE_CLASS(Cls, Base)                                        \
 public:                                                                   \
  using inherited = Base;                                                  \
  static const ::zt::frame::TZTActionClass& ClassType();                   \
  const ::zt::frame::TZTActionClass& GetClass() const override { return ClassType(); }

// Defines the class description; Publish is a static member
// `void Publish(TZTPublisher<Cls>&)` or nullptr when the class adds none.
// In a header, write `inline ZT_IMPLEMENT_CLASS(...)`.
#define ZT_IMPLEMENT_CLASS(Cls, Publish)                                              \
  const ::zt::frame::TZTActionClass& Cls::ClassType() {                               \
    static const ::zt::frame::TZTActionClass C =                                      \
        ::zt::frame::MakeActionClass<Cls>(#Cls, &Cls::inherited::ClassType(), Publish); \
    return C;                                                                         \
  }

// The action base class: the operations the host calls.
class TZTAction {
 public:
  TZTAction() = default;
  virtual ~TZTAction() = default;
  TZTAction(const TZTAction&) = delete;
  TZTAction& operator=(const TZTAction&) = delete;

  static const TZTActionClass& ClassType();
  virtual const TZTActionClass& GetClass() const { return ClassType(); }
  static std::string GetActionName() { return "Action"; }

  virtual bool Execute() = 0;
  virtual bool Validate(IZTActionValidationError& Errors) { (void)Errors; return true; }
  // Base text: the action's title.
  virtual std::string GetFormattedDescription() { return GetTitle(); }
  virtual void GetPropertyHelp(TStrings& List) { (void)List; }
  virtual void GetPropertyAlias(TStrings& List) { (void)List; }
  virtual void GetHiddenProperties(TStrings& List) { (void)List; }
  virtual void GetReadOnlyProperties(TStrings& List) { (void)List; }
  virtual int GetHelpTopicID() { return 0; }
  virtual std::string GetQuickHelpFilename() { return {}; }
  virtual int GetFilesAffected() { return 0; }
  virtual bool CanTerminate() { return false; }
  // May be called from another thread while Execute runs.
  virtual void TerminateAction() {}
  // Called by the host before a rerun of the project; loop actions reset
  // their counter here.
  virtual void ResetBuildStatus() {}
  // True for actions that decide which of their child actions run (loops,
  // conditions); the host runs child actions only under these.
  virtual bool GetIsFlowControlAction() { return false; }
  // Asked of a flow-control action after Execute succeeded (or failed with
  // its failure ignored), with Next set to naChildren: sets Next to say
  // whether the host runs the child actions now.
  virtual void GetNextActionSource(int State, int& Next) { (void)State; (void)Next; }
  // Declares the parameters of the script ScriptName before a run.
  virtual void InitialiseScriptParams(const std::string& ScriptName, TZTScriptParams& Params) {
    (void)ScriptName; (void)Params;
  }
  // Runs the script method MethodName (one the package registered for this
  // class with IZTScriptingServices::RegisterMethod; no arguments, no
  // result). False when the class has no method of that name.
  virtual bool ExecuteScriptMethod(const std::string& MethodName) {
    (void)MethodName;
    return false;
  }

  const std::string& GetTitle() const { return Title_; }
  void SetTitle(const std::string& Title) { Title_ = Title; }
  // Names of the scripts the action owns (AddScript), in order.
  const std::vector<std::string>& GetScriptNames() const { return ScriptNames_; }

  // The host action status of the last run (asNone unless Execute set one);
  // the host resets it before each run.
  int GetActionStatus() const { return ActionStatus_; }
  void SetActionStatus(int Status) { ActionStatus_ = Status; }

  // Host side: attaches the action to its host before any service call.
  void SetHost(IZTActionHost* Host) { Host_ = Host; }
  IZTActionHost* GetHost() const { return Host_; }

 protected:
  IZTActionHost& Host() const {
    if (!Host_) throw std::logic_error("action '" + Title_ + "' is not attached to a host");
    return *Host_;
  }
  std::vector<std::string> ScriptNames_;

 private:
  std::string Title_;
  IZTActionHost* Host_ = nullptr;
  int ActionStatus_ = asNone;
};

template <class Cls>
TZTActionClass MakeActionClass(const char* Name, const TZTActionClass* Parent,
                               void (*Publish)(TZTPublisher<Cls>&)) {
  TZTActionClass C;
  C.ClassName = Name;
  C.Parent = Parent;
  if constexpr (!std::is_abstract_v<Cls>) C.Create = []() -> TZTAction* { return new Cls(); };
  C.GetActionName = &Cls::GetActionName;
  if (Publish) {
    // Captureless: the publisher function is fixed per class.
    static void (*Fn)(TZTPublisher<Cls>&) = nullptr;
    Fn = Publish;
    C.PublishOwn = [](std::vector<TZTPropInfo>& Out) {
      TZTPublisher<Cls> P(Out);
      Fn(P);
    };
  }
  return C;
}
template <class Cls>
TZTActionClass MakeActionClass(const char* Name, const TZTActionClass* Parent, std::nullptr_t) {
  return MakeActionClass<Cls>(Name, Parent, static_cast<void (*)(TZTPublisher<Cls>&)>(nullptr));
}

inline const TZTActionClass& TZTAction::ClassType() {
  static const TZTActionClass C = [] {
    TZTActionClass R;
    R.ClassName = "TZTAction";
    R.GetActionName = &TZTAction::GetActionName;
    return R;
  }();
  return C;
}

// The implementation base of every package action: the host services.
class TCustomZTAction : public TZTAction {
  ZT_DECLARE_CLASS(TCustomZTAction, TZTAction)

 public:
  // Replaces %Name% references; raises EZTExpandError for an undefined name.
  std::string ExpandExpression(const std::string& Text, bool IsName = true) {
    return Host().ExpandExpression(*this, Text, IsName);
  }
  // As above, and counts the references replaced; with FailOnUnknown false
  // an undefined name stays in the text as written instead of raising.
  std::string ExpandExpression(const std::string& Text, int& ReplaceCount, bool FailOnUnknown) {
    return Host().ExpandExpressionCounted(*this, Text, FailOnUnknown, ReplaceCount);
  }
  // False after the host has logged a line naming PropertyTitle.
  bool TryExpandExpression(const std::string& PropertyTitle, const std::string& Text, bool IsName,
                           std::string& Result) {
    return Host().TryExpandExpression(*this, PropertyTitle, Text, IsName, Result);
  }
  void SetVariable(const std::string& Name, const TZTVariant& Value) { Host().SetVariable(Name, Value); }
  TZTVariant GetVariableValue(const std::string& Name) { return Host().GetVariableValue(Name); }
  bool IsVariableDefined(const std::string& Name) { return Host().IsVariableDefined(Name); }
  void AddNewVariable(const std::string& Name, const TZTVariant& Value) { Host().AddNewVariable(Name, Value); }
  void GetVariablesList(TStrings& List, bool IncludePredefined) { Host().GetVariablesList(List, IncludePredefined); }
  void SendMessage(const std::string& Text) { Host().SendMessage(*this, Text); }
  void SendProgress(const std::string& Text, int Percent) { Host().SendProgress(*this, Text, Percent); }
  IZTActionLogMessagePtr CreateStatusMessage() { return Host().CreateStatusMessage(*this); }
  void SendStatusMessage(const IZTActionLogMessagePtr& Message) { Host().SendStatusMessage(*this, Message); }
  bool StopSignalled() { return GetHost() != nullptr && GetHost()->StopSignalled(); }
  void AddScript(const std::string& Name) { ScriptNames_.push_back(Name); }
  std::string GetScriptByName(const std::string& Name) { return Host().GetScriptByName(*this, Name); }
  bool ExecuteScript(const std::string& Name, TZTScriptParams& Params) {
    return Host().ExecuteScript(*this, Name, Params);
  }
  IZTProjectObjectAPI* GetProjectObjectAPI() { return Host().GetProjectObjectAPI(); }
  std::shared_ptr<IZTStringBuilder> CreateStringBuilder() { return Host().CreateStringBuilder(); }
  TZTVariant GetOptionValue(const std::string& OptionsClass, const std::string& Property) {
    return Host().GetOptionValue(OptionsClass, Property);
  }
};

inline const TZTActionClass& TCustomZTAction::ClassType() {
  static const TZTActionClass C = MakeActionClass<TCustomZTAction>("TCustomZTAction", &TZTAction::ClassType(), nullptr);
  return C;
}

}  // namespace zt::frame
