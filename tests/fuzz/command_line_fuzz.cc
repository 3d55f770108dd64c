// Parameter texts of process actions, split into a program's arguments. The
// arguments, quoted and joined again, must split back into the same list.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/command_line.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  const std::string Text(reinterpret_cast<const char*>(Data), Size);
  const std::vector<std::string> Words = zt::platform::SplitCommandLine(Text);
  std::string Joined;
  for (const std::string& W : Words) Joined += (Joined.empty() ? "" : " ") + zt::platform::QuoteArgument(W);
  if (zt::platform::SplitCommandLine(Joined) != Words) __builtin_trap();
  return 0;
}
