// FindFirstFile's wildcard rules. Windows rewrites the pattern into DOS
// wildcards before matching:
//   ?                         -> DOS_QM:   one character, or nothing before a
//                                          '.' or at the end of the name
//   . before ? or * or at end -> DOS_DOT:  a '.', or nothing at the end
//   * before .                -> DOS_STAR: any run that stops short of the
//                                          name's last '.'
// and matches the result against the name. Letter case is compared exactly
// (the platform's file names decide; POSIX ones are case-sensitive).
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace zt::platform {

namespace {

enum class Token : char { Literal, Star, DosStar, DosQm, DosDot };

struct Element {
  Token Kind;
  char C;
};

std::vector<Element> Translate(std::string_view P) {
  std::vector<Element> Out;
  Out.reserve(P.size());
  for (size_t I = 0; I < P.size(); ++I) {
    char Next = I + 1 < P.size() ? P[I + 1] : '\0';
    if (P[I] == '?')
      Out.push_back({Token::DosQm, 0});
    else if (P[I] == '*')
      Out.push_back({Next == '.' ? Token::DosStar : Token::Star, 0});
    else if (P[I] == '.' && (Next == '?' || Next == '*' || Next == '\0'))
      Out.push_back({Token::DosDot, 0});
    else
      Out.push_back({Token::Literal, P[I]});
  }
  return Out;
}

class Matcher {
 public:
  Matcher(std::string_view Name, const std::vector<Element>& Pattern)
      : Name_(Name),
        Pattern_(Pattern),
        LastDot_(Name.rfind('.')),
        Memo_((Pattern.size() + 1) * (Name.size() + 1), Unknown) {}

  bool Match(size_t P, size_t N) {
    char& Cell = Memo_[P * (Name_.size() + 1) + N];
    if (Cell == Unknown) Cell = Compute(P, N) ? Yes : No;
    return Cell == Yes;
  }

 private:
  static constexpr char Unknown = 0, Yes = 1, No = 2;

  bool Compute(size_t P, size_t N) {
    if (P == Pattern_.size()) return N == Name_.size();
    const bool AtEnd = N == Name_.size();
    switch (Pattern_[P].Kind) {
      case Token::Literal:
        return !AtEnd && Name_[N] == Pattern_[P].C && Match(P + 1, N + 1);
      // A star matches nothing here, or one more character and is still a
      // star: every cell then costs constant time, so a pattern of many stars
      // takes time in proportion to the pattern's length times the name's.
      case Token::Star:
        return Match(P + 1, N) || (!AtEnd && Match(P, N + 1));
      case Token::DosStar: {
        const size_t Limit = (LastDot_ != std::string_view::npos && LastDot_ >= N) ? LastDot_ : Name_.size();
        return Match(P + 1, N) || (N < Limit && Match(P, N + 1));
      }
      case Token::DosQm:
        if (AtEnd || Name_[N] == '.') {
          size_t Q = P;
          while (Q < Pattern_.size() && Pattern_[Q].Kind == Token::DosQm) ++Q;
          return Match(Q, N);
        }
        return Match(P + 1, N + 1);
      case Token::DosDot:
        if (AtEnd) return Match(P + 1, N);
        return Name_[N] == '.' && Match(P + 1, N + 1);
    }
    return false;
  }

  std::string_view Name_;
  const std::vector<Element>& Pattern_;
  size_t LastDot_;
  std::vector<char> Memo_;
};

}  // namespace

bool MatchesWildcard(const std::string& Name, const std::string& Pattern) {
  if (Pattern == "*" || Pattern == "*.*") return true;  // kernel32 short-cuts both
  if (Pattern.empty()) return false;
  if (Pattern.find_first_of("*?") == std::string::npos && Pattern.back() != '.') return Name == Pattern;
  std::vector<Element> Elements = Translate(Pattern);
  return Matcher(Name, Elements).Match(0, 0);
}

}  // namespace zt::platform
