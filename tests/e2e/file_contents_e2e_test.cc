// "Concatenate Files", "Get File Size" and "File Compare" run through zt:
// the bytes written, the sizes and answers stored, and the log lines.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;
using namespace std::string_literals;

const std::string kBom = "\xEF\xBB\xBF";

TEST(ConcatEndToEnd, JoinsPartsInNameOrderWithSeparatorsAndOneByteOrderMark) {
  TempDir Dir;
  MakeTree(Dir.Path(), {"parts/b.txt=" + kBom + "b", "parts/a.txt=" + kBom + "a\0x"s,
                        "parts/c.txt=", "extra.bin=e" + kBom + "mid"});
  ZtResult R = RunZt(Dir.Path(), R"(actions:
  - {action: Concatenate Files, SourceFiles: "parts/*.txt\n\nextra.bin\n", TargetFile: out/dir/all.txt,
     Separator: "\n", SkipByteOrderMarks: true, Force: true}
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
  const Lines Here = {"a.txt=a", "b.txt=b", "t.txt=old", "ro.txt=old [ro]"};
  const std::string Cat = "action: Concatenate Files, SourceFiles: ";
  const std::string Error = " --> Error Writing File : ", None = "0 Files Concatenated.";
  // clang-format off
  ExpectCases({
      {Cat + "[a.txt, 'nope*.txt', b.txt], TargetFile: t.txt", Here,
       {"Concatenating files : t.txt", " --> No file matches : nope*.txt", None}, "failure", Here},
      {Cat + "['*.txt'], TargetFile: t.txt", Here,
       {"Concatenating files : t.txt", " --> The target file is also a source file : t.txt", None}, "failure", Here},
      {Cat + "[a.txt], TargetFile: ro.txt", Here,
       {"Concatenating files : ro.txt", Error + "ro.txt", " --> Access is denied", None}, "failure", Here},
      {Cat + "[a.txt], TargetFile: no/dir/t.txt", Here,
       {"Concatenating files : no/dir/t.txt", Error + "no/dir/t.txt", " --> The system cannot find the path specified",
        None}, "failure", Here},
  });
  // clang-format on
}

TEST(GetFileSizeEndToEnd, SumsFilesSpecificationsAndTrees) {
  const Lines Here = {"d/a.txt=aaa", "d/.hidden=hh", "d/sub/b.txt=bbbbb",
                      "elsewhere/big.txt=" + std::string(1000, 'x'), "d/link -> ../elsewhere"};
  const std::string Size = "action: Get File Size, FileName: ";
  // clang-format off
  ExpectCases({
      {Size + "d/a.txt", Here, {"Size of d/a.txt : 3 bytes in 1 files"}, "success", Here},
      {Size + "d/*.txt, Recurse: true", Here, {"Size of d/*.txt : 8 bytes in 2 files"}, "success", Here},
      {Size + "d/, ZTVariable: SIZE", Here, {"Size of d/ : 10 bytes in 3 files"}, "success", Here, R"({"SIZE": 10})"},
      {Size + "d/none*, FailIfMissing: false", Here, {"Size of d/none* : 0 bytes in 0 files"}, "success", Here},
      {Size + "d/none*", Here, {"No file matches : d/none*"}, "failure", Here},
  });
  // clang-format on
}

TEST(FileCompareEndToEnd, AnswersEqualOrSaysWhereTheyDiffer) {
  TempDir Dir;
  const std::string Block(256 * 1024, 'q');
  MakeTree(Dir.Path(),
           {"a=abc", "a2=abc", "longer=abcd", "big1=" + Block + Block, "hard => a",
            "big2=" + Block.substr(0, Block.size() - 1) + "!" + Block, "win.txt=one\r\ntwo\r\nthree\r\n",
            "unix.txt=one\ntwo\nthree", "mac.txt=one\rtwo\rTHREE\r"});
  const struct {
    std::string First, Second, Mode;
    Lines Messages;
  } Cases[] = {
      // clang-format off
      {"a", "a2", "cmBinary", {"Files are identical : a = a2"}},
      {"a", "hard", "cmBinary", {"Files are identical : a = hard"}},
      {"a", "longer", "cmBinary", {"Files differ : a <> longer", "Sizes differ : 3 and 4 bytes"}},
      {"big1", "big2", "cmBinary", {"Files differ : big1 <> big2", "First difference at byte 262144"}},
      {"win.txt", "unix.txt", "cmText", {"Files are identical : win.txt = unix.txt"}},
      {"win.txt", "mac.txt", "cmText", {"Files differ : win.txt <> mac.txt", "First difference at line 3"}},
      {"unix.txt", "win.txt", "cmBinary", {"Files differ : unix.txt <> win.txt", "Sizes differ : 13 and 17 bytes"}},
      {"a", "missing", "cmBinary", {"ERROR - File missing: missing"}},
      // clang-format on
  };
  std::string Project = "actions:\n";
  for (const auto& C : Cases)
    Project += "  - {action: File Compare, FileName: " + C.First + ", CompareToFile: " + C.Second +
               ", CompareMode: " + C.Mode + ", ZTVariable: SAME, ignoreFailure: true}\n";
  Project += "  - {action: File Compare, FileName: a, CompareToFile: longer, FailIfDifferent: false}\n";
  ZtResult R = RunZt(Dir.Path(), Project);
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  for (std::size_t I = 0; I < std::size(Cases); ++I) {
    const std::string Id = std::to_string(I + 1);
    EXPECT_EQ(Messages(R, Id), Cases[I].Messages) << Id;
    const bool Same = Cases[I].Messages[0].starts_with("Files are identical");
    EXPECT_EQ(ActionResult(R, Id), Same ? "success" : "ignored") << Id;
  }
  EXPECT_EQ(ActionResult(R, std::to_string(std::size(Cases) + 1)), "success");
  EXPECT_EQ(FinalVariables(R)["SAME"], false);  // left by the last compare that read both files
}

}  // namespace
}  // namespace zt::testing
