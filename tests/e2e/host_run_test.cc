// zt run through the real binary: exit codes, the JSON log, --var, host
// settings, variables whose values refer to others, and Ctrl+C (the build
// stops after the running action and exits 130; a second one ends it at
// once, with its logs whole and no file half written).
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;

// --var overrides the project's value; texts of the project and of --var
// become integers only when they print the same.
TEST(HostRunTest, SuccessfulBuildWithVarsDeletesFilesAndExitsZero) {
  TempDir D;
  MakeTree(D.Path(), {"sub/a.txt", "sub/b.log", "keep/a.txt"});
  ZtResult R = RunZt(D.Path(), R"(name: Clean
variables: {DIR: keep, BUILD: 007, N: 12, Q: "12", RATE: 1.0, ON: TRUE}
actions:
  - {action: Delete File(s), FileSpec: "%DIR%/*.txt"}
)",
                     {"--var", "DIR=sub", "--var", "ZIP=0456", "--var", "BIG=1e3", "--var", "NEG=-3", "--var",
                      "PLUS=+3", "--var", "OFF=false"});
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(Tree(D / "sub"), (std::vector<std::string>{"b.log"}));
  EXPECT_TRUE(fs::exists(D / "keep/a.txt"));
  EXPECT_EQ(StatusDetails(R, "1"),
            (std::vector<std::string>{"Deleting files : sub/*.txt", "1 Files Deleted."}));
  ASSERT_EQ(R.Events.size(), 6u);
  EXPECT_EQ(R.Events[0]["project"], "Clean");
  R.Events[1].erase("t_ms");
  EXPECT_EQ(R.Events[1], nlohmann::json::parse(R"j({"event":"action-start","id":"1","title":"Delete File(s)",
      "class":"TDeleteFilesAction","description":"Delete File(s) [ %DIR%/*.txt ]","file":"project.yml","line":4})j"));
  EXPECT_EQ(R.Events[3]["result"], "success");
  EXPECT_EQ(R.Events[4]["values"], nlohmann::json::parse(R"({"DIR": "sub", "BUILD": "007", "N": 12, "Q": "12",
      "RATE": "1.0", "ON": true, "ZIP": "0456", "BIG": "1e3", "NEG": -3, "PLUS": "+3", "OFF": false})"));
  EXPECT_EQ(R.Events[5]["result"], "success");
  EXPECT_NE(R.Stdout.find("Build succeeded: 1 action in "), std::string::npos) << R.Stdout;
}

// The JSON log on standard output, with the fields CI tools read; the console
// log moves to standard error and ends where a reader looks for the reason.
TEST(HostRunTest, JsonLogOnStandardOutputCarriesTimesLinesAndTheFailedAction) {
  TempDir D;
  WriteText(D / "project.yml", R"(name: Fields
actions:
  - {action: Create Directory, FileOrDirectory: out}
  - {action: Create Directory, title: "Make: the dir, now", FileOrDirectory: missing/dir}
)");
  ZtResult R = RunZtArgs(D.Path(), {"run", "project.yml", "--log-json", "-", "--annotations", "github"});
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  std::vector<nlohmann::json> Events;
  for (std::size_t S = 0, E; (E = R.Stdout.find('\n', S)) != std::string::npos; S = E + 1)
    Events.push_back(nlohmann::json::parse(R.Stdout.substr(S, E - S)));
  ASSERT_EQ(Events.size(), 9u) << R.Stdout;
  std::int64_t Last = 0;
  for (const auto& E : Events) {
    ASSERT_TRUE(E["t_ms"].is_number_integer()) << E;
    EXPECT_GE(E["t_ms"].get<std::int64_t>(), Last) << E;
    Last = E["t_ms"];
    if (E["event"] == "action-end") {
      EXPECT_TRUE(E["duration_ms"].is_number_integer()) << E;
    }
  }
  EXPECT_EQ(Events[0]["file"], "project.yml");
  EXPECT_EQ(Events[0]["zt"], "0.1.0");
  EXPECT_EQ(Events[0]["schema"], 1);
  EXPECT_EQ(Events[4]["id"], "2");
  EXPECT_EQ(Events[4]["file"], "project.yml");
  EXPECT_EQ(Events[4]["line"], 4);
  EXPECT_EQ(Events[8]["failed"], "2");
  // GitHub's escapes: ':' and ',' only in the title, which is a property.
  EXPECT_NE(
      R.Stderr.find("\nproject.yml:4: [2] Make: the dir, now: Unable to Create directory : missing/dir\n"
                    "::error file=project.yml,line=4,title=[2] Make%3A the dir%2C now::Unable to Create "
                    "directory : missing/dir\n"),
      std::string::npos)
      << R.Stderr;
}

TEST(HostRunTest, RunsInTheProjectFolderWhereverStarted) {
  TempDir D;
  MakeTree(D.Path(),
           {"proj/sub/a.txt", "proj/project.yml=actions: [{action: Delete File(s), FileSpec: sub/a.txt}]\n"});
  ZtResult R = RunZtArgs(D.Path(), {"run", "proj/project.yml", "--quiet"});
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_FALSE(fs::exists(D / "proj/sub/a.txt"));
  EXPECT_EQ(R.Stdout.rfind("Build succeeded: 1 action in ", 0), 0u) << R.Stdout;
}

TEST(HostRunTest, IgnoredFailureGoesOnDisabledIsSkippedAndFailureStops) {
  TempDir D;
  MakeTree(D.Path(), {"a.txt", "b.txt"});
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Delete File(s), FileSpec: missing/*.txt, ignoreFailure: true}
  - {action: Delete File(s), FileSpec: a.txt, enabled: false}
  - {action: Delete File(s), title: Must fail, FileSpec: nothing-here.txt}
  - {action: Delete File(s), FileSpec: b.txt}
)");
  EXPECT_EQ(R.ExitCode, 1);
  std::vector<std::string> Results;
  for (const char* Id : {"1", "2", "3", "4"}) Results.push_back(ActionResult(R, Id));
  EXPECT_EQ(Results, (std::vector<std::string>{"ignored", "skipped", "failure", ""}));
  EXPECT_TRUE(fs::exists(D / "a.txt"));
  EXPECT_TRUE(fs::exists(D / "b.txt"));
  EXPECT_EQ(R.Events.back()["result"], "failure");
  EXPECT_NE(R.Stdout.find("\nBuild FAILED: 3 actions (1 ignored, 1 skipped) in "), std::string::npos)
      << R.Stdout;
}

// A build log that is lost is a failed run: one line says so, whatever the build did.
TEST(HostRunTest, JsonLogThatCannotBeWrittenExitsOneWithOneLine) {
  TempDir D;
  WriteText(D / "project.yml", "actions: [{action: Create Directory, FileOrDirectory: made}]\n");
  ZtResult R = RunZtArgs(D.Path(), {"run", "project.yml", "--log-json", "/dev/full", "--quiet"});
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stderr, "zt: cannot write the JSON log /dev/full: No space left on device\n");
  EXPECT_TRUE(fs::exists(D / "made"));
  fs::remove(D / "made");
  R = RunZtArgs(D.Path(), {"run", "project.yml", "--log-json", "no-dir/log.jsonl"});
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stderr, "zt: cannot write the JSON log no-dir/log.jsonl: No such file or directory\n");
  EXPECT_FALSE(fs::exists(D / "made"));
}

TEST(HostRunTest, MissingPackageExitsTwo) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), "actions: []\n", {"--package", D / "none.so"});
  EXPECT_EQ(R.ExitCode, 2);
  EXPECT_EQ(R.Stderr.rfind("zt: cannot load the action package: ", 0), 0u) << R.Stderr;
}

TEST(HostVariablesTest, ValuesExpandTheirOwnReferencesOnceWhenUsed) {
  struct Row {
    std::string Reference, Folder, Error;  // Folder: the name made under out/; Error: the action's last line
  } Rows[] = {
      {"%DIST%", "app-1.4.2", ""},
      {"%dist%-%PCT%", "app-1.4.2-100%", ""},
      {"%TWICE%", "app-1.4.2-100%", ""},
      {"%RAW%", "%VERSION%", ""},  // the expanded value is not scanned again
      {"%A%", "", "Variables refer to each other in a cycle: A -> B -> A"},
      {"%SELF%", "", "Variables refer to each other in a cycle: SELF -> SELF"},
      {"%MISSING%", "", "Variable \"NOPE\" is not defined (used in the value of \"MISSING\")"},
  };
  std::string Yaml = R"(variables:
  VERSION: 1.4.2
  DIST: app-%VERSION%
  PCT: 100%%
  TWICE: "%DIST%-%PCT%"
  RAW: "%%VERSION%%"
  A: x%B%
  B: "%A%"
  SELF: "%SELF%"
  MISSING: "%NOPE%"
actions:
)";
  for (const Row& R : Rows)
    Yaml += "  - {action: Create Directory, FileOrDirectory: \"out/" + R.Reference +
            "\", Force: true, ignoreFailure: true}\n";
  TempDir D;
  ZtResult Run = RunZt(D.Path(), Yaml);
  EXPECT_EQ(Run.ExitCode, 0) << Run.Stderr;
  for (std::size_t I = 0; I < std::size(Rows); ++I) {
    const Row& R = Rows[I];
    std::string Id = std::to_string(I + 1);
    if (R.Error.empty()) {
      EXPECT_TRUE(fs::is_directory(D / ("out/" + R.Folder))) << R.Reference;
      EXPECT_EQ(ActionResult(Run, Id), "success") << R.Reference;
    } else {
      auto Lines = StatusDetails(Run, Id);
      EXPECT_EQ(Lines.empty() ? "" : Lines.back(), R.Error) << R.Reference;
      EXPECT_EQ(ActionResult(Run, Id), "ignored") << R.Reference;
    }
  }
  EXPECT_EQ(FinalValue(Run, "DIST"), "app-%VERSION%");  // stored values stay as written
}

// Many quick actions, so the interrupt lands while the build runs.
std::string ManyDeletes(int Count) {
  std::string Yaml = "name: Long\nvariables: {MARK: set}\nactions:\n";
  for (int I = 0; I < Count; ++I)
    Yaml += "  - {action: Delete File(s), FileSpec: nothing-" + std::to_string(I) +
            ".tmp, FailIfNoFile: false}\n";
  return Yaml;
}

TEST(HostStopTest, InterruptStopsTheBuildBetweenActionsAndExits130) {
  TempDir D;
  const int Count = 20000;
  ZtResult R = RunZtAndSignal(D.Path(), ManyDeletes(Count), "\"action-end\"", SIGINT);
  ASSERT_EQ(R.ExitCode, 130) << R.Stderr;
  ASSERT_GE(R.Events.size(), 3u);
  EXPECT_EQ(R.Events.back()["event"], "build-end");
  EXPECT_EQ(R.Events.back()["result"], "stopped");
  EXPECT_EQ(R.Events[R.Events.size() - 2]["event"], "variables");
  EXPECT_EQ(FinalValue(R, "MARK"), "set");
  // Every action that started also ended, and the last ones never started.
  int Started = 0, Ended = 0;
  for (const auto& E : R.Events) {
    Started += E["event"] == "action-start";
    Ended += E["event"] == "action-end";
  }
  EXPECT_EQ(Started, Ended);
  EXPECT_GE(Started, 1);
  EXPECT_LT(Started, Count);
  EXPECT_EQ(ActionResult(R, std::to_string(Count)), "");
}

TEST(HostStopTest, SecondInterruptLeavesNoTemporaryFileAndEndsBothLogs) {
  TempDir Shm("/dev/shm"), D;  // a huge source that costs neither disk nor memory
  const std::string Big = (Shm.Path().empty() ? D.Path() : Shm.Path()) + "/huge.bin";
  std::ofstream(Big).close();
  std::filesystem::resize_file(Big, std::uintmax_t{64} << 30);
  MakeTree(D.Path(), {"out/huge.bin=old"});
  ZtResult R = RunZtAndSignal(
      D.Path(), "actions: [{action: Copy File(s), FileSpec: " + Big + ", Target: out/huge.bin}]\n",
      "\"Copying File :", SIGINT, 2);
  EXPECT_EQ(R.ExitCode, 130);
  ASSERT_FALSE(R.Events.empty());
  EXPECT_EQ(R.Events.back()["event"], "build-end");
  EXPECT_EQ(R.Events.back()["result"], "stopped");
  EXPECT_NE(R.Stdout.find("Build stopped"), std::string::npos) << R.Stdout;
  EXPECT_EQ(Tree(D / "out"), std::vector<std::string>{"huge.bin=old"});
}

}  // namespace
}  // namespace zt::testing
