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
)";

TEST(HostCommandsTest, ValidatePrintsOneLinePerErrorOrTheCountAndExitsOneOrZero) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), kTree, {}, "validate");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  EXPECT_EQ(R.Stdout,
            "2 Delete File(s): File Spec: The file spec has not been set\n"
            "3 Parent: File Spec: File Spec has not been set\n"
            "3.2 Delete File(s): File Spec: The file spec has not been set\n");
  R = RunZt(D.Path(), "actions: [{action: Delete File(s), FileSpec: a}]\n", {}, "validate");
  EXPECT_EQ(R.ExitCode, 0);
  EXPECT_EQ(R.Stdout, "project.yml: 1 action, no errors\n");
  R = RunZt(D.Path(),
            "actions: [{action: Touch File(s), FileSpec: a}, {action: Touch File(s), FileSpec: b}]\n", {},
            "validate");
  EXPECT_EQ(R.Stdout, "project.yml: 2 actions, no errors\n");
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
            "  Delete File(s) [  ]\n");
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
