// The host's command-line builder (frame::ICommandLineBuilder): records the
// arguments a process action adds, shows them as one command-line text, and
// turns them into the program's argument list.
#pragma once

#include <string>
#include <vector>

#include "frame/ZTCommandLine.h"

namespace zt::host {

class CommandLineBuilder : public frame::ICommandLineBuilder {
 public:
  frame::IArgumentPtr AddArgument(const std::string& Name, const std::string& Value, int Kind) override;
  // Literal arguments as given, the others quoted where the platform needs
  // it, separated by one blank.
  std::string GetCommandLineText() const override;

  // The program's arguments. A literal (akLiteral) is a piece of command
  // line, split as the platform splits a parameter text; a switch or path is
  // one argument (a name and a value both given: two); akSwitchValue is the
  // name and the value joined into one. For the command interpreter
  // (CommandInterpreter true) whose first argument is its switch, the rest
  // of the command-line text is the one argument after the switch.
  std::vector<std::string> Arguments(bool CommandInterpreter) const;

  // The arguments as added, in order.
  const std::vector<frame::IArgumentPtr>& Recorded() const { return Arguments_; }

 private:
  std::string TextOf(const frame::IArgument& A) const;
  std::vector<frame::IArgumentPtr> Arguments_;
};

}  // namespace zt::host
