// The %NAME% expander where zt cannot show it: the texts it gives for each
// rule, values that repeat each other, and its cache (what zt shows of it is
// checked end to end).
#include "host/project/expander.h"

#include <gtest/gtest.h>

namespace zt::host {
namespace {

class ExpanderTest : public ::testing::Test {
 protected:
  ExpanderTest() {
    Vars.Set("OUT", "build/out");
    Vars.Set("Count", std::int64_t{3});
    Vars.Set("On", true);
    Vars.Set("a.b-c_1", "dotted");
  }
  std::string Expand(const std::string& Text) { return E.Expand(Text, Vars); }
  Variables Vars;
  Expander E;
};

TEST_F(ExpanderTest, EachRuleGivesItsText) {
  // clang-format off
  const std::pair<std::string, std::string> Cases[] = {
      {"%OUT%/readme.txt", "build/out/readme.txt"},
      {"n=%Count% on=%On%", "n=3 on=True"},  // typed values as text
      {"%OUT%%Count%", "build/out3"},
      {"[%a.b-c_1%]", "[dotted]"},
      {"%%OUT%%", "%OUT%"},
      {"echo $(pwd) $HOME", "echo $(pwd) $HOME"},
      {"$$$(", "$$("},
      // A percent that starts no reference stays.
      {"50% of %OUT%", "50% of build/out"},
      {"trailing %", "trailing %"},
      {"%no end", "%no end"},
      {"%a b% %OUT%", "%a b% build/out"},
      {"%/%", "%/%"},
  };
  // clang-format on
  for (const auto& [Text, Expected] : Cases) EXPECT_EQ(Expand(Text), Expected) << Text;
  try {
    Expand("x %MISSING_ONE% y");
    FAIL() << "no exception";
  } catch (const UndefinedVariable& U) {
    EXPECT_EQ(U.Name(), "MISSING_ONE");
    EXPECT_STREQ(U.what(), "Variable \"MISSING_ONE\" is not defined");
  }
}

// Each level doubles the one below: without reuse within a pass, 60 levels never end.
TEST_F(ExpanderTest, ValuesThatRepeatEachOtherExpandOnceAndStopAt256MiB) {
  Vars.Set("V0", "ab");
  std::string Expected = "ab";
  for (int K = 1; K <= 60; ++K) {
    std::string Below = "%v" + std::to_string(K - 1) + "%";
    Vars.Set("V" + std::to_string(K), "[" + Below + "|" + Below + "]");
    if (K <= 4) Expected = "[" + Expected + "|" + Expected + "]";
  }
  EXPECT_EQ(Expand("%V4%"), Expected);
  try {
    Expand("x%V60%");
    FAIL() << "no exception";
  } catch (const ExpansionError& X) {
    EXPECT_STREQ(X.what(), "Variable \"V60\" expands to more than 256 MiB");
  }
}

// Each text is tokenized once; texts without a percent are never cached. The
// counting entry point (its counts are checked through zt) caches the values
// it expands, never the texts themselves, and stops at a cycle.
TEST_F(ExpanderTest, CachesTokenizedTextsAndStopsAtCycles) {
  EXPECT_EQ(Expand("plain text"), "plain text");
  EXPECT_EQ(E.CachedTexts(), 0u);
  EXPECT_EQ(Expand("%OUT%"), "build/out");
  Vars.Set("OUT", "other");
  EXPECT_EQ(Expand("%OUT%"), "other");
  EXPECT_EQ(E.CachedTexts(), 1u);
  Vars.Set("DIST", "%OUT%/app-%Count%");
  int Replaced = 0;
  EXPECT_EQ(E.ExpandCounting("%DIST% %out% %NOPE%", Vars, /*FailOnUnknown=*/false, Replaced),
            "other/app-3 other %NOPE%");
  EXPECT_EQ(Replaced, 2);
  EXPECT_EQ(E.CachedTexts(), 2u);
  Vars.Set("Loop", "%Loop%");
  EXPECT_THROW(E.ExpandCounting("%Loop%", Vars, /*FailOnUnknown=*/false, Replaced), VariableCycle);
}

}  // namespace
}  // namespace zt::host
