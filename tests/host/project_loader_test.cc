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
  const frame::TZTPropInfo& Property(const std::string& Name) {
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
  ActionRegistry Registry;
};

// Name, variables, titles, enabled and ignoreFailure are checked through zt.
TEST_F(ProjectLoaderTest, ReadsFileSetPatternsAndTheActionTree) {
  Project P = Load(R"(
filesets:
  Sources: {base: src, include: ["**/*.cpp", "**/*.h"], exclude: "**/generated/**"}
actions:
  - action: test group
    scripts:
      OnRun: print(1)
    actions:
      - action: TTestAction
      - action: Test Action
)");
  ASSERT_EQ(P.FileSets.size(), 1u);
  EXPECT_EQ(P.FileSets[0].Include, (std::vector<std::string>{"**/*.cpp", "**/*.h"}));
  EXPECT_EQ(P.FileSets[0].Exclude, (std::vector<std::string>{"**/generated/**"}));
  ASSERT_EQ(P.Actions.size(), 1u);
  EXPECT_EQ(P.Actions[0].Scripts, (std::vector<ScriptSource>{{"OnRun", "print(1)", 7}}));
  ASSERT_EQ(P.Actions[0].Children.size(), 2u);
  EXPECT_EQ(P.Actions[0].Children[1].Id, "1.2");
  EXPECT_EQ(P.Actions[0].Children[1].Line, 10);
}

TEST_F(ProjectLoaderTest, ValuesAreReadByTheDeclaredKind) {
  // Stored values: enumerations by ordinal, sets as bit masks, string lists as CR LF lines.
  const struct {
    std::string Properties, Name, Stored;
  } Cases[] = {
      {"Text: 42", "Text", "42"},
      {"Flag: false", "Flag", "False"},
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
    Project P = Load("actions:\n  - action: Test Action\n    " + C.Properties + "\n");
    EXPECT_EQ(Property(C.Name).Get(First(P)).AsString(), C.Stored) << C.Properties;
  }
  Project J =
      Load(R"({"name": "J", "actions": [{"action": "Test Action", "Count": 5, "Options": ["toSecond"]}]})");
  EXPECT_EQ(J.Name, "J");
  EXPECT_EQ(First(J).GetCount(), 5);
  EXPECT_EQ(First(J).GetOptions(), 0b10);
  Project D = Load("actions:\n  - action: Test Action\n    When: 2024-03-05T10:15:00\n");
  EXPECT_EQ(PropertyValueText(Property("When"), First(D).GetWhen()), "2024-03-05T10:15:00");
  EXPECT_NEAR(First(D).GetWhen(), 45356.42708333, 1e-6);
}

TEST_F(ProjectLoaderTest, WhatCannotBeLoadedIsOneLineNamingTheFileLine) {
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
      // Malformed files.
      {"- just\n- a list\n", "p.yml:1: a project is a mapping with name, variables, filesets and actions"},
      {"actions: 3\n", "p.yml:1: actions must be a list"},
      {"actions:\n  - 3\n", "p.yml:2: an action must be a mapping with the key \"action\""},
      {"name: {a: 1}\nactions: []\n", "p.yml:1: name must be a text"},
      {"variables:\n  X: [1]\nactions: []\n", "p.yml:2: variable \"X\" must be a text, Boolean or integer"},
  };
  for (const auto& [Yaml, Error] : Cases) EXPECT_EQ(ErrorOf(Yaml), Error) << Yaml;
}

}  // namespace
}  // namespace zt::host
