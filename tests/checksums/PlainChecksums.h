// Second, deliberately plain implementations of CRC-32 and MD5 that the
// tests compare the product's engines with, plus file helpers.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>

namespace zt::testing {

// Bit by bit, straight from the definition (reflected, init and final ~0).
inline std::uint32_t PlainCRC32(const std::string& Data) {
  std::uint32_t Crc = 0xFFFFFFFF;
  for (unsigned char C : Data) {
    Crc ^= C;
    for (int Bit = 0; Bit < 8; ++Bit) Crc = (Crc >> 1) ^ (0xEDB88320u & (0u - (Crc & 1)));
  }
  return ~Crc;
}

// Raw-register step of one byte, and its inverse (the top byte of a table
// entry identifies the entry, so a step can be undone).
inline std::uint32_t PlainTableEntry(std::uint32_t I) {
  for (int Bit = 0; Bit < 8; ++Bit) I = (I >> 1) ^ (0xEDB88320u & (0u - (I & 1)));
  return I;
}
inline std::uint32_t UndoByteStep(std::uint32_t After) {
  for (std::uint32_t I = 0; I < 256; ++I) {
    const std::uint32_t T = PlainTableEntry(I);
    if ((T >> 24) == (After >> 24)) return ((After ^ T) << 8) | I;
  }
  return 0;
}

// Prefix plus four bytes chosen so that the whole text has CRC-32 Target.
inline std::string WithCRC32(const std::string& Prefix, std::uint32_t Target) {
  const std::uint32_t Before = ~PlainCRC32(Prefix);  // raw register after Prefix
  std::uint32_t Wanted = ~Target;                    // raw register after the four bytes
  for (int I = 0; I < 4; ++I) Wanted = UndoByteStep(Wanted);
  const std::uint32_t Word = Wanted ^ Before;        // Wanted = Before ^ the bytes
  std::string R = Prefix;
  for (int I = 0; I < 4; ++I) R += static_cast<char>((Word >> (8 * I)) & 0xFF);
  return R;
}

inline std::string Hex8(std::uint32_t V) {
  char B[16];
  std::snprintf(B, sizeof B, "$%08X", V);
  return B;
}

// MD5 in the textbook loop form: per-step constants from the sine table,
// rotation amounts per round, message schedule by index formulas.
inline std::string PlainMD5Hex(const std::string& Data) {
  static const int Shift[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
  std::uint32_t K[64];
  for (int I = 0; I < 64; ++I) K[I] = static_cast<std::uint32_t>(std::floor(std::fabs(std::sin(I + 1.0)) * 4294967296.0));
  std::string Msg = Data;
  const std::uint64_t BitLen = static_cast<std::uint64_t>(Data.size()) * 8;
  Msg += static_cast<char>(0x80);
  while (Msg.size() % 64 != 56) Msg += '\0';
  for (int I = 0; I < 8; ++I) Msg += static_cast<char>((BitLen >> (8 * I)) & 0xFF);
  std::uint32_t H[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
  for (std::size_t Off = 0; Off < Msg.size(); Off += 64) {
    std::uint32_t W[16];
    for (int I = 0; I < 16; ++I) {
      W[I] = 0;
      for (int B = 3; B >= 0; --B) W[I] = (W[I] << 8) | static_cast<unsigned char>(Msg[Off + 4 * I + B]);
    }
    std::uint32_t A = H[0], B = H[1], C = H[2], D = H[3];
    for (int I = 0; I < 64; ++I) {
      std::uint32_t Fn;
      int G;
      if (I < 16) { Fn = (B & C) | (~B & D); G = I; }
      else if (I < 32) { Fn = (D & B) | (~D & C); G = (5 * I + 1) % 16; }
      else if (I < 48) { Fn = B ^ C ^ D; G = (3 * I + 5) % 16; }
      else { Fn = C ^ (B | ~D); G = (7 * I) % 16; }
      const std::uint32_t Sum = A + Fn + K[I] + W[G];
      const int S = Shift[I / 16][I % 4];
      A = D; D = C; C = B;
      B = B + ((Sum << S) | (Sum >> (32 - S)));
    }
    H[0] += A; H[1] += B; H[2] += C; H[3] += D;
  }
  std::string Hex;
  char Buf[3];
  for (std::uint32_t V : H)
    for (int I = 0; I < 4; ++I) {
      std::snprintf(Buf, sizeof Buf, "%02X", (V >> (8 * I)) & 0xFF);
      Hex += Buf;
    }
  return Hex;
}

inline std::string RandomBytes(std::size_t Size, std::uint32_t Seed) {
  std::mt19937 Gen(Seed);
  std::string R(Size, '\0');
  for (auto& C : R) C = static_cast<char>(Gen());
  return R;
}

inline void WriteFile(const std::string& Path, const std::string& Contents) {
  std::ofstream(Path, std::ios::binary) << Contents;
}

}  // namespace zt::testing
