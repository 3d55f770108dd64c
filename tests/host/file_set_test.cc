// The globs of project file sets: *, ? and ** against paths, and when a
// directory is excluded as a whole (the sets themselves are checked through zt).
#include "host/project/file_set.h"

#include <gtest/gtest.h>

namespace zt::host {
namespace {

using Lines = std::vector<std::string>;

TEST(GlobTest, MatchesAsTheRulesSay) {
  // clang-format off
  const struct {
    const char* Pattern;
    std::string Path;
    bool Matches;
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

}  // namespace
}  // namespace zt::host
