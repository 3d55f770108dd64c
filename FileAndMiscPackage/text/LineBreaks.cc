#include "text/LineBreaks.h"

#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace zt::package {
namespace {

// The blocks of Text checked so far (a multiple of the block size), or npos
// when a line break in them is not CR LF. Within a block the LF positions
// must be the CR positions shifted by one; AfterCr carries a CR that ends a
// block into the next.
#if defined(__x86_64__)
__attribute__((target("avx2"))) std::size_t CheckBlocksAvx2(const unsigned char* P, std::size_t N,
                                                            std::uint64_t& AfterCr) {
  const __m256i Cr = _mm256_set1_epi8('\r'), Lf = _mm256_set1_epi8('\n');
  std::size_t I = 0;
  for (; I + 32 <= N; I += 32) {
    const __m256i V = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(P + I));
    const std::uint64_t CrBits = static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(V, Cr)));
    const std::uint64_t LfBits = static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(V, Lf)));
    if (LfBits != (((CrBits << 1) | AfterCr) & 0xFFFFFFFFu)) return std::string_view::npos;
    AfterCr = CrBits >> 31;
  }
  return I;
}
#endif

}  // namespace

bool HasCrLfLines(std::string_view Text) {
  const std::size_t N = Text.size();
  if (N == 0) return true;
  if (N < 2 || Text[N - 2] != '\r' || Text[N - 1] != '\n') return false;
  const auto* P = reinterpret_cast<const unsigned char*>(Text.data());
  std::uint64_t AfterCr = 0;  // 1 when the byte before I is a CR
  std::size_t I = 0;
#if defined(__x86_64__)
  // Without AVX2 the byte loop below does all the work.
  static const bool Avx2 = __builtin_cpu_supports("avx2");
  if (Avx2) I = CheckBlocksAvx2(P, N, AfterCr);
  if (I == std::string_view::npos) return false;
#endif
  for (; I < N; ++I) {
    if ((P[I] == '\n') != (AfterCr != 0)) return false;
    AfterCr = P[I] == '\r';
  }
  return true;
}

std::string ToCrLfLines(std::string_view Text) {
  std::string Result;
  Result.reserve(Text.size() + Text.size() / 16 + 2);
  const char* P = Text.data();
  const char* End = P + Text.size();
  while (P < End) {
    const char* Lf = static_cast<const char*>(std::memchr(P, '\n', static_cast<std::size_t>(End - P)));
    const char* LineEnd = Lf ? Lf : End;
    // CRs before LineEnd end lines too; one right before Lf is half of CR LF.
    bool Ended = false;
    while (const char* Cr =
               static_cast<const char*>(std::memchr(P, '\r', static_cast<std::size_t>(LineEnd - P)))) {
      Result.append(P, Cr).append("\r\n");
      P = Cr + 1;
      if (P == Lf) {
        P = Lf + 1;
        Ended = true;
        break;
      }
    }
    if (Ended) continue;
    if (P == End) break;  // the text ended with a lone CR
    Result.append(P, LineEnd).append("\r\n");
    P = Lf ? Lf + 1 : End;
  }
  return Result;
}

void MakeCrLfLines(std::string& Text) {
  if (!HasCrLfLines(Text)) Text = ToCrLfLines(Text);
}

std::size_t FindLineBreak(std::string_view Text) { return Text.find_first_of("\r\n"); }

}  // namespace zt::package
