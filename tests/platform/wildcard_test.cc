#include <gtest/gtest.h>

#include "platform/files.h"

namespace zt::platform {
namespace {

TEST(Wildcard, MatchesAsFindFirstFileDoes) {
  // clang-format off
  const struct {
    const char* Pattern;
    const char* Name;
    bool Matches;
  } Cases[] = {
      // "*" and "*.*" match every name, also names without a dot.
      {"*", "readme", true}, {"*.*", "readme", true}, {"*.*", "a.b.c", true},
      // "*.ext" needs that last extension.
      {"*.txt", "a.txt", true}, {"*.txt", "a.txt.bak", false}, {"*.txt", "a.b.txt", true},
      {"*.txt", "atxt", false}, {"*.txt", ".txt", true},
      // "?" may match nothing before a dot or at the end, one character elsewhere.
      {"a?.txt", "a.txt", true}, {"a?.txt", "ab.txt", true}, {"a?.txt", "abc.txt", false},
      {"??????.txt", "abcdef.txt", true}, {"??????.txt", "abcdefg.txt", false},
      {"a??", "a", true}, {"a??", "abc", true}, {"a??", "abcd", false}, {"a?c", "ac", false}, {"a?c", "abc", true},
      // "*." only names without an extension; "name." is "name".
      {"*.", "readme", true}, {"*.", "read.me", false}, {"abc.", "abc", true}, {"abc.", "abc.d", false},
      // "name.*" also matches the bare name.
      {"a.*", "a", true}, {"a.*", "a.x", true}, {"a.*", "ab", false},
      // Stars inside names, exact names, and letter case as the platform's names.
      {"b*d.log", "build.log", true}, {"b*d.log", "bd.log", true}, {"b*d.log", "build.txt", false},
      {"setup.exe", "setup.exe", true}, {"setup.exe", "setup.ex", false}, {"*.TXT", "a.txt", false},
      {"", "a", false},
  };
  // clang-format on
  for (const auto& C : Cases)
    EXPECT_EQ(MatchesWildcard(C.Name, C.Pattern), C.Matches) << "pattern " << C.Pattern << " name " << C.Name;
}

}  // namespace
}  // namespace zt::platform
