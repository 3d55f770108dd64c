// "Text Find / Replace" and "Text Replace (Deprecated)" through zt: the log
// lines, the files afterwards byte for byte and the variables, for a file, a
// project file set, unchanged and read-only files and bad input of every kind.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;
using ProgressLines = std::vector<std::pair<std::string, int>>;

ProgressLines ProgressEvents(const ZtResult& R, const std::string& Id) {
  ProgressLines P;
  for (const auto& E : R.Events)
    if (E.value("event", "") == "progress" && E.value("id", "") == Id)
      P.emplace_back(E.value("text", ""), E.value("percent", -1));
  return P;
}

TEST(TextFindE2E, ReplaceRewritesTheFileAsCrLfLinesKeepingModeAndByteOrderMark) {
  TempDir D;
  D.Write("app.ini", "\xEF\xBB\xBFVersion=1.0\nname=app");
  chmod((D / "app.ini").c_str(), 0640);
  ZtResult R = RunZt(D.Path(), R"(variables: {V: 2.5}
actions:
  - {action: Text Find / Replace, SourcePath: app.ini, SearchString: 'Version=\d+\.\d+', MatchRegExpr: true,
     ReplacementText: Version=%V%, ReplacementMode: trOriginalFile}
)");
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  EXPECT_EQ(R.Events[1]["description"],
            "Text Replace [ Version=\\d+\\.\\d+... ] with [ Version=%V%... ]  in [ app.ini ]");
  EXPECT_EQ(Messages(R, "1"), (Lines{"Found 1 match.", "Writing replaced data to file app.ini"}));
  EXPECT_EQ(ProgressEvents(R, "1"), (ProgressLines{{"Found 0 matches", 4}, {"Found 1 matches", 100}}));
  EXPECT_EQ(D.Read("app.ini"), "\xEF\xBB\xBFVersion=2.5\r\nname=app\r\n");
  EXPECT_EQ(fs::status(D / "app.ini").permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  EXPECT_EQ(std::distance(fs::directory_iterator(D.Path()), {}), 3);  // the file, project.yml, log.jsonl
}

TEST(TextFindE2E, OnFindTextScriptSeesEachMatchAndChoosesItsReplacement) {
  TempDir D;
  D.Write("v.txt", "v1 v2 v3");
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Text Find / Replace, SourcePath: v.txt, SearchString: 'v(\d)', MatchRegExpr: true, Substitute: true,
     ReplacementText: 'w$1', ReplacementMode: trOriginalFile, scripts: {OnFindText: '
       Log(table.concat({math.type(Count), Count, math.type(Offset), Offset, FoundText .. ">" .. ReplaceText}, " "))
       if Count == 2 then ReplaceText = "two" end'}}
)");
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;
  EXPECT_EQ(Messages(R, "1"),
            (Lines{"integer 1 integer 0 v1>w1", "integer 2 integer 3 v2>w2", "integer 3 integer 6 v3>w3",
                   "Found 3 matches.", "Writing replaced data to file v.txt"}));
  EXPECT_EQ(D.Read("v.txt"), "w1 two w3\r\n");
}

TEST(TextFindE2E, BadInputFailsWithAClearMessageAndKeepsTheFile) {
  const std::string Error = "An error occured:";
  const struct {
    std::string Properties;  // SourcePath is a.txt unless given
    Lines Messages;
  } Cases[] = {
      // clang-format off
      {"SearchString: '(a', MatchRegExpr: true",
       {Error, "A syntax error occured parsing the Regular Expression : missing closing parenthesis at offset 2"}},
      {"SearchString: ''", {Error, "Search string is blank"}},
      {"SearchString: a, SourcePath: missing.txt",
       {Error, "Cannot open file \"missing.txt\". The system cannot find the file specified"}},
      {"SearchString: a, SourcePath: .", {Error, "Cannot open file \".\". Access is denied"}},
      {"SearchString: a, ReplacementMode: trOriginalFile, SourcePath: readonly.txt",
       {"Found 1 match.", "Writing replaced data to file readonly.txt", Error, "Unable to delete destination file."}},
      {"SearchString: a, ReplacementMode: trDestinationFile, DestinationFile: ' '",
       {"Found 1 match.", Error, "Output filename is blank."}},
      {"SearchString: a, UseVariable: true, UseFileSet: true",
       {"Error: Both \"Use Variable\" and \"Use FileSet\" are enabled."}},
      {"SearchString: a, UseFileSet: true, ReplacementMode: trDestinationFile",
       {"Error: Action is configured to search across a FileSet but output to a single destination file. "
        "Invalid combination."}},
      {"SearchString: a, UseFileSet: true, FileSetName: Nope", {Error, "FileSet Nope not found."}},
      // clang-format on
  };
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Properties);
    TempDir D;
    MakeTree(D.Path(), {"a.txt=abc\n", "readonly.txt=abc\n [ro]"});
    const std::string Source =
        C.Properties.find("SourcePath") == std::string::npos ? "SourcePath: a.txt, " : "";
    ZtResult R = RunZt(D.Path(), "actions: [{action: Text Find / Replace, " + Source + C.Properties + "}]\n");
    EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
    EXPECT_EQ(Messages(R, "1"), C.Messages);
    EXPECT_EQ(D.Read("a.txt"), "abc\n");
    EXPECT_EQ(D.Read("readonly.txt"), "abc\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(D.Path()), {}), 4);
  }
}

TEST(TextFindE2E, BinaryBytesAndNulsAreKeptAsTheyAre) {
  TempDir D;
  const std::string Binary("\x00\x01x\x00\xff\r\nx\x80", 9);
  D.Write("data.bin", Binary);
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Text Find / Replace, SourcePath: data.bin, SearchString: x, ReplacementText: y,
     ReplacementMode: trDestinationFile, DestinationFile: out.bin}
)");
  ASSERT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(Messages(R, "1"), (Lines{"Found 2 matches.", "Writing replaced data to file out.bin"}));
  EXPECT_EQ(D.Read("out.bin"), std::string("\x00\x01y\x00\xff\r\ny\x80\r\n", 11));
  EXPECT_EQ(D.Read("data.bin"), Binary);
}

const std::string kFileSets = R"(filesets:
  Texts: {base: src, include: ["*.txt"]}
  None: {base: src, include: ["*.none"]}
)";

TEST(TextFindE2E, FileSetStopsAtTheFirstFileWhoseCountFails) {
  TempDir D;
  MakeTree(D.Path(), {"src/a.txt=x x", "src/b.txt=y", "src/c.txt"});
  ZtResult R = RunZt(D.Path(), kFileSets + R"(actions:
  - {action: Text Find / Replace, UseFileSet: true, FileSetName: Texts, SearchString: x, ReplacementText: z,
     ReplacementMode: trOriginalFile, TextFindBehaviour: tfFailOnLess}
)");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  const std::string Src = D / "src/";
  EXPECT_EQ(Messages(R, "1"), (Lines{"Replacing inside file " + Src + "a.txt...", "Found 2 matches.",
                                     "Replacing inside file " + Src + "b.txt...", "No matches were found.",
                                     "Failing due to insufficient matches."}));
  // The figures lag one file behind.
  EXPECT_EQ(ProgressEvents(R, "1"), (ProgressLines{{"Searched in 0 files", 0}, {"Searched in 1 files", 33}}));
  EXPECT_EQ(D.Read("src/a.txt"), "z z\r\n");
  EXPECT_EQ(D.Read("src/b.txt"), "y");
  EXPECT_EQ(D.Read("src/c.txt"), "x");
}

TEST(TextFindE2E, FileSetTotalGoesIntoAVariableAlsoForAnEmptySet) {
  TempDir D;
  MakeTree(D.Path(), {"src/a.txt=x x", "src/b.txt"});
  const std::string Count =
      "  - {action: Text Find / Replace, UseFileSet: true, SearchString: x, FileSetCountAllMatches: true, "
      "TextFindBehaviour: tfPutIntoVar, ";
  ZtResult R =
      RunZt(D.Path(), kFileSets + "actions:\n" + Count + "FileSetName: Texts, PutCountIntoVar: ALL}\n" +
                          Count + "FileSetName: None, PutCountIntoVar: NONE}\n");
  ASSERT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(Messages(R, "1"),
            (Lines{"Searching inside file " + (D / "src/a.txt") + "...",
                   "Searching inside file " + (D / "src/b.txt") + "...", "Found 3 matches."}));
  EXPECT_EQ(ProgressEvents(R, "1"), (ProgressLines{{"Found 2 matches in 0 files", 0},
                                                   {"Found 3 matches in 1 files", 50},
                                                   {"Found 3 matches", 100}}));
  EXPECT_EQ(Messages(R, "2"), (Lines{"No matches were found."}));
  EXPECT_EQ(FinalVariables(R), nlohmann::json::parse(R"({"ALL": 3, "NONE": 0})"));
}

using namespace std::string_literals;

TEST(TextReplaceEndToEnd, ReplacesPlainBytesLeftToRight) {
  const struct {
    std::string Before, Search, Replace, Options, After;
    int Count;
  } Cases[] = {
      {"Foo foo FOO\r\nfoo", "foo", "bar", "CaseSensitive: false", "bar bar bar\r\nbar", 4},
      {"Foo foo FOO\r\nfoo", "foo", "", "", "Foo  FOO\r\n", 2},
      {"aaaaa", "aa", "b", "", "bba", 2},
      {"x a.b*(c)$1 y", "a.b*(c)$1", "[\\\\0]", "", "x [\\0] y", 1},
      {"x\0y\0"s, "\\0", "-", "", "x-y-", 2},
      {"a\r\nb\nc", "\\n", "|", "", "a\r|b|c", 2},
      {"\xC3\xA9t\xC3\xA9 \xC3\x89T\xC3\x89", "\xC3\xA9t\xC3\xA9", "ete", "CaseSensitive: false",
       "ete \xC3\x89T\xC3\x89", 1},
  };
  for (const auto& C : Cases) {
    TempDir Dir;
    Dir.Write("f.txt", C.Before);
    ZtResult R = RunZt(Dir.Path(),
                       "name: Replace\nactions:\n  - action: Text Replace (Deprecated)\n"
                       "    FileSpec: \"*.txt\"\n    SearchText: \"" +
                           C.Search + "\"\n    ReplaceText: \"" + C.Replace + "\"\n    " + C.Options + "\n");
    EXPECT_EQ(R.ExitCode, 0) << C.Search << R.Stderr;
    EXPECT_EQ(Dir.Read("f.txt"), C.After) << C.Search;
    EXPECT_EQ(StatusDetails(R, "1"),
              (Lines{"Replacing text in : *.txt", "f.txt : " + std::to_string(C.Count) + " replacements",
                     "1 Files Changed."}))
        << C.Search;
  }
}

TEST(TextReplaceEndToEnd, OnlyChangedFilesAreRewrittenAndAReadOnlyOneStops) {
  TempDir Dir;
  fs::create_directory(Dir / "src");
  Dir.Write("src/a.txt", "v1 v1");
  Dir.Write("src/b.txt", "none here");
  Dir.Write("src/c.txt", "v1");
  fs::permissions(Dir / "src/b.txt", fs::perms::owner_write,
                  fs::perm_options::remove);  // no match: never opened to write
  fs::permissions(Dir / "src/c.txt",
                  fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                  fs::perm_options::remove);
  const auto Untouched = fs::last_write_time(Dir / "src/b.txt") - std::chrono::hours(1);
  fs::last_write_time(Dir / "src/b.txt", Untouched);
  ZtResult R = RunZt(Dir.Path(), R"(name: Replace
actions:
  - {action: Text Replace (Deprecated), FileSpec: src/*.txt, SearchText: v1, ReplaceText: v2,
     ignoreFailure: true}
  - {action: Text Replace (Deprecated), FileSpec: src/a.txt, SearchText: v1, ReplaceText: v3,
     FailIfNotFound: true}
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(
      StatusDetails(R, "1"),
      (Lines{"Replacing text in : src/*.txt", "src/a.txt : 2 replacements", "src/b.txt : 0 replacements",
             " --> Error Replacing Text : src/c.txt", " --> Access is denied", "1 Files Changed."}));
  EXPECT_EQ(StatusDetails(R, "2"),
            (Lines{"Replacing text in : src/a.txt", "src/a.txt : 0 replacements", "0 Files Changed."}));
  EXPECT_EQ(ActionResult(R, "2"), "failure");
  EXPECT_EQ(Dir.Read("src/a.txt"), "v2 v2");
  EXPECT_EQ(Dir.Read("src/c.txt"), "v1");
  EXPECT_EQ(fs::last_write_time(Dir / "src/b.txt"), Untouched);
  EXPECT_EQ(std::distance(fs::directory_iterator(Dir / "src"), fs::directory_iterator()), 3);
}

TEST(TextReplaceEndToEnd, AnEmptySearchTextIsNamed) {
  TempDir Dir;
  ZtResult R = RunZt(Dir.Path(), R"(name: Replace
variables:
  NONE: ""
actions:
  - {action: Text Replace (Deprecated), FileSpec: "*.txt", SearchText: "%NONE%"}
)");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(Messages(R, "1"), Lines{"Error: No search text specified."});
}

}  // namespace
}  // namespace zt::testing
