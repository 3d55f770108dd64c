// Projects of test actions, where zt's own actions cannot show it: the
// loader's property kinds and errors, an exception out of Execute, and what
// crosses between an action's parameters and properties of every kind and
// Lua (projects and scripts through `zt` are checked in tests/e2e).
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "frame/ZTAction.h"
#include "host/log/json_log.h"
#include "host/project/project_loader.h"
#include "host/project/property_values.h"
#include "host/run/runner.h"

namespace zt::host {
namespace {

using frame::TZTVariant;
using nlohmann::json;

enum TTestMode { tmOne, tmTwo, tmThree };

// A small action type: one property of every kind, a coupled pair of setters,
// read-only properties both ways, and an Execute that throws or runs its
// OnRun script.
class TTestAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TTestAction, frame::TCustomZTAction)

 public:
  TTestAction() { AddScript("OnRun"); }
  static std::string GetActionName() { return "Test Action"; }
  static void Publish(frame::TZTPublisher<TTestAction>& P) {
    P.String("Text", &TTestAction::GetText, &TTestAction::SetText);
    P.Boolean("Flag", &TTestAction::GetFlag, &TTestAction::SetFlag);
    P.Integer("Count", &TTestAction::GetCount, &TTestAction::SetCount);
    P.Enumeration("Mode", "TTestMode", {"tmOne", "tmTwo", "tmThree"}, &TTestAction::GetMode,
                  &TTestAction::SetMode);
    P.Set("Options", "TTestOptions", {"toFirst", "toSecond", "toThird"}, &TTestAction::GetOptions,
          &TTestAction::SetOptions);
    P.StringList("Lines", &TTestAction::GetLines, &TTestAction::SetLines);
    P.DateTime("When", &TTestAction::GetWhen, &TTestAction::SetWhen);
    P.WideString("Path", &TTestAction::GetPath, &TTestAction::SetPath);
    P.WideString("Folder", &TTestAction::GetFolder, &TTestAction::SetFolder);
    P.Integer("ResultCount", &TTestAction::GetResultCount);
    P.Integer("Shown", &TTestAction::GetShown, &TTestAction::SetShown);
  }

  bool Execute() override {
    if (Behaviour == "throw") throw std::runtime_error("disk on fire");
    if (Behaviour != "script") return true;
    for (int I = 1; I <= Count_; ++I) {
      frame::TZTScriptParams Params;
      InitialiseScriptParams("OnRun", Params);
      frame::ScriptParam(Params, "Index").Value = I;
      frame::ScriptParam(Params, "Text").Value = Text_;
      if (!ExecuteScript("OnRun", Params)) return false;
      ScriptRuns.push_back(Params);
    }
    return true;
  }
  void GetReadOnlyProperties(frame::TStrings& L) override { L.Add("Shown"); }
  // OnRun: Action, Index (integer), Text (text, in-out), Flag (Boolean,
  // in-out), Ratio (number, in-out), Extra (nothing, in-out).
  void InitialiseScriptParams(const std::string& ScriptName, frame::TZTScriptParams& Params) override {
    inherited::InitialiseScriptParams(ScriptName, Params);
    if (ScriptName != "OnRun") return;
    Params.push_back({"Action", {}, false});
    Params.push_back({"Index", 0, false});
    Params.push_back({"Text", "", true});
    Params.push_back({"Flag", false, true});
    Params.push_back({"Ratio", 0.5, true});
    Params.push_back({"Extra", {}, true});
  }
  // The script method "Rewind".
  bool ExecuteScriptMethod(const std::string& MethodName) override {
    if (MethodName != "Rewind") return inherited::ExecuteScriptMethod(MethodName);
    ++Rewound;
    return true;
  }

  const std::string& GetText() const { return Text_; }
  void SetText(const std::string& V) { Text_ = V; }
  bool GetFlag() const { return Flag_; }
  void SetFlag(bool V) { Flag_ = V; }
  int GetCount() const { return Count_; }
  void SetCount(int V) { Count_ = V; }
  TTestMode GetMode() const { return Mode_; }
  void SetMode(TTestMode V) { Mode_ = V; }
  std::int64_t GetOptions() const { return Options_; }
  void SetOptions(std::int64_t V) { Options_ = V; }
  const std::string& GetLines() const { return Lines_; }
  void SetLines(const std::string& V) { Lines_ = V; }
  double GetWhen() const { return When_; }
  void SetWhen(double V) { When_ = V; }
  // Coupled: a path sets the folder to its directory part.
  const std::string& GetPath() const { return Path_; }
  void SetPath(const std::string& V) {
    Path_ = V;
    Folder_ = V.substr(0, V.rfind('/') == std::string::npos ? 0 : V.rfind('/'));
  }
  const std::string& GetFolder() const { return Folder_; }
  void SetFolder(const std::string& V) { Folder_ = V; }
  int GetResultCount() const { return 7; }
  int GetShown() const { return Shown_; }
  void SetShown(int V) { Shown_ = V; }

  // What Execute does, set by tests: "ok", "throw", and "script": runs OnRun Count times (Index 1,
  // 2, ...; Text = the Text property) and keeps the parameters after each run in ScriptRuns.
  std::string Behaviour = "ok";
  std::vector<frame::TZTScriptParams> ScriptRuns;
  int Rewound = 0;

 private:
  std::string Text_ = "text", Lines_, Path_, Folder_;
  bool Flag_ = true;
  int Count_ = 3, Shown_ = 0;
  TTestMode Mode_ = tmTwo;
  std::int64_t Options_ = 0;
  double When_ = 0;
};

ZT_IMPLEMENT_CLASS(TTestAction, &TTestAction::Publish)

// A test action that may hold child actions, as loops do.
class TTestGroup : public TTestAction {
  ZT_DECLARE_CLASS(TTestGroup, TTestAction)

 public:
  static std::string GetActionName() { return "Test Group"; }
  bool GetIsFlowControlAction() override { return true; }
};
ZT_IMPLEMENT_CLASS(TTestGroup, nullptr)

// Loads a project of test actions, and runs it with a JSON log in memory
// keeping the parsed events without their times.
class ProjectTest : public ::testing::Test {
 protected:
  ProjectTest() {
    Registry.RegisterAction("Test Action", "Misc", TTestAction::ClassType(), "TESTICON");
    Registry.RegisterAction("Test Group", "Misc", TTestGroup::ClassType(), "TESTICON");
    Registry.RegisterMethod(TTestAction::ClassType(), "Rewind", "_Reset");
    Registry.RegisterConstant("tcAnswer", 42);
  }

  void Load(const std::string& Yaml, const std::string& Behaviour = "script") {
    P = LoadProjectText(Yaml, "p.yml", Registry);
    for (auto& N : P.Actions) static_cast<TTestAction&>(*N.Action).Behaviour = Behaviour;
  }
  TTestAction& Action(std::size_t I) { return static_cast<TTestAction&>(*P.Actions.at(I).Action); }
  // A copy: Properties() returns its list by value.
  frame::TZTPropInfo Property(const std::string& Name) {
    return FindProperty(TTestAction::ClassType().Properties(), Name);
  }
  // The one-line error for a project that cannot be loaded, "" when it loads.
  std::string ErrorOf(const std::string& Yaml) {
    try {
      Load(Yaml);
      return "";
    } catch (const ProjectError& E) {
      return E.what();
    }
  }

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

// Name, variables, titles, enabled, ignoreFailure and lists of patterns are
// checked through zt.
TEST_F(ProjectTest, ReadsFileSetPatternsAndTheActionTree) {
  Load(R"(
filesets:
  Sources: {base: src, include: ["**/*.cpp"], exclude: "**/generated/**"}
actions:
  - action: test group
    scripts:
      OnRun: print(1)
    actions:
      - action: TTestAction
      - action: Test Action
)");
  ASSERT_EQ(P.FileSets.size(), 1u);
  EXPECT_EQ(P.FileSets[0].Exclude, (std::vector<std::string>{"**/generated/**"}));
  ASSERT_EQ(P.Actions.size(), 1u);
  EXPECT_EQ(P.Actions[0].Scripts, (std::vector<ScriptSource>{{"OnRun", "print(1)", 7}}));
  ASSERT_EQ(P.Actions[0].Children.size(), 2u);
  EXPECT_EQ(P.Actions[0].Children[1].Id, "1.2");
  EXPECT_EQ(P.Actions[0].Children[1].Line, 10);
}

TEST_F(ProjectTest, ValuesAreReadByTheDeclaredKind) {
  // Stored values: enumerations by ordinal, sets as bit masks, string lists as CR LF lines.
  const struct {
    std::string Properties, Name, Stored;
  } Cases[] = {
      {"Text: 42", "Text", "42"},
      {"Flag: false", "Flag", "False"},
      {"Flag: On", "Flag", "True"},
      {"Flag: NO", "Flag", "False"},
      {"Flag: y", "Flag", "True"},
      {"Count: -7", "Count", "-7"},
      {"Mode: tmThree", "Mode", "2"},
      {"Mode: 0", "Mode", "0"},
      {"Options: [toFirst, toThird]", "Options", "5"},
      {"Options: []", "Options", "0"},
      {"Lines: [a, b]", "Lines", "a\r\nb\r\n"},
      {"Lines: |\n      one\n      two", "Lines", "one\r\ntwo\r\n"},
      // Coupled setters end as the last write leaves them.
      {"Path: a/b/c.txt\n    Folder: x", "Folder", "x"},
      {"Folder: x\n    Path: a/b/c.txt", "Folder", "a/b"},
  };
  for (const auto& C : Cases) {
    Load("actions:\n  - action: Test Action\n    " + C.Properties + "\n");
    EXPECT_EQ(Property(C.Name).Get(Action(0)).AsString(), C.Stored) << C.Properties;
  }
  Load(R"({"name": "J", "actions": [{"action": "Test Action", "Count": 5, "Options": ["toSecond"]}]})");
  EXPECT_EQ(P.Name, "J");
  EXPECT_EQ(Action(0).GetCount(), 5);
  EXPECT_EQ(Action(0).GetOptions(), 0b10);
  Load("actions:\n  - action: Test Action\n    When: 2024-03-05T10:15:00\n");
  EXPECT_EQ(PropertyValueText(Property("When"), Action(0).GetWhen()), "2024-03-05T10:15:00");
  EXPECT_NEAR(Action(0).GetWhen(), 45356.42708333, 1e-6);
}

TEST_F(ProjectTest, WhatCannotBeLoadedIsOneLineNamingTheFileLine) {
  const std::string A = "actions:\n  - action: Test Action\n    ";
  const std::pair<std::string, std::string> Cases[] = {
      // Names, with the nearest one offered.
      {A + "ignorefailure: true\n",
       "p.yml:3: Test Action: unknown property \"ignorefailure\"; did you mean \"ignoreFailure\"?"},
      {A + "scripts:\n      OnRnu: x()\n",
       "p.yml:4: Test Action: unknown script \"OnRnu\"; did you mean \"OnRun\"?"},
      {"acions: []\n",
       "p.yml:1: unknown key \"acions\"; did you mean \"actions\"?\n"
       "p.yml:1: the project has no \"actions\" list (an empty project is \"actions: []\")"},
      {"actions:\n  - title: x\n", "p.yml:2: action without the key \"action\""},
      // Values of the wrong type, and a property the action lists as read-only.
      {A + "Count: 1.5", "p.yml:3: Test Action: property \"Count\" expects an integer, got \"1.5\""},
      {A + "Text: [a]", "p.yml:3: Test Action: property \"Text\" expects a text, got a list"},
      {A + "Mode: tmTree",
       "p.yml:3: Test Action: property \"Mode\" expects one of tmOne, tmTwo, tmThree or an ordinal 0..2, got "
       "\"tmTree\"; did you mean \"tmThree\"?"},
      {A + "Mode: 3",
       "p.yml:3: Test Action: property \"Mode\" expects one of tmOne, tmTwo, tmThree or an ordinal 0..2, got "
       "\"3\""},
      {A + "Options: [toFirst, toFourth]",
       "p.yml:3: Test Action: property \"Options\" expects a list of toFirst, toSecond, toThird, got "
       "\"toFourth\"; did you mean \"toFirst\"?"},
      {A + "Options: toFirst",
       "p.yml:3: Test Action: property \"Options\" expects a list of toFirst, toSecond, toThird, got "
       "\"toFirst\""},
      {A + "When: yesterday",
       "p.yml:3: Test Action: property \"When\" expects a date-time as YYYY-MM-DDTHH:MM:SS, got "
       "\"yesterday\""},
      {A + "Shown: 1", "p.yml:3: Test Action: property \"Shown\" is read-only"},
      {A + "enabled: sometimes", "p.yml:3: enabled must be true or false"},
      {A + "Flag: tRUE", "p.yml:3: Test Action: property \"Flag\" expects a Boolean (true or false), got \"tRUE\""},
      // Malformed files.
      {"- just\n- a list\n", "p.yml:1: a project is a mapping with name, variables, filesets and actions"},
      {"actions: 3\n", "p.yml:1: actions must be a list"},
      {"actions:\n  - 3\n", "p.yml:2: an action must be a mapping with the key \"action\""},
      {"name: {a: 1}\nactions: []\n", "p.yml:1: name must be a text"},
      {"variables:\n  X: [1]\nactions: []\n", "p.yml:2: variable \"X\" must be a text, Boolean or integer"},
      {"actions:\n  - action: Test Action\n    Text: *nowhere\n", "p.yml:3: the alias *nowhere names no anchor"},
      {"name: caf\xe9\nactions: []\n", "p.yml:1: the file is not UTF-8 text (invalid trailing UTF-8 octet)"},
      {"actions:\n\t- action: Test Action\n", "p.yml:2: a tab cannot indent YAML (indent with spaces)"},
      // Nesting counts through aliases: 150 levels, used 150 levels deep.
      {"a: &deep " + std::string(150, '[') + std::string(150, ']') + "\nb: " + std::string(150, '[') + "*deep" +
           std::string(150, ']') + "\nactions: []\n",
       "p.yml:2: the project is nested more than 200 levels deep"},
  };
  for (const auto& [Yaml, Error] : Cases) EXPECT_EQ(ErrorOf(Yaml), Error) << Yaml;
  // A key repeated in a mapping of many keys (looked up, not scanned).
  std::string Many = "filesets:\n";
  for (int I = 0; I < 31; ++I) Many += "  s" + std::to_string(I % 30) + ": {base: x}\n";
  EXPECT_EQ(ErrorOf(Many + "actions: []\n"), "p.yml:32: duplicate key \"s0\" (first on line 2)");
  // Aliases of aliases: ten million nodes, refused at the limit (counted, not walked).
  std::string Bomb = "a0: &a0 [x, x, x, x, x, x, x, x, x, x]\n";
  for (int I = 1; I < 7; ++I) {
    const std::string Use = "*a" + std::to_string(I - 1);
    Bomb += "a" + std::to_string(I) + ": &a" + std::to_string(I) + " [" + Use;
    for (int J = 1; J < 10; ++J) Bomb += ", " + Use;
    Bomb += "]\n";
  }
  EXPECT_EQ(ErrorOf(Bomb + "actions: []\n"),
            "p.yml:6: the project has more than 1000000 YAML nodes (counting every use of an alias)");
}

TEST_F(ProjectTest, ExceptionFromExecuteFailsTheActionWithAHostLine) {
  Load("actions:\n  - action: Test Action\n", "throw");
  EXPECT_EQ(Run(), BuildResult::Failure);
  EXPECT_EQ(Events[2], json::parse(R"({"event":"message","id":"1","text":"disk on fire","host":true})"));
  EXPECT_EQ(Events[3], json::parse(R"({"event":"action-end","id":"1","result":"failure"})"));
}

TEST_F(ProjectTest, ParametersCrossAsTheirTypesAndGlobalsLastForTheRun) {
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
TEST_F(ProjectTest, ActionPropertiesMethodsAndConstantsReachTheScript) {
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
  EXPECT_EQ(A.GetMode(), tmThree);
  EXPECT_EQ(A.GetOptions(), 0b101);
  EXPECT_EQ(A.GetLines(), "a\r\nb\r\n");
  EXPECT_NEAR(A.GetWhen(), 45356.42708333, 1e-6);
  EXPECT_EQ(A.GetFolder(), "x/y");  // through the coupled setter
  EXPECT_EQ(A.Rewound, 2);
}

TEST_F(ProjectTest, WrongPropertyAccessFailsAtItsProjectLineWithTheLoadersWords) {
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
