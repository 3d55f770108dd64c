// Files an INI call must survive: garbage, huge lines, refused and failed
// writes. Nothing crashes and no file is cut short.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "support/Files.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/inifile.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::ReadText;
using zt::testing::TempDir;
using zt::testing::WriteText;

std::string Garbage(std::size_t Size) {
  std::mt19937 Gen(20240305);
  std::string R(Size, '\0');
  const char Special[] = {'\0', '\r', '\n', '[', ']', '=', ';', '"', ' '};
  for (char& C : R) {
    unsigned V = Gen();
    C = V % 4 == 0 ? Special[V / 4 % sizeof Special] : static_cast<char>(V >> 8);
  }
  R[0] = 'x';  // no byte-order mark by chance
  return R;
}

TEST(IniBadInputTest, BinaryGarbageIsReadAndAppendedTo) {
  TempDir Dir;
  const std::string Before = Garbage(1 << 16);
  WriteText(Dir / "a.ini", Before);
  TIniFile Ini(Dir / "a.ini");
  Ini.ReadSections();
  Ini.ReadSectionValues("x");
  EXPECT_EQ(Ini.ReadString("zt-section", "k", "d"), "d");
  Ini.WriteString("zt-section", "k", "v");
  std::string After = ReadText(Dir / "a.ini");
  ASSERT_GT(After.size(), Before.size());
  EXPECT_EQ(After.substr(0, Before.size()), Before);
  EXPECT_EQ(Ini.ReadString("zt-section", "k", "d"), "v");
}

TEST(IniBadInputTest, TenMegabyteLineIsKept) {
  TempDir Dir;
  const std::string Long(10 << 20, 'a');
  WriteText(Dir / "a.ini", Long + "\r\n[s]\r\nbig=" + Long + "\r\nk=1\r\n");
  TIniFile Ini(Dir / "a.ini");
  EXPECT_EQ(Ini.ReadString("s", "k", ""), "1");
  EXPECT_EQ(Ini.ReadString("s", "big", ""), std::string(2047, 'a'));
  Ini.WriteString("s", "k", "2");
  EXPECT_EQ(ReadText(Dir / "a.ini"), Long + "\r\n[s]\r\nbig=" + Long + "\r\nk=2\r\n");
}

TEST(IniBadInputTest, ReadOnlyFileRefusedAndUnchanged) {
  TempDir Dir;
  const std::string Path = Dir / "a.ini", Before = "[s]\r\nk=1\r\n";
  WriteText(Path, Before);
  ASSERT_TRUE(SetFileAttributesA(Path, FILE_ATTRIBUTE_READONLY));
  TIniFile Ini(Path);
  try {
    Ini.WriteString("s", "k", "2");
    FAIL() << "no exception";
  } catch (const EIniFileException& E) {
    EXPECT_EQ(std::string(E.what()), "Unable to write to " + Path);
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  }
  EXPECT_THROW(Ini.EraseSection("s"), EIniFileException);
  Ini.DeleteKey("s", "k");  // failure ignored
  EXPECT_EQ(ReadText(Path), Before);
  EXPECT_EQ(Ini.ReadString("s", "k", ""), "1");
}

TEST(IniBadInputTest, FileLockedByAnotherWriterRefusedAndUnchanged) {
  TempDir Dir;
  const std::string Path = Dir / "a.ini", Before = "[s]\r\nk=1\r\n";
  WriteText(Path, Before);
  THandle Other = FileOpen(Path, fmOpenReadWrite | fmShareExclusive);
  ASSERT_NE(Other, INVALID_HANDLE_VALUE);
  TIniFile Ini(Path);
  EXPECT_THROW(Ini.WriteString("s", "k", "2"), EIniFileException);
  EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
  FileClose(Other);
  EXPECT_EQ(ReadText(Path), Before);
  Ini.WriteString("s", "k", "2");  // free again
  EXPECT_EQ(ReadText(Path), "[s]\r\nk=2\r\n");
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

TEST(IniBadInputTest, FailedWriteLeavesFileAndReportsError) {
  TempDir Dir;
  const std::string Path = Dir / "a.ini", Before = "[s]\r\nk=1\r\n";
  WriteText(Path, Before);
  FullDiskEnv Full;
  ScopedEnv Use(&Full);
  EXPECT_THROW(TIniFile(Path).WriteString("s", "k", "2"), EIniFileException);
  EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
  EXPECT_EQ(ReadText(Path), Before);
}

TEST(IniBadInputTest, DirectoryIsNoIniFile) {
  TempDir Dir;
  TIniFile Ini(Dir.Path());
  EXPECT_EQ(Ini.ReadString("s", "k", "d"), "d");
  EXPECT_THROW(Ini.WriteString("s", "k", "v"), EIniFileException);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

}  // namespace
}  // namespace zt::platform
