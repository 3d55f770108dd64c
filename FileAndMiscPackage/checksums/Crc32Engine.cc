// Table-driven CRC-32 paths and the choice of the fastest one.
#include "checksums/Crc32Engine.h"

#include <array>
#include <bit>
#include <cstring>

namespace zt::package {
namespace {

constexpr std::uint32_t Polynomial = 0xEDB88320u;

using TCRCTables = std::array<std::array<std::uint32_t, 256>, 16>;

// Tables[0] is the one-byte table; Tables[k][i] is Tables[k-1][i] shifted
// through one more zero byte, so sixteen look-ups advance sixteen bytes.
constexpr TCRCTables MakeTables() {
  TCRCTables T{};
  for (std::uint32_t I = 0; I < 256; ++I) {
    std::uint32_t C = I;
    for (int Bit = 0; Bit < 8; ++Bit) C = (C & 1) ? (C >> 1) ^ Polynomial : C >> 1;
    T[0][I] = C;
  }
  for (int K = 1; K < 16; ++K)
    for (int I = 0; I < 256; ++I) T[K][I] = (T[K - 1][I] >> 8) ^ T[0][T[K - 1][I] & 0xFF];
  return T;
}

constexpr TCRCTables Tables = MakeTables();

inline std::uint32_t Load32(const unsigned char* P) {
  std::uint32_t V;
  std::memcpy(&V, P, 4);
  return V;
}

using TUpdateFn = std::uint32_t (*)(std::uint32_t, const void*, std::size_t);

TUpdateFn ChooseFastest() {
  if (HasCRC32WideClmul()) return &UpdateCRC32WideClmul;
  if (HasCRC32Clmul()) return &UpdateCRC32Clmul;
  return &UpdateCRC32Slicing;
}

}  // namespace

const std::uint32_t* CRC32Table() { return Tables[0].data(); }

std::uint32_t UpdateCRC32Bytewise(std::uint32_t Crc, const void* Data, std::size_t Len) {
  const auto* P = static_cast<const unsigned char*>(Data);
  for (std::size_t I = 0; I < Len; ++I) Crc = Tables[0][(Crc ^ P[I]) & 0xFF] ^ (Crc >> 8);
  return Crc;
}

std::uint32_t UpdateCRC32Slicing(std::uint32_t Crc, const void* Data, std::size_t Len) {
  const auto* P = static_cast<const unsigned char*>(Data);
  if constexpr (std::endian::native == std::endian::little) {
    while (Len >= 16) {
      std::uint32_t A = Load32(P) ^ Crc, B = Load32(P + 4), C = Load32(P + 8), D = Load32(P + 12);
      Crc = Tables[15][A & 0xFF] ^ Tables[14][(A >> 8) & 0xFF] ^ Tables[13][(A >> 16) & 0xFF] ^
            Tables[12][A >> 24] ^ Tables[11][B & 0xFF] ^ Tables[10][(B >> 8) & 0xFF] ^
            Tables[9][(B >> 16) & 0xFF] ^ Tables[8][B >> 24] ^ Tables[7][C & 0xFF] ^
            Tables[6][(C >> 8) & 0xFF] ^ Tables[5][(C >> 16) & 0xFF] ^ Tables[4][C >> 24] ^
            Tables[3][D & 0xFF] ^ Tables[2][(D >> 8) & 0xFF] ^ Tables[1][(D >> 16) & 0xFF] ^ Tables[0][D >> 24];
      P += 16;
      Len -= 16;
    }
  }
  return UpdateCRC32Bytewise(Crc, P, Len);
}

std::uint32_t UpdateCRC32(std::uint32_t Crc, const void* Data, std::size_t Len) {
  static const TUpdateFn Fastest = ChooseFastest();
  return Fastest(Crc, Data, Len);
}

}  // namespace zt::package
