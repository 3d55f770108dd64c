// zt run: the checks that refuse a project before anything is touched, the
// build log's destinations, and the run itself.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "host/cli/command_support.h"
#include "host/cli/commands.h"
#include "host/cli/registry_command.h"
#include "host/log/annotations.h"
#include "host/log/console_log.h"
#include "host/log/json_log.h"
#include "host/run/runner.h"
#include "host/run/stop_signal.h"

namespace zt::host {

namespace {

bool ParseVars(const std::vector<std::string>& Vars, VariableList& Out, std::ostream& Err) {
  for (const auto& V : Vars) {
    auto Eq = V.find('=');
    if (Eq == std::string::npos || Eq == 0) {
      Err << "zt: --var expects NAME=VALUE, got \"" << V << "\"\n";
      return false;
    }
    std::string Name = V.substr(0, Eq);
    if (!IsVariableName(Name)) {
      Err << "zt: --var \"" << V << "\": \"" << Name
          << "\" is not a valid variable name (letters, digits, _, . and -)\n";
      return false;
    }
    Out.emplace_back(Name, TypedValueOf(V.substr(Eq + 1)));
  }
  return true;
}

int ExitCodeOf(BuildResult Result) {
  switch (Result) {
    case BuildResult::Success:
      return kExitOk;
    case BuildResult::Failure:
      return kExitFailed;
    case BuildResult::Stopped:
      return kExitStopped;
  }
  return kExitFailed;
}

}  // namespace

int RunCommand(const CommandOptions& O, std::ostream& Err) {
  // With the JSON log on standard output, the console log and its annotations move to standard error.
  bool JsonToStdout = O.LogJson == "-";
  std::FILE* Console = JsonToStdout ? stderr : stdout;
  std::ostream& Annotate = JsonToStdout ? std::cerr : std::cout;

  VariableList Overrides;
  if (!ParseVars(O.Vars, Overrides, Err)) return kExitCannotLoad;
  if (const char* Epoch = std::getenv("SOURCE_DATE_EPOCH"); Epoch && !BuildStartText(0, Epoch)) {
    Err << "zt: SOURCE_DATE_EPOCH must be a whole number of seconds since 1970, got \"" << Epoch << "\"\n";
    return kExitCannotLoad;
  }
  Project P;
  if (!LoadProjectFile(O, P, Err, Annotate)) return kExitCannotLoad;
  // A type that is not built yet can never succeed: refuse before earlier actions change files.
  if (ReportErrors(O, P.FileName, UnavailableActions(P), Err, Annotate)) return kExitCannotLoad;

  BuildLog Log;
  Runner R(P, Log, Overrides);
  if (JsonToStdout) R.Processes().SendUncapturedOutputToErrorStream();
  if (O.Strict && ValidateActions(O, P, /*EnabledOnly=*/true, Err, Annotate)) return kExitCannotLoad;

  JsonLog* Json = nullptr;
  try {
    // Opened before the change of folder: the path is the user's, relative to where zt started.
    if (!O.LogJson.empty()) {
      auto Sink = JsonLog::Open(O.LogJson);
      Json = Sink.get();
      Log.AddSink(std::move(Sink));
    }
  } catch (const std::exception& E) {
    Err << "zt: " << E.what() << "\n";
    return kExitFailed;
  }
  bool IsTerminal = isatty(fileno(Console)) != 0;
  Log.AddSink(std::make_unique<ConsoleLog>(
      Console, ConsoleOptions{IsTerminal, UseColor(O.Color, IsTerminal), O.Quiet}));
  if (O.Annotations == "github") Log.AddSink(std::make_unique<GitHubAnnotations>(Console));

  UseRegistryStore(O.Registry);
  std::error_code Ec;
  std::filesystem::current_path(std::filesystem::path(P.File).parent_path(), Ec);
  if (Ec) {
    Err << "zt: cannot change to the project's folder: " << Ec.message() << "\n";
    return kExitCannotLoad;
  }

  BuildResult Result;
  {
    StopSignal Stop([&R] { R.RequestStop(); }, [&R] { R.Abandon(); });
    Result = R.Run();
  }
  if (Json && !Json->WriteError().empty()) {
    Err << "zt: cannot write the JSON log " << O.LogJson << ": " << Json->WriteError() << "\n";
    return Result == BuildResult::Stopped ? kExitStopped : kExitFailed;
  }
  return ExitCodeOf(Result);
}

}  // namespace zt::host
