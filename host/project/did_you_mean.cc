#include "host/project/did_you_mean.h"

#include <algorithm>
#include <cctype>

#include <strings.h>

namespace zt::host {

namespace {

// Levenshtein distance over lower-cased letters, one row at a time.
std::size_t EditDistance(const std::string& A, const std::string& B) {
  std::vector<std::size_t> Row(B.size() + 1);
  for (std::size_t J = 0; J <= B.size(); ++J) Row[J] = J;
  for (std::size_t I = 1; I <= A.size(); ++I) {
    std::size_t Diagonal = Row[0];
    Row[0] = I;
    for (std::size_t J = 1; J <= B.size(); ++J) {
      std::size_t Above = Row[J];
      bool Same = std::tolower(static_cast<unsigned char>(A[I - 1])) ==
                  std::tolower(static_cast<unsigned char>(B[J - 1]));
      Row[J] = std::min({Row[J] + 1, Row[J - 1] + 1, Diagonal + (Same ? 0 : 1)});
      Diagonal = Above;
    }
  }
  return Row[B.size()];
}

}  // namespace

std::string NearestName(const std::string& Word, const std::vector<std::string>& Candidates) {
  std::string Best;
  std::size_t BestDistance = std::max<std::size_t>(Word.size() / 2, 2) + 1;
  for (const auto& C : Candidates) {
    std::size_t D = EditDistance(Word, C);
    if (D < BestDistance) {
      BestDistance = D;
      Best = C;
    }
  }
  // A word that begins a candidate ("Delete" for "Delete File(s)") points to it too.
  if (Best.empty() && !Word.empty())
    for (const auto& C : Candidates)
      if (C.size() > Word.size() && strncasecmp(C.c_str(), Word.c_str(), Word.size()) == 0) return C;
  return Best;
}

std::string DidYouMean(const std::string& Word, const std::vector<std::string>& Candidates) {
  std::string Near = NearestName(Word, Candidates);
  return Near.empty() ? std::string() : "; did you mean \"" + Near + "\"?";
}

}  // namespace zt::host
