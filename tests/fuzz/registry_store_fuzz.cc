// The registry store's reader: any text either reads or is refused with
// ERegistryStoreError, and what the store writes reads back the same.
#include <cstdint>
#include <string>

#include "platform/registry_store.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using zt::platform::TRegistryDocument;
  try {
    std::string Written =
        TRegistryDocument::Parse(std::string(reinterpret_cast<const char*>(Data), Size), "fuzz").Serialize();
    if (TRegistryDocument::Parse(Written, "written").Serialize() != Written) __builtin_trap();
  } catch (const zt::platform::ERegistryStoreError&) {
  }
  return 0;
}
