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

TEST_F(ExpanderTest, ReplacesReferencesWithTypedValuesAsText) {
  EXPECT_EQ(Expand("%OUT%/readme.txt"), "build/out/readme.txt");
  EXPECT_EQ(Expand("n=%Count% on=%On%"), "n=3 on=True");
  EXPECT_EQ(Expand("%OUT%%Count%"), "build/out3");
  EXPECT_EQ(Expand("[%a.b-c_1%]"), "[dotted]");
}

TEST_F(ExpanderTest, NamesAreCaseInsensitive) { EXPECT_EQ(Expand("%out%|%COUNT%"), "build/out|3"); }

TEST_F(ExpanderTest, DoublePercentGivesOnePercent) {
  EXPECT_EQ(Expand("100%%"), "100%");
  EXPECT_EQ(Expand("%%OUT%%"), "%OUT%");
}

TEST_F(ExpanderTest, DollarEscapeGivesDollarParenthesis) {
  EXPECT_EQ(Expand("$$(pwd)"), "$(pwd)");
  EXPECT_EQ(Expand("echo $(pwd) $HOME"), "echo $(pwd) $HOME");
  EXPECT_EQ(Expand("$$$("), "$$(");
}

TEST_F(ExpanderTest, PercentThatStartsNoReferenceStays) {
  EXPECT_EQ(Expand("50% of %OUT%"), "50% of build/out");
  EXPECT_EQ(Expand("trailing %"), "trailing %");
  EXPECT_EQ(Expand("%no end"), "%no end");
  EXPECT_EQ(Expand("%a b% %OUT%"), "%a b% build/out");
  EXPECT_EQ(Expand("%/%"), "%/%");
}

TEST_F(ExpanderTest, UndefinedNameRaisesNamingTheVariable) {
  try {
    Expand("x %MISSING_ONE% y");
    FAIL() << "no exception";
  } catch (const UndefinedVariable& U) {
    EXPECT_EQ(U.Name(), "MISSING_ONE");
    EXPECT_STREQ(U.what(), "Variable \"MISSING_ONE\" is not defined");
  }
}

TEST_F(ExpanderTest, TokenizesEachTextOnceAndSkipsTextsWithoutPercent) {
  EXPECT_EQ(Expand("plain text"), "plain text");
  EXPECT_EQ(E.CachedTexts(), 0u);
  EXPECT_EQ(Expand("%OUT%"), "build/out");
  Vars.Set("OUT", "other");
  EXPECT_EQ(Expand("%OUT%"), "other");
  EXPECT_EQ(E.CachedTexts(), 1u);
}

}  // namespace
}  // namespace zt::host
