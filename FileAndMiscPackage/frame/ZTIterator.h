// Loop actions. TZTBaseIterator keeps the loop variable's name and the pass
// counter; the host's loop runner (IZTLoopRunner) drives the passes and the
// child actions. A loop action implements BeforeFirstIteration and
// GetCurrentValue, may extend AfterEachIteration / AfterLastIteration, and
// overrides ResetBuildStatus to call the inherited one and then Reset, so a
// rerun of the project starts the loop afresh.
//
// One run, as the runner performs it:
//   Reset(); if (!BeforeFirstIteration()) the action fails;
//   while (!NoMoreIterations()) {
//     if a stop was asked: the action fails, no further pass starts;
//     NextIteration();                                 // counter k = 1, 2, ...
//     Value = GetCurrentValue();
//     unless GetNoLoopVariable(): SetVariable(GetZTVariable(), Value)
//                                 (no variable when the name is empty);
//     log the pass; run the child actions;             // a failed child ends the loop
//     AfterEachIteration();
//   }
//   AfterLastIteration();
// An exception from any of these (EIteratorException or another) is logged
// with its message and fails the action. AfterLastIteration is called once
// for every BeforeFirstIteration that returned true, however the passes end.
#pragma once

#include <stdexcept>
#include <string>

#include "frame/ZTAction.h"

namespace zt::frame {

// Raised by a loop action that cannot build its item list.
class EIteratorException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class TZTBaseIterator;

// Implemented by the host: runs a loop action with its child actions.
class IZTLoopRunner {
 public:
  virtual ~IZTLoopRunner() = default;
  virtual bool ExecuteLoop(TZTBaseIterator& Iterator) = 0;
};

class TZTBaseIterator : public TCustomZTAction {
  ZT_DECLARE_CLASS(TZTBaseIterator, TCustomZTAction)

 public:
  // Name of the loop variable (published as ZTVariable).
  virtual void SetZTVariable(const std::string& Name) { ZTVariable_ = Name; }
  const std::string& GetZTVariable() const { return ZTVariable_; }
  // True for a loop that sets its own variables in GetCurrentValue: the
  // runner then sets no loop variable and logs no value for a pass.
  bool GetNoLoopVariable() const { return NoLoopVariable_; }

  // The value of the current pass; the runner puts it into the loop variable.
  virtual TZTVariant GetCurrentValue() = 0;
  virtual bool NoMoreIterations() { return CurrentIteration_ >= IterationCount_; }
  // Builds the item list, logs it and calls SetIterationCount. False only
  // when the loop cannot start (a property did not expand, an input file is
  // missing); other failures raise.
  virtual bool BeforeFirstIteration() = 0;
  // Overrides call the inherited operation first.
  virtual void AfterLastIteration() {}
  virtual void AfterEachIteration() {}

  void SetIterationCount(int Count) { IterationCount_ = Count; }
  int GetIterationCount() const { return IterationCount_; }
  // 1-based number of the current pass (0 before the first).
  int GetCurrentIteration() const { return CurrentIteration_; }
  void Reset() { CurrentIteration_ = 0; }
  // Runner side: starts the next pass.
  void NextIteration() { ++CurrentIteration_; }

  bool Execute() override {
    IZTLoopRunner* Runner = Host().GetLoopRunner();
    if (!Runner) throw std::logic_error("this host does not run loop actions");
    return Runner->ExecuteLoop(*this);
  }
  bool GetIsFlowControlAction() override { return true; }
  // "Reset", the script method registered on every loop action.
  bool ExecuteScriptMethod(const std::string& MethodName) override {
    if (MethodName != "Reset") return inherited::ExecuteScriptMethod(MethodName);
    Reset();
    return true;
  }
  // The runner has run the child actions in Execute, pass by pass.
  void GetNextActionSource(int, int& Next) override { Next = naChildrenRun; }
  void GetPropertyAlias(TStrings& List) override { List.Add("ZTVariable=Variable"); }
  void GetPropertyHelp(TStrings& List) override {
    List.Add("ZTVariable=The loop variable: it receives the current item before each pass");
  }

  static void Publish(TZTPublisher<TZTBaseIterator>& P) {
    P.String("ZTVariable", &TZTBaseIterator::GetZTVariable, &TZTBaseIterator::SetZTVariable);
  }

 protected:
  void SetNoLoopVariable(bool Value) { NoLoopVariable_ = Value; }

 private:
  std::string ZTVariable_;
  bool NoLoopVariable_ = false;
  int IterationCount_ = 0;
  int CurrentIteration_ = 0;
};

inline ZT_IMPLEMENT_CLASS(TZTBaseIterator, &TZTBaseIterator::Publish)

}  // namespace zt::frame
