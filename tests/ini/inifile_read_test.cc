// Reading INI files: one table row per rule (file text, call, result).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Files.h"
#include "platform/inifile.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::TempDir;
using zt::testing::WriteText;

struct ReadCase {
  const char* Name;
  std::string File;
  std::string Section, Key, Default;
  std::string Expected;
};

class ReadStringTest : public ::testing::TestWithParam<ReadCase> {};

TEST_P(ReadStringTest, GivesExpectedValue) {
  const ReadCase& C = GetParam();
  TempDir Dir;
  WriteText(Dir / "a.ini", C.File);
  EXPECT_EQ(TIniFile(Dir / "a.ini").ReadString(C.Section, C.Key, C.Default), C.Expected);
}

std::string Repeat(const std::string& S, int N) {
  std::string R;
  for (int I = 0; I < N; ++I) R += S;
  return R;
}

const std::string kEAcute = "\xC3\xA9";          // one UTF-16 unit
const std::string kEmoji = "\xF0\x9F\x98\x80";  // two UTF-16 units

INSTANTIATE_TEST_SUITE_P(
    Rules, ReadStringTest,
    ::testing::Values(
        ReadCase{"NamesIgnoreCase", "[Build]\r\nVersion=1.2\r\n", "bUILD", "VERSION", "d", "1.2"},
        ReadCase{"BlanksAroundNamesAndValueIgnored", "  [ Build ]  \r\n \t Version \t=  1.2 \t\r\n", " Build\t",
                 "\tVersion ", "d", "1.2"},
        ReadCase{"FirstOfDuplicateSectionsWins", "[s]\r\nk=1\r\n[S]\r\nk=2\r\nj=3\r\n", "s", "k", "d", "1"},
        ReadCase{"DuplicateSectionsAreNotMerged", "[s]\r\nk=1\r\n[S]\r\nj=3\r\n", "s", "j", "d", "d"},
        ReadCase{"FirstOfDuplicateKeysWins", "[s]\nk=1\nK=2\n", "s", "k", "d", "1"},
        ReadCase{"CommentLineIsNoKey", "[s]\n;k=1\n", "s", ";k", "d", "d"},
        ReadCase{"IndentedCommentIsNoKey", "[s]\n   ;k=1\n", "s", ";k", "d", "d"},
        ReadCase{"HashStartsAKeyNotAComment", "[s]\n#k=1\n", "s", "#k", "d", "1"},
        ReadCase{"LineWithoutEqualsIsNoKey", "[s]\nk\n", "s", "k", "d", "d"},
        ReadCase{"ValueStartsAfterFirstEquals", "[s]\nk=a=b\n", "s", "k", "d", "a=b"},
        ReadCase{"EmptyValueIsNotTheDefault", "[s]\nk=\n", "s", "k", "d", ""},
        ReadCase{"DoubleQuotesRemoved", "[s]\nk=\" a b \"\n", "s", "k", "d", " a b "},
        ReadCase{"SingleQuotesRemoved", "[s]\nk='x'\n", "s", "k", "d", "x"},
        ReadCase{"MismatchedQuotesKept", "[s]\nk=\"x'\n", "s", "k", "d", "\"x'"},
        ReadCase{"OnlyOnePairOfQuotesRemoved", "[s]\nk=\"\"x\"\"\n", "s", "k", "d", "\"x\""},
        ReadCase{"LoneQuoteKept", "[s]\nk=\"\n", "s", "k", "d", "\""},
        ReadCase{"QuotesInsideValueKept", "[s]\nk=a \"b\" c\n", "s", "k", "d", "a \"b\" c"},
        ReadCase{"DefaultLosesTrailingSpacesOnly", "[s]\n", "s", "k", "\t d \t  ", "\t d \t"},
        ReadCase{"MissingSectionGivesDefault", "[s]\nk=1\n", "t", "k", "d", "d"},
        ReadCase{"TextAfterClosingBracketIgnored", "[s] ; note\nk=1\n", "s", "k", "d", "1"},
        ReadCase{"SectionWithoutClosingBracket", "[s\nk=1\n", "s", "k", "d", "1"},
        ReadCase{"SectionNameEndsAtFirstBracket", "[a]b]\nk=1\n", "a", "k", "d", "1"},
        ReadCase{"KeysBeforeFirstSectionBelongToNone", "k=1\n[s]\n", "s", "k", "d", "d"},
        ReadCase{"SectionEndsAtNextHeader", "[s]\n[t]\nk=1\n", "s", "k", "d", "d"},
        ReadCase{"CarriageReturnEndsLines", "[s]\rk=1\rj=2", "s", "j", "d", "2"},
        ReadCase{"NoFinalLineBreak", "[s]\r\nk=1", "s", "k", "d", "1"},
        ReadCase{"ValueCutTo2047Characters", "[s]\nk=" + std::string(3000, 'a') + "\n", "s", "k", "d",
                 std::string(2047, 'a')},
        ReadCase{"DefaultCutTo2047Characters", "", "s", "k", std::string(2100, 'b'), std::string(2047, 'b')},
        ReadCase{"LimitCountsCharactersNotBytes", "[s]\nk=" + Repeat(kEAcute, 2000) + "\n", "s", "k", "d",
                 Repeat(kEAcute, 2000)},
        ReadCase{"LimitCutsAtCharacterBoundary", "[s]\nk=" + Repeat(kEAcute, 2100) + "\n", "s", "k", "d",
                 Repeat(kEAcute, 2047)},
        ReadCase{"CharacterOutsideBmpCountsTwice", "[s]\nk=" + Repeat(kEmoji, 1100) + "\n", "s", "k", "d",
                 Repeat(kEmoji, 1023)},
        ReadCase{"NamelessSectionNeverMatches", "[]\nk=1\n", "", "k", "d", "d"}),
    [](const ::testing::TestParamInfo<ReadCase>& I) { return std::string(I.param.Name); });

TEST(IniReadTest, MissingFileGivesDefault) {
  TempDir Dir;
  TIniFile Ini(Dir / "none.ini");
  EXPECT_EQ(Ini.ReadString("s", "k", "dflt "), "dflt");
  EXPECT_EQ(Ini.ReadInteger("s", "k", 7), 7);
  EXPECT_TRUE(Ini.ReadBool("s", "k", true));
  EXPECT_TRUE(Ini.ReadSections().empty());
}

struct IntCase {
  const char* Name;
  std::string Value;  // the text after "k=" in the file
  int Default;
  int Expected;
};

class ReadIntegerTest : public ::testing::TestWithParam<IntCase> {};

TEST_P(ReadIntegerTest, ConvertsAsDelphiDoes) {
  const IntCase& C = GetParam();
  TempDir Dir;
  WriteText(Dir / "a.ini", "[s]\r\nk=" + C.Value + "\r\n");
  EXPECT_EQ(TIniFile(Dir / "a.ini").ReadInteger("s", "k", C.Default), C.Expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ReadIntegerTest,
    ::testing::Values(IntCase{"Decimal", "42", -1, 42}, IntCase{"Negative", "-7", -1, -7},
                      IntCase{"PlusSign", "+7", -1, 7}, IntCase{"ZeroXHex", "0x1F", -1, 31},
                      IntCase{"UpperZeroXHex", "0X1f", -1, 31}, IntCase{"DollarHex", "$ff", -1, 255},
                      IntCase{"HexWrapsToNegative", "$FFFFFFFF", 0, -1},
                      IntCase{"HexTooLarge", "$100000000", 5, 5}, IntCase{"LargestInteger", "2147483647", 0, 2147483647},
                      IntCase{"PastLargestInteger", "2147483648", 5, 5},
                      IntCase{"SmallestInteger", "-2147483648", 0, -2147483647 - 1},
                      IntCase{"TrailingLetters", "12abc", 5, 5}, IntCase{"Word", "abc", 5, 5},
                      IntCase{"Empty", "", 5, 5}, IntCase{"Fraction", "1.5", 5, 5},
                      IntCase{"SignOnly", "-", 5, 5}, IntCase{"PrefixOnly", "0x", 5, 5},
                      IntCase{"QuotedLeadingBlanksSkipped", "\"  12\"", 5, 12},
                      IntCase{"QuotedTrailingBlankRefused", "\"12 \"", 5, 5}),
    [](const ::testing::TestParamInfo<IntCase>& I) { return std::string(I.param.Name); });

TEST(IniReadTest, ReadBoolReadsAnInteger) {
  TempDir Dir;
  WriteText(Dir / "a.ini", "[s]\nOne=1\nZero=0\nTwo=2\nMinus=-1\nWord=true\nHex=0x0\n");
  TIniFile Ini(Dir / "a.ini");
  EXPECT_TRUE(Ini.ReadBool("s", "One", false));
  EXPECT_FALSE(Ini.ReadBool("s", "Zero", true));
  EXPECT_TRUE(Ini.ReadBool("s", "Two", false));
  EXPECT_TRUE(Ini.ReadBool("s", "Minus", false));
  EXPECT_FALSE(Ini.ReadBool("s", "Hex", true));
  // Not a number: the default comes back, whatever the text says.
  EXPECT_FALSE(Ini.ReadBool("s", "Word", false));
  EXPECT_TRUE(Ini.ReadBool("s", "Word", true));
  EXPECT_TRUE(Ini.ReadBool("s", "Missing", true));
}

TEST(IniReadTest, SectionsListEveryHeaderInFileOrder) {
  TempDir Dir;
  WriteText(Dir / "a.ini", "k=0\n[b]\nx=1\n[ a ]\n[]\n;[c]\n[B]\n");
  EXPECT_EQ(TIniFile(Dir / "a.ini").ReadSections(), (std::vector<std::string>{"b", "a", "B"}));
}

TEST(IniReadTest, SectionListsKeysOfFirstOccurrenceOnly) {
  TempDir Dir;
  WriteText(Dir / "a.ini", "[s]\n k = 1\n;c=2\nplain\n\nK=3\nj=\n[t]\nz=1\n[S]\nw=1\n");
  EXPECT_EQ(TIniFile(Dir / "a.ini").ReadSection("S"), (std::vector<std::string>{"k", "K", "j"}));
  EXPECT_TRUE(TIniFile(Dir / "a.ini").ReadSection("none").empty());
}

TEST(IniReadTest, SectionValuesShowFirstValueOfRepeatedName) {
  TempDir Dir;
  WriteText(Dir / "a.ini", "[s]\nk=\"q\"\nK=2\nj = 3 \nempty=\n[t]\nx=1\n");
  EXPECT_EQ(TIniFile(Dir / "a.ini").ReadSectionValues("s"),
            (std::vector<std::string>{"k=q", "K=q", "j=3", "empty="}));
}

TEST(IniReadTest, SectionExistsOnlyWithAKey) {
  TempDir Dir;
  WriteText(Dir / "a.ini", "[empty]\n; note\nplain\n[full]\nk=1\n");
  TIniFile Ini(Dir / "a.ini");
  EXPECT_FALSE(Ini.SectionExists("empty"));
  EXPECT_TRUE(Ini.SectionExists("FULL"));
  EXPECT_FALSE(Ini.SectionExists("missing"));
}

TEST(IniReadTest, ValueExistsIgnoresCaseButNotBlanks) {
  TempDir Dir;
  WriteText(Dir / "a.ini", "[s]\n Key = 1\nplain\n");
  TIniFile Ini(Dir / "a.ini");
  EXPECT_TRUE(Ini.ValueExists("s", "KEY"));
  EXPECT_FALSE(Ini.ValueExists("s", " Key"));
  EXPECT_FALSE(Ini.ValueExists("s", "plain"));
  EXPECT_FALSE(Ini.ValueExists("t", "Key"));
}

TEST(IniReadTest, StrToIntDefFollowsDelphi) {
  EXPECT_EQ(StrToIntDef(" 12", 0), 12);
  EXPECT_EQ(StrToIntDef("x1A", 0), 26);
  EXPECT_EQ(StrToIntDef("-$10", 0), -16);
  EXPECT_EQ(StrToIntDef("\t12", 9), 9);
  EXPECT_EQ(StrToIntDef("1 2", 9), 9);
}

}  // namespace
}  // namespace zt::platform
