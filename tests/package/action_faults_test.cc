// Actions on disks that fail where only the layer's replaceable Env can make
// them fail, and a stop in mid-walk: the log lines, and every file as it
// was. (Everything a real disk shows is checked through zt.)
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "files/Ztconcatfiles.h"
#include "files/Ztdirectoryactions.h"
#include "files/Ztfileattrib.h"
#include "files/Zttouchfile.h"
#include "iterators/Ztfolderiteratoraction.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "support/FakeHost.h"
#include "support/Files.h"
#include "support/TempDir.h"
#include "text/Ztcreatetextfileaction.h"
#include "text/Ztwritetotextfileaction.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
namespace pf = zt::platform;
using Lines = std::vector<std::string>;

// The faults a test asks for; every other call goes to the real layer.
class FaultEnv : public pf::EnvWrapper {
 public:
  FaultEnv() : EnvWrapper(pf::Env::Platform()) {}
  pf::DWORD ChunkError = 0;  // every copy chunk fails with it
  bool DiskFull = false;     // whole-file writes fail
  std::string Refused;       // attributes and opening: access denied
  bool OtherVolume = false;  // directories never rename, as across file systems
  std::string Undeletable;   // a file name that cannot be deleted

  pf::DWORD CopyChunk(pf::THandle From, pf::THandle To, std::int64_t Max, std::int64_t& Copied) override {
    if (ChunkError == 0) return Target()->CopyChunk(From, To, Max, Copied);
    Copied = 0;
    return ChunkError;
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

}  // namespace
}  // namespace zt::testing
