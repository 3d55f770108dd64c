// The README's demo project, run on the sample files scripts/demo makes: it
// must keep working as the actions it uses change.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

namespace fs = std::filesystem;

TEST(DemoProjectTest, PackagesTheDocumentsAndCleansTheOutput) {
  TempDir D;
  fs::create_directory(D / "demo-output");
  for (const char* F : {"main.o.tmp", "util.o.tmp", "link.tmp"})
    std::ofstream(D / ("demo-output/" + std::string(F))) << "scratch\n";
  std::ofstream(D / "demo-output/build.log") << "old build log\n";
  chmod((D / "demo-output/build.log").c_str(), 0444);
  std::ofstream(D / "demo-output/readme.txt") << "keep me\n";

  ZtResult R = RunZt(D.Path(), ReadText(std::string(ZT_SOURCE_DIR) + "/examples/demo.yml"));
  ASSERT_EQ(R.ExitCode, 0) << R.Stdout << R.Stderr;

  std::vector<std::string> Left;
  for (const auto& E : fs::directory_iterator(D / "demo-output"))
    Left.push_back(E.path().filename().string());
  std::sort(Left.begin(), Left.end());
  EXPECT_EQ(Left, (std::vector<std::string>{"dist", "readme.txt"}));
  EXPECT_EQ(ReadText(D / "demo-output/dist/readme.txt"), "keep me\n");

  // CRC-32 and MD5 of "keep me\n", and the version line written and read back.
  const auto& Values = R.Events[R.Events.size() - 2]["values"];
  EXPECT_EQ(Values["README_CRC"], "$88A4FF51");
  EXPECT_EQ(Values["README_MD5"], "97ED8315D42223266F7E00741409A6AD");
  EXPECT_EQ(Values["RELEASED"], "1.4.2 (crc $88A4FF51)");
  EXPECT_EQ(ReadText(D / "demo-output/dist/release.ini"), "[Release]\r\nVersion=1.4.2 (crc $88A4FF51)\r\n");
  EXPECT_EQ(StatusDetails(R, "8"),
            (std::vector<std::string>{"Deleting files : demo-output/build.log", "1 Files Deleted."}));
}

}  // namespace
}  // namespace zt::testing
