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

bool IsWordChar(char C) { return std::isalnum(static_cast<unsigned char>(C)) != 0; }

// Where Word stands in Name as a whole word (letter case ignored), or npos.
std::size_t WordPosition(const std::string& Word, const std::string& Name) {
  for (std::size_t At = 0; At + Word.size() <= Name.size(); ++At) {
    if (strncasecmp(Name.c_str() + At, Word.c_str(), Word.size()) != 0) continue;
    bool Before = At == 0 || !IsWordChar(Name[At - 1]);
    bool After = At + Word.size() == Name.size() || !IsWordChar(Name[At + Word.size()]);
    if (Before && After) return At;
  }
  return std::string::npos;
}

}  // namespace

std::string NearestName(const std::string& Word, const std::vector<std::string>& Candidates) {
  // A name that holds the word ("copy" in "Copy File(s)") is what the user meant, however far
  // the spelling is; one that starts with it first.
  if (Word.size() >= 3) {
    std::string Holder;
    for (const auto& C : Candidates) {
      std::size_t At = WordPosition(Word, C);
      if (At == 0) return C;
      if (At != std::string::npos && Holder.empty()) Holder = C;
    }
    if (!Holder.empty()) return Holder;
  }
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
