// Compiling a script as zt validate does, on any text: never a crash, and a
// syntax error names the project file and a line at or below the script's
// first line. A precompiled (binary) chunk is refused, not run.
#include <cstdint>
#include <string>

#include "host/run/script_session.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  zt::host::ScriptSource Script{"OnExecute", std::string(reinterpret_cast<const char*>(Data), Size), 7};
  std::string Error = zt::host::CompileScript("p.yml", Script);
  if (Error.empty()) return 0;
  if (Error.rfind("p.yml:", 0) != 0) __builtin_trap();
  std::size_t End = 6;
  long Line = 0;
  while (End < Error.size() && Error[End] >= '0' && Error[End] <= '9') Line = Line * 10 + (Error[End++] - '0');
  if (End == 6 || Line < Script.Line || Error.compare(End, 2, ": ") != 0) __builtin_trap();
  return 0;
}
