// COM look-ups on POSIX: registrations in the registry stand for classes.
#include "platform/com.h"
#include "platform/registry.h"

namespace zt::platform {

namespace {

// True when Path exists below HKEY_CLASSES_ROOT; Default receives its
// default value when that is a string.
bool ClassesKey(const std::string& Path, std::string* Default) {
  HKEY Key = 0;
  if (RegOpenKeyExA(HKEY_CLASSES_ROOT, Path, KEY_READ, Key) != ERROR_SUCCESS) return false;
  DWORD Type = REG_NONE;
  bool Ok = !Default || (RegQueryValueExA(Key, "", &Type, Default) == ERROR_SUCCESS && Type == REG_SZ);
  RegCloseKey(Key);
  return Ok;
}

}  // namespace

TGUID ProgIDToClassID(const std::string& ProgID) {
  std::string ClassID;
  if (!ProgID.empty() && ProgID.find('\\') == std::string::npos && ClassesKey(ProgID + "\\CLSID", &ClassID)) {
    try {
      return StringToGUID(ClassID);
    } catch (const EConvertError&) {
    }
  }
  throw EOleSysError("Invalid class string", CO_E_CLASSSTRING);
}

bool CreateComObject(const TGUID& ClassID) {
  if (!ClassesKey("CLSID\\" + GUIDToString(ClassID), nullptr))
    throw EOleSysError("Class not registered", REGDB_E_CLASSNOTREG);
  return true;
}

}  // namespace zt::platform
