// MD5: the RFC 1321 test suite, the engine against a plain second
// implementation, the digest text forms, and hashing files.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "PlainChecksums.h"
#include "checksums/Hashalgmd5.h"
#include "support/TempDir.h"

namespace zt::package {
namespace {

using testing::PlainMD5Hex;
using testing::RandomBytes;
using testing::TempDir;
using testing::WriteFile;

std::string MD5Text(const std::string& Text) {
  THashAlgMD5 Alg;
  return Alg.HashToDisplay(Alg.HashString(Text));
}

TEST(MD5, GivesTheRFC1321TestSuiteDigests) {
  EXPECT_EQ(MD5Text(""), "D41D8CD98F00B204E9800998ECF8427E");
  EXPECT_EQ(MD5Text("a"), "0CC175B9C0F1B6A831C399E269772661");
  EXPECT_EQ(MD5Text("abc"), "900150983CD24FB0D6963F7D28E17F72");
  EXPECT_EQ(MD5Text("message digest"), "F96B697D7CB7938D525A2F31AAF161D0");
  EXPECT_EQ(MD5Text("abcdefghijklmnopqrstuvwxyz"), "C3FCD3D76192E4007DFB496CCA67E13B");
  EXPECT_EQ(MD5Text("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
            "D174AB98D277D9F5A5611C2C9F419D9F");
  EXPECT_EQ(MD5Text("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
            "57EDF4A22BE3C955AC49DA2E2107B67A");
}

TEST(MD5, MatchesAPlainImplementationAroundEveryPaddingBoundary) {
  for (std::size_t Len = 0; Len <= 200; ++Len) {
    const std::string Data = RandomBytes(Len, static_cast<std::uint32_t>(Len) + 100);
    ASSERT_EQ(MD5Text(Data), PlainMD5Hex(Data)) << Len;
  }
}

TEST(MD5, UpdatesInPiecesGiveTheDigestOfTheWhole) {
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
    THashAlgMD5 Alg;
    EXPECT_EQ(Alg.HashToDisplay(Digest), PlainMD5Hex(Data)) << Piece;
  }
}

TEST(HashAlg, DescribesItselfAndFormsDigestTexts) {
  THashAlgMD5 Alg;
  EXPECT_EQ(Alg.Title(), "MD5");
  EXPECT_EQ(Alg.DigestSize(), 128);
  THashDigest Digest;
  Digest.fill(0xAB);
  Alg.ClearHash(Digest);
  EXPECT_EQ(Digest, THashDigest{});
  for (int I = 0; I < 64; ++I) Digest[I] = static_cast<unsigned char>(I * 17);
  EXPECT_EQ(Alg.HashToDisplay(Digest), "00112233445566778899AABBCCDDEEFF");
  const std::string Raw = Alg.HashToDataString(Digest);
  ASSERT_EQ(Raw.size(), 16u);
  EXPECT_EQ(static_cast<unsigned char>(Raw[0]), 0x00);
  EXPECT_EQ(static_cast<unsigned char>(Raw[15]), 0xFF);
}

class HashFileTest : public ::testing::Test {
 protected:
  std::string Write(const std::string& Name, const std::string& Contents) {
    const std::string Path = Dir / Name;
    WriteFile(Path, Contents);
    return Path;
  }
  std::string HashOf(const std::string& Path) {
    THashAlgMD5 Alg;
    THashDigest Digest;
    Alg.ClearHash(Digest);
    if (!Alg.HashFile(Path, Digest)) return "failed";
    return Alg.HashToDisplay(Digest);
  }
  TempDir Dir;
};

TEST_F(HashFileTest, HashesWholeFilesOfEverySizeAroundTheReadBlocks) {
  const std::size_t Sizes[] = {0, 1, 255, 256, 257, 1023, 1024, 1025, 65536, 65537, 3 * 1048576 + 777};
  for (std::size_t Size : Sizes) {
    const std::string Data = RandomBytes(Size, static_cast<std::uint32_t>(Size) + 3);
    EXPECT_EQ(HashOf(Write("f" + std::to_string(Size), Data)), PlainMD5Hex(Data)) << Size;
  }
}

TEST_F(HashFileTest, MissingFileGivesFalse) { EXPECT_EQ(HashOf(Dir / "missing.bin"), "failed"); }

// A child process opens the file for writing and keeps it open until told
// to exit; while it does, the file cannot be hashed.
TEST_F(HashFileTest, FileHeldOpenForWritingByAnotherProcessCannotBeHashed) {
  const std::string Path = Write("busy.log", "still being written");
  int Ready[2], Release[2];
  ASSERT_EQ(pipe(Ready), 0);
  ASSERT_EQ(pipe(Release), 0);
  const pid_t Child = fork();
  ASSERT_GE(Child, 0);
  if (Child == 0) {
    const int Fd = open(Path.c_str(), O_WRONLY);
    char C = Fd >= 0 ? 'y' : 'n';
    if (write(Ready[1], &C, 1) != 1) _exit(2);
    if (read(Release[0], &C, 1) < 0) _exit(3);
    _exit(0);
  }
  char C = 0;
  ASSERT_EQ(read(Ready[0], &C, 1), 1);
  ASSERT_EQ(C, 'y');
  EXPECT_EQ(HashOf(Path), "failed");
  ASSERT_EQ(write(Release[1], "x", 1), 1);
  int Status = 0;
  waitpid(Child, &Status, 0);
  for (int Fd : {Ready[0], Ready[1], Release[0], Release[1]}) close(Fd);
  EXPECT_EQ(HashOf(Path), PlainMD5Hex("still being written"));
}

}  // namespace
}  // namespace zt::package
