#include "checksums/Hashalg.h"

namespace zt::package {

std::string THashAlg::HashToDisplay(const THashDigest& Digest) const {
  static const char HexDigits[] = "0123456789ABCDEF";
  std::string Text;
  for (int I = 0; I < FDigestSize / 8; ++I) {
    Text += HexDigits[Digest[I] >> 4];
    Text += HexDigits[Digest[I] & 0xF];
  }
  return Text;
}

std::string THashAlg::HashToDataString(const THashDigest& Digest) const {
  return std::string(reinterpret_cast<const char*>(Digest.data()), static_cast<std::size_t>(FDigestSize / 8));
}

void THashAlg::ClearHash(THashDigest& Digest) const { Digest.fill(0); }

}  // namespace zt::package
