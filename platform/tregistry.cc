#include "platform/tregistry.h"

#include "platform/errors.h"
#include "platform/registry.h"
#include "platform/registry_data.h"

namespace zt::platform {

namespace {

TRegDataType DataTypeToRegData(DWORD Type) {
  switch (Type) {
    case REG_SZ:
      return rdString;
    case REG_EXPAND_SZ:
      return rdExpandString;
    case REG_DWORD:
      return rdInteger;
    case REG_BINARY:
      return rdBinary;
    default:
      return rdUnknown;
  }
}

// True for success; otherwise sets the last-error code to Result.
bool Succeeded(DWORD Result) {
  if (Result != ERROR_SUCCESS) SetLastError(Result);
  return Result == ERROR_SUCCESS;
}

// A key path without its leading '\', which makes it relative to the root.
std::string WithoutLeadingDelimiter(const std::string& Key, bool& Relative) {
  Relative = Key.empty() || Key[0] != '\\';
  return Relative ? Key : Key.substr(1);
}

// Deletes SubKey of Base after its sub-keys, deepest first.
DWORD DeleteTree(HKEY Base, const std::string& SubKey, DWORD Access) {
  HKEY Key = 0;
  if (RegOpenKeyExA(Base, SubKey, Access, Key) == ERROR_SUCCESS) {
    DWORD Count = 0;
    RegQueryInfoKeyA(Key, &Count, nullptr);
    std::string Name;
    for (DWORD I = Count; I-- > 0;)
      if (RegEnumKeyExA(Key, I, Name) == ERROR_SUCCESS) DeleteTree(Key, Name, Access);
    RegCloseKey(Key);
  }
  return RegDeleteKeyA(Base, SubKey);
}

}  // namespace

TRegistry::TRegistry(DWORD Access) : FAccess(Access) {}

TRegistry::~TRegistry() { CloseKey(); }

void TRegistry::SetRootKey(HKEY Value) {
  if (FRootKey == Value) return;
  FRootKey = Value;
  CloseKey();
}

void TRegistry::ChangeKey(HKEY Value, const std::string& Path) {
  CloseKey();
  FCurrentKey = Value;
  FCurrentPath = Path;
}

bool TRegistry::OpenKey(const std::string& Key, bool CanCreate) {
  bool Relative = true;
  std::string S = WithoutLeadingDelimiter(Key, Relative);
  HKEY Opened = 0;
  DWORD Result = !CanCreate || S.empty() ? RegOpenKeyExA(BaseKey(Relative), S, FAccess, Opened)
                                         : RegCreateKeyExA(BaseKey(Relative), S, FAccess, Opened, nullptr);
  if (!Succeeded(Result)) return false;
  if (FCurrentKey != 0 && Relative) S = FCurrentPath + "\\" + S;
  ChangeKey(Opened, S);
  return true;
}

void TRegistry::CloseKey() {
  if (FCurrentKey != 0) RegCloseKey(FCurrentKey);
  FCurrentKey = 0;
  FCurrentPath.clear();
}

bool TRegistry::DeleteKey(const std::string& Key) {
  bool Relative = true;
  std::string S = WithoutLeadingDelimiter(Key, Relative);
  return Succeeded(DeleteTree(BaseKey(Relative), S, FAccess));
}

bool TRegistry::HasSubKeys() {
  DWORD Count = 0;
  return Succeeded(RegQueryInfoKeyA(FCurrentKey, &Count, nullptr)) && Count > 0;
}

bool TRegistry::ValueExists(const std::string& Name) {
  return RegQueryValueExA(FCurrentKey, Name, nullptr, nullptr) == ERROR_SUCCESS;
}

bool TRegistry::DeleteValue(const std::string& Name) { return Succeeded(RegDeleteValueA(FCurrentKey, Name)); }

std::string TRegistry::ReadString(const std::string& Name) {
  DWORD Type = REG_NONE;
  std::string Data;
  if (RegQueryValueExA(FCurrentKey, Name, &Type, &Data) != ERROR_SUCCESS) return "";
  if (Type == REG_SZ || Type == REG_EXPAND_SZ) return Data.substr(0, Data.find('\0'));
  if (Data.empty()) return "";  // the wrapper reads nothing from empty data
  ReadError(Name);
}

int TRegistry::ReadInteger(const std::string& Name) {
  std::string Data;
  if (GetData(Name, Data) != rdInteger) ReadError(Name);
  return static_cast<int>(RegDwordValue(Data));
}

bool TRegistry::ReadBool(const std::string& Name) { return ReadInteger(Name) != 0; }

void TRegistry::WriteString(const std::string& Name, const std::string& Value) {
  PutData(Name, Value, REG_SZ);
}

void TRegistry::WriteInteger(const std::string& Name, int Value) {
  PutData(Name, RegDwordData(static_cast<DWORD>(Value)), REG_DWORD);
}

void TRegistry::WriteBool(const std::string& Name, bool Value) { WriteInteger(Name, Value ? 1 : 0); }

TRegDataType TRegistry::GetData(const std::string& Name, std::string& Data) {
  DWORD Type = REG_NONE;
  if (!Succeeded(RegQueryValueExA(FCurrentKey, Name, &Type, &Data)))
    throw ERegistryException("Failed to get data for '" + Name + "'");
  return DataTypeToRegData(Type);
}

void TRegistry::PutData(const std::string& Name, const std::string& Data, DWORD Type) {
  if (!Succeeded(RegSetValueExA(FCurrentKey, Name, Type, Data)))
    throw ERegistryException("Failed to set data for '" + Name + "'");
}

void TRegistry::ReadError(const std::string& Name) {
  throw ERegistryException("Invalid data type for '" + Name + "'");
}

}  // namespace zt::platform
