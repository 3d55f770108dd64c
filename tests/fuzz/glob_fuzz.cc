// Glob patterns of project file sets: input is "pattern\npath". The matcher
// must agree with a plain memoised recursion and never take exponential time.
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/project/glob.h"

namespace {

std::vector<std::string> Split(const std::string& S) {
  std::vector<std::string> R;
  std::size_t Start = 0;
  while (Start <= S.size()) {
    std::size_t End = S.find('/', Start);
    if (End == std::string::npos) End = S.size();
    if (End > Start) R.push_back(S.substr(Start, End - Start));
    Start = End + 1;
  }
  return R;
}

// Reference: every split of every "**", remembered per (pattern, path) position.
bool Reference(const std::vector<std::string>& P, std::size_t Pi, const std::vector<std::string>& N, std::size_t Ni,
               std::map<std::pair<std::size_t, std::size_t>, bool>& Memo) {
  auto Key = std::make_pair(Pi, Ni);
  if (auto It = Memo.find(Key); It != Memo.end()) return It->second;
  bool R;
  if (Pi == P.size())
    R = Ni == N.size();
  else if (P[Pi] == "**")
    R = Reference(P, Pi + 1, N, Ni, Memo) || (Ni < N.size() && Reference(P, Pi, N, Ni + 1, Memo));
  else
    R = Ni < N.size() && zt::host::MatchComponent(P[Pi], N[Ni]) && Reference(P, Pi + 1, N, Ni + 1, Memo);
  return Memo[Key] = R;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  std::string In(reinterpret_cast<const char*>(Data), Size);
  std::size_t Cut = In.find('\n');
  if (Cut == std::string::npos) return 0;
  std::string Pattern = In.substr(0, Cut), Path = In.substr(Cut + 1);
  zt::host::Glob G(Pattern);
  std::map<std::pair<std::size_t, std::size_t>, bool> Memo;
  if (G.Matches(Path) != Reference(Split(Pattern), 0, Split(Path), 0, Memo)) __builtin_trap();
  // Everything below Path matches, so Path/x does too.
  if (G.MatchesEverythingBelow(Path) && !G.Matches(Path + "/x")) __builtin_trap();
  return 0;
}
