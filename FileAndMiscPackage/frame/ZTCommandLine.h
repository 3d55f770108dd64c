// The host's command-line builder: process actions append their arguments in
// GetCommandLine; the host quotes, joins and starts the process.
#pragma once

#include <memory>
#include <string>

namespace zt::frame {

// Argument kinds the package uses (the host may know more).
enum TZTArgumentKind : int {
  akLiteral = 0,      // Name written exactly as given ("/c", a parameter text)
  akSwitchOrPath = 2, // a switch (Name only, "/MIR") or a path (Value only); quoted when needed
  akSwitchValue = 4,  // Name directly followed by Value ("/JOB:" + file)
};

// One argument as added.
class IArgument {
 public:
  virtual ~IArgument() = default;
  virtual std::string GetName() const = 0;
  virtual std::string GetValue() const = 0;
  virtual int GetKind() const = 0;
};
using IArgumentPtr = std::shared_ptr<IArgument>;

class ICommandLineBuilder {
 public:
  virtual ~ICommandLineBuilder() = default;
  // Appends one argument; Kind is a TZTArgumentKind value.
  virtual IArgumentPtr AddArgument(const std::string& Name, const std::string& Value, int Kind) = 0;
  // The whole command line as the process will receive it (without the
  // executable), arguments separated by one blank.
  virtual std::string GetCommandLineText() const = 0;
};

}  // namespace zt::frame
