// Runs the real zt binary on a project written into a test directory and
// collects its exit code, console output and JSON Lines build log.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace zt::testing {

struct ZtResult {
  int ExitCode = -1;  // 128 + signal number when zt was killed by a signal
  std::string Stdout, Stderr;
  std::vector<nlohmann::json> Events;  // one per line of the JSON log, in order
};

// Writes ProjectYaml to Dir/project.yml and runs
// `<zt> <Command> project.yml [--log-json Dir/log.jsonl when Command=="run"] <ExtraArgs...>`
// with Dir as working directory; parses the JSON Lines log. An empty
// ProjectYaml leaves an existing Dir/project.yml alone.
ZtResult RunZt(const std::string& Dir, const std::string& ProjectYaml,
               const std::vector<std::string>& ExtraArgs = {}, const std::string& Command = "run");

// As RunZt for `run`, but sends Signal to zt once its JSON log holds
// SignalWhenLogHas (polled every few milliseconds), as a user's Ctrl+C does;
// Times signals in a row, a few milliseconds apart, as an impatient user's.
ZtResult RunZtAndSignal(const std::string& Dir, const std::string& ProjectYaml,
                        const std::string& SignalWhenLogHas, int Signal, int Times = 1);

// Runs `<zt> Args...` with Dir as working directory and no project file.
ZtResult RunZtArgs(const std::string& Dir, const std::vector<std::string>& Args);

// Detail lines of every `status` event of action Id, in order.
std::vector<std::string> StatusDetails(const ZtResult& R, const std::string& Id);
// The `values` of the build's `variables` event (null when there is none).
nlohmann::json FinalVariables(const ZtResult& R);
// `message` texts of action Id (host lines included), in order.
std::vector<std::string> Messages(const ZtResult& R, const std::string& Id);
// The host's own `message` texts (host: true) of action Id, in order.
std::vector<std::string> HostLines(const ZtResult& R, const std::string& Id);
// The `iteration` events of loop Id as "index/count=value" ("index/count"
// when the event has no value), in order.
std::vector<std::string> Passes(const ZtResult& R, const std::string& Id);
// The value of variable Name in the build's `variables` event (null if none).
nlohmann::json FinalValue(const ZtResult& R, const std::string& Name);
// `result` of the action-end event of action Id, "" if there is none.
std::string ActionResult(const ZtResult& R, const std::string& Id);
// Every line action Id wrote, in log order: a status entry's own text (when
// it has one) and its details, and each message (the host's included).
std::vector<std::string> Said(const ZtResult& R, const std::string& Id);

// One action that zt runs alone in a fresh folder.
struct ActionCase {
  std::string Action;               // its settings in flow style: "action: Delete File(s), FileSpec: a.txt"
  std::vector<std::string> Before;  // the folder's files before the run, as MakeTree reads them
  std::vector<std::string> Log;     // Said() of the action
  std::string Result;               // "success" or "failure"
  std::vector<std::string> After;   // Tree() of the folder afterwards, zt's project and log left out
  std::string Variables = "";       // when given, the build's final variables as JSON
};
// Runs every case (with ExtraArgs on zt's command line) and checks each
// one's log, result and files.
void ExpectCases(const std::vector<ActionCase>& Cases, const std::vector<std::string>& ExtraArgs = {});

// Path of the zt executable under test.
std::string ZtPath();

}  // namespace zt::testing
