// TRegExpr over PCRE2, and the line-break rules a loaded text follows.
#include <gtest/gtest.h>

#include "frame/ZTRegExpr.h"
#include "text/LineBreaks.h"

namespace zt::package {
namespace {

using frame::TRegExpr;

TEST(RegExprTest, GroupsReportOneBasedPositionsOrMinusOneWhenUnused) {
  TRegExpr R;
  R.SetExpression("(b)(x)?(c)");
  const std::string Text = "abc";
  ASSERT_TRUE(R.Exec(Text));
  EXPECT_EQ(R.SubExprMatchCount(), 3);
  EXPECT_EQ(R.GetMatchPos(0), 2);
  EXPECT_EQ(R.GetMatchLen(0), 2);
  EXPECT_EQ(R.GetMatchPos(2), -1);
  EXPECT_EQ(R.GetMatch(2), "");
  EXPECT_EQ(R.GetMatch(3), "c");
  EXPECT_FALSE(R.ExecNext());
}

TEST(RegExprTest, LinesEndAtCrLfCrOrLfAndModifiersChangeTheMatch) {
  const std::string Text = "ab\r\ncd\ref\ngh";
  TRegExpr R;
  R.SetExpression("^\\w+$");  // m is on by default
  std::vector<std::string> Lines;
  for (bool F = R.Exec(Text); F; F = R.ExecNext()) Lines.push_back(R.GetMatch(0));
  EXPECT_EQ(Lines, (std::vector<std::string>{"ab", "cd", "ef", "gh"}));
  R.SetExpression("b.*");
  ASSERT_TRUE(R.Exec(Text));
  EXPECT_EQ(R.GetMatch(0), "b");
  R.SetModifier('s', true);
  ASSERT_TRUE(R.Exec(Text));
  EXPECT_EQ(R.GetMatchLen(0), static_cast<std::int64_t>(Text.size()) - 1);
  R.SetExpression("AB");
  EXPECT_FALSE(R.Exec(Text));
  R.SetModifier('i', true);
  EXPECT_TRUE(R.Exec(Text));
  EXPECT_THROW(R.SetModifier('q', true), frame::ERegExpr);
}

TEST(LineBreaksTest, TextsBecomeCrLfLines) {
  const std::pair<std::string, std::string> Cases[] = {
      {"", ""},
      {"a", "a\r\n"},
      {"a\r\n", "a\r\n"},
      {"\n", "\r\n"},
      {"a\nb", "a\r\nb\r\n"},
      {"a\r", "a\r\n"},
      {"a\rb\r\n", "a\r\nb\r\n"},
      {"a\r\r\n\n", "a\r\n\r\n\r\n"},
  };
  for (const auto& [In, Out] : Cases) {
    SCOPED_TRACE(In);
    EXPECT_EQ(ToCrLfLines(In), Out);
    EXPECT_EQ(HasCrLfLines(In), In == Out);
  }
  // Long enough for the vector path, with the odd break far in.
  std::string Long;
  for (int I = 0; I < 40; ++I) Long += "line of text\r\n";
  EXPECT_TRUE(HasCrLfLines(Long));
  Long[300] = '\n';
  EXPECT_FALSE(HasCrLfLines(Long));
}

}  // namespace
}  // namespace zt::package
