// "Calculate File CRC32" run against an in-memory host.
#include <gtest/gtest.h>

#include "support/ActionTesting.h"
#include "PlainChecksums.h"
#include "checksums/Ztfilecrcaction.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "support/FakeHost.h"
#include "support/TempDir.h"

namespace zt::package {
namespace {

using Lines = std::vector<std::string>;

class CRCActionTest : public ::testing::Test {
 protected:
  CRCActionTest() { Action.SetHost(&Host); }
  std::string Write(const std::string& Name, const std::string& Contents) {
    const std::string Path = Dir / Name;
    testing::WriteFile(Path, Contents);
    return Path;
  }
  testing::TempDir Dir;
  testing::FakeHost Host;
  TZTFileCRCAction Action;
};

TEST_F(CRCActionTest, LogsTheChecksumWithTheFileNameOnly) {
  Action.SetFileName(Write("check.txt", "123456789"));
  EXPECT_TRUE(Action.Execute());
  EXPECT_EQ(Host.Messages, Lines{"CRC32 for check.txt is $CBF43926"});
  EXPECT_TRUE(Host.Variables.empty());
}

TEST_F(CRCActionTest, ExpandsTheFileNameAndStoresTheTextInTheVariable) {
  Write("check.txt", "123456789");
  Host.Variables["DIR"] = Dir.Path();
  Action.SetFileName("%DIR%/check.txt");
  Action.SetZTVariable("Sum");
  EXPECT_TRUE(Action.Execute());
  EXPECT_EQ(Host.Variables["Sum"], frame::TZTVariant("$CBF43926"));
}

TEST_F(CRCActionTest, EmptyFileGivesZeroInBothForms) {
  Action.SetFileName(Write("empty.bin", ""));
  Action.SetZTVariable("Sum");
  EXPECT_TRUE(Action.Execute());
  EXPECT_EQ(Host.Variables["Sum"], frame::TZTVariant("$00000000"));
  Action.SetUseDecimal(true);
  EXPECT_TRUE(Action.Execute());
  EXPECT_EQ(Host.Variables["Sum"], frame::TZTVariant("0"));
  EXPECT_EQ(Host.Messages.back(), "CRC32 for empty.bin is 0");
}

TEST_F(CRCActionTest, DecimalFormIsUnsignedWithoutLeadingZeros) {
  Action.SetUseDecimal(true);
  Action.SetFileName(Write("all-ones.bin", testing::WithCRC32("x", 0xFFFFFFFF)));
  EXPECT_TRUE(Action.Execute());
  Action.SetFileName(Write("small.bin", testing::WithCRC32("y", 0x0000ABCD)));
  EXPECT_TRUE(Action.Execute());
  EXPECT_EQ(Host.Messages, (Lines{"CRC32 for all-ones.bin is 4294967295", "CRC32 for small.bin is 43981"}));
}

TEST_F(CRCActionTest, MissingFileFailsWithoutTouchingTheVariable) {
  const std::string Path = Dir / "nowhere.bin";
  Action.SetFileName(Path);
  Action.SetZTVariable("Sum");
  EXPECT_FALSE(Action.Execute());
  EXPECT_EQ(Host.Messages, Lines{"ERROR - File missing: " + Path});
  EXPECT_TRUE(Host.Variables.empty());
}

TEST_F(CRCActionTest, FailedExpansionEndsTheRunSilently) {
  Action.SetFileName("%UNDEFINED%/a.bin");
  EXPECT_FALSE(Action.Execute());
  EXPECT_TRUE(Host.Messages.empty());
  EXPECT_EQ(Host.HostLines, Lines{"FileName: Variable \"UNDEFINED\" is not defined"});
}

// The platform refuses the open: the run-time's input/output exception text
// reaches the log.
class DenyOpenEnv : public platform::EnvWrapper {
 public:
  using EnvWrapper::EnvWrapper;
  platform::THandle FileOpen(const std::string&, int) override {
    platform::SetLastError(platform::ERROR_ACCESS_DENIED);
    return platform::INVALID_HANDLE_VALUE;
  }
};

TEST_F(CRCActionTest, UnopenableFileReportsTheInputOutputError) {
  Action.SetFileName(Write("locked.bin", "data"));
  DenyOpenEnv Deny(platform::Env::Platform());
  platform::Env* Previous = platform::Env::SetDefault(&Deny);
  const bool Result = Action.Execute();
  platform::Env::SetDefault(Previous);
  EXPECT_FALSE(Result);
  EXPECT_EQ(Host.Messages, Lines{"Error getting crc32 : File access denied"});
}

TEST_F(CRCActionTest, MatchingSecondFileIsReported) {
  Action.SetFileName(Write("a.bin", "same bytes"));
  Action.SetFailIfDiffToFile(true);
  Action.SetCompareToFile(Write("b.bin", "same bytes"));
  EXPECT_TRUE(Action.Execute());
  const std::string Crc = testing::Hex8(testing::PlainCRC32("same bytes"));
  EXPECT_EQ(Host.Messages, (Lines{"CRC32 for a.bin is " + Crc, "CRC matches file: b.bin"}));
}

TEST_F(CRCActionTest, DifferentSecondFileFailsAfterStoringTheVariable) {
  Action.SetFileName(Write("a.bin", "first"));
  Action.SetZTVariable("Sum");
  Action.SetFailIfDiffToFile(true);
  Action.SetCompareToFile(Write("b.bin", "second"));
  EXPECT_FALSE(Action.Execute());
  const std::string Crc1 = testing::Hex8(testing::PlainCRC32("first"));
  const std::string Crc2 = testing::Hex8(testing::PlainCRC32("second"));
  EXPECT_EQ(Host.Messages, (Lines{"CRC32 for a.bin is " + Crc1, "CRC don't match", "File 2 CRC: " + Crc2}));
  EXPECT_EQ(Host.Variables["Sum"], frame::TZTVariant(Crc1));
}

TEST_F(CRCActionTest, MissingOrUnexpandableSecondFileFails) {
  Action.SetFileName(Write("a.bin", "x"));
  Action.SetFailIfDiffToFile(true);
  Action.SetCompareToFile(Dir / "gone.bin");
  EXPECT_FALSE(Action.Execute());
  EXPECT_EQ(Host.Messages.back(), "ERROR - File missing: " + (Dir / "gone.bin"));
  Host.Messages.clear();
  Action.SetCompareToFile("%NOPE%");
  EXPECT_FALSE(Action.Execute());
  EXPECT_EQ(Host.Messages.size(), 1u);
  EXPECT_EQ(Host.HostLines, Lines{"Compare to File: Variable \"NOPE\" is not defined"});
}

TEST_F(CRCActionTest, ExpectedValueMustMatchExactly) {
  Action.SetFileName(Write("check.txt", "123456789"));
  Action.SetFailIfDiffToCRC(true);
  Action.SetCompareToCRC("$CBF43926");
  EXPECT_TRUE(Action.Execute());
  EXPECT_EQ(Host.Messages.back(), "CRC matches.");
  for (const std::string Wrong : {"$cbf43926", "CBF43926", "3421780262"}) {
    Host.Messages.clear();
    Action.SetCompareToCRC(Wrong);
    EXPECT_FALSE(Action.Execute()) << Wrong;
    EXPECT_EQ(Host.Messages, (Lines{"CRC32 for check.txt is $CBF43926", "CRC don't match", "Compare to CRC: " + Wrong}));
  }
}

TEST_F(CRCActionTest, ExpectedDecimalValueMatchesInDecimalMode) {
  Host.Variables["EXPECTED"] = "3421780262";
  Action.SetFileName(Write("check.txt", "123456789"));
  Action.SetUseDecimal(true);
  Action.SetFailIfDiffToCRC(true);
  Action.SetCompareToCRC("%EXPECTED%");
  EXPECT_TRUE(Action.Execute());
  EXPECT_EQ(Host.Messages, (Lines{"CRC32 for check.txt is 3421780262", "CRC matches."}));
}

TEST_F(CRCActionTest, FileComparisonRunsBeforeValueComparison) {
  Action.SetFileName(Write("a.bin", "one"));
  Action.SetFailIfDiffToFile(true);
  Action.SetCompareToFile(Write("b.bin", "one"));
  Action.SetFailIfDiffToCRC(true);
  Action.SetCompareToCRC("$00000000");
  EXPECT_FALSE(Action.Execute());
  const std::string Crc = testing::Hex8(testing::PlainCRC32("one"));
  EXPECT_EQ(Host.Messages, (Lines{"CRC32 for a.bin is " + Crc, "CRC matches file: b.bin", "CRC don't match",
                                  "Compare to CRC: $00000000"}));
}

TEST_F(CRCActionTest, ValidationRequiresAFileName) {
  testing::ValidationErrors Errors;
  EXPECT_FALSE(Action.Validate(Errors));
  EXPECT_EQ(Errors.Errors, (std::vector<std::string>{"File Name: Filename has not been set"}));
  testing::ValidationErrors None;
  Action.SetFileName("x.bin");
  EXPECT_TRUE(Action.Validate(None));
  EXPECT_TRUE(None.Errors.empty());
}

TEST_F(CRCActionTest, PublishesItsPropertiesInOrderWithEmptyDefaults) {
  Lines Names;
  for (const auto& P : TZTFileCRCAction::ClassType().Properties()) {
    Names.push_back(P.Name + ":" + P.TypeName + "=" + P.Get(Action).AsString());
  }
  EXPECT_EQ(Names, (Lines{"FileName:string=", "ZTVariable:string=", "FailIfDiffToFile:Boolean=False",
                          "CompareToFile:string=", "FailIfDiffToCRC:Boolean=False", "CompareToCRC:string=",
                          "UseDecimal:Boolean=False"}));
  EXPECT_EQ(TZTFileCRCAction::GetActionName(), "Calculate File CRC32");
  EXPECT_EQ(Action.GetHelpTopicID(), 3290);
  EXPECT_EQ(Action.GetQuickHelpFilename(), "Plugins\\FileCRC.html");
}

}  // namespace
}  // namespace zt::package
