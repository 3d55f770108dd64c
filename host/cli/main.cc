// zt: runs build projects made of the package's actions.
#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/cli/commands.h"
#include "host/cli/registry_command.h"
#include "host/cli/tool_commands.h"
#include "host/project/did_you_mean.h"
#include "host/version.h"

using namespace zt::host;

int main(int argc, char** argv) {
  const std::vector<std::string> Commands = {"run",      "validate", "describe", "actions",
                                             "help",     "registry", "robocopy", "xcopy"};
  // The built-in copy tools take their own switches ("/MIR"): everything
  // after the command is theirs.
  if (argc > 1 && std::string(argv[1]) == "robocopy") return RobocopyCommand({argv + 2, argv + argc});
  if (argc > 1 && std::string(argv[1]) == "xcopy") return XCopyCommand({argv + 2, argv + argc});
  if (argc > 1 && argv[1][0] != '-') {
    std::string Word = argv[1];
    if (std::find(Commands.begin(), Commands.end(), Word) == Commands.end()) {
      std::cerr << "zt: unknown command \"" << Word << "\"" << DidYouMean(Word, Commands) << "\n";
      return kExitCannotLoad;
    }
  }

  CLI::App App{"zt: runs build projects made of file, text, process and registry actions", "zt"};
  App.footer(
      "Examples:\n"
      "  zt run release.yml --var VERSION=1.4.2 --log-json build.jsonl\n"
      "  zt help \"Copy File(s)\"\n"
      "  zt registry import settings.reg\n"
      "  zt robocopy build/out /srv/share/out /MIR     (the built-in robocopy; its own exit codes)\n"
      "  zt xcopy src out /S /I /Y                     (the built-in xcopy; its own exit codes)\n"
      "\n"
      "Exit codes: 0 success; 1 the build failed (validate: errors found); 2 the project could not be\n"
      "loaded or the command line is wrong; 130 stopped (Ctrl+C).");
  App.set_version_flag("--version", std::string("zt ") + kZtVersion);
  App.require_subcommand(1);
  CommandOptions O;
  auto AddPackage = [&O](CLI::App* Sub) {
    Sub->add_option("--package", O.Package, "the action package to load (default: next to zt)");
  };

  auto AddAnnotations = [&O](CLI::App* Sub) {
    Sub->add_option("--annotations", O.Annotations, "also write CI annotations for failed actions")
        ->check(CLI::IsMember({"github"}))
        ->type_name("FORMAT");
  };

  auto* Run = App.add_subcommand("run", "run a project");
  Run->add_option("PROJECT", O.Project, "the project file (YAML or JSON)")->required();
  Run->add_option("--var", O.Vars, "set a variable, overriding the project's initial value")->type_name("NAME=VALUE");
  Run->add_option("--log-json", O.LogJson, "write the build log as JSON Lines to FILE (- for standard output)")
      ->type_name("FILE");
  Run->add_flag("--quiet", O.Quiet, "print only failing actions and the summary");
  Run->add_flag("--strict", O.Strict, "check every enabled action's settings before the first action starts");
  Run->add_option("--color", O.Color, "colour the console log (default: auto, on a terminal without NO_COLOR)")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->type_name("WHEN");
  AddAnnotations(Run);
  Run->add_option("--registry", O.Registry, "the registry store file")->type_name("FILE");
  AddPackage(Run);

  auto* Validate = App.add_subcommand("validate", "check every action's settings");
  Validate->add_option("PROJECT", O.Project, "the project file")->required();
  AddAnnotations(Validate);
  AddPackage(Validate);

  auto* Describe = App.add_subcommand("describe", "print the project's action tree");
  Describe->add_option("PROJECT", O.Project, "the project file")->required();
  AddPackage(Describe);

  auto* Actions = App.add_subcommand("actions", "list the action types");
  Actions->add_flag("--designer", O.Designer, "also list property editors and pages");
  Actions->add_flag("--available", O.Available, "list only the types that run (not those not available yet)");
  AddPackage(Actions);

  auto* Help = App.add_subcommand("help", "describe one action type and its properties");
  Help->add_option("ACTION", O.Action, "class name or display name")->required();
  AddPackage(Help);

  RegistryOptions RegistryArgs;
  CLI::App* Registry = AddRegistryCommand(App, RegistryArgs);

  try {
    App.parse(argc, argv);
  } catch (const CLI::ParseError& E) {
    int Code = App.exit(E);
    return Code == 0 ? kExitOk : kExitCannotLoad;
  }

  if (Run->parsed()) return RunCommand(O, std::cerr);
  if (Registry->parsed()) return RegistryCommand(*Registry, RegistryArgs, std::cout, std::cerr);
  if (Validate->parsed()) return ValidateCommand(O, std::cout, std::cerr);
  if (Describe->parsed()) return DescribeCommand(O, std::cout, std::cerr);
  if (Actions->parsed()) return ActionsCommand(O, std::cout, std::cerr);
  return HelpCommand(O, std::cout, std::cerr);
}
