// "Copy File(s)" and "Move File(s)" where zt cannot place a test: progress
// in mid-file, a stop from another thread, and disks that fail, through the
// platform's replaceable Env. Everything else is checked through zt.
#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <thread>

#include "files/Ztcopymove.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "support/FakeHost.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace pf = zt::platform;
using Lines = std::vector<std::string>;

// Copies at most ChunkBytes per chunk and runs OnChunk (with the chunk's
// number, before it is copied) so a test can act in mid-file.
class ChunkedEnv : public pf::EnvWrapper {
 public:
  explicit ChunkedEnv(std::int64_t ChunkBytes) : EnvWrapper(pf::Env::Platform()), ChunkBytes_(ChunkBytes) {}
  pf::DWORD CopyChunk(pf::THandle From, pf::THandle To, std::int64_t MaxBytes,
                      std::int64_t& Copied) override {
    if (OnChunk) OnChunk(++Chunks);
    return Target()->CopyChunk(From, To, std::min(MaxBytes, ChunkBytes_), Copied);
  }
  std::function<void(int)> OnChunk;
  int Chunks = 0;

 private:
  std::int64_t ChunkBytes_;
};

// An action of type A on the in-memory host, with paths in a fresh folder.
template <class A>
struct ActionRun {
  TempDir Dir;
  FakeHost Host;
  A Action;
  ActionRun() { Action.SetHost(&Host); }
  bool operator()(const std::string& Spec, const std::string& Target) {
    Action.SetFileSpec(Dir / Spec);
    Action.SetTarget(Dir / Target);
    return Action.Execute();
  }
};

TEST(CopyProgress, PercentIsRoundedHalfToEvenAndSentOnlyWhenItChanges) {
  std::vector<int> EveryPercent(101);
  std::iota(EveryPercent.begin(), EveryPercent.end(), 0);
  // clang-format off
  const struct {
    std::size_t Size, Chunk;
    std::vector<int> Percents;
  } Cases[] = {
      {8, 1, {0, 12, 25, 38, 50, 62, 75, 88, 100}},  // 12.5 -> 12, 37.5 -> 38
      {1000, 3, EveryPercent},                       // 334 chunks
      {0, 1, {0}},
  };
  // clang-format on
  for (const auto& C : Cases) {
    ActionRun<package::TCopyFilesAction> Copy;
    WriteText(Copy.Dir / "f.bin", std::string(C.Size, 'x'));
    ChunkedEnv Env(static_cast<std::int64_t>(C.Chunk));
    pf::ScopedEnv Use(&Env);
    EXPECT_TRUE(Copy("f.bin", "copy.bin"));
    std::vector<int> Percents;
    for (const auto& [Text, Percent] : Copy.Host.Progress) Percents.push_back(Percent);
    EXPECT_EQ(Percents, C.Percents) << C.Size;
    EXPECT_EQ(Copy.Host.Progress.back().first,
              "Copying File : " + (Copy.Dir / "f.bin") + " to : " + (Copy.Dir / "copy.bin"));
  }
}

// A stop asked from another thread, as zt's stop watcher asks it: the action
// alone (its own cancel) or the host (the build's stop, then the action's).
TEST(CopyStop, NoFileIsLeftHalfCopiedAndTheCountLineSaysWhoStopped) {
  // clang-format off
  const struct {
    bool HostStops;
    int AtChunk;     // 0: before the copy starts
    Lines Files;     // in src/, copied in directory order
    Lines Log, Out;  // after the header line; what out/ holds
  } Cases[] = {
      {false, 20, {"big.bin"}, {"Terminating..."}, {}},
      {true, 20, {"big.bin"}, {"Terminating...", "0 Files Copied."}, {}},
      {true, 0, {"a.txt"}, {"Stopping...", "0 Files Copied."}, {}},
  };
  // clang-format on
  for (const auto& C : Cases) {
    ActionRun<package::TCopyFilesAction> Copy;
    for (const auto& F : C.Files) WriteText(Copy.Dir / ("src/" + F), std::string(4 << 20, 'z'));
    WriteText(Copy.Dir / "out/keep", "");
    ChunkedEnv Env(64 * 1024);
    Env.OnChunk = [&](int Chunk) {
      if (Chunk != C.AtChunk) return;
      std::thread([&] {
        if (C.HostStops) Copy.Host.Stop = true;
        Copy.Action.TerminateAction();
      }).join();
    };
    Copy.Host.Stop = C.HostStops && C.AtChunk == 0;
    pf::ScopedEnv Use(&Env);
    EXPECT_FALSE(Copy("src/*", "out"));
    Lines Expected = {"Copying files : " + (Copy.Dir / "src/*") + " -> " + (Copy.Dir / "out")};
    Expected.insert(Expected.end(), C.Log.begin(), C.Log.end());
    EXPECT_EQ(Copy.Host.AllDetails(), Expected);
    EXPECT_EQ(ListNames(Copy.Dir / "out"), Lines{"keep"});
    EXPECT_LT(Env.Chunks, 64);
  }
}

// Terminates the action from another thread once the first file's copy has
// returned: the next file never starts.
class TerminateAfterFirstCopy : public pf::EnvWrapper {
 public:
  explicit TerminateAfterFirstCopy(package::TCopyFilesAction& A) : EnvWrapper(pf::Env::Platform()), A_(A) {}
  bool CopyFileExA(const std::string& From, const std::string& To, pf::LPPROGRESS_ROUTINE Progress,
                   void* Data, pf::BOOL* Cancel, pf::DWORD Flags) override {
    const bool Ok = Target()->CopyFileExA(From, To, Progress, Data, Cancel, Flags);
    if (Copies++ == 0) std::thread([this] { A_.TerminateAction(); }).join();
    return Ok;
  }
  int Copies = 0;

 private:
  package::TCopyFilesAction& A_;
};

TEST(CopyStop, TerminateBetweenFilesKeepsTheFilesCopiedBefore) {
  ActionRun<package::TCopyFilesAction> Copy;
  for (const char* N : {"a.txt", "b.txt", "c.txt"}) WriteText(Copy.Dir / ("src/" + std::string(N)), N);
  WriteText(Copy.Dir / "out/keep", "");
  TerminateAfterFirstCopy Env(Copy.Action);
  pf::ScopedEnv Use(&Env);
  EXPECT_FALSE(Copy("src/*.txt", "out"));
  EXPECT_EQ(
      Copy.Host.AllDetails(),
      (Lines{"Copying files : " + (Copy.Dir / "src/*.txt") + " -> " + (Copy.Dir / "out"), "Stopping..."}));
  EXPECT_EQ(Env.Copies, 1);
  EXPECT_EQ(ListNames(Copy.Dir / "out").size(), 2u);
  // A terminate before the next run is forgotten.
  EXPECT_TRUE(Copy("src/*.txt", "out"));
}

// Disks that misbehave during a move: the source vanishes after the search
// found it, the old target cannot be set aside, the disk is full.
class MeddlingEnv : public pf::EnvWrapper {
 public:
  MeddlingEnv() : EnvWrapper(pf::Env::Platform()) {}
  std::string VanishAfterFind, RefuseSetAside;
  bool DiskFull = false;
  int FindFirst(const std::string& Path, int Attr, pf::TSearchRec& F) override {
    int R = Target()->FindFirst(Path, Attr, F);
    if (!VanishAfterFind.empty()) Target()->DeleteFile(VanishAfterFind);
    return R;
  }
  bool SetFileAside(const std::string& Path, std::string& Aside) override {
    if (Path != RefuseSetAside) return Target()->SetFileAside(Path, Aside);
    pf::SetLastError(pf::ERROR_ACCESS_DENIED);
    return false;
  }
  bool MoveFileWithProgressA(const std::string& From, const std::string& To, pf::LPPROGRESS_ROUTINE Progress,
                             void* Data, pf::DWORD Flags) override {
    if (!DiskFull) return Target()->MoveFileWithProgressA(From, To, Progress, Data, Flags);
    pf::SetLastError(pf::ERROR_DISK_FULL);
    return false;
  }
};

TEST(MoveFaults, AFailedMoveIsLoggedAndLeavesBothFilesAsTheyWere) {
  // clang-format off
  const struct {
    std::string Fault;
    bool StopOnAnyErrors, Result;
    std::string Why;
    Lines After;
  } Cases[] = {
      {"vanish", true, false, "Source File Does not exist", {"out/a.txt=old", "src/"}},
      {"vanish", false, true, "The system cannot find the file specified", {"out/a.txt=old", "src/"}},
      {"set aside", true, false, "Access is denied", {"out/a.txt=old", "src/a.txt=new"}},
      {"set aside", false, true, "Cannot create a file when that file already exists",
       {"out/a.txt=old", "src/a.txt=new"}},
      {"disk full", false, true, "There is not enough space on the disk",
       {"out/a.txt=old [ro] [0x20]", "src/a.txt=new"}},
  };
  // clang-format on
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Fault);
    ActionRun<package::TMoveFilesAction> Move;
    MakeTree(Move.Dir.Path(),
             {"src/a.txt=new", C.Fault == "disk full" ? "out/a.txt=old [ro] [0x20]" : "out/a.txt=old"});
    MeddlingEnv Env;
    if (C.Fault == "vanish") Env.VanishAfterFind = Move.Dir / "src/a.txt";
    if (C.Fault == "set aside") Env.RefuseSetAside = Move.Dir / "out/a.txt";
    Env.DiskFull = C.Fault == "disk full";
    pf::ScopedEnv Use(&Env);
    Move.Action.SetStopOnAnyErrors(C.StopOnAnyErrors);
    Move.Action.SetOverwriteReadOnly(true);
    EXPECT_EQ(Move("src/*.txt", "out"), C.Result);
    const std::string From = Move.Dir / "src/a.txt", To = Move.Dir / "out/a.txt";
    EXPECT_EQ(Move.Host.AllDetails(),
              (Lines{"Moving files : " + (Move.Dir / "src/*.txt") + " -> " + (Move.Dir / "out"),
                     " --> Error Moving File : " + From + " -> " + To, " --> " + C.Why, "0 Files Moved."}));
    EXPECT_EQ(Move.Action.GetErrorCount(), C.StopOnAnyErrors ? 0 : 1);
    EXPECT_EQ(Tree(Move.Dir.Path()), C.After);
  }
}

}  // namespace
}  // namespace zt::testing
