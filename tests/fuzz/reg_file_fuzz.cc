// The .reg reader: any bytes either read or are refused with BadRegFile;
// what a read file leaves in the store exports to a file that reads back
// to the same store.
#include <cstdint>
#include <string>

#include "host/cli/reg_file.h"

namespace {

using zt::platform::TRegistryDocument;

// Every root of Doc exported and read again into a new document.
TRegistryDocument ThroughRegFiles(const TRegistryDocument& Doc) {
  TRegistryDocument Again;
  for (zt::platform::HKEY Root :
       {zt::platform::HKEY_CLASSES_ROOT, zt::platform::HKEY_CURRENT_USER, zt::platform::HKEY_LOCAL_MACHINE,
        zt::platform::HKEY_USERS, zt::platform::HKEY_CURRENT_CONFIG})
    zt::host::ApplyRegFile(
        zt::host::ReadRegFile(zt::host::WriteRegFile(*Doc.Root(Root), zt::platform::RootKeyName(Root)),
                              "exported"),
        Again);
  return Again;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  TRegistryDocument Doc;
  try {
    zt::host::ApplyRegFile(
        zt::host::ReadRegFile(std::string(reinterpret_cast<const char*>(Data), Size), "fuzz"), Doc);
  } catch (const zt::host::BadRegFile&) {
    return 0;
  }
  if (ThroughRegFiles(Doc).Serialize() != Doc.Serialize()) __builtin_trap();
  return 0;
}
