// The COM look-ups the package makes: a class identifier from its text or
// from a programmatic identifier, and whether an instance of a class can be
// made. On POSIX no COM object exists: a class can be instantiated when it
// is registered in the registry (registry.h) under
// HKEY_CLASSES_ROOT\CLSID\{guid}, and a programmatic identifier names the
// class in the default value of HKEY_CLASSES_ROOT\<ProgID>\CLSID.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "platform/conversions.h"  // EConvertError
#include "platform/win_types.h"

namespace zt::platform {

struct TGUID {
  std::uint32_t D1 = 0;
  std::uint16_t D2 = 0, D3 = 0;
  std::uint8_t D4[8] = {};
  bool operator==(const TGUID& O) const;
};

// A failed COM call; Code is its HRESULT.
class EOleSysError : public std::runtime_error {
 public:
  EOleSysError(const std::string& Message, DWORD Code) : std::runtime_error(Message), Code(Code) {}
  DWORD Code;
};
constexpr DWORD REGDB_E_CLASSNOTREG = 0x80040154;  // "Class not registered"
constexpr DWORD CO_E_CLASSSTRING = 0x800401F3;     // "Invalid class string"

// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" (hexadecimal digits in any case)
// to a GUID; anything else raises EConvertError
// ("'<text>' is not a valid GUID value").
TGUID StringToGUID(const std::string& S);
std::string GUIDToString(const TGUID& G);  // upper-case digits, in braces

// The class a programmatic identifier names; EOleSysError (CO_E_CLASSSTRING)
// when none is registered.
TGUID ProgIDToClassID(const std::string& ProgID);
// Makes (and releases at once) an instance of the class: true when one was
// made. EOleSysError (REGDB_E_CLASSNOTREG) when the class is not registered.
bool CreateComObject(const TGUID& ClassID);

}  // namespace zt::platform
