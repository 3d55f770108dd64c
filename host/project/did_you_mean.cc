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

// How Name holds Word (letter case ignored): 3 as its first whole word, 2 as
// a whole word elsewhere, 1 as the start of a word ("crc" in "CRC32"), 0 not.
int Holding(const std::string& Word, const std::string& Name) {
  int Best = 0;
  for (std::size_t At = 0; At + Word.size() <= Name.size(); ++At) {
    if (At > 0 && IsWordChar(Name[At - 1])) continue;
    if (strncasecmp(Name.c_str() + At, Word.c_str(), Word.size()) != 0) continue;
    bool Whole = At + Word.size() == Name.size() || !IsWordChar(Name[At + Word.size()]);
    Best = std::max(Best, !Whole ? 1 : At == 0 ? 3 : 2);
  }
  return Best;
}

}  // namespace

std::string NameHolding(const std::string& Word, const std::vector<std::string>& Candidates) {
  const std::string* Holder = nullptr;
  int Best = 0;
  if (Word.size() >= 3)
    for (const auto& C : Candidates)
      if (int H = Holding(Word, C); H > Best) {
        Best = H;
        Holder = &C;
      }
  return Holder ? *Holder : std::string();
}

std::string NearestName(const std::string& Word, const std::vector<std::string>& Candidates) {
  // A name that holds the word ("copy" in "Copy File(s)") is what the user meant, however far
  // the spelling is.
  if (std::string Holder = NameHolding(Word, Candidates); !Holder.empty()) return Holder;
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

std::string SuggestionText(const std::string& Name) {
  return Name.empty() ? std::string() : "; did you mean \"" + Name + "\"?";
}

std::string DidYouMean(const std::string& Word, const std::vector<std::string>& Candidates) {
  return SuggestionText(NearestName(Word, Candidates));
}

}  // namespace zt::host
