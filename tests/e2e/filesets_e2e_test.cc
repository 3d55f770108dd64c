// Project file sets through zt: a set defined under `filesets:` reaches the
// actions that name it, in any letter case; excluded and unmatched files do
// not count; a set is read once until refreshed; a set that is not defined
// is "not found", never a crash.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

TEST(FileSetsE2E, CheckIfFileExistsFindsTheFilesOfAProjectFileSet) {
  // clang-format off
  const struct {
    Lines Files;
    std::string Set;
    Lines Said;
    std::string Result;
  } Cases[] = {
      {{"src/a/main.cpp"}, "sources", {"Found files from File Set"}, "success"},
      {{"src/generated/gen.cpp", "src/readme.txt"}, "Sources", {"Found no files from File Set"}, "failure"},
      {{}, "Sources", {"Found no files from File Set"}, "failure"},  // no base directory: an empty set
      {{"src/main.cpp"}, "Headers", {"Could not find FileSet: Headers"}, "failure"},
  };
  // clang-format on
  for (const auto& C : Cases) {
    TempDir D;
    MakeTree(D.Path(), C.Files);
    ZtResult R = RunZt(D.Path(), R"(filesets:
  Sources: {base: src, include: ["**/*.cpp"], exclude: ["**/generated/**"]}
actions:
  - {action: Check if File Exists, UseFileSpec: false, FileSet: )" +
                                     C.Set + R"(, Variable: Any}
)");
    EXPECT_EQ(Said(R, "1"), C.Said) << C.Set;
    EXPECT_EQ(ActionResult(R, "1"), C.Result) << C.Set;
    EXPECT_EQ(FinalValue(R, "Any"), C.Result == "success") << C.Set;
  }
}

TEST(FileSetsE2E, ASetIsReadOnceUntilRefreshedAndAProjectWithoutSetsFindsNone) {
  TempDir D;
  MakeTree(D.Path(), {"src/main.cpp"});
  ZtResult R = RunZt(D.Path(), R"(filesets:
  Sources: {base: src, include: ["*.cpp"]}
actions:
  - {action: Check if File Exists, UseFileSpec: false, FileSet: Sources}
  - {action: Delete File(s), FileSpec: src/main.cpp}
  - {action: Check if File Exists, UseFileSpec: false, FileSet: Sources}
)");
  EXPECT_EQ(Said(R, "1"), Lines{"Found files from File Set"});
  EXPECT_EQ(Said(R, "3"), Lines{"Found no files from File Set"});  // its one file is gone
  R = RunZt(D.Path(),
            "actions:\n  - {action: Check if File Exists, UseFileSpec: false, FileSet: Any, "
            "ExistsMode: feIgnore}\n");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(Said(R, "1"), Lines{"Could not find FileSet: Any"});
}

}  // namespace
}  // namespace zt::testing
