// Parameter texts split as a POSIX shell splits words, without expansion,
// and arguments quoted so that splitting gives them back.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/command_line.h"

namespace zt::platform {
namespace {

using Words = std::vector<std::string>;

TEST(CommandLineTest, SplitsLikeAShellWithoutExpanding) {
  const std::vector<std::pair<std::string, Words>> Cases = {
      {"", {}},
      {"  \t\n ", {}},
      {"a  b\tc\nd", {"a", "b", "c", "d"}},
      {"'a b' \"c d\"", {"a b", "c d"}},
      {"x'a b'y\"c\"z", {"xa bycz"}},
      {"'' \"\"", {"", ""}},
      {"a\\ b \\'c \\\\", {"a b", "'c", "\\"}},
      {"\"a\\\"b\\\\c\\$d\\`e\\nf\"", {"a\"b\\c$d`e\\nf"}},
      {"'a\\b\"c'", {"a\\b\"c"}},
      {"a\\\nb", {"ab"}},
      {"$HOME ~ *.c `x` $(y)", {"$HOME", "~", "*.c", "`x`", "$(y)"}},
      {"'unterminated text", {"unterminated text"}},
      {"\"unterminated \\\" text", {"unterminated \" text"}},
      {"trailing\\", {"trailing\\"}},
  };
  for (const auto& [Text, Expected] : Cases) EXPECT_EQ(SplitCommandLine(Text), Expected) << Text;
}

TEST(CommandLineTest, QuotedArgumentsSplitBackUnchanged) {
  for (const std::string A : {"plain-word_1.txt", "", "a b", "it's", "\"q\"", "back\\slash", "$HOME", "tab\there",
                              "line\nend", "*"}) {
    EXPECT_EQ(SplitCommandLine(QuoteArgument(A)), Words{A}) << A;
    EXPECT_EQ(SplitCommandLine("x " + QuoteArgument(A) + " y"), (Words{"x", A, "y"})) << A;
  }
  EXPECT_EQ(QuoteArgument("/usr/bin/a-b_c.d"), "/usr/bin/a-b_c.d");
  EXPECT_EQ(QuoteArgument("out dir"), "'out dir'");
}

}  // namespace
}  // namespace zt::platform
