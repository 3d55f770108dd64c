// "Move File(s)": its own walk, with its deliberate quirks kept.
#include "CopyMoveTest.h"
#include "platform/env.h"

namespace zt::testing {
namespace {

using package::TMoveFilesAction;

class MoveFilesTest : public ActionTest<TMoveFilesAction> {
 protected:
  MoveFilesTest() {
    fs::create_directory(Dir / "src");
    fs::create_directory(Dir / "out");
  }
  std::string Src(const std::string& Name) const { return Dir / ("src/" + Name); }
  std::string Out(const std::string& Name) const { return Dir / ("out/" + Name); }
  static std::string Header(const std::string& Spec, const std::string& Target) {
    return "Moving files : " + Spec + " -> " + Target;
  }
  static std::string Error(const std::string& From, const std::string& To) {
    return " --> Error Moving File : " + From + " -> " + To;
  }
};

// ---- Moving ----

TEST_F(MoveFilesTest, MovesEveryMatchIntoTheTargetDirectory) {
  WriteText(Src("a.txt"), "alpha");
  WriteText(Src("b.txt"), "bravo");
  WriteText(Src("c.log"), "charlie");
  EXPECT_TRUE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{Header(Src("*.txt"), Dir / "out"), "2 Files Moved."}}));
  EXPECT_EQ(ReadText(Out("a.txt")), "alpha");
  EXPECT_EQ(ReadText(Out("b.txt")), "bravo");
  EXPECT_FALSE(Exists(Src("a.txt")));
  EXPECT_FALSE(Exists(Src("b.txt")));
  EXPECT_TRUE(Exists(Src("c.log")));
  EXPECT_EQ(A.GetFilesAffected(), 2);
  EXPECT_EQ(A.GetErrorCount(), 0);
  EXPECT_EQ(Host.Progress.size(), 2u);
  EXPECT_EQ(Host.Progress[0].second, 0);
  EXPECT_EQ(Host.Progress[0].first.rfind("Moving File : " + Dir.Path() + "/src/", 0), 0u);
}

TEST_F(MoveFilesTest, HiddenFilesMoveButDirectoriesAndSystemFilesDoNot) {
  WriteText(Src(".hidden"), "h");
  WriteText(Src("system"), "s");
  ASSERT_TRUE(pf::SetFileAttributesA(Src("system"), pf::FILE_ATTRIBUTE_SYSTEM));
  fs::create_directory(Src("folder"));
  EXPECT_TRUE(Run(Src("*"), Dir / "out/"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*"), Dir / "out/"), "1 Files Moved."}));
  EXPECT_EQ(ReadText(Out(".hidden")), "h");
  EXPECT_TRUE(Exists(Src("system")));
  EXPECT_TRUE(fs::is_directory(Src("folder")));
}

TEST_F(MoveFilesTest, WithoutTargetDirOnlyTheFirstMatchMoves) {
  for (auto* N : {"a.txt", "b.txt", "c.txt"}) WriteText(Src(N), N);
  const Lines Order = FoundNames(Src("*.txt"), pf::faReadOnly | pf::faHidden);
  A.SetFileSpec(Src("*.txt"));
  A.SetTargetIsDir(false);
  A.SetTarget(Out("one.txt"));
  EXPECT_TRUE(A.Execute());
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Out("one.txt")), "1 Files Moved."}));
  EXPECT_EQ(ReadText(Out("one.txt")), Order[0]);
  EXPECT_FALSE(Exists(Src(Order[0])));
  EXPECT_TRUE(Exists(Src(Order[1])));
  EXPECT_TRUE(Exists(Src(Order[2])));
  EXPECT_TRUE(Host.Progress.empty());  // a plain rename reports no progress
}

TEST_F(MoveFilesTest, ForceCreatesTheTargetDirectoryOrTheTargetFilesDirectory) {
  WriteText(Src("a.txt"), "alpha");
  WriteText(Src("b.txt"), "bravo");
  A.SetForce(true);
  EXPECT_TRUE(Run(Src("a.txt"), Dir / "made/here/a2.txt"));
  EXPECT_EQ(ReadText(Dir / "made/here/a2.txt"), "alpha");
  A.SetTargetIsDir(true);
  EXPECT_TRUE(Run(Src("b.txt"), Dir / "dir/made"));
  EXPECT_EQ(ReadText(Dir / "dir/made/b.txt"), "bravo");
}

TEST_F(MoveFilesTest, ClearAttributesMakesTheMovedFileNormal) {
  WriteText(Src("a.txt"), "alpha");
  ASSERT_TRUE(pf::SetFileAttributesA(Src("a.txt"), pf::FILE_ATTRIBUTE_READONLY | pf::FILE_ATTRIBUTE_ARCHIVE));
  A.SetClearAttributes(true);
  EXPECT_TRUE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Attributes(Out("a.txt")), pf::FILE_ATTRIBUTE_NORMAL);
}

TEST_F(MoveFilesTest, PathsWithSpacesAndNonAsciiNamesMoveAsWritten) {
  fs::create_directories(Dir / "my src");
  WriteText(Dir / "my src/résumé ✓.txt", "cv");
  const std::string Spec = Dir / "my src/*.txt", Target = Dir / "my out";
  EXPECT_TRUE(Run(Spec, Target));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Spec, Target), Error(Dir / "my src/résumé ✓.txt", Target + "/résumé ✓.txt"),
                                      " --> The system cannot find the path specified", "0 Files Moved."}));
  Host.StatusEntries.clear();
  A.SetForce(true);
  EXPECT_TRUE(Run(Spec, Target));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Spec, Target), "1 Files Moved."}));
  EXPECT_EQ(ReadText(Target + "/résumé ✓.txt"), "cv");
  EXPECT_FALSE(Exists(Dir / "my src/résumé ✓.txt"));
}

// ---- Empty input and expansion ----

TEST_F(MoveFilesTest, EmptySpecOrTargetIsASilentSuccess) {
  WriteText(Src("a.txt"), "alpha");
  A.SetFailIfZeroFiles(true);
  EXPECT_TRUE(Run("   ", Dir / "out"));
  EXPECT_TRUE(Run(Src("a.txt"), ""));
  Host.Variables["EMPTY"] = "";
  EXPECT_TRUE(Run(Src("a.txt"), "%EMPTY% "));
  EXPECT_TRUE(Host.StatusEntries.empty());
  EXPECT_TRUE(Host.Messages.empty());
  EXPECT_TRUE(Exists(Src("a.txt")));
}

TEST_F(MoveFilesTest, ExpansionFailureIsLoggedAsUnableToMove) {
  EXPECT_FALSE(Run("%NOPE%/*.txt", Dir / "out"));
  EXPECT_EQ(Host.StatusEntries,
            (std::vector<Lines>{{" --> Unable to Move files : ", " --> Variable \"NOPE\" is not defined"}}));
  Host.StatusEntries.clear();
  EXPECT_FALSE(Run(Src("*.txt"), "%MISSING%"));
  EXPECT_EQ(Host.AllDetails(),
            (Lines{" --> Unable to Move files : " + Src("*.txt"), " --> Variable \"MISSING\" is not defined"}));
}

TEST_F(MoveFilesTest, NoMatchSucceedsWithZeroUnlessFailIfZeroFiles) {
  EXPECT_TRUE(Run(Src("*.none"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.none"), Dir / "out"), "0 Files Moved."}));
  Host.StatusEntries.clear();
  A.SetFailIfZeroFiles(true);
  EXPECT_FALSE(Run(Dir / "no dir/*.txt", Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Dir / "no dir/*.txt", Dir / "out"), "0 Files Moved."}));
}

// ---- Existing targets ----

TEST_F(MoveFilesTest, ExistingTargetIsReplaced) {
  WriteText(Src("a.txt"), "new");
  WriteText(Out("a.txt"), "old");
  EXPECT_TRUE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Dir / "out"), "1 Files Moved."}));
  EXPECT_EQ(ReadText(Out("a.txt")), "new");
  EXPECT_FALSE(Exists(Src("a.txt")));
}

TEST_F(MoveFilesTest, FailIfExistsStopsTheRunEvenWithoutStopOnAnyErrors) {
  for (auto* N : {"a.txt", "b.txt", "c.txt"}) WriteText(Src(N), N);
  const Lines Order = FoundNames(Src("*.txt"), pf::faReadOnly | pf::faHidden);
  WriteText(Out(Order[1]), "taken");
  A.SetFailIfExists(true);
  A.SetFailIfZeroFiles(true);
  EXPECT_FALSE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(),
            (Lines{Header(Src("*.txt"), Dir / "out"), Error(Src(Order[1]), Out(Order[1])),
                   " --> The target File exists and \"Fail if Exists\" is checked", "1 Files Moved."}));
  EXPECT_EQ(ReadText(Out(Order[1])), "taken");
  EXPECT_TRUE(Exists(Src(Order[1])));
  EXPECT_TRUE(Exists(Src(Order[2])));
  EXPECT_EQ(A.GetErrorCount(), 0);
}

TEST_F(MoveFilesTest, ReadOnlyTargetStopsTheRunUnlessOverwriteReadOnly) {
  WriteText(Src("a.txt"), "new");
  WriteText(Out("a.txt"), "old");
  ASSERT_TRUE(pf::SetFileAttributesA(Out("a.txt"), pf::FILE_ATTRIBUTE_READONLY));
  EXPECT_FALSE(Run(Src("a.txt"), Out("a.txt")));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("a.txt"), Out("a.txt")), Error(Src("a.txt"), Out("a.txt")),
                                      " --> The target File is marked \"Read Only\"", "0 Files Moved."}));
  EXPECT_EQ(ReadText(Out("a.txt")), "old");

  Host.StatusEntries.clear();
  A.SetOverwriteReadOnly(true);
  EXPECT_TRUE(Run(Src("a.txt"), Out("a.txt")));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("a.txt"), Out("a.txt")), "1 Files Moved."}));
  EXPECT_EQ(ReadText(Out("a.txt")), "new");
}

TEST_F(MoveFilesTest, ReadOnlyMarkerStaysSetForTheRestOfTheRun) {
  // Both files are moved onto themselves, so neither target is deleted; the
  // first is read-only, and from then on every existing target is made
  // normal, which strips the second file's archive bit.
  WriteText(Src("a.txt"), "a");
  WriteText(Src("b.txt"), "b");
  const Lines Order = FoundNames(Src("*.txt"), pf::faReadOnly | pf::faHidden);
  ASSERT_TRUE(pf::SetFileAttributesA(Src(Order[0]), pf::FILE_ATTRIBUTE_READONLY));
  ASSERT_TRUE(pf::SetFileAttributesA(Src(Order[1]), pf::FILE_ATTRIBUTE_ARCHIVE));
  A.SetOverwriteReadOnly(true);
  EXPECT_TRUE(Run(Src("*.txt"), Dir / "src"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Dir / "src"), "2 Files Moved."}));
  EXPECT_EQ(Attributes(Src(Order[0])), pf::FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(Attributes(Src(Order[1])), pf::FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(ReadText(Src("a.txt")), "a");
  EXPECT_EQ(ReadText(Src("b.txt")), "b");
}

TEST_F(MoveFilesTest, MovingAFileOntoItselfKeepsIt) {
  WriteText(Src("a.txt"), "alpha");
  EXPECT_TRUE(Run(Src("a.txt"), Src("a.txt")));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("a.txt"), Src("a.txt")), "1 Files Moved."}));
  EXPECT_EQ(ReadText(Src("a.txt")), "alpha");
}

TEST_F(MoveFilesTest, AnotherSpellingOfTheSourceIsNeverDeletedAsTheTarget) {
  WriteText(Src("a.txt"), "alpha");
  const std::string Alias = Dir / "src/./a.txt";
  EXPECT_TRUE(Run(Src("a.txt"), Alias));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("a.txt"), Alias), Error(Src("a.txt"), Alias),
                                      " --> Cannot create a file when that file already exists", "0 Files Moved."}));
  EXPECT_EQ(ReadText(Src("a.txt")), "alpha");
  EXPECT_EQ(A.GetErrorCount(), 1);
}

// ---- Failures, ErrorCount and StopOnAnyErrors ----

TEST_F(MoveFilesTest, FailedMovesAreCountedAndTheRunGoesOn) {
  WriteText(Src("a.txt"), "a");
  WriteText(Src("b.txt"), "b");
  const Lines Order = FoundNames(Src("*.txt"), pf::faReadOnly | pf::faHidden);
  const std::string Target = Dir / "missing";
  EXPECT_TRUE(Run(Src("*.txt"), Target));
  Lines Expected{Header(Src("*.txt"), Target)};
  for (const auto& N : Order) {
    Expected.push_back(Error(Src(N), Target + "/" + N));
    Expected.push_back(" --> The system cannot find the path specified");
  }
  Expected.push_back("0 Files Moved.");
  EXPECT_EQ(Host.AllDetails(), Expected);
  EXPECT_EQ(A.GetErrorCount(), 2);
  EXPECT_EQ(A.GetFilesAffected(), 0);
  EXPECT_TRUE(Exists(Src("a.txt")));

  A.SetFailIfZeroFiles(true);
  EXPECT_FALSE(Run(Src("*.txt"), Target));
}

TEST_F(MoveFilesTest, StopOnAnyErrorsEndsTheRunAtTheFirstFailedMove) {
  WriteText(Src("a.txt"), "a");
  WriteText(Src("b.txt"), "b");
  const Lines Order = FoundNames(Src("*.txt"), pf::faReadOnly | pf::faHidden);
  const std::string Target = Dir / "missing";
  A.SetStopOnAnyErrors(true);
  EXPECT_FALSE(Run(Src("*.txt"), Target));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Target), Error(Src(Order[0]), Target + "/" + Order[0]),
                                      " --> The system cannot find the path specified", "0 Files Moved."}));
  EXPECT_EQ(A.GetErrorCount(), 1);
}

// Makes chosen files vanish right after the search finds them, or refuses to
// delete them.
class MeddlingEnv : public pf::EnvWrapper {
 public:
  MeddlingEnv() : EnvWrapper(pf::Env::Platform()) {}
  std::string VanishAfterFind, RefuseDelete;
  int FindFirst(const std::string& Path, int Attr, pf::TSearchRec& F) override {
    int R = Target()->FindFirst(Path, Attr, F);
    if (!VanishAfterFind.empty()) Target()->DeleteFile(VanishAfterFind);
    return R;
  }
  bool SetFileAside(const std::string& Path, std::string& Aside) override {
    if (Path != RefuseDelete) return Target()->SetFileAside(Path, Aside);
    pf::SetLastError(pf::ERROR_ACCESS_DENIED);
    return false;
  }
};

TEST_F(MoveFilesTest, VanishedSourceStopsTheRunOnlyWithStopOnAnyErrors) {
  MeddlingEnv Env;
  pf::ScopedEnv Use(&Env);
  Env.VanishAfterFind = Src("a.txt");
  WriteText(Src("a.txt"), "a");
  A.SetStopOnAnyErrors(true);
  EXPECT_FALSE(Run(Src("a.txt"), Out("a.txt")));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("a.txt"), Out("a.txt")), Error(Src("a.txt"), Out("a.txt")),
                                      " --> Source File Does not exist", "0 Files Moved."}));
  EXPECT_EQ(A.GetErrorCount(), 0);

  Host.StatusEntries.clear();
  WriteText(Src("a.txt"), "a");
  A.SetStopOnAnyErrors(false);
  EXPECT_TRUE(Run(Src("a.txt"), Out("a.txt")));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("a.txt"), Out("a.txt")), Error(Src("a.txt"), Out("a.txt")),
                                      " --> The system cannot find the file specified", "0 Files Moved."}));
  EXPECT_EQ(A.GetErrorCount(), 1);
}

TEST_F(MoveFilesTest, TargetThatCannotBeDeletedStopsOnlyWithStopOnAnyErrors) {
  MeddlingEnv Env;
  pf::ScopedEnv Use(&Env);
  Env.RefuseDelete = Out("a.txt");
  WriteText(Src("a.txt"), "new");
  WriteText(Out("a.txt"), "old");
  A.SetStopOnAnyErrors(true);
  EXPECT_FALSE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Dir / "out"), Error(Src("a.txt"), Out("a.txt")),
                                      " --> Access is denied", "0 Files Moved."}));
  EXPECT_EQ(A.GetErrorCount(), 0);

  // Without the switch the move is tried and refused by the existing file.
  Host.StatusEntries.clear();
  A.SetStopOnAnyErrors(false);
  EXPECT_TRUE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Dir / "out"), Error(Src("a.txt"), Out("a.txt")),
                                      " --> Cannot create a file when that file already exists", "0 Files Moved."}));
  EXPECT_EQ(A.GetErrorCount(), 1);
  EXPECT_EQ(ReadText(Src("a.txt")), "new");
  EXPECT_EQ(ReadText(Out("a.txt")), "old");
}

// A disk that is full for every move.
class FullDiskEnv : public pf::EnvWrapper {
 public:
  FullDiskEnv() : EnvWrapper(pf::Env::Platform()) {}
  bool MoveFileWithProgressA(const std::string&, const std::string&, pf::LPPROGRESS_ROUTINE, void*,
                             pf::DWORD) override {
    pf::SetLastError(pf::ERROR_DISK_FULL);
    return false;
  }
};

TEST_F(MoveFilesTest, FailedMovePutsTheOldTargetBackWithItsAttributes) {
  FullDiskEnv Env;
  pf::ScopedEnv Use(&Env);
  WriteText(Src("a.txt"), "new");
  WriteText(Out("a.txt"), "old");
  ASSERT_TRUE(pf::SetFileAttributesA(Out("a.txt"), pf::FILE_ATTRIBUTE_READONLY | pf::FILE_ATTRIBUTE_ARCHIVE));
  A.SetOverwriteReadOnly(true);
  EXPECT_TRUE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Dir / "out"), Error(Src("a.txt"), Out("a.txt")),
                                      " --> There is not enough space on the disk", "0 Files Moved."}));
  EXPECT_EQ(ReadText(Out("a.txt")), "old");
  EXPECT_EQ(pf::GetFileAttributesA(Out("a.txt")), pf::FILE_ATTRIBUTE_READONLY | pf::FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(std::distance(fs::directory_iterator(Dir / "out"), {}), 1);  // nothing set aside is left
  EXPECT_EQ(ReadText(Src("a.txt")), "new");
}

TEST_F(MoveFilesTest, CountsAreResetByEachRun) {
  WriteText(Src("a.txt"), "a");
  EXPECT_TRUE(Run(Src("a.txt"), Dir / "missing/a.txt"));
  EXPECT_EQ(A.GetErrorCount(), 1);
  EXPECT_TRUE(Run(Src("a.txt"), Out("a.txt")));
  EXPECT_EQ(A.GetErrorCount(), 0);
  EXPECT_EQ(A.GetFilesAffected(), 1);
  EXPECT_TRUE(Run("", Out("a.txt")));
  EXPECT_EQ(A.GetFilesAffected(), 0);
}

}  // namespace
}  // namespace zt::testing
