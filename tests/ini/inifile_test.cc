// The INI engine: what a read gives and what a write leaves, one table row per
// rule; files in UTF-8 and UTF-16; hostile files; writes that are refused or
// fail. What the Read / Write Ini File actions log is in tests/e2e.
#include "platform/inifile.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "platform/conversions.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using Names = std::vector<std::string>;
using zt::testing::TempDir;

const std::string kBom8 = "\xEF\xBB\xBF";
const std::string kEAcute = "\xC3\xA9";         // one UTF-16 unit
const std::string kEmoji = "\xF0\x9F\x98\x80";  // two UTF-16 units

std::string Repeat(const std::string& S, int N) {
  std::string R;
  for (int I = 0; I < N; ++I) R += S;
  return R;
}

// UTF-16 bytes of Units, little- or big-endian.
std::string Utf16(const std::u16string& Units, bool BigEndian) {
  std::string R;
  for (char16_t U : Units) {
    const char Hi = static_cast<char>(U >> 8), Lo = static_cast<char>(U & 0xFF);
    R += BigEndian ? Hi : Lo;
    R += BigEndian ? Lo : Hi;
  }
  return R;
}

TEST(IniRead, ReadStringRules) {
  const std::u16string Wide = u"\uFEFF[s]\r\nk=\u00FC\u20AC\U0001F600\r\n";  // with a surrogate pair
  const std::string WideValue = "\xC3\xBC\xE2\x82\xAC" + kEmoji;
  // clang-format off
  const struct {
    const char* Rule;
    std::string File, Section, Key, Default, Expected;
  } Cases[] = {
      {"blanks around names and value", "  [ Build ]  \r\n \t Version \t=  1.2 \t\r\n", " Build\t", "\tVersion ", "d",
       "1.2"},
      {"first of duplicate sections", "[s]\r\nk=1\r\n[S]\r\nk=2\r\nj=3\r\n", "s", "k", "d", "1"},
      {"duplicate sections not merged", "[s]\r\nk=1\r\n[S]\r\nj=3\r\n", "s", "j", "d", "d"},
      {"first of duplicate keys", "[s]\nk=1\nK=2\n", "s", "k", "d", "1"},
      {"comment line", "[s]\n;k=1\n", "s", ";k", "d", "d"},
      {"indented comment", "[s]\n   ;k=1\n", "s", ";k", "d", "d"},
      {"hash starts a key", "[s]\n#k=1\n", "s", "#k", "d", "1"},
      {"line without equals", "[s]\nk\n", "s", "k", "d", "d"},
      {"value after first equals", "[s]\nk=a=b\n", "s", "k", "d", "a=b"},
      {"empty value is no default", "[s]\nk=\n", "s", "k", "d", ""},
      {"single quotes removed", "[s]\nk='x'\n", "s", "k", "d", "x"},
      {"mismatched quotes kept", "[s]\nk=\"x'\n", "s", "k", "d", "\"x'"},
      {"one pair of quotes removed", "[s]\nk=\"\"x\"\"\n", "s", "k", "d", "\"x\""},
      {"lone quote kept", "[s]\nk=\"\n", "s", "k", "d", "\""},
      {"quotes inside kept", "[s]\nk=a \"b\" c\n", "s", "k", "d", "a \"b\" c"},
      {"default loses trailing blanks", "[s]\n", "s", "k", "\t d \t  ", "\t d \t"},
      {"missing section", "[s]\nk=1\n", "t", "k", "d", "d"},
      {"text after the bracket", "[s] ; note\nk=1\n", "s", "k", "d", "1"},
      {"header without bracket", "[s\nk=1\n", "s", "k", "d", "1"},
      {"name ends at first bracket", "[a]b]\nk=1\n", "a", "k", "d", "1"},
      {"keys before any section", "k=1\n[s]\n", "s", "k", "d", "d"},
      {"section ends at next header", "[s]\n[t]\nk=1\n", "s", "k", "d", "d"},
      {"CR ends lines", "[s]\rk=1\rj=2", "s", "j", "d", "2"},
      {"no final line break", "[s]\r\nk=1", "s", "k", "d", "1"},
      {"nameless section", "[]\nk=1\n", "", "k", "d", "d"},
      {"default cut to 2047", "", "s", "k", std::string(2100, 'b'), std::string(2047, 'b')},
      {"limit counts characters", "[s]\nk=" + Repeat(kEAcute, 2000) + "\n", "s", "k", "d", Repeat(kEAcute, 2000)},
      {"cut at a character", "[s]\nk=" + Repeat(kEAcute, 2100) + "\n", "s", "k", "d", Repeat(kEAcute, 2047)},
      {"outside BMP counts twice", "[s]\nk=" + Repeat(kEmoji, 1100) + "\n", "s", "k", "d", Repeat(kEmoji, 1023)},
      {"UTF-8 mark skipped", kBom8 + "[s]\r\nk=" + kEAcute + "\r\n", "s", "k", "d", kEAcute},
      {"bytes without a mark kept", "[s]\r\nname=M\xFCller\r\n", "s", "name", "", "M\xFCller"},
      {"UTF-16 little-endian", Utf16(Wide, false), "S", "K", "", WideValue},
      {"UTF-16 big-endian", Utf16(Wide, true), "S", "K", "", WideValue},
  };
  // clang-format on
  TempDir Dir;
  for (const auto& C : Cases)
    EXPECT_EQ(TIniFile(Dir.Write("a.ini", C.File)).ReadString(C.Section, C.Key, C.Default), C.Expected)
        << C.Rule;
  TIniFile Missing(Dir / "none.ini");
  EXPECT_EQ(Missing.ReadString("s", "k", "dflt "), "dflt");
  EXPECT_TRUE(Missing.ReadSections().empty());
}

TEST(IniRead, IntegersConvertAsDelphiDoes) {
  // clang-format off
  const struct {
    std::string Text;
    int Expected;  // 5: refused, the default
  } Cases[] = {
      {"42", 42}, {"-7", -7}, {"+7", 7}, {"0X1f", 31}, {"$ff", 255}, {"x1A", 26}, {"-$10", -16},
      {"$FFFFFFFF", -1}, {"$100000000", 5}, {"2147483647", 2147483647}, {"2147483648", 5},
      {"-2147483648", -2147483647 - 1}, {"12abc", 5}, {"", 5}, {"1.5", 5}, {"-", 5}, {"0x", 5},
      {"  12", 12}, {"12 ", 5}, {"\t12", 5},
  };
  // clang-format on
  for (const auto& C : Cases) EXPECT_EQ(StrToIntDef(C.Text, 5), C.Expected) << C.Text;
}

TEST(IniRead, ListsOfSectionsKeysAndValues) {
  TempDir Dir;
  TIniFile Ini(Dir.Write("a.ini", "k=0\n[b]\nx=1\n[ a ]\n[]\n;[c]\n[B]\nw=1\n[empty]\n; note\nplain\n"));
  EXPECT_EQ(Ini.ReadSections(), (Names{"b", "a", "B", "empty"}));
  EXPECT_TRUE(Ini.SectionExists("B"));
  EXPECT_FALSE(Ini.SectionExists("a"));  // only with a key
  EXPECT_FALSE(Ini.SectionExists("empty"));
  EXPECT_FALSE(Ini.SectionExists("missing"));
  // Keys of the first occurrence only; a repeated name shows its first value.
  TIniFile S(Dir.Write("s.ini", "[s]\n k = \"q\"\n;c=2\nplain\n\nK=3\nj = 3 \nempty=\n[t]\nz=1\n[S]\nw=1\n"));
  EXPECT_EQ(S.ReadSection("S"), (Names{"k", "K", "j", "empty"}));
  EXPECT_EQ(S.ReadSectionValues("s"), (Names{"k=q", "K=q", "j=3", "empty="}));
  EXPECT_TRUE(S.ReadSection("none").empty());
  EXPECT_TRUE(S.SectionExists("T"));
  EXPECT_TRUE(S.ValueExists("s", "EMPTY"));
  EXPECT_FALSE(S.ValueExists("s", " k"));
  EXPECT_FALSE(S.ValueExists("s", "plain"));
  EXPECT_FALSE(S.ValueExists("t", "k"));
}

TEST(IniWrite, WhatACallLeaves) {
  using Call = std::function<void(TIniFile&)>;
  auto Write = [](const char* S, const char* K, std::string V) -> Call {
    return [=](TIniFile& Ini) { Ini.WriteString(S, K, V); };
  };
  const Call EraseB = [](TIniFile& I) { I.EraseSection(" B "); };
  const Call DeleteSA = [](TIniFile& I) { I.DeleteKey("S", "A"); };
  const Call Typed = [](TIniFile& I) {
    I.WriteInteger("s", "n", -42);
    I.WriteBool("s", "t", true);
    I.WriteBool("s", "f", false);
  };
  // A surrogate alone in another line and a stray last byte survive a write.
  std::u16string Odd = u"\uFEFF[x]\r\nbad=";
  Odd += static_cast<char16_t>(0xD800);
  const std::u16string OddAfter = Odd + u"z\r\n[s]\r\nk=2\r\n";
  Odd += u"z\r\n[s]\r\nk=1\r\n";
  // clang-format off
  const struct {
    const char* Rule;
    std::optional<std::string> Before;  // nullopt: no file
    Call Do;
    std::optional<std::string> After;  // nullopt: still no file
  } Cases[] = {
      {"replaces keeping every other line", "; top\r\n[s]\r\n  k = old ; x\r\nj=1\r\n\r\n[t]\r\nk=x\r\n",
       Write("s", "K", "new"), "; top\r\n[s]\r\nk=new\r\nj=1\r\n\r\n[t]\r\nk=x\r\n"},
      {"keeps spelling of names", "[Sec]\r\nKey=1\r\n", Write(" sec ", "KEY", "2"), "[Sec]\r\nKey=2\r\n"},
      {"first of duplicate keys", "[s]\r\nk=1\r\nk=2\r\n", Write("s", "k", "3"), "[s]\r\nk=3\r\nk=2\r\n"},
      {"first of duplicate sections", "[s]\r\na=1\r\n[s]\r\nk=2\r\n", Write("s", "k", "3"),
       "[s]\r\na=1\r\nk=3\r\n[s]\r\nk=2\r\n"},
      {"new key after last line", "[s]\r\na=1\r\n\r\n\r\n[t]\r\nb=1\r\n", Write("s", "b", "2"),
       "[s]\r\na=1\r\nb=2\r\n\r\n\r\n[t]\r\nb=1\r\n"},
      {"new key after comment", "[s]\r\na=1\r\n; end\r\n\r\n[t]\r\n", Write("s", "b", "2"),
       "[s]\r\na=1\r\n; end\r\nb=2\r\n\r\n[t]\r\n"},
      {"new key in empty section", "[s]\r\n[t]\r\n", Write("s", "b", "2"), "[s]\r\nb=2\r\n[t]\r\n"},
      {"new section appended", "[s]\r\na=1\r\n", Write(" t ", " b ", "2"), "[s]\r\na=1\r\n[t]\r\nb=2\r\n"},
      {"last line gets a break", "[s]\r\na=1", Write("s", "b", "2"), "[s]\r\na=1\r\nb=2\r\n"},
      {"new section after no break", "[s]\r\na=1", Write("t", "b", "2"), "[s]\r\na=1\r\n[t]\r\nb=2\r\n"},
      {"line keeps its line end", "[s]\na=1\nb=2\n", Write("s", "a", "9"), "[s]\na=9\nb=2\n"},
      {"last line without break", "[s]\na=1", Write("s", "a", "9"), "[s]\na=9"},
      {"value as given", "[s]\r\n", Write("s", "k", "  \"q\"  "), "[s]\r\nk=  \"q\"  \r\n"},
      {"empty value", "[s]\r\nk=1\r\n", Write("s", "k", ""), "[s]\r\nk=\r\n"},
      {"empty file", "", Write("s", "k", "v"), "[s]\r\nk=v\r\n"},
      {"missing file created", std::nullopt, Write("s", "k", "v"), "[s]\r\nk=v\r\n"},
      {"integer and bools", "[s]\r\n", Typed, "[s]\r\nn=-42\r\nt=1\r\nf=0\r\n"},
      {"erase section", "[a]\r\nx=1\r\n[b]\r\ny=2\r\n; c\r\n\r\n[c]\r\nz=3\r\n", EraseB,
       "[a]\r\nx=1\r\n[c]\r\nz=3\r\n"},
      {"erase first occurrence", "[b]\r\nx=1\r\n[B]\r\nx=2\r\n", EraseB, "[B]\r\nx=2\r\n"},
      {"erase missing section", "[a]\r\nx=1", EraseB, "[a]\r\nx=1"},
      {"erase in missing file", std::nullopt, EraseB, std::nullopt},
      {"delete key", "[s]\r\na=1\r\nb=2\r\n", DeleteSA, "[s]\r\nb=2\r\n"},
      {"delete last key", "[s]\r\na=1\r\n[t]\r\n", DeleteSA, "[s]\r\n[t]\r\n"},
      {"delete missing key", "[s]\r\nb=1\r\n", DeleteSA, "[s]\r\nb=1\r\n"},
      {"delete in missing file", std::nullopt, DeleteSA, std::nullopt},
      // Written back in the encoding read.
      {"UTF-8 mark kept", kBom8 + "[s]\r\nk=1\r\n", Write("s", "j", "2"), kBom8 + "[s]\r\nk=1\r\nj=2\r\n"},
      {"UTF-8 mark alone", kBom8, Write("s", "k", "v"), kBom8 + "[s]\r\nk=v\r\n"},
      {"bytes without a mark kept", "[s]\r\nname=M\xFCller\r\n", Write("s", "j", "2"),
       "[s]\r\nname=M\xFCller\r\nj=2\r\n"},
      {"UTF-16 LE", Utf16(u"\uFEFF[s]\r\nk=\U0001F600\r\n", false), Write("s", "j", kEAcute),
       Utf16(u"\uFEFF[s]\r\nk=\U0001F600\r\nj=\u00E9\r\n", false)},
      {"UTF-16 BE new section", Utf16(u"\uFEFF[s]\r\n", true), Write("t", "k", "1"),
       Utf16(u"\uFEFF[s]\r\n[t]\r\nk=1\r\n", true)},
      {"UTF-16 mark alone", Utf16(u"\uFEFF", true), Write("s", "k", "v"), Utf16(u"\uFEFF[s]\r\nk=v\r\n", true)},
      {"UTF-16 odd units LE", Utf16(Odd, false) + "\x7F", Write("s", "k", "2"), Utf16(OddAfter, false) + "\x7F"},
      {"UTF-16 odd units BE", Utf16(Odd, true) + "\x7F", Write("s", "k", "2"), Utf16(OddAfter, true) + "\x7F"},
      {"invalid UTF-8 into UTF-16", Utf16(u"\uFEFF[s]\r\n", false), Write("s", "k", "a\xFF"),
       Utf16(u"\uFEFF[s]\r\nk=a\uFFFD\r\n", false)},
  };
  // clang-format on
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Rule);
    TempDir Dir;
    const std::string Path = Dir / "a.ini";
    if (C.Before) Dir.Write("a.ini", *C.Before);
    TIniFile Ini(Path);
    C.Do(Ini);
    ASSERT_EQ(FileExists(Path), C.After.has_value());
    if (C.After) {
      EXPECT_EQ(Dir.Read("a.ini"), *C.After);
    }
  }
}

// A disk that fills up while the new file is written.
class FullDiskEnv : public EnvWrapper {
 public:
  FullDiskEnv() : EnvWrapper(Env::Platform()) {}
  bool WriteFileAtomically(const std::string&, const std::string&) override {
    SetLastError(ERROR_DISK_FULL);
    return false;
  }
};

TEST(IniWrite, ARefusedOrFailedWriteThrowsAndChangesNothing) {
  enum Fault { kReadOnly, kLocked, kDiskFull, kDirectory };
  const std::pair<Fault, DWORD> Cases[] = {{kReadOnly, ERROR_ACCESS_DENIED},
                                           {kLocked, ERROR_SHARING_VIOLATION},
                                           {kDiskFull, ERROR_DISK_FULL},
                                           {kDirectory, ERROR_ACCESS_DENIED}};
  const std::string Before = "[s]\r\nk=1\r\n";
  for (const auto& [How, Error] : Cases) {
    SCOPED_TRACE(How);
    TempDir Dir;
    const std::string Path = How == kDirectory ? Dir.Path() : Dir.Write("a.ini", Before);
    if (How == kReadOnly) {
      ASSERT_TRUE(SetFileAttributesA(Path, FILE_ATTRIBUTE_READONLY));
    }
    const THandle Other =
        How == kLocked ? FileOpen(Path, fmOpenReadWrite | fmShareExclusive) : INVALID_HANDLE_VALUE;
    FullDiskEnv Full;
    ScopedEnv Use(How == kDiskFull ? &Full : Env::Default());
    TIniFile Ini(Path);
    try {
      Ini.WriteString("s", "k", "2");
      ADD_FAILURE() << "no exception";
    } catch (const EIniFileException& E) {
      EXPECT_EQ(std::string(E.what()), "Unable to write to " + Path);
      EXPECT_EQ(GetLastError(), Error);
    }
    if (How == kDirectory) {
      EXPECT_EQ(Ini.ReadString("s", "k", "d"), "d");
      continue;
    }
    EXPECT_THROW(Ini.EraseSection("s"), EIniFileException);
    Ini.DeleteKey("s", "k");  // failure ignored
    if (Other != INVALID_HANDLE_VALUE) FileClose(Other);
    EXPECT_EQ(Dir.Read("a.ini"), Before);
    EXPECT_EQ(Ini.ReadString("s", "k", ""), "1");
  }
  // A nameless section could never be read back: refused before any file is made.
  TempDir Dir;
  EXPECT_THROW(TIniFile(Dir / "a.ini").WriteString("  ", "k", "v"), EIniFileException);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  EXPECT_FALSE(FileExists(Dir / "a.ini"));
}

std::string Garbage(std::size_t Size) {
  std::mt19937 Gen(20240305);
  std::string R(Size, '\0');
  const char Special[] = {'\0', '\r', '\n', '[', ']', '=', ';', '"', ' '};
  for (char& C : R) {
    const unsigned V = Gen();
    C = V % 4 == 0 ? Special[V / 4 % sizeof Special] : static_cast<char>(V >> 8);
  }
  R[0] = 'x';  // no byte-order mark by chance
  return R;
}

TEST(IniHostileFiles, GarbageAndHugeLinesAreKeptWhole) {
  TempDir Dir;
  const std::string Before = Garbage(1 << 16);
  TIniFile Ini(Dir.Write("a.ini", Before));
  Ini.ReadSections();
  Ini.ReadSectionValues("x");
  EXPECT_EQ(Ini.ReadString("zt-section", "k", "d"), "d");
  Ini.WriteString("zt-section", "k", "v");
  const std::string After = Dir.Read("a.ini");
  ASSERT_GT(After.size(), Before.size());
  EXPECT_EQ(After.substr(0, Before.size()), Before);
  EXPECT_EQ(Ini.ReadString("zt-section", "k", "d"), "v");
  // A value is read up to 2047 characters; the lines stay whole.
  const std::string Long(10 << 20, 'a');
  TIniFile Big(Dir.Write("b.ini", Long + "\r\n[s]\r\nbig=" + Long + "\r\nk=1\r\n"));
  EXPECT_EQ(Big.ReadString("s", "k", ""), "1");
  EXPECT_EQ(Big.ReadString("s", "big", ""), std::string(2047, 'a'));
  Big.WriteString("s", "k", "2");
  EXPECT_EQ(Dir.Read("b.ini"), Long + "\r\n[s]\r\nbig=" + Long + "\r\nk=2\r\n");
}

}  // namespace
}  // namespace zt::platform
