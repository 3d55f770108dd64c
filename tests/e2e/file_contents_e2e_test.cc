// "Concatenate Files", "Get File Size" and "File Compare" run through zt:
// the bytes written, the sizes and answers stored, and the log lines.
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;
using namespace std::string_literals;

const std::string kBom = "\xEF\xBB\xBF";

TEST(ConcatEndToEnd, JoinsPartsInNameOrderWithSeparatorsAndOneByteOrderMark) {
  TempDir Dir;
  fs::create_directory(Dir / "parts");
  Dir.Write("parts/b.txt", kBom + "b");
  Dir.Write("parts/a.txt", kBom + "a\0x"s);
  Dir.Write("parts/c.txt", "");
  Dir.Write("extra.bin", "e" + kBom + "mid");
  ZtResult R = RunZt(Dir.Path(), R"(name: Bundle
actions:
  - action: Concatenate Files
    SourceFiles: |
      parts/*.txt

      extra.bin
    TargetFile: out/dir/all.txt
    Separator: "\n"
    SkipByteOrderMarks: true
    Force: true
  - {action: Concatenate Files, SourceFiles: parts/a.txt, TargetFile: out/dir/all.txt, Separator: "|",
     SkipByteOrderMarks: true, AppendToTarget: true}
)");
  ASSERT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(StatusDetails(R, "1"),
            (Lines{"Concatenating files : out/dir/all.txt", "Adding : parts/a.txt", "Adding : parts/b.txt",
                   "Adding : parts/c.txt", "Adding : extra.bin", "4 Files Concatenated."}));
  EXPECT_EQ(Dir.Read("out/dir/all.txt"), kBom + "a\0x\nb\n\ne"s + kBom + "mid|a\0x"s);
  EXPECT_EQ(ListNames(Dir / "out/dir"), Lines{"all.txt"});
}

TEST(ConcatEndToEnd, FailuresWriteNothing) {
  struct Case {
    std::string Options;
    Lines Details;
  };
  const std::vector<Case> Cases = {
      {"SourceFiles: [a.txt, \"nope*.txt\", b.txt]\n    TargetFile: t.txt",
       {"Concatenating files : t.txt", " --> No file matches : nope*.txt", "0 Files Concatenated."}},
      {"SourceFiles: [\"*.txt\"]\n    TargetFile: t.txt",
       {"Concatenating files : t.txt", " --> The target file is also a source file : t.txt", "0 Files Concatenated."}},
      {"SourceFiles: [a.txt]\n    TargetFile: ro.txt",
       {"Concatenating files : ro.txt", " --> Error Writing File : ro.txt", " --> Access is denied",
        "0 Files Concatenated."}},
      {"SourceFiles: [a.txt]\n    TargetFile: no/dir/t.txt",
       {"Concatenating files : no/dir/t.txt", " --> Error Writing File : no/dir/t.txt",
        " --> The system cannot find the path specified", "0 Files Concatenated."}},
  };
  for (const Case& C : Cases) {
    TempDir Dir;
    Dir.Write("a.txt", "a");
    Dir.Write("b.txt", "b");
    Dir.Write("t.txt", "old");
    Dir.Write("ro.txt", "old");
    fs::permissions(Dir / "ro.txt", fs::perms::all & ~fs::perms::owner_write & ~fs::perms::group_write &
                                        ~fs::perms::others_write);
    ZtResult R = RunZt(Dir.Path(), "name: Bundle\nactions:\n  - action: Concatenate Files\n    " + C.Options + "\n");
    EXPECT_EQ(R.ExitCode, 1) << C.Options;
    EXPECT_EQ(StatusDetails(R, "1"), C.Details) << C.Options;
    EXPECT_EQ(Dir.Read("t.txt"), "old");
    EXPECT_EQ(ListNames(Dir.Path()), (Lines{"a.txt", "b.txt", "log.jsonl", "project.yml", "ro.txt", "t.txt"}));
  }
}

TEST(GetFileSizeEndToEnd, SumsFilesSpecificationsAndTrees) {
  TempDir Dir;
  fs::create_directories(Dir / "d/sub");
  fs::create_directories(Dir / "elsewhere");
  Dir.Write("d/a.txt", "aaa");
  Dir.Write("d/.hidden", "hh");
  Dir.Write("d/sub/b.txt", "bbbbb");
  Dir.Write("elsewhere/big.txt", std::string(1000, 'x'));
  fs::create_directory_symlink("../elsewhere", Dir / "d/link");
  ZtResult R = RunZt(Dir.Path(), R"(name: Sizes
actions:
  - {action: Get File Size, FileName: d/a.txt}
  - {action: Get File Size, FileName: d/*.txt, Recurse: true}
  - {action: Get File Size, FileName: d/, ZTVariable: SIZE}
  - {action: Get File Size, FileName: d/none*, FailIfMissing: false}
  - {action: Get File Size, FileName: d/none*}
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), Lines{"Size of d/a.txt : 3 bytes in 1 files"});
  EXPECT_EQ(Messages(R, "2"), Lines{"Size of d/*.txt : 8 bytes in 2 files"});
  EXPECT_EQ(Messages(R, "3"), Lines{"Size of d/ : 10 bytes in 3 files"});
  EXPECT_EQ(Messages(R, "4"), Lines{"Size of d/none* : 0 bytes in 0 files"});
  EXPECT_EQ(Messages(R, "5"), Lines{"No file matches : d/none*"});
  EXPECT_EQ(ActionResult(R, "5"), "failure");
  EXPECT_EQ(FinalVariables(R)["SIZE"], 10);
}

TEST(FileCompareEndToEnd, AnswersEqualOrSaysWhereTheyDiffer) {
  TempDir Dir;
  const std::string Block(256 * 1024, 'q');
  Dir.Write("a", "abc");
  Dir.Write("a2", "abc");
  Dir.Write("longer", "abcd");
  Dir.Write("big1", Block + Block);
  Dir.Write("big2", Block.substr(0, Block.size() - 1) + "!" + Block);
  Dir.Write("win.txt", "one\r\ntwo\r\nthree\r\n");
  Dir.Write("unix.txt", "one\ntwo\nthree");
  Dir.Write("mac.txt", "one\rtwo\rTHREE\r");
  ASSERT_EQ(link((Dir / "a").c_str(), (Dir / "hard").c_str()), 0);
  struct Case {
    std::string First, Second, Mode;
    Lines Messages;
  };
  const std::vector<Case> Cases = {
      {"a", "a2", "cmBinary", {"Files are identical : a = a2"}},
      {"a", "hard", "cmBinary", {"Files are identical : a = hard"}},
      {"a", "longer", "cmBinary", {"Files differ : a <> longer", "Sizes differ : 3 and 4 bytes"}},
      {"big1", "big2", "cmBinary", {"Files differ : big1 <> big2", "First difference at byte 262144"}},
      {"win.txt", "unix.txt", "cmText", {"Files are identical : win.txt = unix.txt"}},
      {"win.txt", "mac.txt", "cmText", {"Files differ : win.txt <> mac.txt", "First difference at line 3"}},
      {"unix.txt", "win.txt", "cmBinary", {"Files differ : unix.txt <> win.txt", "Sizes differ : 13 and 17 bytes"}},
      {"a", "missing", "cmBinary", {"ERROR - File missing: missing"}},
  };
  std::string Project = "name: Compare\nactions:\n";
  for (const Case& C : Cases)
    Project += "  - action: File Compare\n    FileName: " + C.First + "\n    CompareToFile: " + C.Second +
               "\n    CompareMode: " + C.Mode + "\n    ZTVariable: SAME\n    ignoreFailure: true\n";
  Project += "  - action: File Compare\n    FileName: a\n    CompareToFile: longer\n    FailIfDifferent: false\n";
  ZtResult R = RunZt(Dir.Path(), Project);
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  for (std::size_t I = 0; I < Cases.size(); ++I) {
    const std::string Id = std::to_string(I + 1);
    EXPECT_EQ(Messages(R, Id), Cases[I].Messages) << Id;
    const bool Same = Cases[I].Messages[0].starts_with("Files are identical");
    EXPECT_EQ(ActionResult(R, Id), Same ? "success" : "ignored") << Id;
  }
  EXPECT_EQ(ActionResult(R, std::to_string(Cases.size() + 1)), "success");
  EXPECT_EQ(FinalVariables(R)["SAME"], false);  // left by the last compare that read both files
}

TEST(FileActionsEndToEnd, ValidateNamesWhatIsMissing) {
  TempDir Dir;
  ZtResult R = RunZt(Dir.Path(), R"(name: Files
actions:
  - action: Concatenate Files
  - action: Get File Size
  - {action: File Compare, FileName: a}
)",
                     {}, "validate");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stdout,
            "1 Concatenate Files: Source Files: No source files have been set\n"
            "1 Concatenate Files: Target File: The target file has not been set\n"
            "2 Get File Size: File Name: Filename has not been set\n"
            "3 File Compare: Compare to File: The file to compare to has not been set\n");
}

}  // namespace
}  // namespace zt::testing
