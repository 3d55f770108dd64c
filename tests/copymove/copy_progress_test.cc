// Progress lines and stopping a copy from another thread, with the
// platform's copy slowed to small chunks through its replaceable Env.
#include <atomic>
#include <functional>
#include <thread>

#include "CopyMoveTest.h"
#include "platform/env.h"

namespace zt::testing {
namespace {

using package::TCopyFilesAction;

// Copies at most ChunkBytes per chunk and runs OnChunk (once per chunk,
// before the chunk is copied) so a test can act in mid-file.
class ChunkedEnv : public pf::EnvWrapper {
 public:
  explicit ChunkedEnv(std::int64_t ChunkBytes) : EnvWrapper(pf::Env::Platform()), ChunkBytes_(ChunkBytes) {}
  pf::DWORD CopyChunk(pf::THandle From, pf::THandle To, std::int64_t MaxBytes, std::int64_t& Copied) override {
    ++Chunks;
    if (OnChunk) OnChunk(Chunks);
    return Target()->CopyChunk(From, To, std::min(MaxBytes, ChunkBytes_), Copied);
  }
  std::function<void(int)> OnChunk;
  int Chunks = 0;

 private:
  std::int64_t ChunkBytes_;
};

// Runs Fn on a thread of its own and waits for it, as the host's stop
// request arrives from its watcher thread.
void OnAnotherThread(const std::function<void()>& Fn) { std::thread(Fn).join(); }

class CopyProgressTest : public ActionTest<TCopyFilesAction> {
 protected:
  CopyProgressTest() { fs::create_directory(Dir / "out"); }
  std::vector<int> Percents() const {
    std::vector<int> R;
    for (const auto& P : Host.Progress) R.push_back(P.second);
    return R;
  }
};

TEST_F(CopyProgressTest, PercentIsRoundedHalfToEvenAndSentOnlyWhenItChanges) {
  WriteText(Dir / "eight.bin", "12345678");
  ChunkedEnv Env(1);
  pf::ScopedEnv Use(&Env);
  EXPECT_TRUE(Run(Dir / "eight.bin", Dir / "out/eight.bin"));
  // 12.5 -> 12, 37.5 -> 38, 62.5 -> 62, 87.5 -> 88.
  EXPECT_EQ(Percents(), (std::vector<int>{0, 12, 25, 38, 50, 62, 75, 88, 100}));
  EXPECT_EQ(Host.Progress[4].first, "Copying File : " + (Dir / "eight.bin") + " to : " + (Dir / "out/eight.bin"));
}

TEST_F(CopyProgressTest, RepeatedPercentIsNotSentAgain) {
  WriteText(Dir / "big.bin", std::string(1000, 'x'));
  ChunkedEnv Env(3);
  pf::ScopedEnv Use(&Env);
  EXPECT_TRUE(Run(Dir / "big.bin", Dir / "out/big.bin"));
  const std::vector<int> P = Percents();
  ASSERT_EQ(P.size(), 101u);  // 334 chunks, but every whole percent once
  for (int I = 0; I <= 100; ++I) EXPECT_EQ(P[I], I);
}

TEST_F(CopyProgressTest, EmptyFileSendsOnlyTheOpeningLine) {
  WriteText(Dir / "empty.bin", "");
  EXPECT_TRUE(Run(Dir / "empty.bin", Dir / "out/empty.bin"));
  EXPECT_EQ(Percents(), std::vector<int>{0});
  EXPECT_TRUE(Exists(Dir / "out/empty.bin"));
}

TEST_F(CopyProgressTest, ProgressCallbackOnItsOwnUsesTheCurrentFilesLine) {
  A.ProgressCallback(0, 0);      // no size: 0, the starting value
  A.ProgressCallback(3, 1);      // 33.3
  A.ProgressCallback(3, 1);      // unchanged
  A.ProgressCallback(200, 133);  // 66.5 -> 66
  A.ProgressCallback(200, 135);  // 67.5 -> 68
  EXPECT_EQ(Percents(), (std::vector<int>{33, 66, 68}));
}

// ---- Terminate from another thread ----

class CopyTerminateTest : public CopyProgressTest {
 protected:
  CopyTerminateTest() : Env(64 * 1024) {
    fs::create_directory(Dir / "src");
    WriteText(Dir / "src/big.bin", std::string(4 << 20, 'z'));
  }
  // Stops the copy in the middle of big.bin: the action alone, or the host
  // (which raises its stop flag, then terminates the running action).
  void StopInMidFile(bool HostStops) {
    Env.OnChunk = [this, HostStops](int Chunk) {
      if (Chunk != 20) return;
      OnAnotherThread([&] {
        if (HostStops) Host.Stop = true;
        A.TerminateAction();
      });
    };
  }
  void ExpectNoPartialFileIn(const std::string& Directory, const Lines& Expected) {
    Lines Names;
    for (const auto& E : fs::directory_iterator(Directory)) Names.push_back(E.path().filename().string());
    std::sort(Names.begin(), Names.end());
    EXPECT_EQ(Names, Expected);
  }

  ChunkedEnv Env;
};

TEST_F(CopyTerminateTest, TerminateInMidFileLeavesNoTargetAndNoCountLine) {
  StopInMidFile(/*HostStops=*/false);
  pf::ScopedEnv Use(&Env);
  EXPECT_FALSE(Run(Dir / "src/big.bin", Dir / "out/big.bin"));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Copying files : " + (Dir / "src/big.bin") + " -> " + (Dir / "out/big.bin"),
                                      "Terminating..."}));
  ExpectNoPartialFileIn(Dir / "out", {});
  EXPECT_EQ(A.GetFilesAffected(), 0);
  EXPECT_LT(Env.Chunks, 64);  // the copy stopped early
  EXPECT_EQ(ReadText(Dir / "src/big.bin").size(), 4u << 20);
}

TEST_F(CopyTerminateTest, HostStopInMidFileStillLogsTheCount) {
  StopInMidFile(/*HostStops=*/true);
  pf::ScopedEnv Use(&Env);
  EXPECT_FALSE(Run(Dir / "src/big.bin", Dir / "out/big.bin"));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Copying files : " + (Dir / "src/big.bin") + " -> " + (Dir / "out/big.bin"),
                                      "Terminating...", "0 Files Copied."}));
  ExpectNoPartialFileIn(Dir / "out", {});
}

TEST_F(CopyTerminateTest, FilesCopiedBeforeTheTerminateStayAndCount) {
  WriteText(Dir / "src/a.bin", "small");  // one chunk, stops nothing
  const Lines Order = FoundNames(Dir / "src/*.bin", pf::faAnyFile);
  ASSERT_EQ(Order.size(), 2u);
  StopInMidFile(/*HostStops=*/false);
  pf::ScopedEnv Use(&Env);
  EXPECT_FALSE(Run(Dir / "src/*.bin", Dir / "out"));
  const std::string Header = "Copying files : " + (Dir / "src/*.bin") + " -> " + (Dir / "out");
  if (Order[0] == "a.bin") {
    EXPECT_EQ(Host.AllDetails(), (Lines{Header, "Terminating..."}));
    ExpectNoPartialFileIn(Dir / "out", {"a.bin"});
    EXPECT_EQ(A.GetFilesAffected(), 1);
  } else {
    // big.bin comes first: the terminate stops it, and a.bin is never started.
    EXPECT_EQ(Host.AllDetails(), (Lines{Header, "Terminating..."}));
    ExpectNoPartialFileIn(Dir / "out", {});
    EXPECT_EQ(A.GetFilesAffected(), 0);
  }
}

// Terminates the action (from another thread) as soon as the first file's
// copy has returned, before the next file starts.
class TerminateAfterFirstCopyEnv : public pf::EnvWrapper {
 public:
  explicit TerminateAfterFirstCopyEnv(TCopyFilesAction& A) : EnvWrapper(pf::Env::Platform()), A_(A) {}
  bool CopyFileExA(const std::string& Existing, const std::string& New, pf::LPPROGRESS_ROUTINE Progress, void* Data,
                   pf::BOOL* Cancel, pf::DWORD CopyFlags) override {
    const bool Ok = Target()->CopyFileExA(Existing, New, Progress, Data, Cancel, CopyFlags);
    if (Copies++ == 0) OnAnotherThread([this] { A_.TerminateAction(); });
    return Ok;
  }
  int Copies = 0;

 private:
  TCopyFilesAction& A_;
};

TEST_F(CopyProgressTest, TerminateBetweenFilesLogsStoppingAndNoCountLine) {
  for (auto* N : {"a.txt", "b.txt", "c.txt"}) WriteText(Dir / N, N);
  TerminateAfterFirstCopyEnv Env(A);
  pf::ScopedEnv Use(&Env);
  EXPECT_FALSE(Run(Dir / "*.txt", Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Copying files : " + (Dir / "*.txt") + " -> " + (Dir / "out"), "Stopping..."}));
  EXPECT_EQ(Env.Copies, 1);
  EXPECT_EQ(A.GetFilesAffected(), 1);
  EXPECT_EQ(std::distance(fs::directory_iterator(Dir / "out"), fs::directory_iterator()), 1);
}

}  // namespace
}  // namespace zt::testing
