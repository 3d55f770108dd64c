#include "checksums/Hashalgmd5.h"

#include <vector>

#include "checksums/FileBlocks.h"

namespace zt::package {

THashAlgMD5::THashAlgMD5() : FEngine(std::make_unique<THashAlgMD5Engine>()) {
  FDigestSize = 128;
  FTitle = "MD5";
}

THashDigest THashAlgMD5::HashString(const std::string& Text) {
  const std::vector<unsigned char> Bytes(Text.begin(), Text.end());
  THashDigest Digest{};
  MD5_CTX Context;
  FEngine->MD5Init(Context);
  FEngine->MD5Update(Context, Bytes.data(), Bytes.size());
  FEngine->MD5Final(Digest.data(), Context);
  return Digest;
}

bool THashAlgMD5::HashFile(const std::string& FileName, THashDigest& Digest) {
  try {
    const platform::THandle Handle = platform::FileOpen(FileName, platform::fmOpenRead | platform::fmShareDenyWrite);
    if (Handle == platform::INVALID_HANDLE_VALUE) return false;
    TFileHandleGuard Guard(Handle);
    MD5_CTX Context;
    FEngine->MD5Init(Context);
    const bool ReadAll = ReadFileInBlocks(Handle, [&](const unsigned char* Data, std::size_t Len) {
      MD5_CTX Next = Context;  // committed once the whole block is in
      FEngine->MD5Update(Next, Data, Len);
      Context = Next;
    });
    if (!ReadAll) return false;
    FEngine->MD5Final(Digest.data(), Context);
    return true;
  } catch (...) {
    // Any failure on the way (memory included) only means "no digest".
    return false;
  }
}

}  // namespace zt::package
