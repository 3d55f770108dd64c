// Glob patterns of project file sets: input is "pattern\npath".
#include <cstdint>
#include <string>

#include "host/project/glob.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  std::string In(reinterpret_cast<const char*>(Data), Size);
  std::size_t Cut = In.find('\n');
  if (Cut == std::string::npos) return 0;
  zt::host::Glob G(In.substr(0, Cut));
  std::string Path = In.substr(Cut + 1);
  bool Below = G.MatchesEverythingBelow(Path);
  // Everything below Path matches, so Path/x does too.
  if (Below && !Path.empty() && !G.Matches(Path + "/x")) __builtin_trap();
  G.Matches(Path);
  return 0;
}
