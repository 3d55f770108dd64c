// The file that holds the registry store (registry_store.h), and the two
// ways to use it: a snapshot to read, and a locked read-modify-write to
// change it. The registry services of POSIX are built on these; so are
// the `zt registry` commands.
//
// Nothing is lost under concurrency or faults: a change takes an advisory
// lock (flock on "<file>.lock", so other writers wait), reads the file
// afresh, and writes the whole new store to a temporary file that is
// renamed over the old one. Readers take no lock: they see the old store
// or the new one, never half of either; a crash leaves one of them.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/registry_store.h"
#include "platform/win_types.h"

namespace zt::platform {

// The store's file: $ZT_REGISTRY when set (zt run --registry sets it), else
// $XDG_DATA_HOME/zt/registry.json, else ~/.local/share/zt/registry.json.
std::string RegistryFileName();

// The store as the last complete change left it; a missing file is an empty
// registry. The file is read each time but parsed only when its text has
// changed (reads of an unchanged file share one document). Throws
// ERegistryStoreError.
std::shared_ptr<const TRegistryDocument> ReadRegistry();

// Edit changes Doc and sets Changed when it did; it returns 0, or a Windows
// error code that abandons the change.
using TRegistryEdit = std::function<DWORD(TRegistryDocument& Doc, bool& Changed)>;
// Applies Edit under the store's lock to the store as it is now, and
// replaces the file when Changed is set. Returns Edit's result, or the
// Windows error of a failed lock or write (the file is then unchanged).
// Throws ERegistryStoreError for a store that cannot be read: it is never
// written. The directories of the default file are created when missing.
DWORD UpdateRegistry(const TRegistryEdit& Edit);

}  // namespace zt::platform
