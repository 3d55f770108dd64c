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

// Pattern components P against path components N: "**" stands for any run
// of components, every other component for exactly one. The same single
// backtrack point as MatchComponent (the last "**"): the earliest match of
// what follows a "**" is always the best, so the work stays P x N.
bool MatchParts(const std::vector<std::string>& P, const std::vector<std::string_view>& N) {
  std::size_t Pi = 0, Ni = 0, StarP = std::string::npos, StarN = 0;
  while (Ni < N.size()) {
    if (Pi < P.size() && P[Pi] == "**") {
      StarP = Pi++;
      StarN = Ni;
    } else if (Pi < P.size() && MatchComponent(P[Pi], N[Ni])) {
      ++Pi;
      ++Ni;
    } else if (StarP != std::string::npos) {
      Pi = StarP + 1;
      Ni = ++StarN;
    } else {
      return false;
    }
  }
  while (Pi < P.size() && P[Pi] == "**") ++Pi;
  return Pi == P.size();
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

bool Glob::Matches(std::string_view Path) const { return MatchParts(Parts_, SplitPath(Path)); }

bool Glob::MatchesEverythingBelow(std::string_view Dir) const {
  if (Parts_.empty() || Parts_.back() != "**") return false;
  std::vector<std::string> Prefix(Parts_.begin(), Parts_.end() - 1);
  return Prefix.empty() || MatchParts(Prefix, SplitPath(Dir));
}

}  // namespace zt::host
