// The INI engine on an arbitrary file: every read, then a write read back.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

#include "platform/inifile.h"

namespace {
const std::string& FilePath() {
  static const std::string P = "/dev/shm/zt-ini-fuzz-" + std::to_string(getpid()) + ".ini";
  return P;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using zt::platform::TIniFile;
  {
    std::ofstream Out(FilePath(), std::ios::binary | std::ios::trunc);
    Out.write(reinterpret_cast<const char*>(Data), static_cast<std::streamsize>(Size));
  }
  TIniFile Ini(FilePath());
  std::vector<std::string> Sections = Ini.ReadSections();
  for (const std::string& S : Sections) {
    for (const std::string& Pair : Ini.ReadSectionValues(S)) (void)Pair;
    for (const std::string& K : Ini.ReadSection(S)) Ini.ReadInteger(S, K, 7);
  }
  std::string Section = Sections.empty() ? "new" : Sections.front();
  try {
    Ini.WriteString(Section, "zt_fuzz_key", "value 1");
    if (!Section.empty() && Section.find_first_of("]\r\n") == std::string::npos &&
        Ini.ReadString(Section, "zt_fuzz_key", "") != "value 1")
      __builtin_trap();
    Ini.DeleteKey(Section, "zt_fuzz_key");
    Ini.EraseSection(Section);
  } catch (const zt::platform::EIniFileException&) {
  }
  std::remove(FilePath().c_str());
  return 0;
}
