// String helpers of the host that actions use on expanded property texts.
// Header-only.
#pragma once

#include <string>

namespace zt::frame {

// Delphi's Trim: removes blanks and control characters (every byte up to
// and including ' ') from both ends.
inline std::string Trim(const std::string& S) {
  std::size_t B = 0, E = S.size();
  while (B < E && static_cast<unsigned char>(S[B]) <= ' ') ++B;
  while (E > B && static_cast<unsigned char>(S[E - 1]) <= ' ') --E;
  return S.substr(B, E - B);
}

// Delphi's LowerCase: ASCII letters only, every other byte unchanged.
inline std::string LowerCase(std::string S) {
  for (char& C : S)
    if (C >= 'A' && C <= 'Z') C = static_cast<char>(C - 'A' + 'a');
  return S;
}

// Removes one pair of surrounding double quotes; any other text is returned
// unchanged (a lone quote included).
inline std::string StripQuotes(const std::string& S) {
  if (S.size() >= 2 && S.front() == '"' && S.back() == '"') return S.substr(1, S.size() - 2);
  return S;
}

}  // namespace zt::frame
