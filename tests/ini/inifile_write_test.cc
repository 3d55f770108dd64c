// Writing INI files: one table row per rule (file before, call, file after).
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

#include "support/Files.h"
#include "platform/files.h"
#include "platform/inifile.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::ReadText;
using zt::testing::TempDir;
using zt::testing::WriteText;

struct WriteCase {
  const char* Name;
  std::optional<std::string> Before;  // nullopt: no file
  std::function<void(TIniFile&)> Call;
  std::optional<std::string> After;  // nullopt: still no file
};

class WriteTest : public ::testing::TestWithParam<WriteCase> {};

TEST_P(WriteTest, LeavesExpectedFile) {
  const WriteCase& C = GetParam();
  TempDir Dir;
  const std::string Path = Dir / "a.ini";
  if (C.Before) WriteText(Path, *C.Before);
  TIniFile Ini(Path);
  C.Call(Ini);
  ASSERT_EQ(FileExists(Path), C.After.has_value());
  if (C.After) {
    EXPECT_EQ(ReadText(Path), *C.After);
  }
}

auto Write(const char* S, const char* K, const char* V) {
  return [=](TIniFile& Ini) { Ini.WriteString(S, K, V); };
}

INSTANTIATE_TEST_SUITE_P(
    Rules, WriteTest,
    ::testing::Values(
        WriteCase{"ReplacesValueKeepingEveryOtherLine",
                  "; top\r\n[s]\r\n  k = old ; x\r\nj=1\r\n\r\n[t]\r\nk=x\r\n", Write("s", "K", "new"),
                  "; top\r\n[s]\r\nk=new\r\nj=1\r\n\r\n[t]\r\nk=x\r\n"},
        WriteCase{"KeepsSpellingOfExistingNames", "[Sec]\r\nKey=1\r\n", Write(" sec ", "KEY", "2"),
                  "[Sec]\r\nKey=2\r\n"},
        WriteCase{"ChangesFirstOfDuplicateKeys", "[s]\r\nk=1\r\nk=2\r\n", Write("s", "k", "3"),
                  "[s]\r\nk=3\r\nk=2\r\n"},
        WriteCase{"ChangesFirstOfDuplicateSections", "[s]\r\na=1\r\n[s]\r\nk=2\r\n", Write("s", "k", "3"),
                  "[s]\r\na=1\r\nk=3\r\n[s]\r\nk=2\r\n"},
        WriteCase{"NewKeyFollowsLastLineOfSection", "[s]\r\na=1\r\n\r\n\r\n[t]\r\nb=1\r\n", Write("s", "b", "2"),
                  "[s]\r\na=1\r\nb=2\r\n\r\n\r\n[t]\r\nb=1\r\n"},
        WriteCase{"NewKeyFollowsTrailingComment", "[s]\r\na=1\r\n; end of s\r\n\r\n[t]\r\n", Write("s", "b", "2"),
                  "[s]\r\na=1\r\n; end of s\r\nb=2\r\n\r\n[t]\r\n"},
        WriteCase{"NewKeyInEmptySection", "[s]\r\n[t]\r\n", Write("s", "b", "2"), "[s]\r\nb=2\r\n[t]\r\n"},
        WriteCase{"NewSectionAppendedWithoutBlankLine", "[s]\r\na=1\r\n", Write(" t ", " b ", "2"),
                  "[s]\r\na=1\r\n[t]\r\nb=2\r\n"},
        WriteCase{"LastLineWithoutBreakGetsOne", "[s]\r\na=1", Write("s", "b", "2"), "[s]\r\na=1\r\nb=2\r\n"},
        WriteCase{"NewSectionAfterLastLineWithoutBreak", "[s]\r\na=1", Write("t", "b", "2"),
                  "[s]\r\na=1\r\n[t]\r\nb=2\r\n"},
        WriteCase{"ReplacedLineKeepsItsLineEnd", "[s]\na=1\nb=2\n", Write("s", "a", "9"), "[s]\na=9\nb=2\n"},
        WriteCase{"ReplacesLastLineWithoutBreak", "[s]\na=1", Write("s", "a", "9"), "[s]\na=9"},
        WriteCase{"ValueWrittenAsGiven", "[s]\r\n", Write("s", "k", "  \"q\"  "), "[s]\r\nk=  \"q\"  \r\n"},
        WriteCase{"EmptyValueGivesKeyEquals", "[s]\r\nk=1\r\n", Write("s", "k", ""), "[s]\r\nk=\r\n"},
        WriteCase{"EmptyFileGetsSection", "", Write("s", "k", "v"), "[s]\r\nk=v\r\n"},
        WriteCase{"MissingFileCreated", std::nullopt, Write("s", "k", "v"), "[s]\r\nk=v\r\n"},
        WriteCase{"WriteIntegerWritesDecimal", "[s]\r\n", [](TIniFile& I) { I.WriteInteger("s", "n", -42); },
                  "[s]\r\nn=-42\r\n"},
        WriteCase{"WriteBoolWritesOneOrZero", "[s]\r\n",
                  [](TIniFile& I) {
                    I.WriteBool("s", "t", true);
                    I.WriteBool("s", "f", false);
                  },
                  "[s]\r\nt=1\r\nf=0\r\n"},
        WriteCase{"EraseSectionRemovesItsLines", "[a]\r\nx=1\r\n[b]\r\ny=2\r\n; c\r\n\r\n[c]\r\nz=3\r\n",
                  [](TIniFile& I) { I.EraseSection(" B "); }, "[a]\r\nx=1\r\n[c]\r\nz=3\r\n"},
        WriteCase{"EraseSectionRemovesFirstOccurrenceOnly", "[a]\r\nx=1\r\n[A]\r\nx=2\r\n",
                  [](TIniFile& I) { I.EraseSection("a"); }, "[A]\r\nx=2\r\n"},
        WriteCase{"EraseMissingSectionChangesNothing", "[a]\r\nx=1",
                  [](TIniFile& I) { I.EraseSection("b"); }, "[a]\r\nx=1"},
        WriteCase{"EraseSectionOfMissingFileCreatesNone", std::nullopt,
                  [](TIniFile& I) { I.EraseSection("b"); }, std::nullopt},
        WriteCase{"DeleteKeyRemovesItsLine", "[s]\r\na=1\r\nb=2\r\n", [](TIniFile& I) { I.DeleteKey("S", "A"); },
                  "[s]\r\nb=2\r\n"},
        WriteCase{"DeletingLastKeyLeavesHeader", "[s]\r\na=1\r\n[t]\r\n",
                  [](TIniFile& I) { I.DeleteKey("s", "a"); }, "[s]\r\n[t]\r\n"},
        WriteCase{"DeleteMissingKeyChangesNothing", "[s]\r\na=1\r\n",
                  [](TIniFile& I) { I.DeleteKey("s", "b"); }, "[s]\r\na=1\r\n"},
        WriteCase{"DeleteKeyOfMissingFileCreatesNone", std::nullopt,
                  [](TIniFile& I) { I.DeleteKey("s", "b"); }, std::nullopt}),
    [](const ::testing::TestParamInfo<WriteCase>& I) { return std::string(I.param.Name); });

TEST(IniWriteTest, WrittenValueReadsBack) {
  TempDir Dir;
  TIniFile Ini(Dir / "a.ini");
  Ini.WriteString("Build", "Version", "1.4.2");
  Ini.WriteInteger("Build", "Count", 12);
  Ini.WriteBool("Build", "Release", true);
  EXPECT_EQ(Ini.ReadString("build", "version", ""), "1.4.2");
  EXPECT_EQ(Ini.ReadInteger("build", "count", 0), 12);
  EXPECT_TRUE(Ini.ReadBool("build", "release", false));
}

TEST(IniWriteTest, NamelessSectionRefused) {
  TempDir Dir;
  TIniFile Ini(Dir / "a.ini");
  EXPECT_THROW(Ini.WriteString("  ", "k", "v"), EIniFileException);
  EXPECT_FALSE(FileExists(Dir / "a.ini"));
}

TEST(IniWriteTest, MissingFolderGivesExceptionNamingFile) {
  TempDir Dir;
  TIniFile Ini(Dir / "no/a.ini");
  try {
    Ini.WriteString("s", "k", "v");
    FAIL() << "no exception";
  } catch (const EIniFileException& E) {
    EXPECT_EQ(std::string(E.what()), "Unable to write to " + Dir / "no/a.ini");
  }
}

}  // namespace
}  // namespace zt::platform
