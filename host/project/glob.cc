#include "host/project/glob.h"

namespace zt::host {

namespace {

std::vector<std::string_view> SplitPath(std::string_view Path) {
  std::vector<std::string_view> R;
  std::size_t Start = 0;
  while (Start <= Path.size()) {
    std::size_t End = Path.find('/', Start);
    if (End == std::string_view::npos) End = Path.size();
    if (End > Start) R.push_back(Path.substr(Start, End - Start));  // "a//b" is "a/b"
    Start = End + 1;
  }
  return R;
}

// Pattern components P[Pi..] against path components N[Ni..]. "**" tries
// every split, but consecutive "**" add nothing and are folded, so the
// work stays polynomial.
bool MatchParts(const std::vector<std::string>& P, std::size_t Pi, const std::vector<std::string_view>& N,
                std::size_t Ni) {
  while (Pi < P.size()) {
    if (P[Pi] == "**") {
      while (Pi + 1 < P.size() && P[Pi + 1] == "**") ++Pi;
      if (Pi + 1 == P.size()) return true;
      for (std::size_t K = Ni; K <= N.size(); ++K)
        if (MatchParts(P, Pi + 1, N, K)) return true;
      return false;
    }
    if (Ni == N.size() || !MatchComponent(P[Pi], N[Ni])) return false;
    ++Pi;
    ++Ni;
  }
  return Ni == N.size();
}

}  // namespace

bool MatchComponent(std::string_view Pattern, std::string_view Name) {
  // Iterative match with one backtrack point (the last '*'): linear-ish, no recursion.
  std::size_t P = 0, N = 0, StarP = std::string_view::npos, StarN = 0;
  while (N < Name.size()) {
    if (P < Pattern.size() && (Pattern[P] == '?' || Pattern[P] == Name[N])) {
      ++P;
      ++N;
    } else if (P < Pattern.size() && Pattern[P] == '*') {
      StarP = P++;
      StarN = N;
    } else if (StarP != std::string_view::npos) {
      P = StarP + 1;
      N = ++StarN;
    } else {
      return false;
    }
  }
  while (P < Pattern.size() && Pattern[P] == '*') ++P;
  return P == Pattern.size();
}

Glob::Glob(std::string_view Pattern) : Pattern_(Pattern) {
  for (std::string_view Part : SplitPath(Pattern)) Parts_.emplace_back(Part);
}

bool Glob::Matches(std::string_view Path) const { return MatchParts(Parts_, 0, SplitPath(Path), 0); }

bool Glob::MatchesEverythingBelow(std::string_view Dir) const {
  if (Parts_.empty() || Parts_.back() != "**") return false;
  std::vector<std::string> Prefix(Parts_.begin(), Parts_.end() - 1);
  return Prefix.empty() || MatchParts(Prefix, 0, SplitPath(Dir), 0);
}

}  // namespace zt::host
