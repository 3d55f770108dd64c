// Ctrl+C on a running build through the real binary: the build stops after
// the running action, logs the end events and exits with 130; a second
// Ctrl+C ends it at once, but with its logs whole and no file half written.
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

// Many quick actions, so the interrupt lands while the build runs.
std::string ManyDeletes(int Count) {
  std::string Yaml = "name: Long\nvariables:\n  MARK: set\nactions:\n";
  for (int I = 0; I < Count; ++I)
    Yaml += "  - action: Delete File(s)\n    FileSpec: nothing-" + std::to_string(I) +
            ".tmp\n    FailIfNoFile: false\n";
  return Yaml;
}

TEST(HostStopTest, InterruptStopsTheBuildBetweenActionsAndExits130) {
  TempDir D;
  const int Count = 20000;
  ZtResult R = RunZtAndSignal(D.Path(), ManyDeletes(Count), "\"action-end\"", SIGINT);
  ASSERT_EQ(R.ExitCode, 130) << R.Stderr;
  ASSERT_GE(R.Events.size(), 3u);
  const auto& End = R.Events.back();
  EXPECT_EQ(End["event"], "build-end");
  EXPECT_EQ(End["result"], "stopped");
  const auto& Vars = R.Events[R.Events.size() - 2];
  EXPECT_EQ(Vars["event"], "variables");
  EXPECT_EQ(Vars["values"]["MARK"], "set");
  // Every action that started also ended, and the last ones never started.
  int Started = 0, Ended = 0;
  for (const auto& E : R.Events) {
    Started += E["event"] == "action-start";
    Ended += E["event"] == "action-end";
  }
  EXPECT_EQ(Started, Ended);
  EXPECT_GE(Started, 1);
  EXPECT_LT(Started, Count);
  EXPECT_EQ(ActionResult(R, std::to_string(Count)), "");
}

TEST(HostStopTest, SecondInterruptLeavesNoTemporaryFileAndEndsBothLogs) {
  TempDir Shm("/dev/shm"), D;  // a huge source that costs neither disk nor memory
  const std::string Big = (Shm.Path().empty() ? D.Path() : Shm.Path()) + "/huge.bin";
  std::ofstream(Big).close();
  std::filesystem::resize_file(Big, std::uintmax_t{64} << 30);
  std::filesystem::create_directory(D / "out");
  std::ofstream(D / "out/huge.bin") << "old";
  ZtResult R = RunZtAndSignal(
      D.Path(), "actions:\n  - action: Copy File(s)\n    FileSpec: " + Big + "\n    Target: out/huge.bin\n",
      "\"Copying File :", SIGINT, 2);
  EXPECT_EQ(R.ExitCode, 130);
  ASSERT_FALSE(R.Events.empty());
  EXPECT_EQ(R.Events.back()["event"], "build-end");
  EXPECT_EQ(R.Events.back()["result"], "stopped");
  EXPECT_NE(R.Stdout.find("Build stopped"), std::string::npos) << R.Stdout;
  std::vector<std::string> Left;
  for (const auto& E : std::filesystem::directory_iterator(D / "out")) Left.push_back(E.path().filename());
  EXPECT_EQ(Left, std::vector<std::string>{"huge.bin"});
  std::ifstream Old(D / "out/huge.bin");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(Old), {}), "old");
}

}  // namespace
}  // namespace zt::testing
