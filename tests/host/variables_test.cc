#include "host/project/variables.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "platform/dates.h"

namespace zt::host {
namespace {

TEST(VariablesTest, ProjectVariableWinsOverPredefinedAndEnvironment) {
  setenv("ZT_TEST_SHADOWED", "from-env", 1);
  Variables V("/p/project.yml");
  EXPECT_EQ(V.Lookup("ZT_TEST_SHADOWED")->AsString(), "from-env");
  EXPECT_EQ(V.Lookup("DOSCMD")->AsString(), "/bin/sh");
  V.Set("zt_test_shadowed", "from-project");
  V.Set("doscmd", "/bin/bash");
  EXPECT_EQ(V.Lookup("ZT_TEST_SHADOWED")->AsString(), "from-project");
  EXPECT_EQ(V.Lookup("DOSCMD")->AsString(), "/bin/bash");
  unsetenv("ZT_TEST_SHADOWED");
}

TEST(VariablesTest, PredefinedNameTheProjectAndVersion) {
  Variables V("/p/sub/project.yml");
  EXPECT_EQ(V.Lookup("ZT_PROJECT_DIR")->AsString(), "/p/sub");
  EXPECT_EQ(V.Lookup("zt_project_file")->AsString(), "/p/sub/project.yml");
  EXPECT_EQ(V.Lookup("ZT_VERSION")->AsString(), "0.1.0");
}

TEST(VariablesTest, EnvironmentIsLookedUpByExactName) {
  setenv("ZtTestExact", "yes", 1);
  Variables V;
  EXPECT_EQ(V.Lookup("ZtTestExact")->AsString(), "yes");
  EXPECT_FALSE(V.Lookup("ZTTESTEXACT").has_value());
  EXPECT_TRUE(V.IsDefined("ZtTestExact"));
  EXPECT_FALSE(V.IsDefined("NoSuchVariableAnywhere"));
  unsetenv("ZtTestExact");
}

TEST(VariablesTest, CaseInsensitiveNamesKeepTheirFirstSpellingAndOrder) {
  Variables V;
  V.Set("Out", "a");
  V.Set("Count", std::int64_t{1});
  V.Set("OUT", "b");
  ASSERT_EQ(V.Project().size(), 2u);
  EXPECT_EQ(V.Project()[0].first, "Out");
  EXPECT_EQ(V.Project()[0].second.AsString(), "b");
  EXPECT_EQ(V.Project()[1].first, "Count");
}

}  // namespace
}  // namespace zt::host

namespace zt::host {
namespace {

TEST(VariablesTest, BuildStartIsUtcOrTheReproducibleBuildsEpoch) {
  const platform::TFileTime Now = platform::UnixToFileTime(1709633730);  // 2024-03-05 10:15:30 UTC
  EXPECT_EQ(BuildStartText(Now, nullptr), "2024-03-05T10:15:30Z");
  EXPECT_EQ(BuildStartText(Now, "0"), "1970-01-01T00:00:00Z");
  EXPECT_EQ(BuildStartText(Now, "1700000000"), "2023-11-14T22:13:20Z");
  for (const char* Bad : {"", "abc", "1.5", "+5", "12 ", "99999999999999999999", "253402300800"})
    EXPECT_EQ(BuildStartText(Now, Bad), std::nullopt) << Bad;
}

}  // namespace
}  // namespace zt::host
