// The registry services forward to the installed Env.
#include "platform/registry.h"

#include "platform/env.h"

namespace zt::platform {

DWORD RegOpenKeyExA(HKEY Key, const std::string& SubKey, DWORD Access, HKEY& Result) {
  return Env::Default()->RegOpenKeyExA(Key, SubKey, Access, Result);
}
DWORD RegCreateKeyExA(HKEY Key, const std::string& SubKey, DWORD Access, HKEY& Result, DWORD* Disposition) {
  return Env::Default()->RegCreateKeyExA(Key, SubKey, Access, Result, Disposition);
}
DWORD RegCloseKey(HKEY Key) { return Env::Default()->RegCloseKey(Key); }
DWORD RegQueryValueExA(HKEY Key, const std::string& ValueName, DWORD* Type, std::string* Data) {
  return Env::Default()->RegQueryValueExA(Key, ValueName, Type, Data);
}
DWORD RegSetValueExA(HKEY Key, const std::string& ValueName, DWORD Type, const std::string& Data) {
  return Env::Default()->RegSetValueExA(Key, ValueName, Type, Data);
}
DWORD RegDeleteValueA(HKEY Key, const std::string& ValueName) {
  return Env::Default()->RegDeleteValueA(Key, ValueName);
}
DWORD RegDeleteKeyA(HKEY Key, const std::string& SubKey) {
  return Env::Default()->RegDeleteKeyA(Key, SubKey);
}
DWORD RegQueryInfoKeyA(HKEY Key, DWORD* SubKeys, DWORD* Values) {
  return Env::Default()->RegQueryInfoKeyA(Key, SubKeys, Values);
}
DWORD RegEnumKeyExA(HKEY Key, DWORD Index, std::string& Name) {
  return Env::Default()->RegEnumKeyExA(Key, Index, Name);
}

}  // namespace zt::platform
