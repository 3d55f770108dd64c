// Where two files first differ, read block by block (memory stays flat
// whatever their size).
#pragma once

#include <cstdint>
#include <string>

namespace zt::package {

struct TFileDifference {
  bool Equal = true;
  std::int64_t Byte = 0;  // 1-based offset of the first difference
  std::int64_t Line = 0;  // 1-based line of the first difference
};

// Compares A and B byte for byte, or with Text as text: CR LF, LF and CR are
// one line end, and a missing line end at the very end is no difference
// (Byte then counts in that normalised text). False with the last error set
// when a file cannot be opened or read.
bool CompareFiles(const std::string& A, const std::string& B, bool Text, TFileDifference& Result);

}  // namespace zt::package
