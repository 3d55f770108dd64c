#include <gtest/gtest.h>

#include "platform/files.h"

namespace zt::platform {
namespace {

struct Case {
  const char* Pattern;
  const char* Name;
  bool Matches;
};

// Readable test names in CTest: pattern and name instead of raw bytes.
void PrintTo(const Case& C, std::ostream* Os) { *Os << '"' << C.Pattern << "\" vs \"" << C.Name << '"'; }

class WildcardTest : public ::testing::TestWithParam<Case> {};

TEST_P(WildcardTest, MatchesAsFindFirstFileDoes) {
  const Case& C = GetParam();
  EXPECT_EQ(MatchesWildcard(C.Name, C.Pattern), C.Matches) << "pattern " << C.Pattern << " name " << C.Name;
}

INSTANTIATE_TEST_SUITE_P(
    DosRules, WildcardTest,
    ::testing::Values(
        // "*" and "*.*" match every name, also names without a dot.
        Case{"*", "readme", true}, Case{"*", ".hidden", true}, Case{"*.*", "readme", true},
        Case{"*.*", "a.b.c", true}, Case{"*.*", ".profile", true},
        // "*.ext" needs that last extension.
        Case{"*.txt", "a.txt", true}, Case{"*.txt", "a.txt.bak", false}, Case{"*.txt", "a.b.txt", true},
        Case{"*.txt", "atxt", false}, Case{"*.txt", ".txt", true},
        // "?" may match nothing before a dot or at the end, one character elsewhere.
        Case{"a?.txt", "a.txt", true}, Case{"a?.txt", "ab.txt", true}, Case{"a?.txt", "abc.txt", false},
        Case{"??????.txt", "a.txt", true}, Case{"??????.txt", "abcdef.txt", true},
        Case{"??????.txt", "abcdefg.txt", false}, Case{"a??", "a", true}, Case{"a??", "abc", true},
        Case{"a??", "abcd", false}, Case{"a?c", "ac", false}, Case{"a?c", "abc", true},
        // "*." only names without an extension; "name." is "name".
        Case{"*.", "readme", true}, Case{"*.", "read.me", false}, Case{"abc.", "abc", true},
        Case{"abc.", "abc.d", false},
        // "name.*" also matches the bare name.
        Case{"a.*", "a", true}, Case{"a.*", "a.x", true}, Case{"a.*", "ab", false},
        // Stars inside names, exact names, and letter case as the platform's names.
        Case{"b*d.log", "build.log", true}, Case{"b*d.log", "bd.log", true},
        Case{"b*d.log", "build.txt", false}, Case{"setup.exe", "setup.exe", true},
        Case{"setup.exe", "setup.ex", false}, Case{"*.TXT", "a.txt", false}, Case{"", "a", false}));

}  // namespace
}  // namespace zt::platform
