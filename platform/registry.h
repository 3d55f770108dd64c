// The Win32 registry services (narrow names and texts, UTF-8). Every
// function forwards to Env::Default() (env.h) and returns ERROR_SUCCESS (0)
// or a Windows error code, as Win32's Reg* functions do (the last-error
// code is left alone). Value data use the layout of registry_data.h.
//
// On POSIX the registry is the store of registry_file.h: the root keys are
// the five predefined handles, an opened key is a handle to a key path,
// every read sees the store as the last complete change left it, and every
// change is one locked read-modify-write of the store's file. A store that
// cannot be read (not JSON, not the store's shape, an unreadable file)
// raises ERegistryStoreError (registry_store.h) from any of these calls,
// naming the file and the place; such a store is never written.
// Thread use: any thread; handles may be shared between threads.
#pragma once

#include <string>

#include "platform/win_types.h"

namespace zt::platform {

// Opens the key SubKey below Key (a root or an opened key; "" opens Key
// again). ERROR_FILE_NOT_FOUND (2) when it does not exist,
// ERROR_KEY_DELETED (1018) when Key itself was deleted. Close Result with
// RegCloseKey.
DWORD RegOpenKeyExA(HKEY Key, const std::string& SubKey, DWORD Access, HKEY& Result);
// Opens SubKey, creating it and every missing level first. Disposition
// (may be null) receives REG_CREATED_NEW_KEY or REG_OPENED_EXISTING_KEY.
DWORD RegCreateKeyExA(HKEY Key, const std::string& SubKey, DWORD Access, HKEY& Result, DWORD* Disposition);
// Closing a root key does nothing; an unknown handle gives ERROR_INVALID_HANDLE (6).
DWORD RegCloseKey(HKEY Key);

// Reads the value ValueName ("" = the default value) of Key; Type and Data
// may be null. ERROR_FILE_NOT_FOUND when there is no such value;
// ERROR_ACCESS_DENIED (5) when Key was opened without KEY_QUERY_VALUE.
DWORD RegQueryValueExA(HKEY Key, const std::string& ValueName, DWORD* Type, std::string* Data);
// Sets a value, replacing one of the same name (which keeps its spelling).
// ERROR_INVALID_PARAMETER (87) for data not in the type's layout, a type
// other than REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ, REG_DWORD, REG_QWORD and
// REG_BINARY, or a name or text that is not UTF-8. Needs KEY_SET_VALUE.
DWORD RegSetValueExA(HKEY Key, const std::string& ValueName, DWORD Type, const std::string& Data);
DWORD RegDeleteValueA(HKEY Key, const std::string& ValueName);  // missing: ERROR_FILE_NOT_FOUND
// Deletes the key SubKey below Key, which must have no sub-keys
// (ERROR_ACCESS_DENIED otherwise, and for a root key).
DWORD RegDeleteKeyA(HKEY Key, const std::string& SubKey);

// Numbers of sub-keys and values of Key (either may be null).
DWORD RegQueryInfoKeyA(HKEY Key, DWORD* SubKeys, DWORD* Values);
// The name of sub-key number Index (sorted without regard to case on
// POSIX); ERROR_NO_MORE_ITEMS (259) past the last.
DWORD RegEnumKeyExA(HKEY Key, DWORD Index, std::string& Name);

}  // namespace zt::platform
