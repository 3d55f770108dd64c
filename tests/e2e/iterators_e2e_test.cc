// The five loop actions through zt: the lines each logs, the passes it
// makes and the values its variables take, and bad input (missing files,
// file sets and variables) ending in the logged failure, never a crash.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

// The values of the passes of loop Id, sorted (directory order is the file
// system's).
Lines SortedValues(const ZtResult& R, const std::string& Id) {
  Lines V;
  for (const std::string& P : Passes(R, Id)) V.push_back(P.substr(P.find('=') + 1));
  std::sort(V.begin(), V.end());
  return V;
}

// Folders are listed pre-order, never from the root of the file system.
TEST(FileIteratorE2E, FindsFilesDepthFirstAndFoldersPreOrderWithTheChosenNames) {
  TempDir D;
  MakeTree(D.Path(), {"src/a.txt", "src/b.log", "src/.h.txt", "src/\"q.txt\"", "src/sub/c.txt",
                      "src/dir.txt/", "root/a/x/", "root/.h/", "root/f.txt"});
  // Recurse and IncludeFilePath are coupled: the later write wins.
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: File Iterator, VariableName: F, FileSpec: src/*.txt, Recurse: true,
     actions: [{action: Check if File Exists, FileOrDirectory: "%F%"}]}
  - {action: File Iterator, FileSpec: src/*.txt*, IncludeFilePath: false}
  - {action: File Iterator, FileSpec: src/*.txt*, FindAnyFile: true}
  - {action: File Iterator, FileSpec: src/*.txt*, IncludeFilePath: false, Recurse: true}
  - {action: File Iterator, FileSpec: src/*.txt*, Recurse: true, IncludeFilePath: false}
  - {action: File Iterator, FileSpec: missing/*.txt, Recurse: true}
  - {action: File Iterator, FileSpec: "%NOPE%/*.txt", ignoreFailure: true}
  - {action: Folder Iterator, VariableName: DIR, StartingFolder: root, Recurse: true}
  - {action: Folder Iterator, StartingFolder: root/, IncludeHiddenSystem: true, IncludeFolderPath: false}
  - {action: Folder Iterator, StartingFolder: root/a/x}
  - {action: Folder Iterator, StartingFolder: "%NONE%", ignoreFailure: true}
  - {action: File Iterator, UseFileSet: true, FileSetName: Nope}
)",
                     {"--var", "NONE="});
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  EXPECT_EQ(Messages(R, "1"),
            (Lines{"Searching for Files...", "Found 2 Files.", "src/a.txt\r\nsrc/sub/c.txt\r\n"}));
  EXPECT_EQ(Passes(R, "1"), (Lines{"1/2=src/a.txt", "2/2=src/sub/c.txt"}));
  EXPECT_EQ(Messages(R, "1.1"),
            (Lines{"Found a match for the File Spec", "Found a match for the File Spec"}));
  EXPECT_EQ(FinalValue(R, "F"), "src/sub/c.txt");
  EXPECT_EQ(SortedValues(R, "2"), (Lines{"a.txt", "q.txt"}));  // one pair of quotes removed
  EXPECT_EQ(SortedValues(R, "3"), (Lines{"src/\"q.txt\"", "src/.h.txt", "src/a.txt"}));
  EXPECT_EQ(SortedValues(R, "4"), (Lines{"src/\"q.txt\"", "src/a.txt", "src/sub/c.txt"}));
  EXPECT_EQ(SortedValues(R, "5"), (Lines{"a.txt", "q.txt"}));
  EXPECT_EQ(Messages(R, "6"), (Lines{"Searching for Files...", "Found 0 Files.", ""}));
  EXPECT_EQ(ActionResult(R, "6"), "success");
  EXPECT_EQ(Messages(R, "7"), (Lines{"Error Setting File Spec : Variable \"NOPE\" is not defined"}));
  EXPECT_EQ(Messages(R, "8"),
            (Lines{"Searching for Folders...", "Found 2 Folders", "root/a\r\nroot/a/x\r\n"}));
  EXPECT_EQ(Passes(R, "8"), (Lines{"1/2=root/a", "2/2=root/a/x"}));
  EXPECT_EQ(FinalValue(R, "DIR"), "root/a/x");
  EXPECT_EQ(SortedValues(R, "9"), (Lines{".h", "a"}));
  EXPECT_EQ(Messages(R, "10"), (Lines{"Searching for Folders...", "Found 0 Folders", ""}));
  EXPECT_EQ(Messages(R, "11"), (Lines{"A starting folder has not been set"}));
  EXPECT_TRUE(Passes(R, "11").empty());
  EXPECT_EQ(Messages(R, "12"), (Lines{"Retrieving fileset...", "File set \"Nope\" not found."}));
  EXPECT_EQ(ActionResult(R, "12"), "failure");
}

TEST(FileIteratorE2E, FileSetRefreshedAfterEachPassDropsUnvisitedAndAppendsNewFiles) {
  TempDir D;
  MakeTree(D.Path(), {"src/a.cpp", "src/b.cpp", "src/c.cpp"});
  ZtResult R = RunZt(D.Path(), R"(filesets:
  Src: {base: src, include: ["*.cpp"]}
  Gone: {base: gone}
actions:
  - {action: File Iterator, UseFileSet: true, FileSetName: gone}
  - {action: File Iterator, VariableName: F, UseFileSet: true, FileSetName: Src, FileSetRefreshAfterEach: true,
     actions: [{action: Delete File(s), FileSpec: src/b.cpp, FailIfNoFile: false},
               {action: Copy File(s), FileSpec: src/a.cpp, Target: src/z.cpp}]}
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  // A set without its base directory is empty, and says why; names ignore letter case.
  EXPECT_EQ(Messages(R, "1"),
            (Lines{"Retrieving fileset...", "Refreshing fileset...",
                   "File set \"Gone\": the base directory " + (D / "gone") + " does not exist",
                   "File set \"Gone\": 0 files", "File Set contents (0 files) :", ""}));
  const std::string S = D / "src/", Refresh = "File set \"Src\": 3 files";
  EXPECT_EQ(
      Messages(R, "2"),
      (Lines{"Retrieving fileset...", "Refreshing fileset...", Refresh,
             "File Set contents (3 files) :", S + "a.cpp\r\n" + S + "b.cpp\r\n" + S + "c.cpp\r\n",
             // after pass 1: b.cpp deleted, z.cpp made
             "Refreshing fileset...", Refresh, "1 file(s) no longer appear in the fileset.",
             "1 new file(s) found in the fileset.", "Refreshing fileset...", Refresh, "Refreshing fileset...",
             Refresh, "Final file list which was iterated (after all intermediate updates):",
             S + "a.cpp\r\n" + S + "c.cpp\r\n" + S + "z.cpp\r\n", "(3 files.)"}));
  EXPECT_EQ(Passes(R, "2"), (Lines{"1/3=" + S + "a.cpp", "2/3=" + S + "c.cpp", "3/3=" + S + "z.cpp"}));
}

// A text file makes one pass per line, keeping blanks and quotes.
TEST(IniAndFileContentsIteratorE2E, SetSectionKeyOrLineVariablesOnEveryPass) {
  TempDir D;
  MakeTree(D.Path(), {"app.ini=[Build]\r\nVersion=1.2\r\nHost=a=b\r\n[Empty]\r\n[Deploy]\r\nx=1\r\n",
                      "seen.ini=", "lines.txt=one\r\n\r\n  three  \n\"q\""});
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Ini File Iterator, IniFilename: app.ini, SectionsVar: S,
     actions: [{action: Write Ini File, IniFile: ./seen.ini, Section: Sections, ValueName: "%S%", NewValue: "1"}]}
  - {action: Ini File Iterator, IniFilename: app.ini, IteratorMode: iiValues, SectionName: Build, NameVariable: N,
     ValueVariable: V,
     actions: [{action: Write Ini File, IniFile: ./seen.ini, Section: Keys, ValueName: "%N%", NewValue: "%V%"}]}
  - {action: Ini File Iterator, IniFilename: missing.ini, IteratorMode: iiValues, SectionName: Build, NameVariable: N}
  - {action: Ini File Iterator, IniFilename: app.ini, ignoreFailure: true}
  - {action: File Contents Iterator, ZTVariable: L, TextFileName: lines.txt}
  - {action: File Contents Iterator, TextFileName: missing.txt}
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), (Lines{"Searching for items...", "Found 3 Items"}));
  EXPECT_EQ(Passes(R, "1"), (Lines{"1/3", "2/3", "3/3"}));  // no loop variable
  EXPECT_EQ(ReadText(D / "seen.ini"),
            "[Sections]\r\nBuild=1\r\nEmpty=1\r\nDeploy=1\r\n[Keys]\r\nVersion=1.2\r\nHost=a=b\r\n");
  EXPECT_EQ(Messages(R, "3"), (Lines{"Searching for items...", "Found 0 Items"}));
  EXPECT_EQ(ActionResult(R, "3"), "success");
  EXPECT_EQ(Messages(R, "4"), (Lines{"Sections Variable not set"}));
  EXPECT_EQ(ActionResult(R, "4"), "ignored");
  EXPECT_EQ(Messages(R, "5"), (Lines{"Reading file...", "File contains 4 lines"}));
  EXPECT_EQ(Passes(R, "5"), (Lines{"1/4=one", "2/4=", "3/4=  three  ", "4/4=\"q\""}));
  EXPECT_EQ(FinalValue(R, "L"), "\"q\"");
  EXPECT_EQ(Messages(R, "6"), (Lines{"Reading file...", "File doesn't exist"}));
  EXPECT_EQ(ActionResult(R, "6"), "failure");
}

TEST(ListIteratorE2E, SplitsTheListAsItsSeparatorAndBlankRuleSay) {
  TempDir D;
  ZtResult R = RunZt(D.Path(), R"(variables: {V: p, SEP: "--"}
actions:
  - {action: List Iterator, ZTVariable: I, ListOfItems: [a, "", b]}
  - {action: List Iterator, ListOfItems: [a, "", b], SkipBlankLines: false}
  - {action: List Iterator, ListOfItems: "a,b,,c", ListSeparator: lsCharacter}
  - {action: List Iterator, ListOfItems: "a,b,,c", ListSeparator: lsCharacter, SkipBlankLines: false}
  - {action: List Iterator, ListOfItems: [x, y], ListSeparator: lsTab}
  - {action: List Iterator, ListOfItems: "%V%--%V%2", ListSeparator: lsCharacter, SeparatorChar: "%SEP%"}
  - {action: List Iterator, ListOfItems: []}
  - {action: List Iterator, ListOfItems: ["%NOPE%"]}
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), (Lines{"Setting items...", "Found 2 Items"}));
  EXPECT_EQ(FinalValue(R, "I"), "b");
  const Lines Expected[] = {{"1/2=a", "2/2=b"},
                            {"1/3=a", "2/3=", "3/3=b"},
                            {"1/3=a", "2/3=b", "3/3=c"},
                            {"1/4=a", "2/4=b", "3/4=", "4/4=c"},
                            {"1/1=x\r\ny"},
                            {"1/2=p", "2/2=p2"}};
  for (int I = 0; I < 6; ++I) EXPECT_EQ(Passes(R, std::to_string(I + 1)), Expected[I]) << I + 1;
  EXPECT_EQ(Messages(R, "7"), (Lines{"Setting items...", "Found 0 Items"}));
  EXPECT_EQ(ActionResult(R, "7"), "success");
  EXPECT_EQ(Messages(R, "8"),
            (Lines{"Setting items...", "Cannot expand Item List: variable \"NOPE\" is not defined",
                   "Error while searching for items : Failed to expand list of items."}));
  EXPECT_EQ(ActionResult(R, "8"), "failure");
}

}  // namespace
}  // namespace zt::testing
