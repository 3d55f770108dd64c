// The script host with an action that declares parameters of every type, a
// script method and a constant (the test action): what crosses between the
// action and Lua, and the errors of property access. Scripts through `zt`
// (Run Script, events, variables, error lines, stop) are in tests/e2e.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RunnerTest.h"

namespace zt::host {
namespace {

using frame::TZTVariant;

class ScriptTest : public RunnerTest {
 protected:
  // Loads Yaml and makes every top-level action run its OnRun script.
  void LoadScripted(const std::string& Yaml) {
    Load(Yaml);
    for (auto& N : P.Actions) static_cast<TTestAction&>(*N.Action).Behaviour = "script";
  }
  std::vector<std::string> Texts(bool Host) const {
    std::vector<std::string> R;
    for (const auto& E : Events)
      if (E["event"] == "message" && E.contains("host") == Host) R.push_back(E["text"]);
    return R;
  }
};

TEST_F(ScriptTest, ParametersCrossAsTheirTypesAndGlobalsLastForTheRun) {
  LoadScripted(R"(actions:
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
  auto Value = [&](int Run, const char* Name) { return frame::ScriptParam(Runs[Run], Name).Value; };
  EXPECT_EQ(Value(0, "Text"), TZTVariant("hello1"));
  EXPECT_EQ(Value(1, "Text"), TZTVariant("hello2"));
  EXPECT_EQ(Value(0, "Flag"), TZTVariant(false));
  EXPECT_EQ(Value(1, "Flag"), TZTVariant(true));
  EXPECT_EQ(Value(0, "Ratio"), TZTVariant(0.5));
  EXPECT_EQ(Value(1, "Ratio"), TZTVariant(1.0));
  EXPECT_EQ(Value(0, "Extra"), TZTVariant("first"));
  EXPECT_EQ(Value(1, "Extra"), TZTVariant(std::int64_t{7}));
  EXPECT_EQ(Value(1, "Index"), TZTVariant(2));  // an input only: not read back
}

TEST_F(ScriptTest, ActionPropertiesAreReadAndWrittenThroughThePropertySystem) {
  LoadScripted(R"(actions:
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
                          table.concat(Action.Options, "+"), table.concat(Action.Lines, "|"), Action.When}, ","))
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
            (std::vector<std::string>{"hi,true,integer,tmTwo,toSecond,l1|l2,2024-01-02T03:04:05"}));
  TTestAction& A = Action(0);
  EXPECT_EQ(A.GetText(), "5");
  EXPECT_FALSE(A.GetFlag());
  EXPECT_EQ(A.GetCount(), -3);
  EXPECT_EQ(A.GetMode(), testing::tmThree);
  EXPECT_EQ(A.GetOptions(), 0b101);
  EXPECT_EQ(A.GetLines(), "a\r\nb\r\n");
  EXPECT_NEAR(A.GetWhen(), 45356.42708333, 1e-6);
  EXPECT_EQ(A.GetFolder(), "x/y");  // through the coupled setter
}

TEST_F(ScriptTest, WrongPropertyAccessFailsAtItsProjectLineWithTheLoadersWords) {
  struct Case {
    std::string Statement, Error;
  };
  const std::vector<Case> Cases = {
      {"Action.Cuont = 1", "Test Action: unknown property \"Cuont\"; did you mean \"Count\"?"},
      {"local x = Action.Txt", "Test Action: unknown property \"Txt\"; did you mean \"Text\"?"},
      {"Action:Rewnd()", "Test Action: unknown property \"Rewnd\"; did you mean \"Rewind\"?"},
      {"Action.Flag = 'maybe'",
       "Test Action: property \"Flag\" expects a Boolean (true or false), got \"maybe\""},
      {"Action.ResultCount = 1", "Test Action: property \"ResultCount\" is read-only"},
      {"Action.Shown = 1", "Test Action: property \"Shown\" is read-only"},
      {"Action.Options = {'toFourth'}",
       "Test Action: property \"Options\" expects a list of toFirst, toSecond, toThird, got \"toFourth\"; "
       "did you "
       "mean \"toFirst\"?"},
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
  LoadScripted(Yaml);
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

TEST_F(ScriptTest, RegisteredMethodsReachTheActionAndConstantsAreGlobals) {
  LoadScripted(R"(actions:
  - action: Test Action
    Count: 1
    scripts:
      OnRun: Action:Rewind() Action.Rewind() Log(math.type(tcAnswer) .. " " .. tcAnswer)
)");
  ASSERT_EQ(Run(), BuildResult::Success) << Texts(true).at(0);
  EXPECT_EQ(Action(0).Rewound, 2);
  EXPECT_EQ(Texts(false), (std::vector<std::string>{"integer 42"}));
}

}  // namespace
}  // namespace zt::host
