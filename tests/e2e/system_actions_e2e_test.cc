// "Shell Execute" and "Close Process" through zt: verbs run their commands,
// the refusals and failures read as they should, and closing maps the
// window messages to signals.
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/Processes.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

TEST(ShellExecuteEndToEnd, VerbsRunTheirCommands) {
  TempDir D;
  WriteText(D / "doc.txt", "document");
  WriteText(D / "tool.sh", "#!/bin/sh\necho \"$@\" > tool.out\n", 0755);
  // The print verb's command, as a user configures it for the desktop.
  setenv("ZT_SHELL_PRINT", "sh -c 'cp \"$0\" printed.txt'", 1);
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Shell Execute, FileSpec: doc.txt, WaitForCompletion: true}
  - {action: Shell Execute, FileSpec: tool.sh, Action: open, Parameters: one "two words",
     WaitForCompletion: true}
  - {action: Shell Execute, FileSpec: missing.txt, ignoreFailure: true}
  - {action: Shell Execute, FileSpec: doc.txt, Action: frobnicate, ignoreFailure: true}
)");
  unsetenv("ZT_SHELL_PRINT");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(ReadText(D / "printed.txt"), "document");
  EXPECT_EQ(ReadText(D / "tool.out"), "one two words\n");
  EXPECT_EQ(Messages(R, "3"), (Lines{"File does not exist: missing.txt"}));
  EXPECT_EQ(Messages(R, "4"), (Lines{"ShellExecute Failed with error: No application is associated with the "
                                     "specified file for this operation"}));
}

TEST(ShellExecuteEndToEnd, AFileSpecWithWildcardsIsRefused) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), "actions:\n  - action: Shell Execute\n    FileSpec: \"*.txt\"\n");
  EXPECT_EQ(R.ExitCode, 2);
  EXPECT_NE(R.Stderr.find("Wildcards are not allowed.  Use with the FileIterator action to perform action on "
                          "multiple files."),
            std::string::npos)
      << R.Stderr;
}

TEST(CloseProcessEndToEnd, MessagesBecomeSignalsAndAStubbornProcessIsTerminated) {
  TempDir D;
  TestProcess Quit({"/bin/sleep", "60"});
  TestProcess Close({"/bin/sleep", "60"});
  TestProcess Stubborn({"/bin/sh", "-c", "trap '' INT; exec sleep 60"});
  ASSERT_TRUE(
      WaitUntil([&] { return ReadText("/proc/" + std::to_string(Stubborn.Pid()) + "/comm") == "sleep\n"; }));
  const std::string Q = std::to_string(Quit.Pid()), C = std::to_string(Close.Pid()),
                    S = std::to_string(Stubborn.Pid());
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Close Process, ProcessID: "%QUIT%"}
  - {action: Close Process, ProcessID: "%CLOSE%", SendWMClose: true, Timeout: true, TimeoutLimit: 5}
  - {action: Close Process, ProcessID: "%STUBBORN%", Timeout: true, TimeoutLimit: 0}
  - {action: Close Process, ProcessID: abc, ignoreFailure: true}
  - {action: Close Process, ProcessID: 2147483646, ignoreFailure: true}
)",
                     {"--var", "QUIT=" + Q, "--var", "CLOSE=" + C, "--var", "STUBBORN=" + S});
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(Messages(R, "1"),
            (Lines{"Closing Process with ID " + Q, "Sending main window a WM_QUIT message"}));
  EXPECT_EQ(Messages(R, "2"),
            (Lines{"Closing Process with ID " + C, "Sending main window a WM_CLOSE message"}));
  EXPECT_EQ(Messages(R, "3"), (Lines{"Closing Process with ID " + S, "Sending main window a WM_QUIT message",
                                     "Timed out waiting for process to close. Terminating process."}));
  EXPECT_EQ(Messages(R, "4"), (Lines{"Invalid Process ID : 99999999"}));
  EXPECT_EQ(Messages(R, "5"), (Lines{"Closing Process with ID 2147483646",
                                     "A window handle for the desired process ID could not be found."}));
  EXPECT_EQ(ActionResult(R, "5"), "ignored");
  EXPECT_EQ(WTERMSIG(Quit.Wait()), SIGINT);
  EXPECT_EQ(WTERMSIG(Close.Wait()), SIGTERM);
  EXPECT_EQ(WTERMSIG(Stubborn.Wait()), SIGKILL);
}

}  // namespace
}  // namespace zt::testing
