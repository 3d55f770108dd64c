// Whole-file helpers for tests: bytes in, bytes out, nothing else.
#pragma once

#include <fstream>
#include <iterator>
#include <string>

namespace zt::testing {

inline void WriteBytes(const std::string& Path, const std::string& Bytes) {
  std::ofstream(Path, std::ios::binary) << Bytes;
}

inline std::string ReadBytes(const std::string& Path) {
  std::ifstream In(Path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(In), std::istreambuf_iterator<char>());
}

}  // namespace zt::testing
