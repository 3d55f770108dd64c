// What the actions that run one of the layer's built-in copy tools
// (platform/tools/) share: the builder that records the arguments their
// GetCommandLine gives, the output that turns the tool's lines and progress
// into the action's, and the run that ties them together.
#pragma once

#include <string>
#include <vector>

#include "frame/ZTAction.h"
#include "frame/ZTCommandLine.h"
#include "frame/ZTExecute.h"
#include "platform/command_line.h"
#include "platform/tools/tool_output.h"

namespace zt::package {

// Records the arguments for a built-in tool, keeping paths and switches
// apart: a path is never read as a switch, whatever it starts with.
class TRecordingBuilder : public frame::ICommandLineBuilder {
 public:
  frame::IArgumentPtr AddArgument(const std::string& Name, const std::string& Value, int Kind) override {
    if (Kind == frame::akLiteral) {
      for (std::string& A : platform::SplitCommandLine(Name)) Args.push_back(std::move(A));
    } else if (Kind == frame::akSwitchValue) {
      Args.push_back(Name + Value);
    } else {
      if (!Name.empty()) Args.push_back(Name);
      if (!Value.empty()) Args.push_back(Value);
    }
    return nullptr;
  }
  std::string GetCommandLineText() const override {
    std::string Text;
    for (const std::string& A : Args) Text += (Text.empty() ? "" : " ") + platform::QuoteArgument(A);
    return Text;
  }
  std::vector<std::string> Args;
};

class TActionToolOutput : public platform::IToolOutput {
 public:
  explicit TActionToolOutput(frame::TCustomZTAction& A) : A_(A) {}
  void Line(const std::string& Text) override { A_.SendMessage(Text); }
  void Progress(const std::string& Text, int Percent) override { A_.SendProgress(Text, Percent); }
  bool StopRequested() override { return A_.StopSignalled(); }

 private:
  frame::TCustomZTAction& A_;
};

// Runs a built-in tool where the action would start its program, keeping
// the process actions' contract: the switches from GetCommandLine, the
// judgement from InterpretResult. Run(Args, Output) returns the exit code.
template <class Tool>
bool RunWithBuiltInTool(frame::TZTExecuteAbstractAction& A, Tool&& Run) {
  TRecordingBuilder Builder;
  A.BeforeGetCommandLine();
  const bool Ok = A.GetCommandLine(Builder);
  A.AfterGetCommandLine();
  if (!Ok) return false;
  A.BeforeExecute(Builder);
  TActionToolOutput Out(A);
  const int Code = Run(Builder.Args, Out);
  const bool Success = A.InterpretResult(Code);
  if (Success) A.OnSuccess();
  else A.OnFailure(Code);
  return Success;
}

}  // namespace zt::package
