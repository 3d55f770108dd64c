// The build logs where the end-to-end tests cannot reach them: the console's
// colours, the terminal's width and durations of long actions, JSON values
// and bad UTF-8, and progress coalesced between other lines.
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "host/log/console_log.h"
#include "host/log/json_log.h"

namespace zt::host {
namespace {

using nlohmann::json;

// What Write writes to a stream in memory; Write closes the stream (a JSON
// log closes its own).
template <class Fn>
std::string Written(Fn&& Write) {
  char* Buf = nullptr;
  size_t Size = 0;
  Write(open_memstream(&Buf, &Size));
  std::string Text(Buf, Size);
  free(Buf);
  return Text;
}

// Runs Feed against a console log in memory and returns what it printed.
template <class Fn>
std::string Printed(ConsoleOptions Options, Fn&& Feed) {
  return Written([&](std::FILE* Out) {
    {
      ConsoleLog Log(Out, Options);
      Feed(Log);
    }
    std::fclose(Out);
  });
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

TEST(JsonLogTest, ValuesKeepTheirTypesAndBadUtf8IsReplaced) {
  EXPECT_EQ(JsonValue(true), json(true));
  EXPECT_EQ(JsonValue(std::int64_t{5}), json(5));
  EXPECT_EQ(JsonValue("x"), json("x"));
  EXPECT_EQ(JsonValue(frame::TZTVariant()), json(nullptr));
  EXPECT_EQ(Written([](std::FILE* Out) { JsonLog(Out).Message("2.1", "caf\xe9", false); }),
            "{\"event\":\"message\",\"id\":\"2.1\",\"t_ms\":0,\"text\":\"caf\xef\xbf\xbd\"}\n");
}

TEST(BuildLogTest, ProgressThatOnlyCountsOnIsCoalesced) {
  std::istringstream In(Written([](std::FILE* Out) {
    BuildLog Log;
    Log.AddSink(std::make_unique<JsonLog>(Out));
    Log.Progress("1", "Found 0 matches", 10);
    Log.Progress("1", "Found 1 matches", 10);
    Log.Progress("1", "Found 2 matches", 10);
    Log.Message("1", "between", false);
    Log.Progress("1", "Found 3 matches", 10);
    Log.Progress("1", "Found 4 matches", 20);
    Log.Progress("1", "Copying 4 files", 20);
    Log.Progress("2", "Copying 4 files", 20);
  }));
  std::vector<std::string> Lines;
  for (std::string Line; std::getline(In, Line);) {
    json E = json::parse(Line);
    Lines.push_back(E["id"].get<std::string>() + " " + E.value("text", "") + " " +
                    (E.contains("percent") ? std::to_string(E["percent"].get<int>()) : ""));
  }
  EXPECT_EQ(Lines, (std::vector<std::string>{"1 Found 0 matches 10", "1 Found 2 matches 10", "1 between ",
                                             "1 Found 4 matches 20", "1 Copying 4 files 20",
                                             "2 Copying 4 files 20"}));
}

}  // namespace
}  // namespace zt::host
