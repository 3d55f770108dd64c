// The version-resource reader over any bytes, taken both as a whole image
// (with and without a language to look for) and as a VS_VERSIONINFO block
// alone. Never a crash or a read out of bounds; the same bytes always give
// the same answer; whatever is found is valid UTF-8.
#include <cstdint>
#include <string>
#include <string_view>

#include "files/Peversioninfo.h"

namespace {

using zt::package::TPEVersionInfo;
using zt::package::TPEVersionStatus;

bool ValidUtf8(const std::string& S) {
  for (std::size_t I = 0; I < S.size();) {
    const auto B = static_cast<unsigned char>(S[I]);
    const std::size_t N = B < 0x80 ? 1 : (B & 0xE0) == 0xC0 ? 2 : (B & 0xF0) == 0xE0 ? 3 : (B & 0xF8) == 0xF0 ? 4 : 0;
    if (N == 0 || I + N > S.size()) return false;
    for (std::size_t K = 1; K < N; ++K)
      if ((static_cast<unsigned char>(S[I + K]) & 0xC0) != 0x80) return false;
    I += N;
  }
  return true;
}

void Check(TPEVersionStatus Status, const TPEVersionInfo& Info, TPEVersionStatus Again, const TPEVersionInfo& Second) {
  if (Status != Again || Info.FileVersionMS != Second.FileVersionMS || Info.Tables.size() != Second.Tables.size())
    __builtin_trap();
  if (Status == TPEVersionStatus::vsReadError) __builtin_trap();  // memory never fails to read
  for (const auto& T : Info.Tables) {
    if (!ValidUtf8(T.Key)) __builtin_trap();
    for (const auto& [Name, Value] : T.Strings)
      if (!ValidUtf8(Name) || !ValidUtf8(Value)) __builtin_trap();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  const std::string_view Bytes(reinterpret_cast<const char*>(Data), Size);
  for (std::uint16_t Language : {0, 0x0409}) {
    TPEVersionInfo A, B;
    Check(zt::package::ReadPEVersionInfoMemory(Bytes, Language, A), A,
          zt::package::ReadPEVersionInfoMemory(Bytes, Language, B), B);
  }
  TPEVersionInfo A, B;
  Check(zt::package::ParseVersionResource(Bytes, A), A, zt::package::ParseVersionResource(Bytes, B), B);
  return 0;
}
