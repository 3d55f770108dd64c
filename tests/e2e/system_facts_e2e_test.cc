// "Get Date/Time", "Get Disk Free Space", "Shell Execute" and "Close
// Process" through zt: the texts and variables stored (summer time, offsets,
// the build's start), the commands verbs run, the signals closing sends, and
// the failures they report.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/wait.h>

#include <ctime>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/Processes.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

void SetWriteTime(const std::string& Path, std::time_t Seconds) {
  const struct timespec Times[2] = {{Seconds, 0}, {Seconds, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, Path.c_str(), Times, 0), 0);
}

TEST(DateTimeEndToEnd, FormatsTheChosenInstantWithItsOffsets) {
  TempDir D;
  SetWriteTime(D.Write("jan31.txt", "x"), 1706702400);       // 2024-01-31 12:00:00 UTC
  SetWriteTime(D.Write("before-dst.txt", "x"), 1711796400);  // 2024-03-30 11:00 UTC = 12:00 CET
  SetWriteTime(D.Write("midnight.txt", "x"), 1709593200);    // 2024-03-04 23:00 UTC = 03-05 00:00 CET
  setenv("TZ", "Europe/Berlin", 1);                          // zt inherits both
  setenv("SOURCE_DATE_EPOCH", "1700000000", 1);              // 2023-11-14 22:13:20 UTC
  const struct {
    std::string Properties, Text;
    long long Unix;
  } Cases[] = {
      {"FileName: jan31.txt\n    UseUTC: true\n    OffsetDays: 1", "2024-02-01 12:00:00", 1706788800},
      {"FileName: jan31.txt\n    Format: \"ddd d mmm yy, hh:mm\"", "Wed 31 Jan 24, 13:00", 1706702400},
      // One day on keeps the wall-clock time across the change to summer time.
      {"FileName: before-dst.txt\n    OffsetDays: 1", "2024-03-31 12:00:00", 1711879200},
      {"FileName: before-dst.txt\n    OffsetHours: -12\n    OffsetMinutes: 30", "2024-03-30 00:30:00",
       1711755000},
      {"FileName: midnight.txt\n    Format: \"c|h:nn AM/PM|a/p\"", "03/05/2024|12:00 AM|a", 1709593200},
      {"FileName: midnight.txt\n    Format: '''yyyy'' \"dd\" yyyy'", "yyyy dd 2024", 1709593200},
      {"DateSource: dsBuildStart\n    UseUTC: true\n    Format: \"yyyy-mm-dd'T'hh:nn:ss.zzz\"",
       "2023-11-14T22:13:20.000", 1700000000},
  };
  std::string Yaml = "actions:\n";
  for (std::size_t I = 0; I < std::size(Cases); ++I) {
    const std::string& P = Cases[I].Properties;
    Yaml += "  - action: Get Date/Time\n    UnixTimeVariable: UNIX" + std::to_string(I) + "\n    " +
            (P.rfind("FileName", 0) == 0 ? "DateSource: dsFileDate\n    " : "") + P + "\n";
  }
  ZtResult R = RunZt(D.Path(), Yaml);
  unsetenv("TZ");
  unsetenv("SOURCE_DATE_EPOCH");
  ASSERT_EQ(R.ExitCode, 0) << R.Stderr << R.Stdout;
  const auto Vars = FinalVariables(R);
  for (std::size_t I = 0; I < std::size(Cases); ++I) {
    EXPECT_EQ(Messages(R, std::to_string(I + 1)), (Lines{"Date/Time : " + Cases[I].Text}))
        << Cases[I].Properties;
    EXPECT_EQ(Vars["UNIX" + std::to_string(I)], Cases[I].Unix) << Cases[I].Properties;
  }
}

// A date from a missing file or beyond year 9999 fails and sets nothing.
TEST(DiskFreeSpaceEndToEnd, StoresTheVolumesSpaceInTheUnitAndChecksTheMinimum) {
  TempDir D;
  struct statvfs Vfs;
  ASSERT_EQ(statvfs(D.Path().c_str(), &Vfs), 0);
  const unsigned long long Total = Vfs.f_blocks * Vfs.f_frsize;
  const std::string TotalKB = std::to_string(Total / 1024);
  // A folder the build has yet to make is measured where it will be made.
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Get Date/Time, ZTVariable: T, DateSource: dsFileDate, FileName: nope.txt, ignoreFailure: true}
  - {action: Get Date/Time, ZTVariable: T, OffsetDays: 2147483647, ignoreFailure: true}
  - {action: Get Disk Free Space, Drive: out/not/made/yet, ZTVariable: FREE, TotalVariable: TOTAL,
     SizeUnit: suBytes}
  - {action: Get Disk Free Space, TotalVariable: TOTAL_KB, SizeUnit: suKB, MinimumFree: 2147483647}
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), (Lines{"ERROR - File missing: nope.txt"}));
  EXPECT_EQ(Messages(R, "2"), (Lines{"Error: The date is outside the years 1 to 9999"}));
  EXPECT_EQ(ActionResult(R, "2"), "ignored");
  const auto Vars = FinalVariables(R);
  EXPECT_FALSE(Vars.contains("T"));
  EXPECT_EQ(Vars["TOTAL"], Total);
  EXPECT_EQ(Vars["TOTAL_KB"], Total / 1024);
  EXPECT_GT(Vars["FREE"].get<long long>(), 0);
  EXPECT_LE(Vars["FREE"].get<long long>(), static_cast<long long>(Total));
  const Lines M = Messages(R, "4");
  ASSERT_EQ(M.size(), 2u);
  EXPECT_EQ(M[0].rfind("Free space on " + D.Path() + " : ", 0), 0u) << M[0];
  const std::string Tail = " KB of " + TotalKB + " KB";
  EXPECT_EQ(M[0].substr(M[0].size() - Tail.size()), Tail) << M[0];
  EXPECT_EQ(M[1].rfind("Not enough free space on " + D.Path() + " : ", 0), 0u) << M[1];
  EXPECT_EQ(M[1].substr(M[1].size() - 23), " 2147483647 KB required") << M[1];
}

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
