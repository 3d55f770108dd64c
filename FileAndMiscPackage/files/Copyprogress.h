// The percentage a file copy or move reports, shared by the actions that
// copy files one by one.
#pragma once

#include <cstdint>

namespace zt::package {

// Transferred / Total as a whole percentage, ties to even; exact, so that
// 1 of 8 bytes gives 12 and 3 of 8 gives 38. 0 for an empty file.
inline std::int32_t RoundedPercent(std::int64_t Total, std::int64_t Transferred) {
  if (Total <= 0) return 0;
  const unsigned __int128 Scaled = static_cast<unsigned __int128>(Transferred < 0 ? 0 : Transferred) * 100;
  const auto Divisor = static_cast<unsigned __int128>(Total);
  auto Quotient = Scaled / Divisor;
  const auto Twice = (Scaled % Divisor) * 2;
  if (Twice > Divisor || (Twice == Divisor && (Quotient & 1))) ++Quotient;
  return static_cast<std::int32_t>(Quotient);
}

}  // namespace zt::package
