// Projects that zt refuses before any action runs: exit code 2 (1 for a log
// it cannot write) and one line per error naming the file and line.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

std::string FirstLine(const std::string& Text) { return Text.substr(0, Text.find('\n')); }

TEST(HostLoadTest, ProjectsThatCannotRunExitTwoNamingFileAndLine) {
  struct Row {
    std::string Yaml;  // written to project.yml; "" runs Args alone
    std::vector<std::string> Args;
    std::string Error;  // the first line on standard error
  } Rows[] = {
      // Unknown names and bad values: EveryLoadErrorIsReportedOnItsOwnLine.
      {"actions: [\n", {}, "project.yml:2: end of sequence flow not found"},
      {"", {"run", "no-such.yml"}, "no-such.yml: cannot open the project file: No such file or directory"},
      {"", {"run", "."}, ".: is a folder, not a project file"},
      {"",
       {"run", "empty.yml"},
       "empty.yml:1: the project has no \"actions\" list (an empty project is \"actions: []\")"},
      {"name: x\nactions:\n",
       {},
       "project.yml:2: the project has no \"actions\" list (an empty project is \"actions: []\")"},
      {"actions:\n  - action: Delete File(s)\n    FileSpec: a\n    FileSpec: b\n",
       {},
       "project.yml:4: duplicate key \"FileSpec\" (first on line 3)"},
      {"variables:\n  Out: a\n  OUT: b\nactions: []\n",
       {},
       "project.yml:3: variable \"OUT\" is defined on line 2 already (names ignore letter case)"},
      {"variables:\n  a%b: 1\nactions: []\n",
       {},
       "project.yml:2: variable name \"a%b\" is not valid (letters, digits, _, . and -)"},
      {"actions:\n  - {action: Read Registry Value, RegRoot: HKEY_CURRENT_USR}\n",
       {},
       "project.yml:2: Read Registry Value: property \"RegRoot\" expects an integer or one of "
       "HKEY_CLASSES_ROOT, "
       "HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS, HKEY_CURRENT_CONFIG, got \"HKEY_CURRENT_USR\"; "
       "did you "
       "mean \"HKEY_CURRENT_USER\"?"},
      {"actions: []\n", {"--var", "NOEQUALS"}, "zt: --var expects NAME=VALUE, got \"NOEQUALS\""},
      {"actions: []\n",
       {"--var", "A B=1"},
       "zt: --var \"A B=1\": \"A B\" is not a valid variable name (letters, digits, _, . and -)"},
      // A self-containing alias used to crash every command; deep nesting said "bad file".
      {"actions: &a [{action: Touch File(s), FileSpec: x, actions: *a}]\n",
       {},
       "project.yml:1: an alias refers to a node that contains it (anchor on line 1)"},
      {"actions: []\nname: " + std::string(250, '[') + std::string(250, ']') + "\n",
       {},
       "project.yml:2: the project is nested more than 200 levels deep"},
      {"actions: []\nname: " + std::string(600, '[') + std::string(600, ']') + "\n",
       {},
       "project.yml:2: the project is nested more than 200 levels deep"},
      {"actions:\n  - {action: Touch File(s), FileSpec: x, actions: [{action: Delete File(s), FileSpec: "
       "y}]}\n",
       {},
       "project.yml:2: Touch File(s) takes no child actions (only loops and flow-control actions do)"},
  };
  TempDir D;
  std::ofstream(D / "empty.yml").close();
  for (const Row& R : Rows) {
    ZtResult Z = R.Yaml.empty() ? RunZtArgs(D.Path(), R.Args) : RunZt(D.Path(), R.Yaml, R.Args);
    EXPECT_EQ(Z.ExitCode, 2) << R.Error;
    EXPECT_EQ(FirstLine(Z.Stderr), R.Error);
    EXPECT_EQ(Z.Stderr.size(), R.Error.size() + 1) << Z.Stderr;
    EXPECT_EQ(Z.Stdout, "") << R.Error;
    EXPECT_TRUE(Z.Events.empty()) << R.Error;
  }
}

TEST(HostLoadTest, EveryLoadErrorIsReportedOnItsOwnLine) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), R"(actions:
  - action: Delete Files
  - action: Delete File(s)
    FileSepc: a
    DeleteHidden: perhaps
    title: one
    title: two
)",
                     {}, "validate");
  EXPECT_EQ(R.ExitCode, 2);
  EXPECT_EQ(R.Stderr,
            "project.yml:2: unknown action \"Delete Files\"; did you mean \"Delete File(s)\"?\n"
            "project.yml:4: Delete File(s): unknown property \"FileSepc\"; did you mean \"FileSpec\"?\n"
            "project.yml:5: Delete File(s): property \"DeleteHidden\" expects a Boolean (true or false), got "
            "\"perhaps\"\n"
            "project.yml:7: duplicate key \"title\" (first on line 6)\n");
}

TEST(HostLoadTest, StrictRunValidatesEveryEnabledActionBeforeTheFirstStarts) {
  TempDir D;
  const char* Yaml = R"(actions:
  - action: Create Directory
    FileOrDirectory: made
  - action: Delete File(s)
  - action: Delete File(s)
    enabled: false
)";
  ZtResult R = RunZt(D.Path(), Yaml, {"--strict"});
  EXPECT_EQ(R.ExitCode, 2);
  EXPECT_EQ(R.Stderr, "2 Delete File(s): File Spec: The file spec has not been set\n");
  EXPECT_FALSE(std::filesystem::exists(D / "made"));
  R = RunZt(D.Path(), Yaml);  // without --strict the action handles its settings when it runs
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_TRUE(std::filesystem::exists(D / "made"));
}

}  // namespace
}  // namespace zt::testing
