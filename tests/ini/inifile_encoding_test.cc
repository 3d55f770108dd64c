// INI files in UTF-8 with or without a byte-order mark and in UTF-16 with
// one: read, and written back in the encoding they came in.
#include <gtest/gtest.h>

#include <string>

#include "support/Files.h"
#include "platform/inifile.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::ReadText;
using zt::testing::TempDir;
using zt::testing::WriteText;

const std::string kBom8 = "\xEF\xBB\xBF";

// UTF-16 bytes of Units, little- or big-endian.
std::string Utf16(const std::u16string& Units, bool BigEndian) {
  std::string R;
  for (char16_t U : Units) {
    char Hi = static_cast<char>(U >> 8), Lo = static_cast<char>(U & 0xFF);
    R += BigEndian ? Hi : Lo;
    R += BigEndian ? Lo : Hi;
  }
  return R;
}

TEST(IniEncodingTest, Utf8ByteOrderMarkSkippedAndKept) {
  TempDir Dir;
  WriteText(Dir / "a.ini", kBom8 + "[s]\r\nk=\xC3\xBC\r\n");
  TIniFile Ini(Dir / "a.ini");
  EXPECT_EQ(Ini.ReadString("s", "k", ""), "\xC3\xBC");
  EXPECT_EQ(Ini.ReadSections(), (std::vector<std::string>{"s"}));
  Ini.WriteString("s", "j", "2");
  EXPECT_EQ(ReadText(Dir / "a.ini"), kBom8 + "[s]\r\nk=\xC3\xBC\r\nj=2\r\n");
}

TEST(IniEncodingTest, FileWithoutMarkKeepsItsBytes) {
  TempDir Dir;
  // Latin-1 bytes that are no UTF-8 stay exactly as they were.
  WriteText(Dir / "a.ini", "[s]\r\nname=M\xFCller\r\n");
  TIniFile Ini(Dir / "a.ini");
  EXPECT_EQ(Ini.ReadString("s", "name", ""), "M\xFCller");
  Ini.WriteString("s", "j", "2");
  EXPECT_EQ(ReadText(Dir / "a.ini"), "[s]\r\nname=M\xFCller\r\nj=2\r\n");
}

class Utf16Test : public ::testing::TestWithParam<bool> {};

TEST_P(Utf16Test, ReadsAndWritesBackInUtf16) {
  const bool Be = GetParam();
  TempDir Dir;
  // "ü€" and U+1F600 (a surrogate pair) in the value.
  WriteText(Dir / "a.ini", Utf16(u"\uFEFF[s]\r\nk=\u00FC\u20AC\U0001F600\r\n", Be));
  TIniFile Ini(Dir / "a.ini");
  EXPECT_EQ(Ini.ReadString("S", "K", ""), "\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80");
  Ini.WriteString("s", "j", "\xC3\xA9");
  Ini.WriteString("t", "k", "1");
  EXPECT_EQ(ReadText(Dir / "a.ini"),
            Utf16(u"\uFEFF[s]\r\nk=\u00FC\u20AC\U0001F600\r\nj=\u00E9\r\n[t]\r\nk=1\r\n", Be));
}

TEST_P(Utf16Test, OddUnitsSurviveAWrite) {
  const bool Be = GetParam();
  TempDir Dir;
  // A lone surrogate elsewhere in the file and a stray last byte.
  std::u16string Units = u"\uFEFF[x]\r\nbad=";
  Units += static_cast<char16_t>(0xD800);
  Units += u"z\r\n[s]\r\nk=1\r\n";
  const std::string Before = Utf16(Units, Be) + "\x7F";
  WriteText(Dir / "a.ini", Before);
  TIniFile(Dir / "a.ini").WriteString("s", "k", "2");
  std::u16string After = Units;
  After[After.size() - 3] = u'2';
  EXPECT_EQ(ReadText(Dir / "a.ini"), Utf16(After, Be) + "\x7F");
}

TEST_P(Utf16Test, ByteOrderMarkAloneIsAnEmptyFile) {
  const bool Be = GetParam();
  TempDir Dir;
  WriteText(Dir / "a.ini", Utf16(u"\uFEFF", Be));
  TIniFile Ini(Dir / "a.ini");
  EXPECT_EQ(Ini.ReadString("s", "k", "d"), "d");
  Ini.WriteString("s", "k", "v");
  EXPECT_EQ(ReadText(Dir / "a.ini"), Utf16(u"\uFEFF[s]\r\nk=v\r\n", Be));
}

INSTANTIATE_TEST_SUITE_P(ByteOrder, Utf16Test, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& I) {
                           return std::string(I.param ? "BigEndian" : "LittleEndian");
                         });

TEST(IniEncodingTest, Utf8ByteOrderMarkAloneIsAnEmptyFile) {
  TempDir Dir;
  WriteText(Dir / "a.ini", kBom8);
  TIniFile Ini(Dir / "a.ini");
  EXPECT_EQ(Ini.ReadString("s", "k", "d"), "d");
  Ini.WriteString("s", "k", "v");
  EXPECT_EQ(ReadText(Dir / "a.ini"), kBom8 + "[s]\r\nk=v\r\n");
}

TEST(IniEncodingTest, InvalidUtf8WrittenToUtf16FileBecomesReplacementCharacter) {
  TempDir Dir;
  WriteText(Dir / "a.ini", Utf16(u"\uFEFF[s]\r\n", false));
  TIniFile(Dir / "a.ini").WriteString("s", "k", "a\xFF");
  EXPECT_EQ(ReadText(Dir / "a.ini"), Utf16(u"\uFEFF[s]\r\nk=a\uFFFD\r\n", false));
}

}  // namespace
}  // namespace zt::platform
