#include "host/project/variables.h"

#include <gtest/gtest.h>
#include <stdlib.h>

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

}  // namespace
}  // namespace zt::host
