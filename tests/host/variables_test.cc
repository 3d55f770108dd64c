// Variables where zt cannot show them: lookup order, letter case and the
// build's start; the %NAME% expander's texts for each rule, values that
// repeat each other, and its cache (what zt shows of them is checked end to
// end).
#include "host/project/variables.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "host/project/expander.h"
#include "platform/dates.h"

namespace zt::host {
namespace {

// Project variables win over predefined ones and the environment; project
// and predefined names ignore letter case, environment names do not.
TEST(VariablesTest, LookupOrderAndLetterCase) {
  setenv("ZT_TEST_SHADOWED", "from-env", 1);
  setenv("ZtTestExact", "yes", 1);
  Variables V("/p/sub/project.yml");
  auto Value = [&](const char* Name) {
    const auto Found = V.Lookup(Name);
    EXPECT_EQ(Found.has_value(), V.IsDefined(Name)) << Name;
    return Found ? Found->AsString() : "(none)";
  };
  EXPECT_EQ(Value("ZT_PROJECT_DIR"), "/p/sub");
  EXPECT_EQ(Value("zt_project_file"), "/p/sub/project.yml");
  EXPECT_EQ(Value("ZT_VERSION"), "0.1.0");
  EXPECT_EQ(Value("ZtTestExact"), "yes");
  EXPECT_EQ(Value("ZTTESTEXACT"), "(none)");
  V.Set("zt_test_shadowed", "from-project");
  V.Set("doscmd", "/bin/bash");
  EXPECT_EQ(Value("ZT_TEST_SHADOWED"), "from-project");
  EXPECT_EQ(Value("DOSCMD"), "/bin/bash");
  unsetenv("ZT_TEST_SHADOWED");
  unsetenv("ZtTestExact");
  // The first spelling and the order stay; the last value wins.
  Variables Project;
  Project.Set("Out", "a");
  Project.Set("Count", std::int64_t{1});
  Project.Set("OUT", "b");
  ASSERT_EQ(Project.Project().size(), 2u);
  EXPECT_EQ(Project.Project()[0].first, "Out");
  EXPECT_EQ(Project.Project()[0].second.AsString(), "b");
  EXPECT_EQ(Project.Project()[1].first, "Count");
}

TEST(VariablesTest, BuildStartIsUtcOrTheReproducibleBuildsEpoch) {
  const platform::TFileTime Now = platform::UnixToFileTime(1709633730);  // 2024-03-05 10:15:30 UTC
  EXPECT_EQ(BuildStartText(Now, nullptr), "2024-03-05T10:15:30Z");
  EXPECT_EQ(BuildStartText(Now, "0"), "1970-01-01T00:00:00Z");
  EXPECT_EQ(BuildStartText(Now, "1700000000"), "2023-11-14T22:13:20Z");
  for (const char* Bad : {"", "abc", "1.5", "+5", "12 ", "99999999999999999999", "253402300800"})
    EXPECT_EQ(BuildStartText(Now, Bad), std::nullopt) << Bad;
}

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
