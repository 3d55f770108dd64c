// "Copy File(s)": exact log lines, files on disk, counts and results.
#include <unistd.h>

#include "CopyMoveTest.h"

namespace zt::testing {
namespace {

using package::TCopyFilesAction;

class CopyFilesTest : public ActionTest<TCopyFilesAction> {
 protected:
  CopyFilesTest() {
    fs::create_directory(Dir / "src");
    fs::create_directory(Dir / "out");
  }
  std::string Src(const std::string& Name) const { return Dir / ("src/" + Name); }
  std::string Out(const std::string& Name) const { return Dir / ("out/" + Name); }
  std::string Header(const std::string& Spec, const std::string& Target) const {
    return "Copying files : " + Spec + " -> " + Target;
  }
  static std::string Failed(const std::string& From, const std::string& To) {
    return "Failed to copy File : " + From + " -> " + To;
  }
};

// ---- Selecting files ----

TEST_F(CopyFilesTest, WildcardCopiesEveryMatchWithOneProgressLinePerFile) {
  WriteText(Src("a.txt"), "alpha");
  WriteText(Src("b.txt"), "bravo");
  WriteText(Src("c.log"), "charlie");
  EXPECT_TRUE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Host.StatusEntries, (std::vector<Lines>{{Header(Src("*.txt"), Dir / "out"), "2 Files Copied."}}));
  EXPECT_EQ(ReadText(Out("a.txt")), "alpha");
  EXPECT_EQ(ReadText(Out("b.txt")), "bravo");
  EXPECT_FALSE(Exists(Out("c.log")));
  EXPECT_EQ(ReadText(Src("a.txt")), "alpha");
  EXPECT_EQ(A.GetFilesAffected(), 2);
  EXPECT_EQ(A.GetErrorCount(), 0);

  std::vector<std::pair<std::string, int>> Expected;
  for (const auto& N : FoundNames(Src("*.txt"), pf::faAnyFile)) {
    const std::string Text = "Copying File : " + Src(N) + " to : " + Out(N);
    Expected.emplace_back(Text, 0);
    Expected.emplace_back(Text, 100);
  }
  EXPECT_EQ(Host.Progress, Expected);
  EXPECT_TRUE(Host.Messages.empty());
}

TEST_F(CopyFilesTest, ExactNameCopiesToATargetFileName) {
  WriteText(Src("a.txt"), "alpha");
  WriteText(Src("b.txt"), "bravo");
  EXPECT_TRUE(Run(Src("a.txt"), Out("renamed.txt")));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("a.txt"), Out("renamed.txt")), "1 Files Copied."}));
  EXPECT_EQ(ReadText(Out("renamed.txt")), "alpha");
  EXPECT_EQ(fs::directory_iterator(Dir / "out")->path().filename(), "renamed.txt");
}

TEST_F(CopyFilesTest, WildcardWithoutTargetDirCopiesEveryMatchOntoTheOneTarget) {
  WriteText(Src("a.txt"), "alpha");
  WriteText(Src("b.txt"), "bravo");
  A.SetFileSpec(Src("*.txt"));
  A.SetTargetIsDir(false);
  A.SetTarget(Out("all.txt"));
  EXPECT_TRUE(A.Execute());
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Out("all.txt")), "2 Files Copied."}));
  EXPECT_EQ(ReadText(Out("all.txt")), FoundNames(Src("*.txt"), pf::faAnyFile).back() == "a.txt" ? "alpha" : "bravo");
}

TEST_F(CopyFilesTest, HiddenAndDotFilesMatchAWildcard) {
  WriteText(Src(".profile"), "dot");
  WriteText(Src("plain"), "plain");
  ASSERT_TRUE(pf::SetFileAttributesA(Src("plain"), pf::FILE_ATTRIBUTE_HIDDEN | pf::FILE_ATTRIBUTE_SYSTEM));
  EXPECT_TRUE(Run(Src("*"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*"), Dir / "out"), "2 Files Copied."}));
  EXPECT_EQ(ReadText(Out(".profile")), "dot");
  EXPECT_EQ(ReadText(Out("plain")), "plain");
}

TEST_F(CopyFilesTest, SpecNamingADirectoryCopiesNothing) {
  fs::create_directory(Src("sub"));
  WriteText(Src("sub/inner.txt"), "x");
  EXPECT_TRUE(Run(Src("sub"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("sub"), Dir / "out"), "0 Files Copied."}));
  EXPECT_TRUE(fs::is_empty(Dir / "out"));
}

TEST_F(CopyFilesTest, NoMatchOrMissingDirectorySucceedsWithZeroUnlessFailIfZeroFiles) {
  for (const std::string& Spec : {Src("*.none"), Dir / "no such dir/*.txt", Src("missing.txt")}) {
    Host.StatusEntries.clear();
    A.SetFailIfZeroFiles(false);
    EXPECT_TRUE(Run(Spec, Dir / "out")) << Spec;
    EXPECT_EQ(Host.AllDetails(), (Lines{Header(Spec, Dir / "out"), "0 Files Copied."}));
    Host.StatusEntries.clear();
    A.SetFailIfZeroFiles(true);
    EXPECT_FALSE(Run(Spec, Dir / "out")) << Spec;
    EXPECT_EQ(Host.AllDetails(), (Lines{Header(Spec, Dir / "out"), "0 Files Copied."}));
  }
}

// ---- Empty and expanded properties ----

TEST_F(CopyFilesTest, EmptySourceOrTargetFailsWithOneMessageAndNoEntry) {
  WriteText(Src("a.txt"), "alpha");
  EXPECT_FALSE(Run("  ", Dir / "out"));
  EXPECT_FALSE(Run(Src("a.txt"), "\t "));
  EXPECT_EQ(Host.Messages, (Lines{"Error: No source file specified.", "Error: No target file specified."}));
  EXPECT_TRUE(Host.StatusEntries.empty());
  EXPECT_TRUE(fs::is_empty(Dir / "out"));
}

TEST_F(CopyFilesTest, PropertiesAreExpandedAndTrimmed) {
  WriteText(Src("a.txt"), "alpha");
  Host.Variables["SRC"] = Dir / "src";
  Host.Variables["OUT"] = Dir / "out";
  EXPECT_TRUE(Run("  %SRC%/*.txt ", " %OUT%  "));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Dir / "out"), "1 Files Copied."}));
  EXPECT_EQ(A.GetFileSpec(), "  %SRC%/*.txt ");
}

TEST_F(CopyFilesTest, UndefinedVariablePassesToTheHostUnlogged) {
  EXPECT_THROW(Run("%NOPE%/*.txt", Dir / "out"), frame::EZTExpandError);
  EXPECT_TRUE(Host.StatusEntries.empty());
  EXPECT_TRUE(Host.Messages.empty());
}

TEST_F(CopyFilesTest, FilesAffectedIsResetByEachRun) {
  WriteText(Src("a.txt"), "alpha");
  EXPECT_TRUE(Run(Src("a.txt"), Dir / "out/a.txt"));
  EXPECT_EQ(A.GetFilesAffected(), 1);
  EXPECT_TRUE(Run(Src("none.txt"), Dir / "out"));
  EXPECT_EQ(A.GetFilesAffected(), 0);
}

// ---- Targets that exist ----

TEST_F(CopyFilesTest, ExistingTargetIsReplacedUnlessFailIfExists) {
  WriteText(Src("a.txt"), "new");
  WriteText(Out("a.txt"), "old");
  EXPECT_TRUE(Run(Src("a.txt"), Out("a.txt")));
  EXPECT_EQ(ReadText(Out("a.txt")), "new");

  Host.StatusEntries.clear();
  WriteText(Src("a.txt"), "newer");
  A.SetFailIfExists(true);
  EXPECT_FALSE(Run(Src("a.txt"), Out("a.txt")));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("a.txt"), Out("a.txt")), Failed(Src("a.txt"), Out("a.txt")),
                                      "File Already Exists!", "0 Files Copied."}));
  EXPECT_EQ(ReadText(Out("a.txt")), "new");
}

TEST_F(CopyFilesTest, ReadOnlyTargetIsRefusedUnlessOverwriteReadOnly) {
  WriteText(Src("a.txt"), "new");
  WriteText(Out("a.txt"), "old");
  ASSERT_TRUE(pf::SetFileAttributesA(Out("a.txt"), pf::FILE_ATTRIBUTE_READONLY));
  EXPECT_FALSE(Run(Src("a.txt"), Out("a.txt")));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("a.txt"), Out("a.txt")), Failed(Src("a.txt"), Out("a.txt")),
                                      "File Already Exists and is marked as Read Only", "0 Files Copied."}));
  EXPECT_EQ(ReadText(Out("a.txt")), "old");
  EXPECT_EQ(Attributes(Out("a.txt")), pf::FILE_ATTRIBUTE_READONLY);

  Host.StatusEntries.clear();
  A.SetOverwriteReadOnly(true);
  EXPECT_TRUE(Run(Src("a.txt"), Out("a.txt")));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("a.txt"), Out("a.txt")), "1 Files Copied."}));
  EXPECT_EQ(ReadText(Out("a.txt")), "new");
}

TEST_F(CopyFilesTest, OverwriteReadOnlyKeepsTheTargetsOtherBitsUnlessClearAttributes) {
  WriteText(Src("a.txt"), "new");
  A.SetOverwriteReadOnly(true);
  for (bool Clear : {false, true}) {
    WriteText(Out("a.txt"), "old");
    ASSERT_TRUE(pf::SetFileAttributesA(Out("a.txt"), pf::FILE_ATTRIBUTE_READONLY | pf::FILE_ATTRIBUTE_ARCHIVE));
    A.SetClearAttributes(Clear);
    EXPECT_TRUE(Run(Src("a.txt"), Out("a.txt"))) << Clear;
    EXPECT_EQ(ReadText(Out("a.txt")), "new");
    // A copy carries the archive bit; ClearAttributes leaves the file normal.
    EXPECT_EQ(Attributes(Out("a.txt")), Clear ? pf::FILE_ATTRIBUTE_NORMAL : pf::FILE_ATTRIBUTE_ARCHIVE) << Clear;
  }
}

TEST_F(CopyFilesTest, ClearAttributesMakesTheCopyNormalAndLeavesTheSource) {
  WriteText(Src("a.txt"), "alpha");
  ASSERT_TRUE(pf::SetFileAttributesA(Src("a.txt"), pf::FILE_ATTRIBUTE_READONLY | pf::FILE_ATTRIBUTE_ARCHIVE));
  EXPECT_TRUE(Run(Src("a.txt"), Out("kept.txt")));
  EXPECT_EQ(Attributes(Out("kept.txt")), pf::FILE_ATTRIBUTE_READONLY | pf::FILE_ATTRIBUTE_ARCHIVE);
  A.SetClearAttributes(true);
  EXPECT_TRUE(Run(Src("a.txt"), Out("cleared.txt")));
  EXPECT_EQ(Attributes(Out("cleared.txt")), pf::FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(Attributes(Src("a.txt")), pf::FILE_ATTRIBUTE_READONLY | pf::FILE_ATTRIBUTE_ARCHIVE);
}

TEST_F(CopyFilesTest, FirstFailingFileStopsTheCopyAndEarlierCopiesStay) {
  for (auto* N : {"a.dat", "b.dat", "c.dat"}) WriteText(Src(N), N);
  const Lines Order = FoundNames(Src("*.dat"), pf::faAnyFile);
  ASSERT_EQ(Order.size(), 3u);
  WriteText(Out(Order[1]), "taken");
  A.SetFailIfExists(true);
  EXPECT_FALSE(Run(Src("*.dat"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.dat"), Dir / "out"), Failed(Src(Order[1]), Out(Order[1])),
                                      "File Already Exists!", "1 Files Copied."}));
  EXPECT_EQ(ReadText(Out(Order[0])), Order[0]);
  EXPECT_EQ(ReadText(Out(Order[1])), "taken");
  EXPECT_FALSE(Exists(Out(Order[2])));
  EXPECT_EQ(A.GetFilesAffected(), 1);
}

TEST_F(CopyFilesTest, CopyOntoItselfFailsAndKeepsTheFile) {
  WriteText(Src("a.txt"), "alpha");
  EXPECT_FALSE(Run(Src("*.txt"), Dir / "src/"));
  EXPECT_EQ(Host.AllDetails(),
            (Lines{Header(Src("*.txt"), Dir / "src/"), Failed(Src("a.txt"), Src("a.txt")),
                   "Win32 Error : The process cannot access the file because it is being used by another process",
                   "0 Files Copied."}));
  EXPECT_EQ(ReadText(Src("a.txt")), "alpha");
}

// ---- Target directories ----

TEST_F(CopyFilesTest, MissingTargetDirectoryFailsWithTheSystemMessageUnlessForce) {
  WriteText(Src("a.txt"), "alpha");
  const std::string Target = Dir / "out/new/deeper";
  EXPECT_FALSE(Run(Src("*.txt"), Target));
  EXPECT_EQ(Host.AllDetails(),
            (Lines{Header(Src("*.txt"), Target), Failed(Src("a.txt"), Target + "/a.txt"),
                   "Win32 Error : The system cannot find the path specified", "0 Files Copied."}));
  EXPECT_TRUE(fs::is_empty(Dir / "out"));

  Host.StatusEntries.clear();
  A.SetForce(true);
  EXPECT_TRUE(Run(Src("*.txt"), Target + "/"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Target + "/"), "1 Files Copied."}));
  EXPECT_EQ(ReadText(Target + "/a.txt"), "alpha");
}

TEST_F(CopyFilesTest, RecurseRebuildsOnlyDirectoriesThatReceiveFiles) {
  fs::create_directories(Src("sub1/deep"));
  fs::create_directories(Src("empty"));
  fs::create_directories(Src("other"));
  WriteText(Src("top.txt"), "top");
  WriteText(Src("sub1/one.txt"), "one");
  WriteText(Src("sub1/deep/two.txt"), "two");
  WriteText(Src("other/skip.log"), "skip");
  A.SetRecurse(true);
  A.SetForce(true);
  EXPECT_TRUE(Run(Src("*.txt"), Dir / "copy"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Dir / "copy"), "3 Files Copied."}));
  EXPECT_EQ(ReadText(Dir / "copy/top.txt"), "top");
  EXPECT_EQ(ReadText(Dir / "copy/sub1/one.txt"), "one");
  EXPECT_EQ(ReadText(Dir / "copy/sub1/deep/two.txt"), "two");
  EXPECT_FALSE(Exists(Dir / "copy/empty"));
  EXPECT_FALSE(Exists(Dir / "copy/other"));
}

TEST_F(CopyFilesTest, RecurseWithoutForceFailsInsideMissingSubdirectoriesButSucceeds) {
  fs::create_directories(Src("sub"));
  WriteText(Src("top.txt"), "top");
  WriteText(Src("sub/one.txt"), "one");
  A.SetRecurse(true);
  EXPECT_TRUE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(),
            (Lines{Header(Src("*.txt"), Dir / "out"), Failed(Src("sub/one.txt"), Out("sub/one.txt")),
                   "Win32 Error : The system cannot find the path specified", "1 Files Copied."}));
  EXPECT_EQ(ReadText(Out("top.txt")), "top");
}

TEST_F(CopyFilesTest, FailingSubdirectoryDoesNotStopItsSiblings) {
  for (auto* D : {"s1", "s2", "s3"}) {
    fs::create_directories(Src(D));
    fs::create_directories(Out(D));
    WriteText(Src(std::string(D) + "/f.txt"), D);
  }
  WriteText(Out("s2/f.txt"), "taken");
  A.SetRecurse(true);
  A.SetFailIfExists(true);
  EXPECT_TRUE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Dir / "out"), Failed(Src("s2/f.txt"), Out("s2/f.txt")),
                                      "File Already Exists!", "2 Files Copied."}));
  EXPECT_EQ(ReadText(Out("s1/f.txt")), "s1");
  EXPECT_EQ(ReadText(Out("s2/f.txt")), "taken");
  EXPECT_EQ(ReadText(Out("s3/f.txt")), "s3");
}

TEST_F(CopyFilesTest, FailureAtTheTopLevelSkipsEverySubdirectory) {
  fs::create_directories(Src("sub"));
  WriteText(Src("top.txt"), "top");
  WriteText(Src("sub/one.txt"), "one");
  WriteText(Out("top.txt"), "taken");
  A.SetRecurse(true);
  A.SetForce(true);
  A.SetFailIfExists(true);
  EXPECT_FALSE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Dir / "out"), Failed(Src("top.txt"), Out("top.txt")),
                                      "File Already Exists!", "0 Files Copied."}));
  EXPECT_FALSE(Exists(Out("sub")));
}

// ---- Names ----

TEST_F(CopyFilesTest, PathsWithSpacesAndNonAsciiNamesAreCopiedAsWritten) {
  fs::create_directories(Dir / "my src/ünï cødé");
  WriteText(Dir / "my src/ünï cødé/naïve file ✓.txt", "utf-8");
  A.SetRecurse(true);
  A.SetForce(true);
  const std::string Target = Dir / "my out";
  EXPECT_TRUE(Run(Dir / "my src/*.txt", Target));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Dir / "my src/*.txt", Target), "1 Files Copied."}));
  EXPECT_EQ(ReadText(Target + "/ünï cødé/naïve file ✓.txt"), "utf-8");
  EXPECT_EQ(Host.Progress.back(), std::make_pair("Copying File : " + (Dir / "my src/ünï cødé/naïve file ✓.txt") +
                                                     " to : " + Target + "/ünï cødé/naïve file ✓.txt",
                                                 100));
}

// Changes the working directory for one test.
class InDirectory {
 public:
  explicit InDirectory(const std::string& Path) : Previous_(fs::current_path()) { fs::current_path(Path); }
  ~InDirectory() { fs::current_path(Previous_); }

 private:
  fs::path Previous_;
};

TEST_F(CopyFilesTest, SpecWithoutADirectoryMeansTheWorkingDirectory) {
  WriteText(Src("a.txt"), "alpha");
  fs::create_directory(Src("sub"));
  WriteText(Src("sub/b.txt"), "bravo");
  InDirectory Here(Dir / "src");
  A.SetRecurse(true);
  A.SetForce(true);
  EXPECT_TRUE(Run("*.txt", "../out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{"Copying files : *.txt -> ../out", "2 Files Copied."}));
  EXPECT_EQ(Host.Progress.front(), std::make_pair(std::string("Copying File : a.txt to : ../out/a.txt"), 0));
  EXPECT_EQ(ReadText(Out("a.txt")), "alpha");
  EXPECT_EQ(ReadText(Out("sub/b.txt")), "bravo");
}

// ---- Stopping ----

TEST_F(CopyFilesTest, HostStopBeforeAFileLogsStoppingAndTheCount) {
  WriteText(Src("a.txt"), "alpha");
  Host.Stop = true;
  EXPECT_FALSE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Dir / "out"), "Stopping...", "0 Files Copied."}));
  EXPECT_FALSE(Exists(Out("a.txt")));
}

TEST_F(CopyFilesTest, TerminateBeforeTheRunIsForgotten) {
  WriteText(Src("a.txt"), "alpha");
  A.TerminateAction();
  EXPECT_TRUE(Run(Src("*.txt"), Dir / "out"));
  EXPECT_EQ(Host.AllDetails(), (Lines{Header(Src("*.txt"), Dir / "out"), "1 Files Copied."}));
}

}  // namespace
}  // namespace zt::testing
