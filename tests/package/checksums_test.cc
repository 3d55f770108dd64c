// The CRC-32 and MD5 engines: every CRC-32 path against the bitwise
// definition, MD5 against the RFC 1321 suite and digests from coreutils,
// files read in blocks of every size, reads that return less than asked.
// (The actions' lines and results are checked through zt.)
#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <random>

#include "checksums/Crc32Engine.h"
#include "checksums/Hashalgmd5.h"
#include "checksums/InOutError.h"
#include "checksums/Ztcrccalc.h"
#include "checksums/Ztfilemd5action.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "support/FakeHost.h"
#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::package {
namespace {

using TUpdate = std::uint32_t (*)(std::uint32_t, const void*, std::size_t);

// Bit by bit, straight from the definition (reflected, init and final ~0).
std::uint32_t PlainCRC32(const std::string& Data) {
  std::uint32_t Crc = 0xFFFFFFFF;
  for (unsigned char C : Data) {
    Crc ^= C;
    for (int Bit = 0; Bit < 8; ++Bit) Crc = (Crc >> 1) ^ (0xEDB88320u & (0u - (Crc & 1)));
  }
  return ~Crc;
}

std::string RandomBytes(std::size_t Size, std::uint32_t Seed) {
  std::mt19937 Gen(Seed);
  std::string R(Size, '\0');
  for (auto& C : R) C = static_cast<char>(Gen());
  return R;
}

std::string MD5Text(const std::string& Text) {
  THashAlgMD5 Alg;
  return Alg.HashToDisplay(Alg.HashString(Text));
}

// Lengths around every block size the fast paths use, at every alignment,
// from random starting registers: each path's head, loop, fold and tail.
TEST(CRC32Engine, EveryPathMatchesTheDefinition) {
  std::vector<std::pair<const char*, TUpdate>> Paths = {
      {"bytewise", &UpdateCRC32Bytewise}, {"slicing", &UpdateCRC32Slicing}, {"dispatch", &UpdateCRC32}};
  if (HasCRC32Clmul()) Paths.push_back({"clmul", &UpdateCRC32Clmul});
  if (HasCRC32WideClmul()) Paths.push_back({"wide clmul", &UpdateCRC32WideClmul});
  for (auto& [Name, Fn] : Paths) EXPECT_EQ(Fn(0xFFFFFFFF, "123456789", 9) ^ 0xFFFFFFFF, 0xCBF43926u) << Name;
  const std::string Data = RandomBytes(70000, 7);
  EXPECT_EQ(UpdateCRC32Bytewise(0xFFFFFFFF, Data.data(), 4099) ^ 0xFFFFFFFF,
            PlainCRC32(Data.substr(0, 4099)));
  std::mt19937 Gen(11);
  std::vector<std::size_t> Lengths;
  for (std::size_t L = 0; L <= 600; ++L) Lengths.push_back(L);
  for (int I = 0; I < 300; ++I) Lengths.push_back(Gen() % 65000);
  for (std::size_t Len : Lengths) {
    const std::size_t Offset = Gen() % 64;
    const std::uint32_t Start = Gen();
    const std::uint32_t Expected = UpdateCRC32Bytewise(Start, Data.data() + Offset, Len);
    for (auto& [Name, Fn] : Paths)
      ASSERT_EQ(Fn(Start, Data.data() + Offset, Len), Expected)
          << Name << " length " << Len << " offset " << Offset;
  }
  // Splitting the input anywhere gives the same value.
  for (std::size_t Cut : {1, 15, 16, 63, 64, 255, 256, 2500}) {
    std::uint32_t Crc = UpdateCRC32(0xFFFFFFFF, Data.data(), Cut);
    EXPECT_EQ(UpdateCRC32(Crc, Data.data() + Cut, 5000 - Cut), UpdateCRC32(0xFFFFFFFF, Data.data(), 5000))
        << Cut;
  }
}

TEST(MD5Engine, GivesTheKnownDigestsAndTheSameForAnySplit) {
  const std::pair<std::string, std::string> Known[] = {
      {"", "D41D8CD98F00B204E9800998ECF8427E"},
      {"abc", "900150983CD24FB0D6963F7D28E17F72"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "D174AB98D277D9F5A5611C2C9F419D9F"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57EDF4A22BE3C955AC49DA2E2107B67A"},
      // Each side of the padding's boundaries.
      {std::string(55, 'a'), "EF1772B6DFF9A122358552954AD0DF65"},
      {std::string(56, 'a'), "3B0C8AC703F828B04C6C197006D17218"},
      {std::string(64, 'a'), "014842D480B571495A4A0363793F7367"},
      {std::string(120, 'a'), "5F61C0CCAD4CAC44C75FF505E1F1E537"},
  };
  for (const auto& [Text, Digest] : Known) EXPECT_EQ(MD5Text(Text), Digest) << Text.size();
  const std::string Data = RandomBytes(10000, 9);
  THashAlgMD5Engine Engine;
  for (std::size_t Piece : {1, 7, 63, 64, 65, 1000, 4096}) {
    MD5_CTX Context;
    Engine.MD5Init(Context);
    for (std::size_t Off = 0; Off < Data.size(); Off += Piece)
      Engine.MD5Update(Context, reinterpret_cast<const unsigned char*>(Data.data()) + Off,
                       std::min(Piece, Data.size() - Off));
    THashDigest Digest{};
    Engine.MD5Final(Digest.data(), Context);
    EXPECT_EQ(THashAlgMD5().HashToDisplay(Digest), MD5Text(Data)) << Piece;
  }
}

// Reads that return at most Most bytes, as a pipe or network file may, and
// fail as stopped once Limit bytes have been read.
class ReadsEnv : public platform::EnvWrapper {
 public:
  ReadsEnv(int Most, std::int64_t Limit) : EnvWrapper(platform::Env::Platform()), Most_(Most), Left_(Limit) {}
  int FileRead(platform::THandle Handle, void* Buffer, int Count) override {
    if (Left_ <= 0) return platform::SetLastError(platform::ERROR_OPERATION_ABORTED), -1;
    const int N = Target()->FileRead(Handle, Buffer, std::min(Count, Most_));
    Left_ -= N;
    return N;
  }

 private:
  const int Most_;
  std::atomic<std::int64_t> Left_;
};

TEST(ChecksumFiles, WholeFilesOfEverySizeAroundTheReadBlocks) {
  testing::TempDir Dir;
  ReadsEnv Short(1000, INT64_MAX);
  for (bool ShortReads : {false, true}) {
    platform::ScopedEnv Use(ShortReads ? static_cast<platform::Env*>(&Short) : platform::Env::Platform());
    for (std::size_t Size :
         {0, 1, 255, 256, 257, 1023, 1024, 1025, 65535, 65536, 65537, 1048576 + 65536, 3 * 1048576 + 12345}) {
      const std::string Data = RandomBytes(Size, static_cast<std::uint32_t>(Size) + 1), Path = Dir / "f";
      testing::WriteText(Path, Data);
      char Hex[16];
      std::snprintf(Hex, sizeof Hex, "$%08X", PlainCRC32(Data));
      EXPECT_EQ(GetCRC32(Path), Hex) << Size;
      THashAlgMD5 Alg;
      THashDigest Digest;
      Alg.ClearHash(Digest);
      ASSERT_TRUE(Alg.HashFile(Path, Digest)) << Size;
      EXPECT_EQ(Alg.HashToDisplay(Digest), MD5Text(Data)) << Size;
    }
  }
}

TEST(ChecksumFiles, AStopWhileReadingGivesNoChecksumOfPartOfTheFile) {
  testing::TempDir Dir;
  testing::WriteText(Dir / "stopped.bin", RandomBytes(4 << 20, 6));
  for (std::int64_t Limit : {0, 40000, 3 << 20}) {  // in the first block, the second, a later one
    ReadsEnv Env(INT_MAX, Limit);
    platform::ScopedEnv Use(&Env);
    platform::SetLastError(0);
    try {
      GetCRC32(Dir / "stopped.bin");
      ADD_FAILURE() << "no exception at " << Limit;
    } catch (const EInOutError& E) {
      EXPECT_EQ(E.ErrorCode, platform::ERROR_OPERATION_ABORTED) << Limit;
    }
  }
}

// A host whose variable store fails: the MD5 action reports the exception
// in two lines.
class FailingVariablesHost : public testing::FakeHost {
 public:
  void SetVariable(const std::string&, const frame::TZTVariant&) override {
    throw std::runtime_error("variable store is read-only");
  }
};

TEST(ChecksumFiles, AnExceptionDuringTheMD5RunIsReportedInTwoLines) {
  testing::TempDir Dir;
  testing::WriteText(Dir / "abc.txt", "abc");
  FailingVariablesHost Host;
  TZTFileMD5Action A;
  A.SetHost(&Host);
  A.SetFileName(Dir / "abc.txt");
  A.SetZTVariable("Digest");
  EXPECT_FALSE(A.Execute());
  EXPECT_EQ(Host.Messages,
            (std::vector<std::string>{"MD5 for abc.txt is 900150983CD24FB0D6963F7D28E17F72",
                                      "Couldn't compute MD5:", "variable store is read-only"}));
}

}  // namespace
}  // namespace zt::package
