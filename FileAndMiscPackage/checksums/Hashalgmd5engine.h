// The MD5 message-digest algorithm of RFC 1321, in the reference
// implementation's shape: MD5Init, then MD5Update as often as needed, then
// MD5Final. The engine holds no state of its own; everything lives in the
// caller's MD5_CTX, so one engine may serve any number of contexts.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zt::package {

struct MD5_CTX {
  std::uint32_t state[4];    // A, B, C, D
  std::uint32_t count[2];    // number of bits, modulo 2^64 (low word first)
  unsigned char buffer[64];  // input not yet transformed
};

class THashAlgMD5Engine {
 public:
  // Starts a new digest.
  void MD5Init(MD5_CTX& Context);
  // Adds InputLen bytes; whole 64-byte blocks are transformed straight from
  // Input, only a partial block is buffered.
  void MD5Update(MD5_CTX& Context, const unsigned char* Input, std::size_t InputLen);
  // Pads, appends the bit count and writes the 16-byte digest; the context is
  // cleared afterwards.
  void MD5Final(unsigned char Digest[16], MD5_CTX& Context);

  // The basic transformation of one 64-byte block.
  static void MD5Transform(std::uint32_t State[4], const unsigned char Block[64]);
  // Words to little-endian bytes and back; Len counts bytes (a multiple of 4).
  static void Encode(unsigned char* Output, const std::uint32_t* Input, std::size_t Len);
  static void Decode(std::uint32_t* Output, const unsigned char* Input, std::size_t Len);
  static void MD5_memcpy(unsigned char* Output, const unsigned char* Input, std::size_t Len);
  static void MD5_memset(unsigned char* Output, int Value, std::size_t Len);

  // The four auxiliary functions of the rounds.
  static std::uint32_t F(std::uint32_t X, std::uint32_t Y, std::uint32_t Z) { return Z ^ (X & (Y ^ Z)); }
  static std::uint32_t G(std::uint32_t X, std::uint32_t Y, std::uint32_t Z) { return Y ^ (Z & (X ^ Y)); }
  static std::uint32_t H(std::uint32_t X, std::uint32_t Y, std::uint32_t Z) { return X ^ Y ^ Z; }
  static std::uint32_t I(std::uint32_t X, std::uint32_t Y, std::uint32_t Z) { return Y ^ (X | ~Z); }
};

}  // namespace zt::package
