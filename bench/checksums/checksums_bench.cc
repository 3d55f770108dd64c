// checksums_bench MODE FILE...
//   read  reads every file through the checksum routines' block reader and
//         discards the bytes (the cost of the reads alone)
//   crc   prints GetCRC32 of every file
//   md5   prints the MD5 digest of every file (THashAlgMD5::HashFile)
//   mem   hashes 1 GiB in memory with each CRC-32 path and MD5, printing
//         each one's speed
// Exit code 1 when a file cannot be read.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "checksums/Crc32Engine.h"
#include "checksums/FileBlocks.h"
#include "checksums/Hashalgmd5.h"
#include "checksums/Ztcrccalc.h"

namespace {

using namespace zt::package;

bool ReadOnly(const std::string& Path) {
  const zt::platform::THandle H = zt::platform::FileOpen(Path, zt::platform::fmOpenRead);
  if (H == zt::platform::INVALID_HANDLE_VALUE) return false;
  TFileHandleGuard Guard(H);
  unsigned long long Sum = 0;
  // Touch one byte per block so the reads cannot be optimised away.
  return ReadFileInBlocks(H, [&Sum](const unsigned char* Data, std::size_t Len) { Sum += Data[Len - 1]; }) &&
         Sum != ~0ull;
}

void InMemory() {
  std::vector<unsigned char> Block(1 << 20);
  for (std::size_t I = 0; I < Block.size(); ++I) Block[I] = static_cast<unsigned char>(I * 2654435761u >> 24);
  const int Rounds = 1024;
  auto Time = [&](const char* Name, auto&& Fn) {
    const auto Start = std::chrono::steady_clock::now();
    for (int R = 0; R < Rounds; ++R) Fn();
    const double S = std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count();
    std::printf("%-22s %8.2f GB/s\n", Name, Rounds * double(Block.size()) / S / 1e9);
  };
  std::uint32_t Crc = 0;
  Time("crc32 slicing-by-16", [&] { Crc = UpdateCRC32Slicing(Crc, Block.data(), Block.size()); });
  if (HasCRC32Clmul()) Time("crc32 pclmul", [&] { Crc = UpdateCRC32Clmul(Crc, Block.data(), Block.size()); });
  if (HasCRC32WideClmul())
    Time("crc32 vpclmul (avx2)", [&] { Crc = UpdateCRC32WideClmul(Crc, Block.data(), Block.size()); });
  THashAlgMD5Engine Engine;
  MD5_CTX Context;
  Engine.MD5Init(Context);
  Time("md5", [&] { Engine.MD5Update(Context, Block.data(), Block.size()); });
  std::printf("(check %08x)\n", Crc);
}

}  // namespace

int main(int Argc, char** Argv) {
  if (Argc < 2) {
    std::fprintf(stderr, "usage: checksums_bench read|crc|md5|mem FILE...\n");
    return 2;
  }
  const std::string Mode = Argv[1];
  if (Mode == "mem") {
    InMemory();
    return 0;
  }
  int Result = 0;
  THashAlgMD5 Alg;
  for (int I = 2; I < Argc; ++I) {
    const std::string Path = Argv[I];
    if (Mode == "read") {
      if (!ReadOnly(Path)) Result = 1;
    } else if (Mode == "crc") {
      try {
        std::printf("%s  %s\n", GetCRC32(Path).c_str() + 1, Path.c_str());
      } catch (const std::exception& E) {
        std::fprintf(stderr, "%s: %s\n", Path.c_str(), E.what());
        Result = 1;
      }
    } else if (Mode == "md5") {
      THashDigest Digest;
      Alg.ClearHash(Digest);
      if (Alg.HashFile(Path, Digest)) {
        std::printf("%s  %s\n", Alg.HashToDisplay(Digest).c_str(), Path.c_str());
      } else {
        std::fprintf(stderr, "%s: hash failed\n", Path.c_str());
        Result = 1;
      }
    } else {
      std::fprintf(stderr, "unknown mode %s\n", Mode.c_str());
      return 2;
    }
  }
  return Result;
}
