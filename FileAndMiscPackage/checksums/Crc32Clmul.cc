// CRC-32 by carry-less multiplication: the data is folded, 128 bits at a
// time, into a few accumulators (each block multiplied by x^D mod P, where D
// is the distance to the block it is added to), and the last 16 bytes of the
// folded value go through the table path. The functions carry their own
// target attributes, so the binary runs on any x86-64 and uses them only
// where the processor has them.
#include "checksums/Crc32Engine.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define ZT_CRC_CLMUL 1
#endif

namespace zt::package {

#ifdef ZT_CRC_CLMUL
namespace {

// x^E mod P, bit-reflected in 32 bits (bit 31 - d holds x^d).
constexpr std::uint64_t XPowMod(unsigned E) {
  std::uint32_t R = 0x80000000u;
  for (unsigned I = 0; I < E; ++I) R = (R & 1) ? (R >> 1) ^ 0xEDB88320u : R >> 1;
  return R;
}

// Multiplying the low (earlier, higher-degree) half of a 128-bit block by
// x^(D+31) and the high half by x^(D-33) moves the block D bits forward:
// the extra x^33 comes from the reflected operands of the multiplication.
struct TFoldConstants {
  std::uint64_t Low, High;
};
constexpr TFoldConstants FoldBy(unsigned D) { return {XPowMod(D + 31), XPowMod(D - 33)}; }

constexpr TFoldConstants Fold128 = FoldBy(128);
constexpr TFoldConstants Fold256 = FoldBy(256);
constexpr TFoldConstants Fold512 = FoldBy(512);
constexpr TFoldConstants Fold1024 = FoldBy(1024);

__attribute__((target("pclmul,sse4.1"))) inline __m128i Constants(TFoldConstants K) {
  return _mm_set_epi64x(static_cast<long long>(K.High), static_cast<long long>(K.Low));
}

__attribute__((target("pclmul,sse4.1"))) inline __m128i Fold(__m128i X, __m128i K) {
  return _mm_xor_si128(_mm_clmulepi64_si128(X, K, 0x00), _mm_clmulepi64_si128(X, K, 0x11));
}

__attribute__((target("pclmul,sse4.1"))) inline __m128i Load(const unsigned char* P) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(P));
}

// Folds 16-byte blocks into X while at least 16 bytes remain, then finishes
// the folded value and the tail through the table path.
__attribute__((target("pclmul,sse4.1"))) std::uint32_t Finish(__m128i X, const unsigned char* P, std::size_t Len) {
  const __m128i K128 = Constants(Fold128);
  for (; Len >= 16; P += 16, Len -= 16) X = _mm_xor_si128(Fold(X, K128), Load(P));
  alignas(16) unsigned char Folded[16];
  _mm_store_si128(reinterpret_cast<__m128i*>(Folded), X);
  return UpdateCRC32Slicing(UpdateCRC32Slicing(0, Folded, 16), P, Len);
}

__attribute__((target("avx2,pclmul,vpclmulqdq"))) inline __m256i WideFold(__m256i X, __m256i K) {
  return _mm256_xor_si256(_mm256_clmulepi64_epi128(X, K, 0x00), _mm256_clmulepi64_epi128(X, K, 0x11));
}

__attribute__((target("avx2,pclmul,vpclmulqdq"))) inline __m256i WideLoad(const unsigned char* P) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(P));
}

}  // namespace

bool HasCRC32Clmul() {
  static const bool Has = __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
  return Has;
}

bool HasCRC32WideClmul() {
  static const bool Has = HasCRC32Clmul() && __builtin_cpu_supports("avx2") && __builtin_cpu_supports("vpclmulqdq");
  return Has;
}

__attribute__((target("pclmul,sse4.1"))) std::uint32_t UpdateCRC32Clmul(std::uint32_t Crc, const void* Data,
                                                                         std::size_t Len) {
  const auto* P = static_cast<const unsigned char*>(Data);
  if (Len < 64) return UpdateCRC32Slicing(Crc, P, Len);
  // Four accumulators, 64 bytes apart, hide the multiplier's latency.
  __m128i X0 = _mm_xor_si128(Load(P), _mm_cvtsi32_si128(static_cast<int>(Crc)));
  __m128i X1 = Load(P + 16), X2 = Load(P + 32), X3 = Load(P + 48);
  P += 64;
  Len -= 64;
  const __m128i K512 = Constants(Fold512);
  for (; Len >= 64; P += 64, Len -= 64) {
    X0 = _mm_xor_si128(Fold(X0, K512), Load(P));
    X1 = _mm_xor_si128(Fold(X1, K512), Load(P + 16));
    X2 = _mm_xor_si128(Fold(X2, K512), Load(P + 32));
    X3 = _mm_xor_si128(Fold(X3, K512), Load(P + 48));
  }
  const __m128i K128 = Constants(Fold128);
  X1 = _mm_xor_si128(Fold(X0, K128), X1);
  X2 = _mm_xor_si128(Fold(X1, K128), X2);
  X3 = _mm_xor_si128(Fold(X2, K128), X3);
  return Finish(X3, P, Len);
}

__attribute__((target("avx2,pclmul,vpclmulqdq"))) std::uint32_t UpdateCRC32WideClmul(std::uint32_t Crc,
                                                                                     const void* Data,
                                                                                     std::size_t Len) {
  const auto* P = static_cast<const unsigned char*>(Data);
  if (Len < 256) return UpdateCRC32Clmul(Crc, P, Len);
  // Four accumulators of two 128-bit lanes each: 128 bytes per step.
  __m256i Y0 = _mm256_xor_si256(WideLoad(P), _mm256_zextsi128_si256(_mm_cvtsi32_si128(static_cast<int>(Crc))));
  __m256i Y1 = WideLoad(P + 32), Y2 = WideLoad(P + 64), Y3 = WideLoad(P + 96);
  P += 128;
  Len -= 128;
  const __m256i K1024 = _mm256_broadcastsi128_si256(Constants(Fold1024));
  for (; Len >= 128; P += 128, Len -= 128) {
    Y0 = _mm256_xor_si256(WideFold(Y0, K1024), WideLoad(P));
    Y1 = _mm256_xor_si256(WideFold(Y1, K1024), WideLoad(P + 32));
    Y2 = _mm256_xor_si256(WideFold(Y2, K1024), WideLoad(P + 64));
    Y3 = _mm256_xor_si256(WideFold(Y3, K1024), WideLoad(P + 96));
  }
  const __m256i K256 = _mm256_broadcastsi128_si256(Constants(Fold256));
  Y1 = _mm256_xor_si256(WideFold(Y0, K256), Y1);
  Y2 = _mm256_xor_si256(WideFold(Y1, K256), Y2);
  Y3 = _mm256_xor_si256(WideFold(Y2, K256), Y3);
  // The lower lane comes first in the data: fold it onto the upper one.
  __m128i X = _mm_xor_si128(Fold(_mm256_castsi256_si128(Y3), Constants(Fold128)), _mm256_extracti128_si256(Y3, 1));
  return Finish(X, P, Len);
}

#else

bool HasCRC32Clmul() { return false; }
bool HasCRC32WideClmul() { return false; }
std::uint32_t UpdateCRC32Clmul(std::uint32_t Crc, const void* Data, std::size_t Len) {
  return UpdateCRC32Slicing(Crc, Data, Len);
}
std::uint32_t UpdateCRC32WideClmul(std::uint32_t Crc, const void* Data, std::size_t Len) {
  return UpdateCRC32Slicing(Crc, Data, Len);
}

#endif

}  // namespace zt::package
