// The package's actions where zt cannot place a test: disks that fail where
// only the layer's replaceable Env can make them fail, stops from another
// thread in mid-file or mid-walk, progress within a file, and the entry
// points before the host set its services. (The rest is checked through zt.)
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <functional>
#include <numeric>
#include <thread>

#include "Ztplaceholders.h"
#include "files/Ztconcatfiles.h"
#include "files/Ztcopymove.h"
#include "files/Ztdirectoryactions.h"
#include "files/Ztfileattrib.h"
#include "files/Zttouchfile.h"
#include "frame/ZTServices.h"
#include "iterators/Ztfolderiteratoraction.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "support/FakeHost.h"
#include "support/Files.h"
#include "support/TempDir.h"
#include "text/Ztcreatetextfileaction.h"
#include "text/Ztwritetotextfileaction.h"

namespace zt::package {
namespace {
ZT_PLACEHOLDER(TStandIn, "Stand-in")
}  // namespace
}  // namespace zt::package

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
namespace pf = zt::platform;
using Lines = std::vector<std::string>;

// The faults a test asks for; every other call goes to the real layer.
class FaultEnv : public pf::EnvWrapper {
 public:
  FaultEnv() : EnvWrapper(pf::Env::Platform()) {}
  pf::DWORD ChunkError = 0;             // every copy chunk fails with it
  bool DiskFull = false;                // whole-file writes and moves fail
  std::string Refused;                  // attributes and opening: access denied
  bool OtherVolume = false;             // directories never rename, as across file systems
  std::string Undeletable;              // a file name that cannot be deleted
  std::string VanishAfterFind;          // deleted once a search has found it
  std::string RefuseSetAside;           // an old target that cannot be set aside
  std::string RefuseMoveFrom;           // a path that cannot be moved: access denied
  std::int64_t ChunkBytes = INT64_MAX;  // the most one copy chunk copies
  std::function<void(int)> OnChunk;     // with the chunk's number, before it is copied
  std::function<void()> AfterCopy;      // after each whole-file copy
  int Chunks = 0;

  pf::DWORD CopyChunk(pf::THandle From, pf::THandle To, std::int64_t Max, std::int64_t& Copied) override {
    if (OnChunk) OnChunk(++Chunks);
    if (ChunkError != 0) return Copied = 0, ChunkError;
    return Target()->CopyChunk(From, To, std::min(Max, ChunkBytes), Copied);
  }
  bool CopyFileExA(const std::string& From, const std::string& To, pf::LPPROGRESS_ROUTINE Progress,
                   void* Data, pf::BOOL* Cancel, pf::DWORD Flags) override {
    const bool Ok = Target()->CopyFileExA(From, To, Progress, Data, Cancel, Flags);
    if (AfterCopy) AfterCopy();
    return Ok;
  }
  int FindFirst(const std::string& Path, int Attr, pf::TSearchRec& F) override {
    const int R = Target()->FindFirst(Path, Attr, F);
    if (!VanishAfterFind.empty()) Target()->DeleteFile(VanishAfterFind);
    return R;
  }
  bool SetFileAside(const std::string& Path, std::string& Aside) override {
    if (Path == RefuseSetAside) return pf::SetLastError(pf::ERROR_ACCESS_DENIED), false;
    return Target()->SetFileAside(Path, Aside);
  }
  bool WriteFileAtomically(const std::string& Path, const std::string& Contents) override {
    if (DiskFull) return pf::SetLastError(pf::ERROR_DISK_FULL), false;
    return Target()->WriteFileAtomically(Path, Contents);
  }
  bool SetFileAttributesA(const std::string& Path, pf::DWORD Attributes) override {
    if (Path == Refused) return pf::SetLastError(pf::ERROR_ACCESS_DENIED), false;
    return Target()->SetFileAttributesA(Path, Attributes);
  }
  pf::THandle FileOpen(const std::string& Path, int Mode) override {
    if (Path == Refused) return pf::SetLastError(pf::ERROR_ACCESS_DENIED), pf::INVALID_HANDLE_VALUE;
    return Target()->FileOpen(Path, Mode);
  }
  bool MoveFileWithProgressA(const std::string& Existing, const std::string& New,
                             pf::LPPROGRESS_ROUTINE Progress, void* Data, pf::DWORD Flags) override {
    if (OtherVolume && fs::is_directory(Existing)) return pf::SetLastError(pf::ERROR_NOT_SAME_DEVICE), false;
    if (DiskFull) return pf::SetLastError(pf::ERROR_DISK_FULL), false;
    if (Existing == RefuseMoveFrom) return pf::SetLastError(pf::ERROR_ACCESS_DENIED), false;
    return Target()->MoveFileWithProgressA(Existing, New, Progress, Data, Flags);
  }
  bool DeleteFile(const std::string& Path) override {
    if (!Undeletable.empty() && Path.ends_with(Undeletable))
      return pf::SetLastError(pf::ERROR_SHARING_VIOLATION), false;
    return Target()->DeleteFile(Path);
  }
};

// An action of type A on the in-memory host, a fresh folder and the faults.
template <class A>
struct Faulty {
  TempDir Dir;
  FakeHost Host;
  FaultEnv Env;
  A Action;
  Faulty() { Action.SetHost(&Host); }
  // Copies or moves Spec to To, both in the folder.
  bool operator()(const std::string& Spec, const std::string& To) {
    Action.SetFileSpec(Dir / Spec);
    Action.SetTarget(Dir / To);
    return Action.Execute();
  }
};

TEST(ActionFaults, ConcatOnAFullDiskBlamesTheTargetAnyOtherFailureTheSource) {
  for (const auto& [Error, Blamed] :
       {std::pair{pf::ERROR_DISK_FULL, std::string(" --> Error Writing File : ")},
        std::pair{pf::ERROR_NOT_READY, std::string(" --> Error Reading File : ")}}) {
    Faulty<package::TConcatAction> T;
    T.Dir.Write("part.txt", "part");
    const std::string Target = T.Dir.Write("all.txt", "old");
    T.Action.SetSourceFiles(T.Dir / "part.txt");
    T.Action.SetTargetFile(Target);
    T.Env.ChunkError = Error;
    pf::ScopedEnv Use(&T.Env);
    EXPECT_FALSE(T.Action.Execute());
    EXPECT_EQ(T.Host.AllDetails(),
              (Lines{"Concatenating files : " + Target, "Adding : " + T.Dir / "part.txt",
                     Blamed + (Error == pf::ERROR_DISK_FULL ? Target : T.Dir / "part.txt"),
                     " --> " + pf::SysErrorMessage(Error), "0 Files Concatenated."}));
    EXPECT_EQ(Tree(T.Dir.Path()), (Lines{"all.txt=old", "part.txt=part"}));
  }
}

TEST(ActionFaults, MoveDirectoryWhoseSourceCannotBeDeletedAfterTheCopyLeavesBothTrees) {
  Faulty<package::TZTMoveDirectoryAction> T;
  const TempDir& D = T.Dir;
  MakeTree(D.Path(), {"src/sub/locked.txt=locked"});
  T.Action.SetFileOrDirectory(D / "src/sub");
  T.Action.SetTarget(D / "dst");
  T.Env.OtherVolume = true;
  T.Env.Undeletable = "locked.txt";
  pf::ScopedEnv Use(&T.Env);
  EXPECT_FALSE(T.Action.Execute());
  EXPECT_EQ(T.Host.AllDetails(),
            (Lines{"Moving directory : " + D / "src/sub" + " -> " + D / "dst",
                   "Moving across volumes : copying and deleting",
                   " --> Error Moving Directory : " + D / "src/sub" + " -> " + D / "dst",
                   " --> Error Deleting File : " + D / "src/sub/locked.txt",
                   " --> The process cannot access the file because it is being used by another process"}));
  EXPECT_EQ(Tree(D.Path()), (Lines{"dst/locked.txt=locked", "src/sub/locked.txt=locked"}));
}

TEST(ActionFaults, MoveDirectoryThatFailsPutsTheDirectoryItReplacesBack) {
  Faulty<package::TZTMoveDirectoryAction> T;
  const TempDir& D = T.Dir;
  MakeTree(D.Path(), {"src/new.txt=new", "dst/old.txt=old"});
  T.Action.SetFileOrDirectory(D / "src");
  T.Action.SetTarget(D / "dst");
  T.Action.SetReplaceExisting(true);
  T.Env.RefuseMoveFrom = D / "src";
  pf::ScopedEnv Use(&T.Env);
  EXPECT_FALSE(T.Action.Execute());
  EXPECT_EQ(T.Host.AllDetails(), (Lines{"Moving directory : " + D / "src" + " -> " + D / "dst",
                                        "Replacing existing directory : " + D / "dst",
                                        " --> Error Moving Directory : " + D / "src" + " -> " + D / "dst",
                                        " --> Access is denied"}));
  EXPECT_EQ(Tree(D.Path()), (Lines{"dst/old.txt=old", "src/new.txt=new"}));
}

TEST(ActionFaults, SetFileAttributesStopsAtTheFirstFileItCannotChange) {
  Faulty<package::TSetFileAttributesAction> T;
  MakeTree(T.Dir.Path(), {"a.txt", "b.txt", "c.txt"});
  Lines Order;  // the order the search gives (tests must not assume another)
  pf::TSearchRec F;
  for (int R = pf::FindFirst(T.Dir / "*.txt", pf::faAnyFile, F); R == 0; R = pf::FindNext(F))
    Order.push_back(F.Name);
  pf::FindClose(F);
  T.Env.Refused = T.Dir / Order[1];
  pf::ScopedEnv Use(&T.Env);
  T.Action.SetFileSpec(T.Dir / "*.txt");
  T.Action.SetReadOnly(package::asSet);
  T.Action.SetLogAllFiles(true);
  EXPECT_FALSE(T.Action.Execute());
  EXPECT_EQ(T.Host.AllDetails(), (Lines{"Processed File : " + (T.Dir / Order[0]),
                                        "Error processing File Spec : Error Processing File " +
                                            (T.Dir / Order[1]) + " : Access is denied"}));
  Lines Expected = {Order[0] + " [ro]", Order[1], Order[2]};
  std::sort(Expected.begin(), Expected.end());
  EXPECT_EQ(Tree(T.Dir.Path()), Expected);
}

TEST(ActionFaults, TouchStopsAtAFileItCannotOpenAndPutsItsReadOnlyBitBack) {
  for (const std::string File : {"locked.txt", "ro.txt [ro]"}) {
    Faulty<package::TTouchFilesAction> T;
    MakeTree(T.Dir.Path(), {File});
    const std::string Name = File.substr(0, File.find(' '));
    T.Env.Refused = T.Dir / Name;
    pf::ScopedEnv Use(&T.Env);
    T.Action.SetFileSpec(T.Dir / "*.txt");
    T.Action.SetTouchReadOnly(true);
    EXPECT_FALSE(T.Action.Execute());
    EXPECT_EQ(T.Host.StatusEntries,
              (std::vector<Lines>{{"Error touching File : " + (T.Dir / Name)}, {"Processed : 0 File(s)"}}));
    EXPECT_EQ(Tree(T.Dir.Path()), Lines{File});
  }
}

TEST(ActionFaults, TextFileOnAFullDiskKeepsTheOldContentWholeAndLeavesNoTemporaryFile) {
  Faulty<package::TZTWriteToTextFileAction> Prepend;
  const std::string Path = Prepend.Dir / "report.txt";
  WriteText(Path, "old content");
  Prepend.Action.SetFileName(Path);
  Prepend.Action.SetNewContent("new");
  Prepend.Action.SetWriteToPosition(package::toStart);
  package::TZTCreateTextFileAction Overwrite;
  Overwrite.SetHost(&Prepend.Host);
  Overwrite.SetNewFileName(Path);
  Overwrite.SetOverwriteExisting(true);
  Prepend.Env.ChunkError = pf::ERROR_DISK_FULL;
  Prepend.Env.DiskFull = true;
  pf::ScopedEnv Use(&Prepend.Env);

  EXPECT_FALSE(Prepend.Action.Execute());
  EXPECT_FALSE(Overwrite.Execute());
  EXPECT_EQ(Prepend.Host.Messages, (Lines{"Error writing to text file:",
                                          "Could not create temporary file when writing file. "
                                          "There is not enough space on the disk",
                                          "File creation failed: Cannot create file \"" + Path +
                                              "\". There is not enough space on the disk"}));
  EXPECT_EQ(Tree(Prepend.Dir.Path()), Lines{"report.txt=old content"});
}

// zt's stop arrives from another thread, which an end-to-end test cannot
// place inside the walk: the walk ends at the next folder it finds.
TEST(ActionFaults, StopDuringAFolderWalkEndsItWithTheStopMessage) {
  Faulty<package::TFolderIterator> T;
  MakeTree(T.Dir.Path(), {"a/b/"});
  T.Action.SetStartingFolder(T.Dir.Path());
  T.Action.SetRecurse(true);
  ASSERT_TRUE(T.Action.BeforeFirstIteration());
  EXPECT_EQ(T.Action.GetIterationCount(), 2);
  T.Host.Stop = true;
  try {
    T.Action.BeforeFirstIteration();
    FAIL() << "the walk went on after a stop";
  } catch (const frame::EIteratorException& E) {
    EXPECT_STREQ(E.what(), "Stopping folder search.");
  }
  EXPECT_EQ(T.Host.Messages.back(), "Searching for Folders...");
}

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
    Faulty<package::TCopyFilesAction> Copy;
    WriteText(Copy.Dir / "f.bin", std::string(C.Size, 'x'));
    Copy.Env.ChunkBytes = static_cast<std::int64_t>(C.Chunk);
    pf::ScopedEnv Use(&Copy.Env);
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
    int AtChunk;       // 0: before the copy starts
    std::string File;  // the one file in src/
    Lines Log;         // after the header line
  } Cases[] = {
      {false, 20, "big.bin", {"Terminating..."}},
      {true, 20, "big.bin", {"Terminating...", "0 Files Copied."}},
      {true, 0, "a.txt", {"Stopping...", "0 Files Copied."}},
  };
  // clang-format on
  for (const auto& C : Cases) {
    Faulty<package::TCopyFilesAction> Copy;
    WriteText(Copy.Dir / ("src/" + C.File), std::string(4 << 20, 'z'));
    WriteText(Copy.Dir / "out/keep", "");
    Copy.Env.ChunkBytes = 64 * 1024;
    Copy.Env.OnChunk = [&](int Chunk) {
      if (Chunk != C.AtChunk) return;
      std::thread([&] {
        if (C.HostStops) Copy.Host.Stop = true;
        Copy.Action.TerminateAction();
      }).join();
    };
    Copy.Host.Stop = C.HostStops && C.AtChunk == 0;
    pf::ScopedEnv Use(&Copy.Env);
    EXPECT_FALSE(Copy("src/*", "out"));
    Lines Expected = {"Copying files : " + (Copy.Dir / "src/*") + " -> " + (Copy.Dir / "out")};
    Expected.insert(Expected.end(), C.Log.begin(), C.Log.end());
    EXPECT_EQ(Copy.Host.AllDetails(), Expected);
    EXPECT_EQ(ListNames(Copy.Dir / "out"), Lines{"keep"});
    EXPECT_LT(Copy.Env.Chunks, 64);
  }
}

TEST(CopyStop, TerminateBetweenFilesKeepsTheFilesCopiedBefore) {
  Faulty<package::TCopyFilesAction> Copy;
  for (const char* N : {"a.txt", "b.txt", "c.txt"}) WriteText(Copy.Dir / ("src/" + std::string(N)), N);
  WriteText(Copy.Dir / "out/keep", "");
  int Copies = 0;  // once the first file's copy has returned, the next one never starts
  Copy.Env.AfterCopy = [&] {
    if (Copies++ == 0) std::thread([&] { Copy.Action.TerminateAction(); }).join();
  };
  pf::ScopedEnv Use(&Copy.Env);
  EXPECT_FALSE(Copy("src/*.txt", "out"));
  EXPECT_EQ(
      Copy.Host.AllDetails(),
      (Lines{"Copying files : " + (Copy.Dir / "src/*.txt") + " -> " + (Copy.Dir / "out"), "Stopping..."}));
  EXPECT_EQ(Copies, 1);
  EXPECT_EQ(ListNames(Copy.Dir / "out").size(), 2u);
  // A terminate before the next run is forgotten.
  EXPECT_TRUE(Copy("src/*.txt", "out"));
}

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
    Faulty<package::TMoveFilesAction> Move;
    MakeTree(Move.Dir.Path(),
             {"src/a.txt=new", C.Fault == "disk full" ? "out/a.txt=old [ro] [0x20]" : "out/a.txt=old"});
    if (C.Fault == "vanish") Move.Env.VanishAfterFind = Move.Dir / "src/a.txt";
    if (C.Fault == "set aside") Move.Env.RefuseSetAside = Move.Dir / "out/a.txt";
    Move.Env.DiskFull = C.Fault == "disk full";
    pf::ScopedEnv Use(&Move.Env);
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

TEST(Registration, RegisterBeforeServicesAreSetDoesNothing) {
  ZTSetServices(nullptr);
  ZTRegister(true);  // must neither crash nor throw
  EXPECT_EQ(ZTPackageApiVersion(), frame::ZT_HOST_API_VERSION);
}

TEST(Registration, ATypeNotAvailableYetFailsWithOneLine) {
  Faulty<package::TStandIn> T;
  EXPECT_FALSE(T.Action.Execute());
  EXPECT_EQ(T.Host.Messages, Lines{"Stand-in is not available yet"});
  EXPECT_FALSE(package::TStandIn::ClassType().IsAvailable());
}

}  // namespace
}  // namespace zt::testing
