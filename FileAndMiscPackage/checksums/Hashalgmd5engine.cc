// RFC 1321 MD5. F and G are written in forms with one operation less than
// the RFC's (same values); the transform is fully unrolled.
#include "checksums/Hashalgmd5engine.h"

#include <bit>
#include <cstring>

namespace zt::package {
namespace {

const unsigned char PADDING[64] = {0x80};

inline std::uint32_t ROTATE_LEFT(std::uint32_t X, int N) { return std::rotl(X, N); }

// One step of a round: a := b + ((a + fn(b, c, d) + x + ac) <<< s).
#define MD5_STEP(fn, a, b, c, d, x, s, ac)                     \
  do {                                                         \
    (a) += THashAlgMD5Engine::fn((b), (c), (d)) + (x) + (ac);  \
    (a) = ROTATE_LEFT((a), (s)) + (b);                         \
  } while (0)

}  // namespace

void THashAlgMD5Engine::MD5Init(MD5_CTX& Context) {
  Context.count[0] = Context.count[1] = 0;
  Context.state[0] = 0x67452301;
  Context.state[1] = 0xefcdab89;
  Context.state[2] = 0x98badcfe;
  Context.state[3] = 0x10325476;
}

void THashAlgMD5Engine::MD5Update(MD5_CTX& Context, const unsigned char* Input, std::size_t InputLen) {
  std::size_t Index = (Context.count[0] >> 3) & 0x3F;
  const std::uint64_t Bits = ((std::uint64_t{Context.count[1]} << 32) | Context.count[0]) +
                             (static_cast<std::uint64_t>(InputLen) << 3);
  Context.count[0] = static_cast<std::uint32_t>(Bits);
  Context.count[1] = static_cast<std::uint32_t>(Bits >> 32);
  const std::size_t PartLen = 64 - Index;
  std::size_t I = 0;
  if (InputLen >= PartLen) {
    MD5_memcpy(&Context.buffer[Index], Input, PartLen);
    MD5Transform(Context.state, Context.buffer);
    for (I = PartLen; I + 63 < InputLen; I += 64) MD5Transform(Context.state, &Input[I]);
    Index = 0;
  }
  MD5_memcpy(&Context.buffer[Index], &Input[I], InputLen - I);
}

void THashAlgMD5Engine::MD5Final(unsigned char Digest[16], MD5_CTX& Context) {
  unsigned char Bits[8];
  Encode(Bits, Context.count, 8);
  const std::size_t Index = (Context.count[0] >> 3) & 0x3f;
  const std::size_t PadLen = (Index < 56) ? (56 - Index) : (120 - Index);
  MD5Update(Context, PADDING, PadLen);
  MD5Update(Context, Bits, 8);
  Encode(Digest, Context.state, 16);
  MD5_memset(reinterpret_cast<unsigned char*>(&Context), 0, sizeof(Context));
}

void THashAlgMD5Engine::MD5Transform(std::uint32_t State[4], const unsigned char Block[64]) {
  std::uint32_t a = State[0], b = State[1], c = State[2], d = State[3], x[16];
  Decode(x, Block, 64);

  // Round 1
  MD5_STEP(F, a, b, c, d, x[0], 7, 0xd76aa478);
  MD5_STEP(F, d, a, b, c, x[1], 12, 0xe8c7b756);
  MD5_STEP(F, c, d, a, b, x[2], 17, 0x242070db);
  MD5_STEP(F, b, c, d, a, x[3], 22, 0xc1bdceee);
  MD5_STEP(F, a, b, c, d, x[4], 7, 0xf57c0faf);
  MD5_STEP(F, d, a, b, c, x[5], 12, 0x4787c62a);
  MD5_STEP(F, c, d, a, b, x[6], 17, 0xa8304613);
  MD5_STEP(F, b, c, d, a, x[7], 22, 0xfd469501);
  MD5_STEP(F, a, b, c, d, x[8], 7, 0x698098d8);
  MD5_STEP(F, d, a, b, c, x[9], 12, 0x8b44f7af);
  MD5_STEP(F, c, d, a, b, x[10], 17, 0xffff5bb1);
  MD5_STEP(F, b, c, d, a, x[11], 22, 0x895cd7be);
  MD5_STEP(F, a, b, c, d, x[12], 7, 0x6b901122);
  MD5_STEP(F, d, a, b, c, x[13], 12, 0xfd987193);
  MD5_STEP(F, c, d, a, b, x[14], 17, 0xa679438e);
  MD5_STEP(F, b, c, d, a, x[15], 22, 0x49b40821);

  // Round 2
  MD5_STEP(G, a, b, c, d, x[1], 5, 0xf61e2562);
  MD5_STEP(G, d, a, b, c, x[6], 9, 0xc040b340);
  MD5_STEP(G, c, d, a, b, x[11], 14, 0x265e5a51);
  MD5_STEP(G, b, c, d, a, x[0], 20, 0xe9b6c7aa);
  MD5_STEP(G, a, b, c, d, x[5], 5, 0xd62f105d);
  MD5_STEP(G, d, a, b, c, x[10], 9, 0x02441453);
  MD5_STEP(G, c, d, a, b, x[15], 14, 0xd8a1e681);
  MD5_STEP(G, b, c, d, a, x[4], 20, 0xe7d3fbc8);
  MD5_STEP(G, a, b, c, d, x[9], 5, 0x21e1cde6);
  MD5_STEP(G, d, a, b, c, x[14], 9, 0xc33707d6);
  MD5_STEP(G, c, d, a, b, x[3], 14, 0xf4d50d87);
  MD5_STEP(G, b, c, d, a, x[8], 20, 0x455a14ed);
  MD5_STEP(G, a, b, c, d, x[13], 5, 0xa9e3e905);
  MD5_STEP(G, d, a, b, c, x[2], 9, 0xfcefa3f8);
  MD5_STEP(G, c, d, a, b, x[7], 14, 0x676f02d9);
  MD5_STEP(G, b, c, d, a, x[12], 20, 0x8d2a4c8a);

  // Round 3
  MD5_STEP(H, a, b, c, d, x[5], 4, 0xfffa3942);
  MD5_STEP(H, d, a, b, c, x[8], 11, 0x8771f681);
  MD5_STEP(H, c, d, a, b, x[11], 16, 0x6d9d6122);
  MD5_STEP(H, b, c, d, a, x[14], 23, 0xfde5380c);
  MD5_STEP(H, a, b, c, d, x[1], 4, 0xa4beea44);
  MD5_STEP(H, d, a, b, c, x[4], 11, 0x4bdecfa9);
  MD5_STEP(H, c, d, a, b, x[7], 16, 0xf6bb4b60);
  MD5_STEP(H, b, c, d, a, x[10], 23, 0xbebfbc70);
  MD5_STEP(H, a, b, c, d, x[13], 4, 0x289b7ec6);
  MD5_STEP(H, d, a, b, c, x[0], 11, 0xeaa127fa);
  MD5_STEP(H, c, d, a, b, x[3], 16, 0xd4ef3085);
  MD5_STEP(H, b, c, d, a, x[6], 23, 0x04881d05);
  MD5_STEP(H, a, b, c, d, x[9], 4, 0xd9d4d039);
  MD5_STEP(H, d, a, b, c, x[12], 11, 0xe6db99e5);
  MD5_STEP(H, c, d, a, b, x[15], 16, 0x1fa27cf8);
  MD5_STEP(H, b, c, d, a, x[2], 23, 0xc4ac5665);

  // Round 4
  MD5_STEP(I, a, b, c, d, x[0], 6, 0xf4292244);
  MD5_STEP(I, d, a, b, c, x[7], 10, 0x432aff97);
  MD5_STEP(I, c, d, a, b, x[14], 15, 0xab9423a7);
  MD5_STEP(I, b, c, d, a, x[5], 21, 0xfc93a039);
  MD5_STEP(I, a, b, c, d, x[12], 6, 0x655b59c3);
  MD5_STEP(I, d, a, b, c, x[3], 10, 0x8f0ccc92);
  MD5_STEP(I, c, d, a, b, x[10], 15, 0xffeff47d);
  MD5_STEP(I, b, c, d, a, x[1], 21, 0x85845dd1);
  MD5_STEP(I, a, b, c, d, x[8], 6, 0x6fa87e4f);
  MD5_STEP(I, d, a, b, c, x[15], 10, 0xfe2ce6e0);
  MD5_STEP(I, c, d, a, b, x[6], 15, 0xa3014314);
  MD5_STEP(I, b, c, d, a, x[13], 21, 0x4e0811a1);
  MD5_STEP(I, a, b, c, d, x[4], 6, 0xf7537e82);
  MD5_STEP(I, d, a, b, c, x[11], 10, 0xbd3af235);
  MD5_STEP(I, c, d, a, b, x[2], 15, 0x2ad7d2bb);
  MD5_STEP(I, b, c, d, a, x[9], 21, 0xeb86d391);

  State[0] += a;
  State[1] += b;
  State[2] += c;
  State[3] += d;
}

void THashAlgMD5Engine::Encode(unsigned char* Output, const std::uint32_t* Input, std::size_t Len) {
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(Output, Input, Len);
  } else {
    for (std::size_t I = 0, J = 0; J < Len; ++I, J += 4) {
      Output[J] = static_cast<unsigned char>(Input[I] & 0xff);
      Output[J + 1] = static_cast<unsigned char>((Input[I] >> 8) & 0xff);
      Output[J + 2] = static_cast<unsigned char>((Input[I] >> 16) & 0xff);
      Output[J + 3] = static_cast<unsigned char>((Input[I] >> 24) & 0xff);
    }
  }
}

void THashAlgMD5Engine::Decode(std::uint32_t* Output, const unsigned char* Input, std::size_t Len) {
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(Output, Input, Len);
  } else {
    for (std::size_t I = 0, J = 0; J < Len; ++I, J += 4)
      Output[I] = std::uint32_t{Input[J]} | (std::uint32_t{Input[J + 1]} << 8) |
                  (std::uint32_t{Input[J + 2]} << 16) | (std::uint32_t{Input[J + 3]} << 24);
  }
}

void THashAlgMD5Engine::MD5_memcpy(unsigned char* Output, const unsigned char* Input, std::size_t Len) {
  if (Len) std::memcpy(Output, Input, Len);
}

void THashAlgMD5Engine::MD5_memset(unsigned char* Output, int Value, std::size_t Len) {
  std::memset(Output, Value, Len);
}

}  // namespace zt::package
