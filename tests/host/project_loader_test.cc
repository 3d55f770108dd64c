#include "host/project/project_loader.h"

#include <gtest/gtest.h>

#include "host/project/property_values.h"
#include "test_action.h"

namespace zt::host {
namespace {

using testing::TTestAction;

class ProjectLoaderTest : public ::testing::Test {
 protected:
  ProjectLoaderTest() { zt::testing::RegisterTestAction(Registry); }
  Project Load(const std::string& Yaml) { return LoadProjectText(Yaml, "p.yml", Registry); }
  TTestAction& First(Project& P) { return static_cast<TTestAction&>(*P.Actions.at(0).Action); }
  // The one-line error for a project that cannot be loaded, "" when it loads.
  std::string ErrorOf(const std::string& Yaml) {
    try {
      Load(Yaml);
      return "";
    } catch (const ProjectError& E) {
      return E.what();
    }
  }
  ActionRegistry Registry;
};

TEST_F(ProjectLoaderTest, ReadsNameVariablesFileSetsAndTheActionTree) {
  Project P = Load(R"(
name: Release
variables:
  OUT: build/out
  COUNT: 0
  DEBUG: false
  QUOTED: "12"
filesets:
  Sources:
    base: src
    include: ["**/*.cpp", "**/*.h"]
    exclude: "**/generated/**"
actions:
  - action: TTestAction
  - action: test group
    title: Second
    enabled: false
    ignoreFailure: true
    scripts:
      OnRun: print(1)
    actions:
      - action: Test Action
      - action: Test Action
)");
  EXPECT_EQ(P.Name, "Release");
  ASSERT_EQ(P.InitialVariables.size(), 4u);
  EXPECT_EQ(P.InitialVariables[0].second, frame::TZTVariant("build/out"));
  EXPECT_EQ(P.InitialVariables[1].second, frame::TZTVariant(std::int64_t{0}));
  EXPECT_EQ(P.InitialVariables[2].second, frame::TZTVariant(false));
  EXPECT_EQ(P.InitialVariables[3].second, frame::TZTVariant("12"));
  ASSERT_EQ(P.FileSets.size(), 1u);
  EXPECT_EQ(P.FileSets[0].Name, "Sources");
  EXPECT_EQ(P.FileSets[0].Base, "src");
  EXPECT_EQ(P.FileSets[0].Include, (std::vector<std::string>{"**/*.cpp", "**/*.h"}));
  EXPECT_EQ(P.FileSets[0].Exclude, (std::vector<std::string>{"**/generated/**"}));
  ASSERT_EQ(P.Actions.size(), 2u);
  EXPECT_EQ(P.Actions[0].Action->GetTitle(), "Test Action");
  EXPECT_TRUE(P.Actions[0].Enabled);
  const ActionNode& Second = P.Actions[1];
  EXPECT_EQ(Second.Action->GetTitle(), "Second");
  EXPECT_FALSE(Second.Enabled);
  EXPECT_TRUE(Second.IgnoreFailure);
  EXPECT_EQ(Second.Scripts, (std::vector<ScriptSource>{{"OnRun", "print(1)", 20}}));
  ASSERT_EQ(Second.Children.size(), 2u);
  EXPECT_EQ(Second.Children[1].Id, "2.2");
  EXPECT_EQ(Second.Children[1].Line, 23);
}

TEST_F(ProjectLoaderTest, AppliesValuesByDeclaredType) {
  Project P = Load(R"(
actions:
  - action: Test Action
    Text: 42
    Flag: false
    Count: -7
    Mode: tmThree
    Options: [toFirst, toThird]
    Lines: [a, b]
)");
  TTestAction& A = First(P);
  EXPECT_EQ(A.GetText(), "42");
  EXPECT_FALSE(A.GetFlag());
  EXPECT_EQ(A.GetCount(), -7);
  EXPECT_EQ(A.GetMode(), zt::testing::tmThree);
  EXPECT_EQ(A.GetOptions(), 0b101);
  EXPECT_EQ(A.GetLines(), "a\r\nb\r\n");
}

TEST_F(ProjectLoaderTest, EnumerationByOrdinalAndStringListAsMultiLineText) {
  Project P = Load("actions:\n  - action: Test Action\n    Mode: 0\n    Lines: |\n      one\n      two\n    Options: []\n");
  EXPECT_EQ(First(P).GetMode(), zt::testing::tmOne);
  EXPECT_EQ(First(P).GetLines(), "one\r\ntwo\r\n");
  EXPECT_EQ(First(P).GetOptions(), 0);
}

TEST_F(ProjectLoaderTest, CoupledSettersEndAsTheLastWriteLeavesThem) {
  Project A = Load("actions:\n  - action: Test Action\n    Path: a/b/c.txt\n    Folder: x\n");
  EXPECT_EQ(First(A).GetFolder(), "x");
  Project B = Load("actions:\n  - action: Test Action\n    Folder: x\n    Path: a/b/c.txt\n");
  EXPECT_EQ(First(B).GetFolder(), "a/b");
}

TEST_F(ProjectLoaderTest, JsonIsReadTheSameWay) {
  Project P = Load(R"({"name": "J", "actions": [{"action": "Test Action", "Count": 5, "Options": ["toSecond"]}]})");
  EXPECT_EQ(P.Name, "J");
  EXPECT_EQ(First(P).GetCount(), 5);
  EXPECT_EQ(First(P).GetOptions(), 0b10);
}

TEST_F(ProjectLoaderTest, WhatCannotBeLoadedIsOneLineNamingTheFileLine) {
  const std::string A = "actions:\n  - action: Test Action\n    ";
  const std::pair<std::string, std::string> Cases[] = {
      // Names, with the nearest one offered.
      {A + "ignorefailure: true\n",
       "p.yml:3: Test Action: unknown property \"ignorefailure\"; did you mean \"ignoreFailure\"?"},
      {A + "scripts:\n      OnRnu: x()\n", "p.yml:4: Test Action: unknown script \"OnRnu\"; did you mean \"OnRun\"?"},
      {"acions: []\n",
       "p.yml:1: unknown key \"acions\"; did you mean \"actions\"?\n"
       "p.yml:1: the project has no \"actions\" list (an empty project is \"actions: []\")"},
      {"actions:\n  - title: x\n", "p.yml:2: action without the key \"action\""},
      // Values of the wrong type, and properties that are read-only.
      {A + "Flag: maybe", "p.yml:3: Test Action: property \"Flag\" expects a Boolean (true or false), got \"maybe\""},
      {A + "Count: 1.5", "p.yml:3: Test Action: property \"Count\" expects an integer, got \"1.5\""},
      {A + "Text: [a]", "p.yml:3: Test Action: property \"Text\" expects a text, got a list"},
      {A + "Mode: tmTree",
       "p.yml:3: Test Action: property \"Mode\" expects one of tmOne, tmTwo, tmThree or an ordinal 0..2, got "
       "\"tmTree\"; did you mean \"tmThree\"?"},
      {A + "Mode: 3",
       "p.yml:3: Test Action: property \"Mode\" expects one of tmOne, tmTwo, tmThree or an ordinal 0..2, got \"3\""},
      {A + "Options: [toFirst, toFourth]",
       "p.yml:3: Test Action: property \"Options\" expects a list of toFirst, toSecond, toThird, got "
       "\"toFourth\"; did you mean \"toFirst\"?"},
      {A + "Options: toFirst",
       "p.yml:3: Test Action: property \"Options\" expects a list of toFirst, toSecond, toThird, got \"toFirst\""},
      {A + "When: yesterday",
       "p.yml:3: Test Action: property \"When\" expects a date-time as YYYY-MM-DDTHH:MM:SS, got \"yesterday\""},
      {A + "ResultCount: 1", "p.yml:3: Test Action: property \"ResultCount\" is read-only"},
      {A + "Shown: 1", "p.yml:3: Test Action: property \"Shown\" is read-only"},
      {A + "enabled: sometimes", "p.yml:3: enabled must be true or false"},
      // Malformed files.
      {"{\"actions\": [{\"action\": \"Test Action\",}\n", "p.yml:2: end of sequence flow not found"},
      {"- just\n- a list\n", "p.yml:1: a project is a mapping with name, variables, filesets and actions"},
      {"actions: 3\n", "p.yml:1: actions must be a list"},
      {"actions:\n  - 3\n", "p.yml:2: an action must be a mapping with the key \"action\""},
      {"name: {a: 1}\nactions: []\n", "p.yml:1: name must be a text"},
      {"a: b: c\n", "p.yml:1: illegal map value"},
      {"variables:\n  X: [1]\nactions: []\n", "p.yml:2: variable \"X\" must be a text, Boolean or integer"},
      {"\t- tab\n", "p.yml:1: illegal block entry"},
      {"actions: []\n", ""},
  };
  for (const auto& [Yaml, Error] : Cases) EXPECT_EQ(ErrorOf(Yaml), Error) << Yaml;
}

TEST_F(ProjectLoaderTest, DateTimeIsReadAsIso8601) {
  Project P = Load("actions:\n  - action: Test Action\n    When: 2024-03-05T10:15:00\n");
  frame::TZTPropInfo When;
  for (auto& Prop : TTestAction::ClassType().Properties())
    if (Prop.Name == "When") When = Prop;
  EXPECT_EQ(PropertyValueText(When, First(P).GetWhen()), "2024-03-05T10:15:00");
  EXPECT_NEAR(First(P).GetWhen(), 45356.42708333, 1e-6);
}

}  // namespace
}  // namespace zt::host
