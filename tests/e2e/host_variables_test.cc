// Variables through zt: a value's own references expand when it is used,
// escapes and cycles, and the types that texts become.
#include <gtest/gtest.h>

#include <filesystem>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;

TEST(HostVariablesTest, ValuesExpandTheirOwnReferencesOnceWhenUsed) {
  struct Row {
    std::string Reference, Folder, Error;  // Folder: the name made under out/; Error: the action's last line
  } Rows[] = {
      {"%DIST%", "app-1.4.2", ""},
      {"%dist%-%PCT%", "app-1.4.2-100%", ""},
      {"%TWICE%", "app-1.4.2-100%", ""},
      {"%SHELL%", "$(pwd)", ""},
      {"%RAW%", "%VERSION%", ""},  // the expanded value is not scanned again
      {"%%DIST%%", "%DIST%", ""},
      {"%COUNT%", "5", ""},
      {"%A%", "", "Variables refer to each other in a cycle: A -> B -> A"},
      {"%SELF%", "", "Variables refer to each other in a cycle: SELF -> SELF"},
      {"%MISSING%", "", "Variable \"NOPE\" is not defined (used in the value of \"MISSING\")"},
  };
  std::string Yaml = R"(variables:
  VERSION: 1.4.2
  DIST: app-%VERSION%
  PCT: 100%%
  TWICE: "%DIST%-%PCT%"
  SHELL: $$(pwd)
  RAW: "%%VERSION%%"
  COUNT: 5
  A: x%B%
  B: "%A%"
  SELF: "%SELF%"
  MISSING: "%NOPE%"
actions:
)";
  for (const Row& R : Rows)
    Yaml += "  - action: Create Directory\n    FileOrDirectory: \"out/" + R.Reference +
            "\"\n    Force: true\n    ignoreFailure: true\n";
  TempDir D;
  ZtResult Run = RunZt(D.Path(), Yaml);
  EXPECT_EQ(Run.ExitCode, 0) << Run.Stderr;
  for (std::size_t I = 0; I < std::size(Rows); ++I) {
    const Row& R = Rows[I];
    std::string Id = std::to_string(I + 1);
    if (R.Error.empty()) {
      EXPECT_TRUE(fs::is_directory(D / ("out/" + R.Folder))) << R.Reference;
      EXPECT_EQ(ActionResult(Run, Id), "success") << R.Reference;
    } else {
      auto Lines = StatusDetails(Run, Id);
      EXPECT_EQ(Lines.empty() ? "" : Lines.back(), R.Error) << R.Reference;
      EXPECT_EQ(ActionResult(Run, Id), "ignored") << R.Reference;
    }
  }
  // Stored values stay as written.
  EXPECT_EQ(Run.Events[Run.Events.size() - 2]["values"]["DIST"], "app-%VERSION%");
}

TEST(HostVariablesTest, TextsBecomeIntegersOnlyWhenTheyPrintTheSame) {
  TempDir D;
  ZtResult R = RunZt(
      D.Path(), "variables:\n  BUILD: 007\n  N: 12\n  Q: \"12\"\n  RATE: 1.0\n  ON: TRUE\nactions: []\n",
      {"--var", "ZIP=0456", "--var", "BIG=1e3", "--var", "NEG=-3", "--var", "PLUS=+3", "--var", "OFF=false"});
  ASSERT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(R.Events[R.Events.size() - 2]["values"],
            nlohmann::json::parse(R"({"BUILD": "007", "N": 12, "Q": "12",
      "RATE": "1.0", "ON": true, "ZIP": "0456", "BIG": "1e3", "NEG": -3, "PLUS": "+3", "OFF": false})"));
}

}  // namespace
}  // namespace zt::testing
