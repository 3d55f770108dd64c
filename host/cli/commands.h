// The zt commands. Each returns the process exit code: 0 success, 1 the
// build failed or the project has errors, 2 the project or the package
// could not be loaded, 130 stopped by the user.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace zt::host {

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitCannotLoad = 2;
constexpr int kExitStopped = 130;

struct CommandOptions {
  std::string Project;
  std::string Package;  // "" = next to the executable
  std::vector<std::string> Vars;  // NAME=VALUE
  std::string LogJson;            // "-" = standard output (the console log then goes to standard error)
  std::string Registry;
  std::string Color = "auto";     // auto, always, never
  std::string Annotations;        // "" or "github"
  bool Quiet = false;
  bool Strict = false;            // run every enabled action's Validate before the first action
  bool Designer = false;
  bool Available = false;         // zt actions: only the types that run
  std::string Action;             // zt help
};

int RunCommand(const CommandOptions& O, std::ostream& Err);
int ValidateCommand(const CommandOptions& O, std::ostream& Out, std::ostream& Err);
int DescribeCommand(const CommandOptions& O, std::ostream& Out, std::ostream& Err);
int ActionsCommand(const CommandOptions& O, std::ostream& Out, std::ostream& Err);
int HelpCommand(const CommandOptions& O, std::ostream& Out, std::ostream& Err);

}  // namespace zt::host
