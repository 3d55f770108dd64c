// How zt runs loop actions: the passes and their events, nested loops, a
// failing child, the quiet console, and a stop in mid-loop.
#include <gtest/gtest.h>
#include <signal.h>

#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

// Starts, passes and ends of every action, in log order.
Lines Trace(const ZtResult& R) {
  Lines T;
  for (const auto& E : R.Events) {
    const std::string Event = E.value("event", ""), Id = E.value("id", "");
    if (Event == "action-start") T.push_back("start " + Id);
    if (Event == "action-end") T.push_back("end " + Id + " " + E.value("result", ""));
    if (Event == "iteration")
      T.push_back("pass " + Id + " " + std::to_string(E["index"].get<int>()) + "=" + E.value("value", ""));
  }
  return T;
}

TEST(LoopRunnerE2E, NestedLoopRunsAfreshInEveryPassWithTheSameIds) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: List Iterator, ZTVariable: O, ListOfItems: [a, b],
     actions: [{action: List Iterator, ZTVariable: I, ListOfItems: ["%O%1", "%O%2"],
                actions: [{action: Delete File(s), FileSpec: "%I%.tmp", enabled: false}]}]}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(Trace(R),
            (Lines{"start 1",           "pass 1 1=a",        "start 1.1",         "pass 1.1 1=a1",
                   "start 1.1.1",       "end 1.1.1 skipped", "pass 1.1 2=a2",     "start 1.1.1",
                   "end 1.1.1 skipped", "end 1.1 success",   "pass 1 2=b",        "start 1.1",
                   "pass 1.1 1=b1",     "start 1.1.1",       "end 1.1.1 skipped", "pass 1.1 2=b2",
                   "start 1.1.1",       "end 1.1.1 skipped", "end 1.1 success",   "end 1 success"}));
  EXPECT_NE(
      R.Stdout.find("[1] List Iterator [ a, b ]\n    Setting items...\n    Found 2 Items\n  pass 1 of 2: a\n"
                    "  [1.1] List Iterator [ %O%1, %O%2 ]\n"),
      std::string::npos)
      << R.Stdout;
}

TEST(LoopRunnerE2E, FailedChildEndsTheLoopUnlessItsFailureIsIgnored) {
  TempDir D;
  MakeTree(D.Path(), {"a.txt", "c.txt"});
  ZtResult R = RunZt(D.Path(), R"(filesets: {Texts: {base: ., include: ["*.txt"]}}
actions:
  - {action: File Iterator, UseFileSet: true, FileSetName: Texts, FileSetRefreshBefore: false,
     FileSetRefreshAfterEach: true, ignoreFailure: true,
     actions: [{action: Check if File Exists, FileOrDirectory: missing.txt}]}
  - {action: List Iterator, ZTVariable: I, ListOfItems: [a, b, c],
     actions: [{action: Check if File Exists, FileOrDirectory: "%I%.txt", ignoreFailure: true}]}
  - {action: List Iterator, ZTVariable: I, ListOfItems: [a, b, c],
     actions: [{action: Check if File Exists, FileOrDirectory: "%I%.txt"}]}
)");
  EXPECT_EQ(R.ExitCode, 1);
  // No refresh after the failed pass, but the loop still ends its list.
  const std::string Dir = D.Path() + "/";
  EXPECT_EQ(Messages(R, "1"), (Lines{"Retrieving fileset...",
                                     "File Set contents (2 files) :", Dir + "a.txt\r\n" + Dir + "c.txt\r\n",
                                     "Final file list which was iterated (after all intermediate updates):",
                                     Dir + "a.txt\r\n" + Dir + "c.txt\r\n", "(2 files.)"}));
  EXPECT_EQ(ActionResult(R, "1"), "ignored");
  EXPECT_EQ(Passes(R, "2"), (Lines{"1/3=a", "2/3=b", "3/3=c"}));
  EXPECT_EQ(ActionResult(R, "2"), "success");
  EXPECT_EQ(Passes(R, "3"), (Lines{"1/3=a", "2/3=b"}));
  EXPECT_EQ(ActionResult(R, "3"), "failure");
  EXPECT_EQ(R.Events.back()["result"], "failure");
  EXPECT_EQ(R.Events.back()["failed"], "3.1");
}

TEST(LoopRunnerE2E, QuietConsoleShowsEachFailedChildUnderItsOwnPasses) {
  TempDir D;
  MakeTree(D.Path(), {"x.txt", "x2.txt", "y1.txt", "y2.txt", R"(project.yml=actions:
  - {action: List Iterator, ZTVariable: A, ListOfItems: [x, y],
     actions: [{action: List Iterator, ZTVariable: B, ListOfItems: [1, 2],
                actions: [{action: Check if File Exists, FileOrDirectory: "%A%%B%.txt", ignoreFailure: true}]},
               {action: Check if File Exists, FileOrDirectory: "%A%.txt", ignoreFailure: true}]}
)"});
  ZtResult R = RunZtArgs(D.Path(), {"run", "project.yml", "--quiet"});
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  // Only x1.txt and y.txt are missing; the inner loop's later passes stay out.
  EXPECT_EQ(
      R.Stdout.substr(0, R.Stdout.find("Build succeeded")),
      "[1] List Iterator [ x, y ]\n    Setting items...\n    Found 2 Items\n  pass 1 of 2: x\n"
      "  [1.1] List Iterator [ 1, 2 ]\n      Setting items...\n      Found 2 Items\n    pass 1 of 2: 1\n"
      "    [1.1.1] Check if File Exists - Check if [ %A%%B%.txt ] Exists\n"
      "        No match found for File Spec\n        failed (ignored)\n"
      "  pass 2 of 2: y\n"
      "  [1.2] Check if File Exists - Check if [ %A%.txt ] Exists\n"
      "      No match found for File Spec\n      failed (ignored)\n");
}

TEST(LoopRunnerE2E, StopEndsTheLoopBeforeItsNextPass) {
  TempDir D;
  const int Count = 50000;
  std::string Text;
  for (int I = 0; I < Count; ++I) Text += "line " + std::to_string(I) + "\n";
  WriteText(D / "lines.txt", Text);
  ZtResult R = RunZtAndSignal(D.Path(), R"(actions:
  - {action: File Contents Iterator, ZTVariable: L, TextFileName: lines.txt,
     actions: [{action: Delete File(s), FileSpec: "%L%.tmp", FailIfNoFile: false}]}
)",
                              "\"iteration\"", SIGINT);
  ASSERT_EQ(R.ExitCode, 130) << R.Stderr;
  const auto Done = Passes(R, "1");
  ASSERT_FALSE(Done.empty());
  EXPECT_LT(Done.size(), static_cast<std::size_t>(Count));
  const std::string Of = " of " + std::to_string(Count), Said = Messages(R, "1").back();
  EXPECT_TRUE(Said == "Stopped before pass " + std::to_string(Done.size() + 1) + Of ||
              Said == "Stopped in pass " + std::to_string(Done.size()) + Of)
      << Said;
  EXPECT_EQ(ActionResult(R, "1"), "failure");
  EXPECT_EQ(R.Events.back()["result"], "stopped");
}

}  // namespace
}  // namespace zt::testing
