// zt validate, describe, actions and help, and the command line itself.
#include <gtest/gtest.h>

#include "ZtRunner.h"
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
  R = RunZtArgs(D.Path(), {"help", "Delete File"});
  EXPECT_EQ(R.ExitCode, 2);
  EXPECT_EQ(R.Stderr, "zt: unknown action \"Delete File\"; did you mean \"Delete File(s)\"?\n");
  // The name that holds the word, not the nearest spelling (XCopy); one where it starts a word.
  for (const auto& [Word, Meant] : {std::pair{"copy", "Copy File(s)"},
                                    {"crc", "Calculate File CRC32"},
                                    {"Delete Directry", "Delete Directory"},
                                    {"delete", "Delete Directory"},
                                    {"text", "Text Replace (Deprecated)"}}) {
    R = RunZtArgs(D.Path(), {"help", Word});
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
  R = RunZtArgs(D.Path(), {});
  EXPECT_EQ(R.ExitCode, 2);
}

}  // namespace
}  // namespace zt::testing
