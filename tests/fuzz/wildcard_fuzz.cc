// Windows wildcard matching of one name against one pattern: input is
// "pattern\nname". A pattern full of stars must not take exponential time.
#include <cstdint>
#include <string>

#include "platform/files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  std::string In(reinterpret_cast<const char*>(Data), Size);
  std::size_t Cut = In.find('\n');
  if (Cut == std::string::npos) return 0;
  std::string Pattern = In.substr(0, Cut), Name = In.substr(Cut + 1);
  bool Match = zt::platform::MatchesWildcard(Name, Pattern);
  // "*" matches every name; a name always matches itself when it has no wildcard.
  if (!zt::platform::MatchesWildcard(Name, "*")) __builtin_trap();
  if (Name.find_first_of("*?") == std::string::npos && !Name.empty() && !zt::platform::MatchesWildcard(Name, Name))
    __builtin_trap();
  (void)Match;
  return 0;
}
