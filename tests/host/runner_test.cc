// The runner and the script host with the test action, where zt cannot
// reach: an exception out of Execute, and what crosses between an action's
// parameters and properties of every kind and Lua (scripts through `zt` are
// checked in tests/e2e).
#include "host/run/runner.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "host/log/json_log.h"
#include "host/project/project_loader.h"
#include "test_action.h"

namespace zt::host {
namespace {

using frame::TZTVariant;
using nlohmann::json;
using testing::TTestAction;

// Loads a project of test actions and runs it with a JSON log in memory,
// keeping the parsed events without their times.
class RunnerTest : public ::testing::Test {
 protected:
  RunnerTest() { zt::testing::RegisterTestAction(Registry); }

  void Load(const std::string& Yaml, const std::string& Behaviour = "script") {
    P = LoadProjectText(Yaml, "p.yml", Registry);
    for (auto& N : P.Actions) static_cast<TTestAction&>(*N.Action).Behaviour = Behaviour;
  }
  TTestAction& Action(std::size_t I) { return static_cast<TTestAction&>(*P.Actions.at(I).Action); }

  BuildResult Run() {
    char* Buf = nullptr;
    size_t Size = 0;
    BuildResult R;
    {
      BuildLog Log;
      Log.AddSink(std::make_unique<JsonLog>(open_memstream(&Buf, &Size)));
      R = Runner(P, Log).Run();
    }
    std::istringstream In(std::string(Buf, Size));
    free(Buf);
    Events.clear();
    for (std::string Line; std::getline(In, Line);) {
      json E = json::parse(Line);
      if (E["event"] == "build-start") {
        EXPECT_EQ(E["time"].get<std::string>().size(), 20u);
      }
      for (const char* Varying : {"t_ms", "time", "duration_ms"}) E.erase(Varying);
      Events.push_back(E);
    }
    return R;
  }
  // The texts of message events, those the host wrote or the others.
  std::vector<std::string> Texts(bool Host) const {
    std::vector<std::string> R;
    for (const auto& E : Events)
      if (E["event"] == "message" && E.contains("host") == Host) R.push_back(E["text"]);
    return R;
  }

  ActionRegistry Registry;
  Project P;
  std::vector<json> Events;
};

TEST_F(RunnerTest, ExceptionFromExecuteFailsTheActionWithAHostLine) {
  Load("actions:\n  - action: Test Action\n", "throw");
  EXPECT_EQ(Run(), BuildResult::Failure);
  EXPECT_EQ(Events[2], json::parse(R"({"event":"message","id":"1","text":"disk on fire","host":true})"));
  EXPECT_EQ(Events[3], json::parse(R"({"event":"action-end","id":"1","result":"failure"})"));
}

TEST_F(RunnerTest, ParametersCrossAsTheirTypesAndGlobalsLastForTheRun) {
  Load(R"(actions:
  - action: Test Action
    Text: hello
    Count: 2
    scripts:
      OnRun: |
        Log(table.concat({math.type(Index), type(Text), tostring(Flag), math.type(Ratio), type(Extra),
                          tostring(Calls)}, " "))
        Calls = (Calls or 0) + 1
        Text = Text .. Index
        Flag = Calls == 2
        Ratio = Ratio * Calls
        Extra = Calls == 1 and "first" or 7
)");
  ASSERT_EQ(Run(), BuildResult::Success) << Texts(true).at(0);
  EXPECT_EQ(Texts(false), (std::vector<std::string>{"integer string false float nil nil",
                                                    "integer string false float nil 1"}));
  auto Runs = Action(0).ScriptRuns;
  ASSERT_EQ(Runs.size(), 2u);
  auto Values = [&](const char* Name) {
    return std::vector<TZTVariant>{frame::ScriptParam(Runs[0], Name).Value,
                                   frame::ScriptParam(Runs[1], Name).Value};
  };
  EXPECT_EQ(Values("Text"), (std::vector<TZTVariant>{"hello1", "hello2"}));
  EXPECT_EQ(Values("Flag"), (std::vector<TZTVariant>{false, true}));
  EXPECT_EQ(Values("Ratio"), (std::vector<TZTVariant>{0.5, 1.0}));
  EXPECT_EQ(Values("Extra"), (std::vector<TZTVariant>{"first", std::int64_t{7}}));
  EXPECT_EQ(Values("Index"), (std::vector<TZTVariant>{1, 2}));  // an input only: not read back
}

// Properties through the property system; registered methods reach the action, constants are globals.
TEST_F(RunnerTest, ActionPropertiesMethodsAndConstantsReachTheScript) {
  Load(R"(actions:
  - action: Test Action
    Count: 1
    Text: hi
    Mode: tmTwo
    Options: [toSecond]
    Lines: [l1, l2]
    When: 2024-01-02T03:04:05
    scripts:
      OnRun: |
        Log(table.concat({Action.Text, tostring(Action.Flag), math.type(Action.Count), Action.Mode,
                          table.concat(Action.Options, "+"), table.concat(Action.Lines, "|"), Action.When, math.type(tcAnswer) .. tcAnswer}, ","))
        Action:Rewind() Action.Rewind()
        Action.Text = 5
        Action.Flag = "false"
        Action.Count = "-3"
        Action.Mode = 2
        Action.Options = {"toFirst", "toThird"}
        Action.Lines = "a\nb"
        Action.When = "2024-03-05T10:15:00"
        Action.Path = "x/y/z"
)");
  ASSERT_EQ(Run(), BuildResult::Success) << Texts(true).at(0);
  EXPECT_EQ(Texts(false),
            (std::vector<std::string>{"hi,true,integer,tmTwo,toSecond,l1|l2,2024-01-02T03:04:05,integer42"}));
  TTestAction& A = Action(0);
  EXPECT_EQ(A.GetText(), "5");
  EXPECT_FALSE(A.GetFlag());
  EXPECT_EQ(A.GetCount(), -3);
  EXPECT_EQ(A.GetMode(), testing::tmThree);
  EXPECT_EQ(A.GetOptions(), 0b101);
  EXPECT_EQ(A.GetLines(), "a\r\nb\r\n");
  EXPECT_NEAR(A.GetWhen(), 45356.42708333, 1e-6);
  EXPECT_EQ(A.GetFolder(), "x/y");  // through the coupled setter
  EXPECT_EQ(A.Rewound, 2);
}

TEST_F(RunnerTest, WrongPropertyAccessFailsAtItsProjectLineWithTheLoadersWords) {
  struct Case {
    std::string Statement, Error;
  };
  const std::vector<Case> Cases = {
      {"Action.Cuont = 1", "Test Action: unknown property \"Cuont\"; did you mean \"Count\"?"},
      {"local x = Action.Txt", "Test Action: unknown property \"Txt\"; did you mean \"Text\"?"},
      {"Action:Rewnd()", "Test Action: unknown property \"Rewnd\"; did you mean \"Rewind\"?"},
      {"Action.ResultCount = 1", "Test Action: property \"ResultCount\" is read-only"},
      {"Action.Shown = 1", "Test Action: property \"Shown\" is read-only"},
      {"Action.Options = {'toFourth'}",
       "Test Action: property \"Options\" expects a list of toFirst, toSecond, toThird, got \"toFourth\"; "
       "did you mean \"toFirst\"?"},
      {"Action.Lines = {{}}",
       "Test Action: property \"Lines\" expects a text, number or Boolean, got a table"},
      {"Action[1] = 2", "Test Action: property names are texts"},
      {"Extra = {}", "parameter \"Extra\" must be a text, number or Boolean, not a table"},
  };
  std::string Yaml = "actions:\n";
  for (const auto& C : Cases)
    Yaml +=
        "  - action: Test Action\n    ignoreFailure: true\n    Count: 1\n    scripts:\n      OnRun: |\n"
        "        local Before = 1\n        " +
        C.Statement + "\n";
  Load(Yaml);
  EXPECT_EQ(Run(), BuildResult::Success);
  std::vector<std::string> Expected;
  for (std::size_t I = 0; I < Cases.size(); ++I) {
    // Each action takes 7 lines from line 2; the statement is its last. An
    // error after the script returned points at the script's first line.
    int Line = 8 + 7 * static_cast<int>(I) - (I + 1 == Cases.size() ? 1 : 0);
    Expected.push_back("p.yml:" + std::to_string(Line) + ": " + Cases[I].Error);
  }
  EXPECT_EQ(Texts(true), Expected);
}

}  // namespace
}  // namespace zt::host
