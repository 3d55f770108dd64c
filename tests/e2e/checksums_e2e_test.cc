// "Calculate File CRC32" and "Calculate File MD5" run through zt: messages,
// results, exit codes, the variables they leave, and validation.
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

void Write(const std::string& Path, const std::string& Contents) { std::ofstream(Path, std::ios::binary) << Contents; }

TEST(ChecksumsEndToEnd, ChecksumsGoToTheLogAndIntoVariables) {
  TempDir Dir;
  Write(Dir / "check.txt", "123456789");
  Write(Dir / "copy.txt", "123456789");
  ZtResult R = RunZt(Dir.Path(), R"(name: Sums
variables:
  SRC: check.txt
actions:
  - action: Calculate File CRC32
    FileName: "%SRC%"
    ZTVariable: CRC
    FailIfDiffToCRC: true
    CompareToCRC: "$CBF43926"
  - action: TZTFileCRCAction
    FileName: check.txt
    ZTVariable: CRC_DEC
    UseDecimal: true
    FailIfDiffToFile: true
    CompareToFile: copy.txt
  - action: Calculate File MD5
    FileName: "%SRC%"
    ZTVariable: MD5
    FailIfDiffToMD5: true
    CompareToMD5: 25f9e794323b453885f5181f1b624d0b
)");
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;
  EXPECT_EQ(Messages(R, "1"), (Lines{"CRC32 for check.txt is $CBF43926", "CRC matches."}));
  EXPECT_EQ(Messages(R, "2"), (Lines{"CRC32 for check.txt is 3421780262", "CRC matches file: copy.txt"}));
  EXPECT_EQ(Messages(R, "3"), (Lines{"MD5 for check.txt is 25F9E794323B453885F5181F1B624D0B", "MD5 matches."}));
  EXPECT_EQ(FinalVariables(R), nlohmann::json::parse(R"({"SRC":"check.txt","CRC":"$CBF43926",
      "CRC_DEC":"3421780262","MD5":"25F9E794323B453885F5181F1B624D0B"})"));
}

TEST(ChecksumsEndToEnd, MismatchFailsTheBuildUnlessIgnored) {
  TempDir Dir;
  Write(Dir / "a.bin", "first");
  Write(Dir / "b.bin", "second");
  ZtResult R = RunZt(Dir.Path(), R"(actions:
  - action: Calculate File CRC32
    FileName: a.bin
    FailIfDiffToCRC: true
    CompareToCRC: "$cbf43926"
    ignoreFailure: true
  - action: Calculate File MD5
    FileName: a.bin
    FailIfDiffToFile: true
    CompareToFile: b.bin
  - action: Calculate File MD5
    FileName: a.bin
)");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  EXPECT_EQ(Messages(R, "1"), (Lines{"CRC32 for a.bin is $9271EE57", "CRC don't match", "Compare to CRC: $cbf43926"}));
  EXPECT_EQ(ActionResult(R, "1"), "ignored");
  EXPECT_EQ(Messages(R, "2"), (Lines{"MD5 for a.bin is 8B04D5E3775D298E78455EFC5CA404D5", "MD5 don't match",
                                     "File 2 MD5: A9F0E61A137D86AA9DB53465E0801612"}));
  EXPECT_EQ(ActionResult(R, "2"), "failure");
  EXPECT_EQ(ActionResult(R, "3"), "");
}

TEST(ChecksumsEndToEnd, MissingFileFails) {
  TempDir Dir;
  ZtResult R = RunZt(Dir.Path(), "actions:\n  - action: Calculate File MD5\n    FileName: none.bin\n");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  EXPECT_EQ(Messages(R, "1"), Lines{"ERROR - File missing: none.bin"});
}

TEST(ChecksumsEndToEnd, ValidationReportsAMissingFileName) {
  TempDir Dir;
  ZtResult R = RunZt(Dir.Path(), R"(actions:
  - action: Calculate File CRC32
  - action: Calculate File MD5
    FileName: x
  - action: Calculate File MD5
)", {}, "validate");
  EXPECT_EQ(R.ExitCode, 1) << R.Stderr;
  EXPECT_EQ(R.Stdout,
            "1 Calculate File CRC32: File Name: Filename has not been set\n"
            "3 Calculate File MD5: File Name: Filename has not been set\n");
}

}  // namespace
}  // namespace zt::testing
