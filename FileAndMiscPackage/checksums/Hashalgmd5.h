// THashAlgMD5: the MD5 algorithm (title "MD5", 128-bit digests).
#pragma once

#include <memory>

#include "checksums/Hashalg.h"
#include "checksums/Hashalgmd5engine.h"

namespace zt::package {

class THashAlgMD5 : public THashAlg {
 public:
  THashAlgMD5();

  THashDigest HashString(const std::string& Text) override;
  // Opens the file read-only while denying writers: a file another process
  // holds open for writing gives false, as does any open or read failure.
  bool HashFile(const std::string& FileName, THashDigest& Digest) override;

 private:
  std::unique_ptr<THashAlgMD5Engine> FEngine;
};

}  // namespace zt::package
