// "Calculate File CRC32" and "Calculate File MD5" through zt: the lines, the
// result and the variable each run leaves, one row per rule; a file another
// program is writing; validation.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/Processes.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

// Files and their checksums (from zlib and coreutils).
const Lines kFiles = {"check.txt=123456789", "copy.txt=123456789",  "first=first", "second=second", "empty=",
                      "ones=x|\xe9#s",       "small=y\xd9\x61:\xc7"};
const std::string kCheckMD5 = "25F9E794323B453885F5181F1B624D0B";  // of "123456789"

TEST(ChecksumsEndToEnd, CRC32Rules) {
  const std::string Crc = "action: Calculate File CRC32, ";
  const std::string Said = "CRC32 for check.txt is $CBF43926";
  // clang-format off
  ExpectCases({
      {Crc + "FileName: check.txt", kFiles, {Said}, "success", kFiles, R"({"DIR": "."})"},
      {Crc + "FileName: '%DIR%/check.txt', ZTVariable: Sum", kFiles, {Said}, "success", kFiles,
       R"({"DIR": ".", "Sum": "$CBF43926"})"},
      {Crc + "FileName: small", kFiles, {"CRC32 for small is $0000ABCD"}, "success", kFiles},
      // Decimal: unsigned, without leading zeros.
      {Crc + "FileName: ones, UseDecimal: true", kFiles, {"CRC32 for ones is 4294967295"}, "success", kFiles},
      {Crc + "FileName: small, UseDecimal: true", kFiles, {"CRC32 for small is 43981"}, "success", kFiles},
      {Crc + "FileName: nowhere.bin, ZTVariable: Sum", {}, {"ERROR - File missing: nowhere.bin"}, "failure", {},
       R"({"DIR": "."})"},
      {Crc + "FileName: '%UNDEFINED%/a.bin'", {}, {"Cannot expand FileName: variable \"UNDEFINED\" is not defined"},
       "failure", {}},
      // A second file, then an expected value, in that order.
      {Crc + "FileName: check.txt, FailIfDiffToFile: true, CompareToFile: copy.txt", kFiles,
       {Said, "CRC matches file: copy.txt"}, "success", kFiles},
      {Crc + "FileName: first, ZTVariable: Sum, FailIfDiffToFile: true, CompareToFile: second", kFiles,
       {"CRC32 for first is $9271EE57", "CRC don't match", "File 2 CRC: $B61F1169"}, "failure", kFiles,
       R"({"DIR": ".", "Sum": "$9271EE57"})"},
      {Crc + "FileName: check.txt, FailIfDiffToFile: true, CompareToFile: gone", kFiles,
       {Said, "ERROR - File missing: gone"}, "failure", kFiles},
      {Crc + "FileName: check.txt, FailIfDiffToFile: true, CompareToFile: '%NOPE%'", kFiles,
       {Said, "Cannot expand Compare to File: variable \"NOPE\" is not defined"}, "failure", kFiles},
      {Crc + "FileName: check.txt, FailIfDiffToCRC: true, CompareToCRC: $CBF43926", kFiles, {Said, "CRC matches."},
       "success", kFiles},
      {Crc + "FileName: check.txt, FailIfDiffToCRC: true, CompareToCRC: $cbf43926", kFiles,
       {Said, "CRC don't match", "Compare to CRC: $cbf43926"}, "failure", kFiles},
      {Crc + "FileName: check.txt, UseDecimal: true, FailIfDiffToCRC: true, CompareToCRC: '3421780262'", kFiles,
       {"CRC32 for check.txt is 3421780262", "CRC matches."}, "success", kFiles},
      {Crc + "FileName: check.txt, FailIfDiffToFile: true, CompareToFile: copy.txt, FailIfDiffToCRC: true, "
             "CompareToCRC: $00000000",
       kFiles, {Said, "CRC matches file: copy.txt", "CRC don't match", "Compare to CRC: $00000000"}, "failure", kFiles},
  }, {"--var", "DIR=."});
  // clang-format on
}

TEST(ChecksumsEndToEnd, MD5Rules) {
  const std::string Md5 = "action: Calculate File MD5, ";
  const std::string Said = "MD5 for check.txt is " + kCheckMD5;
  // clang-format off
  ExpectCases({
      {Md5 + "FileName: check.txt, ZTVariable: Digest", kFiles, {Said}, "success", kFiles,
       R"({"Digest": ")" + kCheckMD5 + "\"}"},
      {Md5 + "FileName: missing.txt", {}, {"ERROR - File missing: missing.txt"}, "failure", {}},
      {Md5 + "FileName: '%NOPE%'", {}, {"Cannot expand FileName: variable \"NOPE\" is not defined"}, "failure", {}},
      {Md5 + "FileName: check.txt, FailIfDiffToFile: true, CompareToFile: copy.txt", kFiles,
       {Said, "MD5 matches file: copy.txt"}, "success", kFiles},
      {Md5 + "FileName: first, FailIfDiffToFile: true, CompareToFile: second", kFiles,
       {"MD5 for first is 8B04D5E3775D298E78455EFC5CA404D5", "MD5 don't match",
        "File 2 MD5: A9F0E61A137D86AA9DB53465E0801612"},
       "failure", kFiles},
      {Md5 + "FileName: check.txt, FailIfDiffToFile: true, CompareToFile: b.txt", kFiles,
       {Said, "ERROR - File missing: b.txt"}, "failure", kFiles},
      // The expected digest in any letter case.
      {Md5 + "FileName: check.txt, FailIfDiffToMD5: true, CompareToMD5: 25f9e794323b453885f5181f1b624d0B", kFiles,
       {Said, "MD5 matches."}, "success", kFiles},
      {Md5 + "FileName: check.txt, FailIfDiffToMD5: true, CompareToMD5: 25f9e794323b453885f5181f1b624d0", kFiles,
       {Said, "MD5 don't match", "Compare to MD5: 25f9e794323b453885f5181f1b624d0"}, "failure", kFiles},
      {Md5 + "FileName: check.txt, FailIfDiffToFile: true, CompareToFile: copy.txt, FailIfDiffToMD5: true, "
             "CompareToMD5: '0'",
       kFiles, {Said, "MD5 matches file: copy.txt", "MD5 don't match", "Compare to MD5: 0"}, "failure", kFiles},
  });
  // clang-format on
}

TEST(ChecksumsEndToEnd, AFileAnotherProgramWritesCannotBeHashed) {
  TempDir D;
  MakeTree(D.Path(), {"busy.log=in use", "a.txt=in use"});
  TestProcess Writer({"/bin/sh", "-c", "exec 3>>" + (D / "busy.log") + "; exec sleep 60"});
  // fd 3 is the log only once the shell has run: before that it may be one the child inherited.
  const std::string Fd = "/proc/" + std::to_string(Writer.Pid()) + "/fd/3";
  ASSERT_TRUE(WaitUntil([&] {
    std::error_code E;
    return std::filesystem::read_symlink(Fd, E) == D / "busy.log";
  }));
  ZtResult R = RunZt(D.Path(), R"(actions:
  - {action: Calculate File MD5, FileName: busy.log, ignoreFailure: true}
  - {action: Calculate File MD5, FileName: a.txt, FailIfDiffToFile: true, CompareToFile: busy.log}
)");
  EXPECT_EQ(Messages(R, "1"), Lines{"Hash of file busy.log failed"});
  EXPECT_EQ(Messages(R, "2"),
            (Lines{"MD5 for a.txt is BA11B8FEB4E43D227DCABE6565836D24", "Hash of file busy.log failed"}));
  EXPECT_EQ(ActionResult(R, "2"), "failure");
}

}  // namespace
}  // namespace zt::testing
