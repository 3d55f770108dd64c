// %NAME% expansion. Input: lines "NAME=value" define variables, up to a line
// "--"; the rest is the text to expand. Undefined names and cycles are
// errors the caller reports, never crashes. The counting expansion gives
// the same text wherever the plain one succeeds, and keeping unknown names
// never raises for them.
#include <cstdint>
#include <stdexcept>
#include <string>

#include "host/project/expander.h"
#include "host/project/variables.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  std::string In(reinterpret_cast<const char*>(Data), Size);
  zt::host::Variables Vars;
  std::size_t Pos = 0;
  while (Pos < In.size()) {
    std::size_t End = In.find('\n', Pos);
    if (End == std::string::npos) End = In.size();
    std::string Line = In.substr(Pos, End - Pos);
    Pos = End + 1;
    if (Line == "--") break;
    std::size_t Eq = Line.find('=');
    if (Eq == std::string::npos || Eq == 0) continue;
    Vars.Set(Line.substr(0, Eq), zt::host::TypedValueOf(Line.substr(Eq + 1)));
  }
  std::string Text = Pos < In.size() ? In.substr(Pos) : std::string();
  zt::host::Expander E;
  int Replaced = 0;
  try {
    std::string Once = E.Expand(Text, Vars);
    // The cache must give the same answer the second time.
    if (E.Expand(Text, Vars) != Once) __builtin_trap();
    if (E.ExpandCounting(Text, Vars, /*FailOnUnknown=*/true, Replaced) != Once) __builtin_trap();
  } catch (const std::runtime_error&) {
  }
  try {
    E.ExpandCounting(Text, Vars, /*FailOnUnknown=*/false, Replaced);
    if (Replaced < 0) __builtin_trap();
  } catch (const zt::host::UndefinedVariable&) {
    __builtin_trap();
  } catch (const std::runtime_error&) {
  }
  return 0;
}
