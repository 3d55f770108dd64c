// What the package registers, as a user and a designer see it: `zt actions
// --designer` and `zt help` of every type, compared with the recorded output
// in golden/palette.txt. A change there is a change users see: check the
// difference, then record it with ZT_UPDATE_GOLDEN=1 (see tests/README.md).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

TEST(RegistrationEndToEnd, PaletteAndHelpOfEveryTypeAreAsRecorded) {
  TempDir Dir;
  std::string Output = RunZtArgs(Dir.Path(), {"actions", "--designer"}).Stdout;
  std::istringstream Palette(RunZtArgs(Dir.Path(), {"actions"}).Stdout);
  for (std::string Line; std::getline(Palette, Line);) {
    // The display name is the second column; columns are apart by two or more blanks.
    const std::size_t Start = Line.find_first_not_of(' ', Line.find("  "));
    Output +=
        "\n" + RunZtArgs(Dir.Path(), {"help", Line.substr(Start, Line.find("  ", Start) - Start)}).Stdout;
  }
  // A default of "now" (Touch File(s)) differs from run to run.
  const std::regex Now(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d|\d\d/\d\d/\d{4} \d\d:\d\d:\d\d)");
  Output = std::regex_replace(Output, Now, "<now>");
  const std::string Golden = std::string(ZT_SOURCE_DIR) + "/tests/e2e/golden/palette.txt";
  if (std::getenv("ZT_UPDATE_GOLDEN")) WriteText(Golden, Output);
  // The first line that differs, rather than both texts whole.
  auto Split = [](const std::string& Text) {
    std::vector<std::string> Lines;
    std::istringstream In(Text);
    for (std::string L; std::getline(In, L);) Lines.push_back(L);
    return Lines;
  };
  const auto Got = Split(Output), Want = Split(ReadText(Golden));
  for (std::size_t I = 0; I < std::max(Got.size(), Want.size()); ++I)
    ASSERT_EQ(I < Got.size() ? Got[I] : "(no line)", I < Want.size() ? Want[I] : "(no line)")
        << "line " << I + 1 << " of golden/palette.txt; if the change is meant, record it: "
        << "ZT_UPDATE_GOLDEN=1 ctest -R Registration";
}

}  // namespace
}  // namespace zt::testing
