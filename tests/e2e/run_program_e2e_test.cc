// "Execute Program" and "Run DOS Command" through zt: exit codes and their
// lines, the output in the log, time-outs and Ctrl+C (nothing zt waits for
// survives), programs that cannot start, and the parameter text as arguments.
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/Processes.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

// A killed process is gone a moment after the signal, not at once.
bool Ended(pid_t Pid) {
  return Pid > 0 && WaitUntil([Pid] { return !ProcessRunning(Pid); }, 2);
}

double SecondsSince(Clock::time_point T) { return std::chrono::duration<double>(Clock::now() - T).count(); }

TEST(RunProgramEndToEnd, TheExitCodeDecidesTheResultAndWhatIsLogged) {
  const std::string Dos = "action: Run DOS Command, Command: ";
  auto Code = [](int C) { return Lines{"Program returned code  : " + std::to_string(C)}; };
  // clang-format off
  ExpectCases({
      {Dos + "exit 0", {}, {}, "success", {}},
      {Dos + "exit 1", {}, Code(1), "failure", {}},
      {Dos + "exit 3, SuccessRC: 3", {}, {}, "success", {}},
      {Dos + "exit 4, SuccessRC: 3", {}, Code(4), "failure", {}},
      {Dos + "exit 5, ReturnCodeComparator: rcGreaterThan, ReturnCodeToCheck: 4", {}, {}, "success", {}},
      {Dos + "exit 5, ReturnCodeComparator: rcNotEqual, ReturnCodeToCheck: 5", {}, Code(5), "failure", {}},
      {Dos + "exit 7, EnableReturnCodeCheck: false", {}, Code(7), "success", {}},
      {Dos + "exit 0, CaptureOutput: false", {}, Code(0), "success", {}},
      {Dos + "kill -TERM $$", {}, Code(143), "failure", {}},
      // A time-out counts only when enabled and longer than 0 seconds.
      {Dos + "sleep 0.2, EnableTimeout: true, TimeoutLength: 0", {}, {}, "success", {}},
      {Dos + "sleep 1.2, EnableTimeout: false, TimeoutLength: 1", {}, {}, "success", {}},
  });
  // clang-format on
}

TEST(RunProgramEndToEnd, OutputReachesTheLogAsLinesWithoutLoss) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Run DOS Command, Command: "printf 'a\\r\\nb\\n\\nno line end'"}
  - {action: Run DOS Command, Command: echo out1; echo err1 >&2; echo out2}
  - {action: Run DOS Command, Command: echo out; echo err >&2, RedirectStdErr: false}
  - {action: Run DOS Command, Command: "printf 'x\\ny\\n'", EnableLiveCapture: false}
  - {action: Run DOS Command, Command: echo straight to the console, CaptureOutput: false}
  - {action: Run DOS Command, Command: "head -c 300000 /dev/zero | tr '\\0' x; printf 'caf\\351\\n'"}
  - {action: Run DOS Command, Command: "printf '%%s\\n' 'eight+ \"quoted\" \\back\\slash' '12345678\"' 'tab\\t	abcdefgh\\'"}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"a", "b", "", "no line end"}));
  EXPECT_EQ(StatusDetails(R, "2"), (Lines{"out1", "err1", "out2"}));
  Lines Separate = StatusDetails(R, "3");
  std::sort(Separate.begin(), Separate.end());  // two streams: each line whole, in no fixed order
  EXPECT_EQ(Separate, (Lines{"err", "out"}));
  EXPECT_EQ(StatusDetails(R, "4"), (Lines{"x", "y"}));  // in one event
  EXPECT_EQ(
      std::count_if(R.Events.begin(), R.Events.end(),
                    [](auto& E) { return E.value("event", "") == "status" && E.value("id", "") == "4"; }),
      1);
  EXPECT_EQ(Said(R, "5"), Lines{"Program returned code  : 0"});
  EXPECT_NE(R.Stdout.find("straight to the console\n"), std::string::npos);
  // A long line arrives whole; bytes that are not UTF-8 become U+FFFD in the JSON log.
  EXPECT_EQ(StatusDetails(R, "6"), (Lines{std::string(300000, 'x') + "caf\xEF\xBF\xBD"}));
  EXPECT_EQ(StatusDetails(R, "7"),
            (Lines{"eight+ \"quoted\" \\back\\slash", "12345678\"", "tab\\t\tabcdefgh\\"}));
  // Output not captured stays out of a JSON log on standard output.
  WriteText(D / "project.yml",
            "actions:\n  - {action: Run DOS Command, Command: echo free, CaptureOutput: false}\n");
  R = RunZtArgs(D.Path(), {"run", "project.yml", "--log-json", "-"});
  EXPECT_NE(R.Stderr.find("free\n"), std::string::npos);
  std::istringstream Json(R.Stdout);
  for (std::string Line; std::getline(Json, Line);) EXPECT_TRUE(nlohmann::json::accept(Line)) << Line;
}

TEST(RunProgramEndToEnd, LiveOutputReachesTheLogWhileTheProgramRuns) {
  TempDir D;
  // The program only goes on once the test has seen its first line in the log.
  std::thread Releaser([&D] {
    WaitUntil([&] { return ReadText(D / "log.jsonl").find("\"first\"") != std::string::npos; });
    WriteText(D / "go");
  });
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Run DOS Command, Command: "echo first; while [ ! -e go ]; do sleep 0.02; done; echo second",
     EnableTimeout: true, TimeoutLength: 20}
)");
  Releaser.join();
  EXPECT_EQ(ActionResult(R, "1"), "success") << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"first", "second"}));
}

TEST(RunProgramEndToEnd, TimeOutStopsTheProgramAndEverythingItStarted) {
  TempDir D;
  const auto Start = Clock::now();
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Run DOS Command, EnableTimeout: true, TimeoutLength: 1,
     Command: "echo $$ > shell.pid; sleep 60 & echo $! > child.pid; trap '' TERM; sleep 60"}
)");
  EXPECT_LT(SecondsSince(Start), 20);
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  EXPECT_EQ(Messages(R, "1"), (Lines{"The program did not finish within 1 second and was stopped",
                                     "Program returned code  : 999"}));
  EXPECT_EQ(HostLines(R, "1"), (Lines{"The program did not finish within 1 second and was stopped"}));
  // The shell ignored SIGTERM and was killed after the grace period; its children with it.
  EXPECT_TRUE(Ended(ReadPid(D / "shell.pid")));
  EXPECT_TRUE(Ended(ReadPid(D / "child.pid")));
}

TEST(RunProgramEndToEnd, InterruptStopsALongProgramAndItsChildrenButNotOneStartedWithoutWaiting) {
  TempDir D;
  const auto Start = Clock::now();
  ZtResult R = RunZtAndSignal(D.Path(), R"(actions:
  - {action: Run DOS Command, Command: "echo $$ > detached.pid; while [ ! -e go ]; do sleep 0.02; done",
     WaitForCompletion: false, CaptureOutput: false}
  - {action: Run DOS Command, Command: "echo $$ > shell.pid; sleep 60 & echo $! > child.pid; echo started; wait"}
  - {action: Run DOS Command, Command: echo never}
)",
                              "\"started\"", SIGINT);
  EXPECT_LT(SecondsSince(Start), 20);
  EXPECT_EQ(R.ExitCode, 130) << R.Stderr;
  EXPECT_EQ(Messages(R, "2"), (Lines{"Program returned code  : 999", "Terminated by user"}));
  EXPECT_EQ(ActionResult(R, "3"), "");
  EXPECT_TRUE(Ended(ReadPid(D / "shell.pid")));
  EXPECT_TRUE(Ended(ReadPid(D / "child.pid")));
  // The program zt did not wait for is the user's: the stop leaves it alone.
  EXPECT_TRUE(WaitUntil([&] { return ReadPid(D / "detached.pid") > 0; }));
  const pid_t Detached = ReadPid(D / "detached.pid");
  EXPECT_TRUE(ProcessRunning(Detached));
  WriteText(D / "go");
  EXPECT_TRUE(Ended(Detached));
}

TEST(RunProgramEndToEnd, ThePipesClosingIsNotTheProgramEndingNorIsTheProgramEndingTheirs) {
  TempDir D;
  const auto Start = Clock::now();
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Run DOS Command, Command: "exec >/dev/null 2>&1; sleep 0.3; echo > done.txt; exit 4",
     ignoreFailure: true}
  - {action: Run DOS Command, Command: "sleep 30 & echo $! > holder.pid; echo bye"}
  - {action: Run DOS Command, Command: "while [ ! -e go ]; do sleep 0.02; done; echo > ran.txt",
     WaitForCompletion: false}
)");
  // The first program was waited for although it closed its output; the
  // second ended while a child kept its output open, and zt went on.
  EXPECT_EQ(Messages(R, "1"), (Lines{"Program returned code  : 4"}));
  EXPECT_TRUE(Exists(D / "done.txt"));
  EXPECT_EQ(StatusDetails(R, "2"), (Lines{"bye"}));
  EXPECT_EQ(ActionResult(R, "2"), "success");
  EXPECT_LT(SecondsSince(Start), 15);
  if (const pid_t Holder = ReadPid(D / "holder.pid"); Holder > 0)
    kill(Holder, SIGKILL);  // 0 would be our own group
  // Not waited for: the program runs on by itself after zt has ended.
  EXPECT_EQ(
      Messages(R, "3"),
      (Lines{"WARNING: To Capture Output you must enable Wait For Completion. No output will be captured.",
             "Program started."}));
  WriteText(D / "go");
  EXPECT_TRUE(WaitUntil([&] { return Exists(D / "ran.txt"); }));
}

TEST(RunProgramEndToEnd, AProgramThatCannotStartIsOneHostLineAndParametersAreSplitLikeAShell) {
  TempDir D;
  WriteText(D / "plain.txt", "not a program");
  WriteText(D / "my tool", "#!/bin/sh\nprintf '[%s]' \"$@\"\n", 0755);
  WriteText(D / "my build.bat", "echo ran\n", 0755);
  WriteText(D / "my build.BAT", "echo ran\n", 0755);
  ZtResult R = RunZt(D.Path(), R"(variables: {TOOL: my tool}
actions:
  - {action: Execute Program, ProgramName: ./missing, ignoreFailure: true}
  - {action: Execute Program, ProgramName: ./plain.txt, ignoreFailure: true}
  - {action: Execute Program, ProgramName: /bin/true, StartInDir: nowhere, ignoreFailure: true}
  - {action: Run DOS Command, Command: "true", StartInDir: nowhere/deeper, ignoreFailure: true}
  - {action: Execute Program, ProgramName: '"/bin/true', ignoreFailure: true}
  - {action: Execute Program, ProgramName: /bin/true, Params: "%UNDEFINED%", ignoreFailure: true}
  - {action: Execute Program, ProgramName: '"./%TOOL%"', Params: '  "a b" c\ d ''$HOME'' "e\"f" *  '}
  - {action: Run DOS Command, Command: ./my build.bat}
  - {action: Run DOS Command, Command: ./my build.BAT, ignoreFailure: true}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(Messages(R, "1"), (Lines{"Executing : ./missing", "With Command Line : ",
                                     "Cannot start ./missing: The system cannot find the file specified"}));
  EXPECT_EQ(HostLines(R, "2"), (Lines{"Cannot start ./plain.txt: Access is denied"}));
  EXPECT_EQ(HostLines(R, "3"), (Lines{"Cannot start /bin/true in nowhere: The directory name is invalid"}));
  EXPECT_EQ(HostLines(R, "4"),
            (Lines{"Cannot start /bin/sh in nowhere/deeper: The directory name is invalid"}));
  // A quote at the start only is part of the name.
  EXPECT_EQ(HostLines(R, "5"),
            (Lines{"Cannot start \"/bin/true: The system cannot find the file specified"}));
  EXPECT_EQ(Said(R, "6"),
            (Lines{"Unable to Execute Program  : ", "--> Variable \"UNDEFINED\" is not defined"}));
  for (const char* Id : {"1", "2", "3", "4", "5", "6"}) EXPECT_EQ(ActionResult(R, Id), "ignored") << Id;
  EXPECT_EQ(Said(R, "7"),
            (Lines{"Executing : ./my tool", "With Command Line : \"a b\" c\\ d '$HOME' \"e\\\"f\" *",
                   "[a b][c d][$HOME][e\"f][*]"}));
  // A lone .bat name is quoted for the interpreter; another name is not: the shell looks for "./my".
  EXPECT_EQ(Said(R, "8"), Lines{"ran"});
  EXPECT_EQ(Messages(R, "9"), Lines{"Program returned code  : 127"});
}

}  // namespace
}  // namespace zt::testing
