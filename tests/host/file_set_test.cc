// Project file sets: glob matching (*, ?, **), the walk under a base
// directory with includes and excludes, sorted full paths, refresh with its
// log lines, and look-up by name.
#include "host/project/file_set.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/TempDir.h"
#include "test_action.h"

namespace zt::host {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;
using zt::testing::TempDir;

TEST(GlobTest, MatchesAsTheRulesSay) {
  const struct {
    const char* Pattern;
    std::string Path;
    bool Matches;
    // clang-format off
  } Cases[] = {
      // * and ? stay within one component; ? is one character.
      {"*.cpp", "main.cpp", true},         {"*.cpp", ".cpp", true},          {"*.cpp", "src/main.cpp", false},
      {"*.cpp", "main.cpp.bak", false},    {"src/?.h", "src/a.h", true},     {"src/?.h", "src/ab.h", false},
      {"src/?.h", "src/.h", false},        {"a?b", "a/b", false},            {"*a*b*", "xxaxxbxx", true},
      {"*a*b*", "xxbxxaxx", false},
      // ** is any number of directories, none included.
      {"**/*.h", "a.h", true},             {"**/*.h", "inc/deep/er/a.h", true}, {"**/*.h", "inc/a.hpp", false},
      {"src/**/test/*.cc", "src/test/a.cc", true}, {"src/**/test/*.cc", "src/x/y/test/a.cc", true},
      {"src/**/test/*.cc", "lib/test/a.cc", false}, {"**", "any/thing/at/all", true}, {"**/**/x", "x", true},
      // Letter case counts; other characters are literal.
      {"*.CPP", "a.cpp", false},           {"[a].txt", "[a].txt", true},     {"[a].txt", "a.txt", false},
      {"größe/*.txt", "größe/ä ö.txt", true},
      // Many stars on a long name stay fast.
      {"*a*a*a*a*a*a*a*a*b", std::string(2000, 'a'), false},
      {"**/**/**/**/**/**/b", "a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/c", false},
  };
  // clang-format on
  for (const auto& C : Cases)
    EXPECT_EQ(Glob(C.Pattern).Matches(C.Path), C.Matches) << C.Pattern << " " << C.Path;
  // Whether a directory is excluded as a whole.
  EXPECT_TRUE(Glob("**/generated/**").MatchesEverythingBelow("a/generated"));
  EXPECT_TRUE(Glob("**/generated/**").MatchesEverythingBelow("generated"));
  EXPECT_FALSE(Glob("**/generated/**").MatchesEverythingBelow("a/generated2"));
  EXPECT_FALSE(Glob("**/generated/*.cc").MatchesEverythingBelow("generated"));
  EXPECT_TRUE(Glob("build/**").MatchesEverythingBelow("build"));
  EXPECT_FALSE(Glob("build/**").MatchesEverythingBelow("src/build"));
}

class FileSetTest : public ::testing::Test {
 protected:
  void Make(const std::string& Relative) {
    fs::create_directories(fs::path(Dir / Relative).parent_path());
    std::ofstream(Dir / Relative) << "x";
  }
  FileSetDefinition Def(std::string Base, Lines Include, Lines Exclude = {}) {
    FileSetDefinition D;
    D.Name = "Sources";
    D.Base = std::move(Base);
    D.Include = std::move(Include);
    D.Exclude = std::move(Exclude);
    return D;
  }
  TempDir Dir;
};

TEST_F(FileSetTest, IncludesAndExcludesGiveSortedFullPaths) {
  for (auto* F : {"src/b.cpp", "src/a.h", "src/sub/z.cpp", "src/sub/generated/g.cpp", "src/generated/h.h",
                  "src/readme.md", "src/a-b/c.cpp"})
    Make(F);
  FileSet S(Def("src", {"**/*.cpp", "**/*.h"}, {"**/generated/**"}), Dir.Path());
  const std::string B = Dir / "src/";
  EXPECT_EQ(S.Files(), (Lines{B + "a-b/c.cpp", B + "a.h", B + "b.cpp", B + "sub/z.cpp"}));
  EXPECT_EQ(S.GetFileCount(), 4);
  EXPECT_EQ(S.GetFile(1), B + "a.h");
  EXPECT_EQ(S.GetFile(4), "");
  EXPECT_EQ(S.GetFile(-1), "");
  EXPECT_EQ(S.GetFilesText("\r\n"),
            B + "a-b/c.cpp\r\n" + B + "a.h\r\n" + B + "b.cpp\r\n" + B + "sub/z.cpp\r\n");
}

TEST_F(FileSetTest, PatternWithoutDoubleStarStaysAtItsDepth) {
  for (auto* F : {"top.txt", "sub/low.txt"}) Make(F);
  FileSet S(Def("", {"*.txt"}), Dir.Path());
  EXPECT_EQ(S.Files(), (Lines{Dir / "top.txt"}));
}

TEST_F(FileSetTest, NoIncludeMeansEveryFileButNeverDirectories) {
  for (auto* F : {"a", ".hidden", "d/b"}) Make(F);
  fs::create_directories(Dir / "empty");
  FileSet S(Def(".", {}), Dir.Path());
  EXPECT_EQ(S.Files(), (Lines{Dir / ".hidden", Dir / "a", Dir / "d/b"}));
}

TEST_F(FileSetTest, AbsoluteBaseAndNamesWithSpacesAndNonAsciiLetters) {
  Make("dåta dir/fïle one.txt");
  FileSet S(Def(Dir / "dåta dir", {"**"}), "/elsewhere");
  EXPECT_EQ(S.Files(), (Lines{Dir / "dåta dir/fïle one.txt"}));
  EXPECT_EQ(S.BaseDirectory(), Dir / "dåta dir");
}

TEST_F(FileSetTest, LinksToFilesCountButLinksToDirectoriesAreNotEntered) {
  Make("real/f.txt");
  fs::create_symlink(Dir / "real/f.txt", Dir / "real/link.txt");
  fs::create_directory_symlink(Dir / "real", Dir / "real/loop");
  FileSet S(Def("real", {"**/*.txt"}), Dir.Path());
  EXPECT_EQ(S.Files(), (Lines{Dir / "real/f.txt", Dir / "real/link.txt"}));
}

TEST_F(FileSetTest, MissingBaseGivesNoFilesAndRefreshSaysWhy) {
  Lines Logged;
  FileSet S(Def("nowhere", {"**"}), Dir.Path(), [&](frame::TZTAction& A, const std::string& Line) {
    Logged.push_back(A.GetTitle() + ": " + Line);
  });
  EXPECT_EQ(S.GetFileCount(), 0);
  EXPECT_EQ(S.GetFilesText("\r\n"), "");
  zt::testing::TTestAction Context;
  Context.SetTitle("Iterate");
  S.Refresh(Context);
  EXPECT_EQ(Logged, (Lines{"Iterate: File set \"Sources\": the base directory " + (Dir / "nowhere") +
                               " does not exist",
                           "Iterate: File set \"Sources\": 0 files"}));
}

TEST_F(FileSetTest, FilesAreReadOnceUntilRefreshed) {
  Make("a.txt");
  Lines Logged;
  FileSet S(Def("", {"*.txt"}), Dir.Path(),
            [&](frame::TZTAction&, const std::string& Line) { Logged.push_back(Line); });
  EXPECT_EQ(S.GetFileCount(), 1);
  Make("b.txt");
  fs::remove(Dir / "a.txt");
  EXPECT_EQ(S.Files(), (Lines{Dir / "a.txt"}));  // unchanged until a refresh
  zt::testing::TTestAction Context;
  S.Refresh(Context);
  EXPECT_EQ(S.Files(), (Lines{Dir / "b.txt"}));
  EXPECT_EQ(Logged, (Lines{"File set \"Sources\": 1 files"}));
}

TEST_F(FileSetTest, ProjectObjectsFindFileSetsByNameInAnyCase) {
  Make("a.txt");
  FileSetDefinition Other = Def("", {"*.none"});
  Other.Name = "Other";
  ProjectObjects Objects({Def("", {"*.txt"}), Other}, Dir.Path());
  frame::IZTFileSet* S = frame::FindFileSet(&Objects, "sOURCES");
  ASSERT_NE(S, nullptr);
  EXPECT_EQ(S->GetFilesText("|"), (Dir / "a.txt") + "|");
  ASSERT_NE(frame::FindFileSet(&Objects, "other"), nullptr);
  EXPECT_EQ(frame::FindFileSet(&Objects, "Missing"), nullptr);
  EXPECT_EQ(Objects.FindObject("Sources", "SomethingElse"), nullptr);
}

}  // namespace
}  // namespace zt::host
