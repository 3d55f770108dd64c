// CRC-32: every engine path against the plain bitwise definition, and the
// file routine's text form.
#include <gtest/gtest.h>

#include <atomic>
#include <random>

#include "checksums/Crc32Engine.h"
#include "checksums/InOutError.h"
#include "PlainChecksums.h"
#include "checksums/Ztcrccalc.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "support/TempDir.h"

namespace zt::package {
namespace {

using testing::PlainCRC32;
using testing::RandomBytes;
using testing::TempDir;
using testing::WriteFile;

using TUpdate = std::uint32_t (*)(std::uint32_t, const void*, std::size_t);

std::uint32_t Finish(TUpdate Fn, const std::string& Data) {
  return Fn(0xFFFFFFFF, Data.data(), Data.size()) ^ 0xFFFFFFFF;
}

TEST(CRC32Engine, EveryPathGivesTheCatalogueCheckValue) {
  const std::string Check = "123456789";
  EXPECT_EQ(PlainCRC32(Check), 0xCBF43926u);
  EXPECT_EQ(Finish(&UpdateCRC32Bytewise, Check), 0xCBF43926u);
  EXPECT_EQ(Finish(&UpdateCRC32Slicing, Check), 0xCBF43926u);
  EXPECT_EQ(Finish(&UpdateCRC32, Check), 0xCBF43926u);
  if (HasCRC32Clmul()) {
    EXPECT_EQ(Finish(&UpdateCRC32Clmul, Check), 0xCBF43926u);
  }
  if (HasCRC32WideClmul()) {
    EXPECT_EQ(Finish(&UpdateCRC32WideClmul, Check), 0xCBF43926u);
  }
}

TEST(CRC32Engine, TableHoldsOneByteSteps) {
  const std::uint32_t* Table = CRC32Table();
  EXPECT_EQ(Table[0], 0u);
  EXPECT_EQ(Table[1], 0x77073096u);
  EXPECT_EQ(Table[128], 0xEDB88320u);
  EXPECT_EQ(Table[255], 0x2D02EF8Du);
}

// Lengths around every block size the fast paths use, at every alignment,
// from random starting registers, so each path's head, loop, fold-down and
// tail are all exercised.
TEST(CRC32Engine, FastPathsMatchBitwiseOnRandomLengthsAndAlignments) {
  const std::string Data = RandomBytes(70000, 7);
  std::mt19937 Gen(11);
  std::vector<std::pair<const char*, TUpdate>> Paths = {{"slicing", &UpdateCRC32Slicing},
                                                        {"dispatch", &UpdateCRC32}};
  if (HasCRC32Clmul()) Paths.push_back({"clmul", &UpdateCRC32Clmul});
  if (HasCRC32WideClmul()) Paths.push_back({"wide clmul", &UpdateCRC32WideClmul});
  std::vector<std::size_t> Lengths;
  for (std::size_t L = 0; L <= 600; ++L) Lengths.push_back(L);
  for (int I = 0; I < 300; ++I) Lengths.push_back(Gen() % 65000);
  for (std::size_t Len : Lengths) {
    const std::size_t Offset = Gen() % 64;
    const std::uint32_t Start = Gen();
    const std::uint32_t Expected = UpdateCRC32Bytewise(Start, Data.data() + Offset, Len);
    for (auto& [Name, Fn] : Paths)
      ASSERT_EQ(Fn(Start, Data.data() + Offset, Len), Expected) << Name << " length " << Len << " offset " << Offset;
  }
}

TEST(CRC32Engine, BytewiseMatchesThePlainDefinition) {
  for (std::size_t Len : {0, 1, 3, 4, 5, 100, 4099}) {
    const std::string Data = RandomBytes(Len, static_cast<std::uint32_t>(Len));
    EXPECT_EQ(Finish(&UpdateCRC32Bytewise, Data), PlainCRC32(Data)) << Len;
  }
}

TEST(CRC32Engine, SplittingTheInputAnywhereGivesTheSameValue) {
  const std::string Data = RandomBytes(5000, 3);
  for (std::size_t Cut : {0, 1, 15, 16, 63, 64, 255, 256, 2500, 4999, 5000}) {
    std::uint32_t Crc = UpdateCRC32(0xFFFFFFFF, Data.data(), Cut);
    Crc = UpdateCRC32(Crc, Data.data() + Cut, Data.size() - Cut);
    EXPECT_EQ(Crc ^ 0xFFFFFFFF, PlainCRC32(Data)) << Cut;
  }
}

class GetCRC32Test : public ::testing::Test {
 protected:
  std::string Write(const std::string& Name, const std::string& Contents) {
    const std::string Path = Dir / Name;
    WriteFile(Path, Contents);
    return Path;
  }
  TempDir Dir;
};

TEST_F(GetCRC32Test, GivesDollarAndEightUpperCaseHexDigits) {
  EXPECT_EQ(GetCRC32(Write("check.txt", "123456789")), "$CBF43926");
  EXPECT_EQ(GetCRC32(Write("empty.bin", "")), "$00000000");
}

TEST_F(GetCRC32Test, KeepsLeadingZeroDigits) {
  EXPECT_EQ(GetCRC32(Write("small.bin", testing::WithCRC32("abc", 0x0000ABCD))), "$0000ABCD");
  EXPECT_EQ(GetCRC32(Write("tiny.bin", testing::WithCRC32("", 0x00000007))), "$00000007");
}

TEST_F(GetCRC32Test, ChecksWholeFilesOfEverySizeAroundTheReadBlocks) {
  const std::size_t Sizes[] = {0, 1, 254, 255, 256, 257, 1023, 1024, 1025, 65535, 65536, 65537,
                               1048576 + 65536, 3 * 1048576 + 12345};
  for (std::size_t Size : Sizes) {
    const std::string Data = RandomBytes(Size, static_cast<std::uint32_t>(Size) + 1);
    EXPECT_EQ(GetCRC32(Write("f" + std::to_string(Size), Data)), testing::Hex8(PlainCRC32(Data))) << Size;
  }
}

TEST_F(GetCRC32Test, MissingFileRaisesInputOutputError) {
  try {
    GetCRC32(Dir / "missing.bin");
    FAIL() << "no exception";
  } catch (const EInOutError& E) {
    EXPECT_STREQ(E.what(), "File not found");
    EXPECT_EQ(E.ErrorCode, 2u);
  }
}

// Reads that return less than asked, as a pipe or network file may, still
// cover the whole file.
class ShortReadEnv : public platform::EnvWrapper {
 public:
  using EnvWrapper::EnvWrapper;
  int FileRead(platform::THandle Handle, void* Buffer, int Count) override {
    return Target()->FileRead(Handle, Buffer, Count < 1000 ? Count : 1000);
  }
};

class InstalledEnv {
 public:
  explicit InstalledEnv(platform::Env* E) : Previous_(platform::Env::SetDefault(E)) {}
  ~InstalledEnv() { platform::Env::SetDefault(Previous_); }

 private:
  platform::Env* Previous_;
};

TEST_F(GetCRC32Test, ShortReadsStillCoverTheWholeFile) {
  const std::string Data = RandomBytes(300000, 5);
  const std::string Path = Write("short.bin", Data);
  ShortReadEnv Env(platform::Env::Platform());
  InstalledEnv Installed(&Env);
  EXPECT_EQ(GetCRC32(Path), testing::Hex8(PlainCRC32(Data)));
}

// The program is stopped once Limit bytes have been read.
class StopAfterEnv : public platform::EnvWrapper {
 public:
  StopAfterEnv(platform::Env* Target, std::int64_t Limit) : EnvWrapper(Target), Left_(Limit) {}
  int FileRead(platform::THandle Handle, void* Buffer, int Count) override {
    if (Left_ <= 0) {
      platform::SetLastError(platform::ERROR_OPERATION_ABORTED);
      return -1;
    }
    const int N = Target()->FileRead(Handle, Buffer, Count);
    Left_ -= N;
    return N;
  }

 private:
  std::atomic<std::int64_t> Left_;
};

TEST_F(GetCRC32Test, StopWhileReadingGivesNoChecksumOfPartOfTheFile) {
  const std::string Path = Write("stopped.bin", RandomBytes(4 << 20, 6));
  for (std::int64_t Limit : {0, 40000, 3 << 20}) {  // in the first block, the second, a later one
    StopAfterEnv Env(platform::Env::Platform(), Limit);
    InstalledEnv Installed(&Env);
    platform::SetLastError(0);
    try {
      GetCRC32(Path);
      ADD_FAILURE() << "no exception at " << Limit;
    } catch (const EInOutError& E) {
      EXPECT_EQ(E.ErrorCode, platform::ERROR_OPERATION_ABORTED) << Limit;
    }
  }
}

TEST(InOutErrorText, NamesKnownCodesAndNumbersTheRest) {
  EXPECT_EQ(InOutErrorMessage(2), "File not found");
  EXPECT_EQ(InOutErrorMessage(3), "Invalid filename");
  EXPECT_EQ(InOutErrorMessage(4), "Too many open files");
  EXPECT_EQ(InOutErrorMessage(5), "File access denied");
  EXPECT_EQ(InOutErrorMessage(32), "I/O error 32");
}

}  // namespace
}  // namespace zt::package
