// zt validate, describe, actions and help, the command line itself, and
// projects refused before any action runs (exit 2, one line per error naming
// the file and line). The palette test compares `zt actions --designer` and
// `zt help` of every type with golden/palette.txt: a change there is one
// users see; check it, then record it with ZT_UPDATE_GOLDEN=1 (tests/README.md).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

const char* kTree = R"(
actions:
  - {action: Delete File(s), title: Clean, FileSpec: out/*.o, ignoreFailure: true}
  - {action: TDeleteFilesAction, enabled: false}
  - action: File Iterator
    title: Parent
    actions:
      - {action: Delete File(s), FileSpec: x}
      - action: Delete File(s)
  - {action: Close Process, ProcessID: "%PID%"}
  - {action: Close Process, ProcessID: "42", SendWMClose: true}
  - {action: Delete Registry Value, RegKey: Software\Acme, RegValueName: v}
  - {action: Delete Registry Value, RegKey: Software\Acme, DeleteKey: true}
  - action: Read Registry Value
)";

TEST(HostCommandsTest, ValidatePrintsOneLinePerErrorOrTheCountAndExitsOneOrZero) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), kTree, {}, "validate");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  EXPECT_EQ(R.Stdout,
            "2 Delete File(s): File Spec: The file spec has not been set\n"
            "3 Parent: File Spec: File Spec has not been set\n"
            "3.2 Delete File(s): File Spec: The file spec has not been set\n"
            "8 Read Registry Value: Registry Key: Registry Key has not been set\n");
  R = RunZt(D.Path(), "actions: [{action: Delete File(s), FileSpec: a}]\n", {}, "validate");
  EXPECT_EQ(R.ExitCode, 0);
  EXPECT_EQ(R.Stdout, "project.yml: 1 action, no errors\n");
  R = RunZt(D.Path(),
            "actions: [{action: Touch File(s), FileSpec: a}, {action: Touch File(s), FileSpec: b}]\n", {},
            "validate");
  EXPECT_EQ(R.Stdout, "project.yml: 2 actions, no errors\n");
}

TEST(HostCommandsTest, ValidateNamesTheMissingSettingsOfEachType) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Read Ini File, IniFile: ./a.ini}
  - action: Write Ini File
  - action: File Iterator
  - {action: File Iterator, UseFileSet: true}
  - action: Folder Iterator
  - action: File Contents Iterator
  - {action: Ini File Iterator, IteratorMode: iiValues}
  - {action: Ini File Iterator, IniFilename: app.ini}
  - action: List Iterator
  - {action: Delete Registry Value, RegKey: Software\Acme}
  - action: Execute Program
  - action: Run DOS Command
  - {action: Run DOS Command, Command: make}
  - action: Shell Execute
  - {action: Get Date/Time, DateSource: dsFileDate}
  - {action: Get Disk Free Space, SizeUnit: suGB}
  - action: Text Replace (Deprecated)
)",
                     {}, "validate");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  EXPECT_EQ(R.Stdout,
            "1 Read Ini File: Section: The section has not been set\n"
            "1 Read Ini File: Value Name: The value name has not been set\n"
            "1 Read Ini File: Variable: The variable name has not been set\n"
            "2 Write Ini File: Ini File: Ini file has not been set\n"
            "2 Write Ini File: Section: The section has not been set\n"
            "2 Write Ini File: Value Name: The value name has not been set\n"
            "3 File Iterator: File Spec: File Spec has not been set\n"
            "4 File Iterator: FileSet: FileSet name has not been set\n"
            "5 Folder Iterator: Starting Folder: A starting folder has not been set\n"
            "6 File Contents Iterator: Filename: A filename has not been set\n"
            "7 Ini File Iterator: Inifile: An INI file has not been set\n"
            "7 Ini File Iterator: Variable: Both Name variable and Values variable has not been set\n"
            "8 Ini File Iterator: Sections Variable: The Sections Variable has not been set\n"
            "10 Delete Registry Value: Registry Value: Registry Value name has not been set\n"
            "11 Execute Program: Program: The program to execute has not been set\n"
            "12 Run DOS Command: DOS Command: The DOS command has not been set\n"
            "14 Shell Execute: Filename: A filename has not been specified\n"
            "15 Get Date/Time: Variable: The variable has not been set\n"
            "15 Get Date/Time: File Name: Filename has not been set\n"
            "16 Get Disk Free Space: Free Space Variable: Set a variable or a minimum free space\n"
            "17 Text Replace (Deprecated): File Specification: The file spec has not been set\n"
            "17 Text Replace (Deprecated): Search Text: The search text has not been set\n");
}

TEST(HostCommandsTest, DescribePrintsTheTreeIndentedByDepth) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), kTree, {}, "describe");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(R.Stdout,
            "Clean [ out/*.o ] [ignore failure]\n"
            "Delete File(s) [  ] [disabled]\n"
            "File Iterator [  ]\n"  // the file iterator's description names the type, not the title
            "  Delete File(s) [ x ]\n"
            "  Delete File(s) [  ]\n"
            "Quit Process [ %PID% ]\n"
            "Close Process [ 42 ]\n"
            "Delete Registry Value [ Software\\Acme ] [ v ]\n"
            "Delete Registry Key [ Software\\Acme ]\n"
            "Read Registry Value\n");
}

TEST(HostCommandsTest, MisspeltCommandsAndActionsGetDidYouMean) {
  TempDir D;
  ZtResult R = RunZtArgs(D.Path(), {"hlep", "x"});
  EXPECT_EQ(R.ExitCode, 2);
  EXPECT_EQ(R.Stderr, "zt: unknown command \"hlep\"; did you mean \"help\"?\n");
  // The name that holds the word, not the nearest spelling (XCopy); one where it starts a word.
  // clang-format off
  for (const auto& [Word, Meant] : {std::pair{"Delete File", "Delete File(s)"}, {"copy", "Copy File(s)"},
                                    {"crc", "Calculate File CRC32"}, {"Delete Directry", "Delete Directory"},
                                    {"delete", "Delete Directory"}, {"text", "Text Replace (Deprecated)"}}) {
    // clang-format on
    R = RunZtArgs(D.Path(), {"help", Word});
    EXPECT_EQ(R.ExitCode, 2) << Word;
    EXPECT_EQ(R.Stderr,
              "zt: unknown action \"" + std::string(Word) + "\"; did you mean \"" + Meant + "\"?\n");
  }
}

TEST(HostCommandsTest, VersionAndHelpWorkEverywhere) {
  TempDir D;
  ZtResult R = RunZtArgs(D.Path(), {"--version"});
  EXPECT_EQ(R.ExitCode, 0);
  EXPECT_EQ(R.Stdout, "zt 0.1.0\n");
  R = RunZtArgs(D.Path(), {"--help"});
  EXPECT_EQ(R.Stdout.rfind("zt: runs build projects", 0), 0u) << R.Stdout;
  EXPECT_NE(R.Stdout.find("Usage: zt [OPTIONS]"), std::string::npos) << R.Stdout;
  EXPECT_NE(R.Stdout.find("\nExamples:\n  zt run release.yml"), std::string::npos);
  EXPECT_NE(R.Stdout.find("130 stopped (Ctrl+C).\n"), std::string::npos);
  R = RunZtArgs(D.Path(), {"run", "--help"});
  EXPECT_EQ(R.ExitCode, 0);
  EXPECT_NE(R.Stdout.find("--log-json"), std::string::npos);
  EXPECT_EQ(RunZtArgs(D.Path(), {}).ExitCode, 2);
}

TEST(HostLoadTest, ProjectsThatCannotRunExitTwoNamingFileAndLine) {
  const std::string NoActions = "the project has no \"actions\" list (an empty project is \"actions: []\")";
  const std::string Nested = "project.yml:2: the project is nested more than 200 levels deep";
  struct Row {
    std::string Yaml;  // written to project.yml; "" runs Args alone
    std::vector<std::string> Args;
    std::string Error;  // all that is said on standard error
  } Rows[] = {
      // clang-format off
      // Unknown names and bad values: EveryLoadErrorIsReportedOnItsOwnLine.
      {"actions: [\n", {}, "project.yml:2: did not find expected node content (while parsing a flow node that starts on line 2)"},
      {"", {"run", "no-such.yml"}, "no-such.yml: cannot open the project file: No such file or directory"},
      {"", {"run", "."}, ".: is a folder, not a project file"},
      {"", {"run", "empty.yml"}, "empty.yml:1: " + NoActions},
      {"name: x\nactions:\n", {}, "project.yml:2: " + NoActions},
      {"actions:\n  - {action: Delete File(s), FileSpec: a,\n    FileSpec: b}\n", {},
       "project.yml:3: duplicate key \"FileSpec\" (first on line 2)"},
      {"variables:\n  Out: a\n  OUT: b\nactions: []\n", {},
       "project.yml:3: variable \"OUT\" is defined on line 2 already (names ignore letter case)"},
      {"variables:\n  a%b: 1\nactions: []\n", {},
       "project.yml:2: variable name \"a%b\" is not valid (letters, digits, _, . and -)"},
      {"actions:\n  - {action: Read Registry Value, RegRoot: HKEY_CURRENT_USR}\n", {},
       "project.yml:2: Read Registry Value: property \"RegRoot\" expects an integer or one of HKEY_CLASSES_ROOT, "
       "HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS, HKEY_CURRENT_CONFIG, got \"HKEY_CURRENT_USR\"; did you "
       "mean \"HKEY_CURRENT_USER\"?"},
      {"actions: [{action: Shell Execute, FileSpec: \"*.txt\"}]\n", {},
       "project.yml:1: Shell Execute: property \"FileSpec\": Wildcards are not allowed.  Use with the FileIterator "
       "action to perform action on multiple files."},
      {"actions: []\n", {"--var", "NOEQUALS"}, "zt: --var expects NAME=VALUE, got \"NOEQUALS\""},
      {"actions: []\n", {"--var", "A B=1"},
       "zt: --var \"A B=1\": \"A B\" is not a valid variable name (letters, digits, _, . and -)"},
      // A self-containing alias used to crash every command; deep nesting said "bad file".
      {"actions: &a [{action: Touch File(s), FileSpec: x, actions: *a}]\n", {},
       "project.yml:1: an alias refers to a node that contains it (anchor on line 1)"},
      {"actions: []\nname: " + std::string(250, '[') + std::string(250, ']') + "\n", {}, Nested},
      {"actions: []\nname: " + std::string(600, '[') + std::string(600, ']') + "\n", {}, Nested},
      {"actions:\n  - {action: Touch File(s), FileSpec: x, actions: [{action: Delete File(s), FileSpec: y}]}\n", {},
       "project.yml:2: Touch File(s) takes no child actions (only loops and flow-control actions do)"},
      // clang-format on
  };
  TempDir D;
  std::ofstream(D / "empty.yml").close();
  for (const Row& R : Rows) {
    ZtResult Z = R.Yaml.empty() ? RunZtArgs(D.Path(), R.Args) : RunZt(D.Path(), R.Yaml, R.Args);
    EXPECT_EQ(Z.ExitCode, 2) << R.Error;
    EXPECT_EQ(Z.Stderr, R.Error + "\n");
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

TEST(RegistrationEndToEnd, PaletteAndHelpOfEveryTypeAreAsRecorded) {
  TempDir Dir;
  std::string Output = RunZtArgs(Dir.Path(), {"actions", "--designer"}).Stdout;
  std::istringstream Palette(RunZtArgs(Dir.Path(), {"actions"}).Stdout);
  for (std::string Line; std::getline(Palette, Line);) {
    // The display name is the second column; columns are apart by two or more blanks.
    const std::size_t Start = Line.find_first_not_of(' ', Line.find("  "));
    Output +=
        "\n" + RunZtArgs(Dir.Path(), {"help", Line.substr(Start, Line.find("  ", Start) - Start)}).Stdout;
  }
  // A default of "now" (Touch File(s)) differs from run to run.
  const std::regex Now(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d|\d\d/\d\d/\d{4} \d\d:\d\d:\d\d)");
  Output = std::regex_replace(Output, Now, "<now>");
  const std::string Golden = std::string(ZT_SOURCE_DIR) + "/tests/e2e/golden/palette.txt";
  if (std::getenv("ZT_UPDATE_GOLDEN")) WriteText(Golden, Output);
  // The first line that differs, rather than both texts whole.
  auto Split = [](const std::string& Text) {
    std::vector<std::string> Lines;
    std::istringstream In(Text);
    for (std::string L; std::getline(In, L);) Lines.push_back(L);
    return Lines;
  };
  const auto Got = Split(Output), Want = Split(ReadText(Golden));
  for (std::size_t I = 0; I < std::max(Got.size(), Want.size()); ++I)
    ASSERT_EQ(I < Got.size() ? Got[I] : "(no line)", I < Want.size() ? Want[I] : "(no line)")
        << "line " << I + 1 << " of golden/palette.txt; if the change is meant, record it: "
        << "ZT_UPDATE_GOLDEN=1 ctest -R Registration";
}

}  // namespace
}  // namespace zt::testing
