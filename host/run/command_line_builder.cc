#include "host/run/command_line_builder.h"

#include <memory>

#include "platform/command_line.h"

namespace zt::host {

namespace {

class Argument : public frame::IArgument {
 public:
  Argument(std::string Name, std::string Value, int Kind)
      : Name_(std::move(Name)), Value_(std::move(Value)), Kind_(Kind) {}
  std::string GetName() const override { return Name_; }
  std::string GetValue() const override { return Value_; }
  int GetKind() const override { return Kind_; }

 private:
  std::string Name_, Value_;
  int Kind_;
};

}  // namespace

frame::IArgumentPtr CommandLineBuilder::AddArgument(const std::string& Name, const std::string& Value, int Kind) {
  Arguments_.push_back(std::make_shared<Argument>(Name, Value, Kind));
  return Arguments_.back();
}

std::string CommandLineBuilder::TextOf(const frame::IArgument& A) const {
  switch (A.GetKind()) {
    case frame::akLiteral:
      return A.GetName();
    case frame::akSwitchValue:
      return platform::QuoteArgument(A.GetName() + A.GetValue());
    default: {
      std::string Name = A.GetName(), Value = A.GetValue();
      if (Name.empty()) return platform::QuoteArgument(Value);
      if (Value.empty()) return platform::QuoteArgument(Name);
      return platform::QuoteArgument(Name) + " " + platform::QuoteArgument(Value);
    }
  }
}

std::string CommandLineBuilder::GetCommandLineText() const {
  std::string Text;
  for (const auto& A : Arguments_) {
    if (!Text.empty()) Text += ' ';
    Text += TextOf(*A);
  }
  return Text;
}

std::vector<std::string> CommandLineBuilder::Arguments(bool CommandInterpreter) const {
  std::vector<std::string> Args;
  if (CommandInterpreter && !Arguments_.empty() && Arguments_[0]->GetKind() == frame::akLiteral &&
      Arguments_[0]->GetName() == platform::CommandInterpreterSwitch()) {
    std::string Rest;
    for (std::size_t I = 1; I < Arguments_.size(); ++I) {
      if (I > 1) Rest += ' ';
      Rest += TextOf(*Arguments_[I]);
    }
    return {Arguments_[0]->GetName(), Rest};
  }
  for (const auto& A : Arguments_) {
    if (A->GetKind() == frame::akLiteral) {
      for (std::string& W : platform::SplitCommandLine(A->GetName())) Args.push_back(std::move(W));
    } else if (A->GetKind() == frame::akSwitchValue) {
      Args.push_back(A->GetName() + A->GetValue());
    } else {
      if (A->GetName().empty()) {
        Args.push_back(A->GetValue());  // a path, also an empty one
      } else {
        Args.push_back(A->GetName());
        if (!A->GetValue().empty()) Args.push_back(A->GetValue());
      }
    }
  }
  return Args;
}

}  // namespace zt::host
