// Scripts through zt: "Run Script", the host functions, the error line with
// its project-file line, zt validate and describe, a stop during an endless
// script, the BeforeAction / AfterAction events on package actions, and the
// example projects the README shows, which must keep working.
#include <gtest/gtest.h>
#include <signal.h>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

TEST(ScriptsE2E, RunScriptTakesItsResultFromActionResult) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Run Script, scripts: {OnExecute: Log("untouched")}}
  - {action: Run Script, ignoreFailure: true, scripts: {OnExecute: ActionResult = false}}
  - {action: TZTScriptAction, ignoreFailure: true, scripts: {OnExecute: ActionResult = "False"}}
  - {action: Run Script, ignoreFailure: true, scripts: {OnExecute: 'ActionResult = true; error("broken")'}}
  - action: Run Script
)");
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  Lines Results;
  for (const char* Id : {"1", "2", "3", "4", "5"}) Results.push_back(ActionResult(R, Id));
  EXPECT_EQ(Results, (Lines{"success", "ignored", "ignored", "ignored", "success"}));
  EXPECT_EQ(Messages(R, "1"), (Lines{"untouched"}));
  EXPECT_EQ(Messages(R, "2"), Lines{});
  EXPECT_EQ(HostLines(R, "4"), (Lines{"project.yml:5: broken"}));
  EXPECT_EQ(HostLines(R, "5"), (Lines{"Script OnExecute is empty: nothing to run"}));
}

TEST(ScriptsE2E, VariablesCrossAsTheirTypes) {
  TempDir D;
  setenv("ZT_SCRIPT_TEST_ENV", "from env", 1);
  ZtResult R = RunZt(D.Path(), R"(variables: {TEXT: "12", NUMBER: 12, FLAG: true, NAME: app-%NUMBER%}
actions:
  - action: Run Script
    scripts:
      OnExecute: |
        for _, Name in ipairs({"TEXT", "NUMBER", "FLAG", "NAME", "DOSCMD", "ZT_SCRIPT_TEST_ENV", "NOPE"}) do
          local V = GetVariable(Name)
          print(Name, math.type(V) or type(V), V)
        end
        SetVariable("S", "x") SetVariable("I", -7) SetVariable("F", 2.5) SetVariable("B", false)
        SetVariable("TEXT", 13)
        Log(Expand("%NUMBER%-%flag% 100%%"))
)",
                     {"--var", "FLAG=false"});
  unsetenv("ZT_SCRIPT_TEST_ENV");
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  EXPECT_EQ(Messages(R, "1"),
            (Lines{"TEXT\tstring\t12", "NUMBER\tinteger\t12", "FLAG\tboolean\tfalse",
                   "NAME\tstring\tapp-%NUMBER%", "DOSCMD\tstring\t/bin/sh",
                   "ZT_SCRIPT_TEST_ENV\tstring\tfrom env", "NOPE\tnil\tnil", "12-False 100%"}));
  EXPECT_EQ(FinalVariables(R), nlohmann::json::parse(R"({"TEXT": 13, "NUMBER": 12, "FLAG": false,
      "NAME": "app-%NUMBER%", "S": "x", "I": -7, "F": "2.5", "B": false})"));
}

TEST(ScriptsE2E, ErrorsNameTheProjectFileLine) {
  TempDir D;
  const std::string Project = R"(actions:
  - action: Run Script
    ignoreFailure: true
    scripts:
      BeforeAction: |
        function Check(X)
          if not X then error("check failed") end
        end
      OnExecute: |

        Check(false)
  - {action: Run Script, ignoreFailure: true, scripts: {OnExecute: "Action.Nothing = 1"}}
  - {action: Run Script, ignoreFailure: true, scripts: {OnExecute: 'Log("a") error({}, 0)'}}
  - {action: Run Script, ignoreFailure: true, scripts: {OnExecute: 'SetVariable("X", nil)'}}
  - {action: Run Script, ignoreFailure: true, scripts: {OnExecute: 'Log(Expand("%UNDEFINED%"))'}}
)";
  ZtResult R = RunZt(D.Path(), Project);
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  const std::string File = "project.yml";
  EXPECT_EQ(HostLines(R, "1"), (Lines{File + ":7: check failed"}));
  EXPECT_EQ(HostLines(R, "2"), (Lines{File + ":12: Run Script: unknown property \"Nothing\""}));
  EXPECT_EQ(HostLines(R, "3"), (Lines{File + ":13: (error object is a table value)"}));
  EXPECT_EQ(HostLines(R, "4"),
            (Lines{File + ":14: SetVariable: the value must be a text, number or Boolean, not nil"}));
  EXPECT_EQ(HostLines(R, "5"), (Lines{File + ":15: Variable \"UNDEFINED\" is not defined"}));

  // zt validate compiles without running, and reports syntax errors alike.
  R = RunZt(D.Path(), Project, {}, "validate");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout;
  R = RunZt(D.Path(), R"(actions:
  - action: Run Script
    scripts:
      OnExecute: |
        if x then
          y =
        end
      AfterAction: "Log('x'"
)",
            {}, "validate");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stdout, "1 Run Script: OnExecute: " + File + ":7: unexpected symbol near 'end'\n" +
                          "1 Run Script: AfterAction: " + File + ":8: ')' expected near <eof>\n");
}

TEST(ScriptsE2E, InterruptStopsAnEndlessScript) {
  TempDir D;
  ZtResult R = RunZtAndSignal(D.Path(), R"(actions:
  - {action: Run Script, scripts: {OnExecute: 'Log("looping") while true do end'}}
  - action: Run Script
)",
                              "looping", SIGINT);
  ASSERT_EQ(R.ExitCode, 130) << R.Stdout << R.Stderr;
  EXPECT_EQ(HostLines(R, "1"), (Lines{"project.yml:2: the build was stopped"}));
  EXPECT_EQ(ActionResult(R, "1"), "failure");
  EXPECT_EQ(ActionResult(R, "2"), "");
  EXPECT_EQ(R.Events.back()["result"], "stopped");
}

TEST(ScriptsE2E, BeforeActionMaySkipOrChangeTheActionAndAfterActionItsResult) {
  TempDir D;
  MakeTree(D.Path(), {"keep.tmp", "a.log", "b.log"});
  ZtResult R = RunZt(D.Path(), R"(actions:
  - action: Delete File(s)
    FileSpec: keep.tmp
    scripts:
      BeforeAction: Skip = GetVariable("KEEP") ~= nil
  - {action: Delete File(s), FileSpec: nothing.tmp, scripts: {BeforeAction: Action.FileSpec = "*.log"}}
  - {action: Check if File Exists, FileOrDirectory: missing.txt,
     scripts: {AfterAction: 'Log("saw " .. tostring(ActionResult)) ActionResult = not ActionResult'}}
  - {action: Check if File Exists, FileOrDirectory: keep.tmp, ignoreFailure: true,
     scripts: {AfterAction: ActionResult = false}}
  - {action: Delete File(s), FileSpec: keep.tmp, ignoreFailure: true,
     scripts: {BeforeAction: Action.DeleteHidden = "sometimes"}}
)",
                     {"--var", "KEEP=1"});
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  Lines Results;
  for (const char* Id : {"1", "2", "3", "4", "5"}) Results.push_back(ActionResult(R, Id));
  EXPECT_EQ(Results, (Lines{"skipped", "success", "success", "ignored", "ignored"}));
  // Skipped, and not run after a failed BeforeAction.
  EXPECT_EQ(ListNames(D.Path()), (Lines{"keep.tmp", "log.jsonl", "project.yml"}));
  EXPECT_EQ(Messages(R, "3").back(), "saw false");
  EXPECT_EQ(HostLines(R, "5"), (Lines{"project.yml:12: Delete File(s): property \"DeleteHidden\" expects a "
                                      "Boolean (true or false), got \"sometimes\""}));

  R = RunZt(D.Path(), "", {}, "describe");
  EXPECT_EQ(R.ExitCode, 0);
  EXPECT_NE(R.Stdout.find("Delete File(s) [ keep.tmp ]\n    script BeforeAction (line 5)\n"),
            std::string::npos)
      << R.Stdout;
}

TEST(ScriptsE2E, EachRunOfAnActionHasItsOwnStateAndLoopsOfferReset) {
  TempDir D;
  WriteText(D / "lines.txt", "one\r\ntwo\r\n");
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: List Iterator, ZTVariable: ITEM, ListOfItems: [a, b],
     scripts: {AfterAction: 'Log("index " .. Action.ItemIndex) Action:Reset() Log("index " .. Action.ItemIndex)'},
     actions: [{action: Read Text File, FileName: lines.txt,
                scripts: {OnReadLine: 'Count = (Count or 0) + 1 Log(GetVariable("ITEM") .. Count .. " " ..LineText)'}}]}
)");
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  // The per-line script counts across its run's lines, and starts afresh on the next pass.
  EXPECT_EQ(Messages(R, "1.1"), (Lines{"Reading file...", "a1 one", "a2 two", "Done.", "Reading file...",
                                       "b1 one", "b2 two", "Done."}));
  EXPECT_EQ(Messages(R, "1"), (Lines{"Setting items...", "Found 2 Items", "index 1", "index -1"}));
}

TEST(ScriptsE2E, ExampleProjectTagsTheReleaseSkipsOnRequestAndForgivesMissingNotes) {
  TempDir D;
  MakeTree(D.Path(), {"scripts-output/old.log"});
  ZtResult R = RunZt(D.Path(), ReadText(std::string(ZT_SOURCE_DIR) + "/examples/scripts.yml"),
                     {"--var", "KEEP_LOGS=true"});
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  EXPECT_EQ(Messages(R, "1"), (Lines{"release tag v1.4.2"}));
  EXPECT_EQ(FinalValue(R, "TAG"), "v1.4.2");
  EXPECT_EQ(ActionResult(R, "3"), "skipped");
  EXPECT_EQ(Messages(R, "3"), (Lines{"keeping the logs"}));
  EXPECT_TRUE(Exists(D / "scripts-output/old.log"));
  EXPECT_EQ(ActionResult(R, "4"), "success");
  EXPECT_EQ(Messages(R, "4").back(), "no release notes: going on without them");

  R = RunZt(D.Path(), "");
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  EXPECT_EQ(ActionResult(R, "3"), "success");
  EXPECT_FALSE(Exists(D / "scripts-output/old.log"));
}

TEST(DemoProjectTest, PackagesTheDocumentsAndCleansTheOutput) {
  TempDir D;
  MakeTree(D.Path(), {"demo-output/main.o.tmp=scratch\n", "demo-output/util.o.tmp=scratch\n",
                      "demo-output/link.tmp=scratch\n", "demo-output/build.log=old build log\n [ro]",
                      "demo-output/readme.txt=keep me\n"});

  ZtResult R = RunZt(D.Path(), ReadText(std::string(ZT_SOURCE_DIR) + "/examples/demo.yml"));
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;

  EXPECT_EQ(ListNames(D / "demo-output"), (Lines{"dist", "readme.txt"}));
  EXPECT_EQ(ReadText(D / "demo-output/dist/readme.txt"), "keep me\n");

  // CRC-32 and MD5 of "keep me\n", and the version line written and read back.
  EXPECT_EQ(FinalValue(R, "README_CRC"), "$88A4FF51");
  EXPECT_EQ(FinalValue(R, "README_MD5"), "97ED8315D42223266F7E00741409A6AD");
  EXPECT_EQ(FinalValue(R, "RELEASED"), "1.4.2 (crc $88A4FF51)");
  EXPECT_EQ(ReadText(D / "demo-output/dist/release.ini"), "[Release]\r\nVersion=1.4.2 (crc $88A4FF51)\r\n");
  EXPECT_EQ(StatusDetails(R, "8"), (Lines{"Deleting files : demo-output/build.log", "1 Files Deleted."}));
}

}  // namespace
}  // namespace zt::testing
