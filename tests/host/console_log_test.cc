// The console log where the end-to-end tests cannot reach it: colours, the
// terminal's width, and durations of long actions.
#include "host/log/console_log.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>

namespace zt::host {
namespace {

// Runs Feed against a console log in memory and returns what it printed.
template <class Fn>
std::string Printed(ConsoleOptions Options, Fn&& Feed) {
  char* Buf = nullptr;
  size_t Size = 0;
  std::FILE* Out = open_memstream(&Buf, &Size);
  {
    ConsoleLog Log(Out, Options);
    Feed(Log);
  }
  std::fclose(Out);
  std::string Text(Buf, Size);
  free(Buf);
  return Text;
}

TEST(ConsoleLogTest, HeadingsResultsAndTheLineThatPointsAtTheFailure) {
  std::string Text = Printed({/*IsTerminal=*/false, /*Color=*/true, /*Quiet=*/false}, [](ConsoleLog& L) {
    L.BuildStart("Demo", "release.yml");
    L.ActionStart("1", "Make output", "C", "Create Directory [ out ]", 3);  // says more than the title
    L.ActionEnd("1", ActionResult::Success, 1500, 0);
    L.ActionStart("2", "Clean", "C", "Clean [ *.o ]", 7);
    L.Status("2", "", {"Deleting files : *.o", "0 Files Deleted."});
    L.ActionEnd("2", ActionResult::Ignored, 10, 0);
    L.ActionStart("3", "Copy", "C", "Copy", 9);
    L.Message("3", "first", false);
    L.Message("3", "Variable \"X\" is not defined", true);
    L.ActionEnd("3", ActionResult::Failure, 65000, 0);
    L.BuildEnd(BuildResult::Failure, 66600, "3");
  });
  EXPECT_EQ(Text,
            "Building Demo\n"
            "[1] Make output - Create Directory [ out ]\n"
            "    \033[2;32mdone in 1.5 s\033[0m\n"
            "[2] Clean [ *.o ]\n"
            "    Deleting files : *.o\n"
            "    0 Files Deleted.\n"
            "    \033[33mfailed (ignored)\033[0m\n"
            "[3] Copy\n"
            "    first\n"
            "    zt: Variable \"X\" is not defined\n"
            "    \033[31mFAILED after 1 min 5 s\033[0m\n"
            "\033[1;31mBuild FAILED\033[0m: 3 actions (1 ignored, 0 skipped) in 1 min 6 s\n"
            "release.yml:9: \033[31m[3] Copy: Variable \"X\" is not defined\033[0m\n");
}

TEST(ConsoleLogTest, QuietPrintsFailedActionsWithTheirLoopAndOnlyTheirOwnPass) {
  std::string Text = Printed({/*IsTerminal=*/false, /*Color=*/false, /*Quiet=*/true}, [](ConsoleLog& L) {
    L.BuildStart("Demo", "release.yml");
    L.ActionStart("1", "Each", "C", "Each", 2);
    L.Message("1", "Found 4 Items", false);
    const std::pair<const char*, ActionResult> Passes[] = {{"a", ActionResult::Success},
                                                           {"b", ActionResult::Ignored},
                                                           {"c", ActionResult::Success},
                                                           {"d", ActionResult::Failure}};
    int Index = 0;
    for (const auto& [Value, Result] : Passes) {
      L.Iteration("1", ++Index, 4, Value);
      L.ActionStart("1.1", "Copy", "C", "Copy", 4);
      L.Message("1.1", std::string("copying ") + Value, false);
      L.ActionEnd("1.1", Result, 1, 0);
    }
    L.ActionEnd("1", ActionResult::Failure, 5, 0);
    L.BuildEnd(BuildResult::Failure, 5, "1.1");
  });
  EXPECT_EQ(Text,
            "[1] Each\n"
            "    Found 4 Items\n"
            "  pass 2 of 4: b\n"
            "  [1.1] Copy\n"
            "      copying b\n"
            "      failed (ignored)\n"
            "  pass 4 of 4: d\n"
            "  [1.1] Copy\n"
            "      copying d\n"
            "      FAILED\n"
            "    FAILED\n"
            "Build FAILED: 5 actions (1 ignored, 0 skipped) in 5 ms\n"
            "release.yml:4: [1.1] Copy: copying d\n");
}

TEST(ConsoleLogTest, ProgressBarIsCutToTheTerminalWidth) {
  setenv("COLUMNS", "30", 1);  // a memory stream has no window size: the variable stands in
  std::string Text = Printed({/*IsTerminal=*/true, /*Color=*/false, /*Quiet=*/false}, [](ConsoleLog& L) {
    L.ActionStart("1", "Copy", "C", "Copy", 1);
    L.Progress("1", "copying a-file-with-a-very-long-name-\xc3\xa9\xc3\xa9\xc3\xa9.bin", 50);
  });
  unsetenv("COLUMNS");
  std::string Bar = Text.substr(Text.rfind("\033[K") + 3);
  EXPECT_EQ(Bar, "    [##########..........]  5");
}

TEST(ConsoleLogTest, ColourFollowsTheOptionTheTerminalAndNoColor) {
  unsetenv("NO_COLOR");
  setenv("TERM", "xterm", 1);
  EXPECT_TRUE(UseColor("auto", /*IsTerminal=*/true));
  EXPECT_FALSE(UseColor("auto", /*IsTerminal=*/false));
  EXPECT_TRUE(UseColor("always", /*IsTerminal=*/false));
  setenv("NO_COLOR", "1", 1);
  EXPECT_FALSE(UseColor("auto", /*IsTerminal=*/true));
  EXPECT_TRUE(UseColor("always", /*IsTerminal=*/true));
  unsetenv("NO_COLOR");
  EXPECT_FALSE(UseColor("never", /*IsTerminal=*/true));
}

}  // namespace
}  // namespace zt::host
