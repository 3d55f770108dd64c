// "Text Replace (Deprecated)" run through zt: plain texts replaced byte for
// byte, line ends and unchanged files left alone, a read-only file refused.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;
using namespace std::string_literals;

TEST(TextReplaceEndToEnd, ReplacesPlainBytesLeftToRight) {
  struct Case {
    std::string Before, Search, Replace, Options, After;
    int Count;
  };
  const std::vector<Case> Cases = {
      {"Foo foo FOO\r\nfoo", "foo", "bar", "CaseSensitive: false", "bar bar bar\r\nbar", 4},
      {"Foo foo FOO\r\nfoo", "foo", "", "", "Foo  FOO\r\n", 2},
      {"aaaaa", "aa", "b", "", "bba", 2},
      {"x a.b*(c)$1 y", "a.b*(c)$1", "[\\\\0]", "", "x [\\0] y", 1},
      {"x\0y\0"s, "\\0", "-", "", "x-y-", 2},
      {"a\r\nb\nc", "\\n", "|", "", "a\r|b|c", 2},
      {"\xC3\xA9t\xC3\xA9 \xC3\x89T\xC3\x89", "\xC3\xA9t\xC3\xA9", "ete", "CaseSensitive: false",
       "ete \xC3\x89T\xC3\x89", 1},
  };
  for (const Case& C : Cases) {
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
