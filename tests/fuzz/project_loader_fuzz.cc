// Project files (YAML, or JSON read the same way) against the package's real
// action types: a malformed file is one ProjectError, never a crash.
#include <cstdint>
#include <string>

#include "Ztfilereg.h"
#include "Ztservices.h"
#include "host/project/project_loader.h"

namespace {
zt::host::ActionRegistry& Registry() {
  static zt::host::ActionRegistry* R = [] {
    auto* Reg = new zt::host::ActionRegistry;
    zt::frame::TZTServices Svc{Reg, Reg, Reg};
    zt::package::SetServices(&Svc);
    zt::package::RegisterPackage(false);
    zt::package::SetServices(nullptr);
    return Reg;
  }();
  return *R;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  std::string Text(reinterpret_cast<const char*>(Data), Size);
  try {
    zt::host::LoadProjectText(Text, "fuzz.yml", Registry());
  } catch (const zt::host::ProjectError&) {
  }
  return 0;
}
