// Retries of the built-in robocopy against copies that fail for a while
// (another program holding the file), and a stop during the wait.
#include <gtest/gtest.h>

#include <chrono>

#include "platform/env.h"
#include "platform/tools/robocopy.h"
#include "support/Files.h"
#include "tests/support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::ReadText;
using zt::testing::TempDir;
using zt::testing::WriteText;

// Copies fail with a sharing violation the first Failures times.
class LockedForAWhile : public EnvWrapper {
 public:
  explicit LockedForAWhile(int Failures) : EnvWrapper(Env::Default()), Left_(Failures) {
    Env::SetDefault(this);
  }
  ~LockedForAWhile() override { Env::SetDefault(Target()); }
  bool CopyFileExA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                   void* Data, BOOL* Cancel, DWORD Flags) override {
    if (Left_ > 0 && Left_--) {
      SetLastError(ERROR_SHARING_VIOLATION);
      return false;
    }
    return EnvWrapper::CopyFileExA(Existing, New, Progress, Data, Cancel, Flags);
  }

 private:
  int Left_;
};

struct Recorded : IToolOutput {
  std::vector<std::string> Lines;
  int StopAfterLines = -1;
  void Line(const std::string& Text) override { Lines.push_back(Text); }
  bool StopRequested() override {
    return StopAfterLines >= 0 && static_cast<int>(Lines.size()) >= StopAfterLines;
  }
};

TEST(RobocopyRetries, ALockedFileIsGivenUpStoppedDuringTheWaitOrCopiedOnTheThirdTry) {
  TempDir Dir;
  const std::string Src = Dir / "a.txt";
  WriteText(Src, "data");
  {
    LockedForAWhile Env(2);
    Recorded Out;
    EXPECT_EQ(RunRobocopy({Dir.Path(), Dir / "out", "/R:1", "/W:0", "/NJH", "/NJS"}, Out), kRobocopyFailures);
    EXPECT_EQ(Out.Lines.back(), " --> Giving up on : " + Src);
  }
  {
    LockedForAWhile Env(1);
    Recorded Out;
    Out.StopAfterLines = 4;  // once the wait has begun
    const auto Start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunRobocopy({Dir.Path(), Dir / "out", "/R:5", "/W:30", "/NJH", "/NJS"}, Out), kRobocopyFatal);
    EXPECT_LT(std::chrono::steady_clock::now() - Start, std::chrono::seconds(5));
    EXPECT_EQ(Out.Lines.back(), "Stopped by the user.");
    EXPECT_FALSE(zt::testing::Exists(Dir / "out/a.txt"));
  }
  LockedForAWhile Env(2);
  Recorded Out;
  EXPECT_EQ(RunRobocopy({Dir.Path(), Dir / "out", "/R:3", "/W:0", "/NJH", "/NJS"}, Out), kRobocopyCopied);
  EXPECT_EQ(Out.Lines,
            (std::vector<std::string>{
                "New File : a.txt (4 bytes)",
                " --> Error Copying File : " + Src,
                " --> The process cannot access the file because it is being used by another process",
                " --> Waiting 0 seconds before retry 1 of 3",
                " --> Error Copying File : " + Src,
                " --> The process cannot access the file because it is being used by another process",
                " --> Waiting 0 seconds before retry 2 of 3",
            }));
  EXPECT_EQ(ReadText(Dir / "out/a.txt"), "data");
}

}  // namespace
}  // namespace zt::platform
