// THashAlg: a hash algorithm with a title and a digest size, and the text
// forms of its digests. Subclasses supply HashString and HashFile.
#pragma once

#include <array>
#include <string>

namespace zt::package {

// A digest buffer; the first DigestSize() / 8 bytes are meaningful.
using THashDigest = std::array<unsigned char, 64>;

class THashAlg {
 public:
  THashAlg() = default;
  virtual ~THashAlg() = default;
  THashAlg(const THashAlg&) = delete;
  THashAlg& operator=(const THashAlg&) = delete;

  const std::string& Title() const { return FTitle; }
  int DigestSize() const { return FDigestSize; }  // in bits

  // Two upper-case hex digits per meaningful byte, in byte order.
  std::string HashToDisplay(const THashDigest& Digest) const;
  // The meaningful bytes as raw characters, one per byte.
  std::string HashToDataString(const THashDigest& Digest) const;
  // Sets all 64 bytes to 0.
  void ClearHash(THashDigest& Digest) const;

  virtual THashDigest HashString(const std::string& Text) = 0;
  // True with Digest filled; false when the file cannot be opened or read.
  virtual bool HashFile(const std::string& FileName, THashDigest& Digest) = 0;

 protected:
  std::string FTitle = "<<UNDEFINED>>";
  int FDigestSize = 0;
};

}  // namespace zt::package
