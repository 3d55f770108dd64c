// Delphi's TRegistry over the registry services of registry.h: a root key,
// at most one opened key (the current key), and typed reads and writes of
// the current key's values that raise ERegistryException with the
// wrapper's own texts. Operations that fail without raising also set the
// last-error code (errors.h) to the registry's result, so a caller can
// name the cause.
// Thread use: one object per thread.
#pragma once

#include <stdexcept>
#include <string>

#include "platform/win_types.h"

namespace zt::platform {

class ERegistryException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum TRegDataType { rdUnknown, rdString, rdExpandString, rdInteger, rdBinary };

class TRegistry {
 public:
  // Keys are opened with Access; the root key starts as HKEY_CURRENT_USER.
  explicit TRegistry(DWORD Access = KEY_ALL_ACCESS);
  virtual ~TRegistry();  // closes the current key
  TRegistry(const TRegistry&) = delete;
  TRegistry& operator=(const TRegistry&) = delete;

  HKEY RootKey() const { return FRootKey; }
  void SetRootKey(HKEY Value);                     // closes the current key
  HKEY CurrentKey() const { return FCurrentKey; }  // 0 when no key is open
  // The open key's path as it was asked for, without a leading '\'.
  const std::string& CurrentPath() const { return FCurrentPath; }
  DWORD Access() const { return FAccess; }

  // Opens Key and makes it the current key: a path relative to the current
  // key, or to the root key when none is open or Key starts with '\'.
  // CanCreate creates missing levels. False when it cannot be opened.
  bool OpenKey(const std::string& Key, bool CanCreate);
  void CloseKey();
  // Deletes Key (found as OpenKey finds it) with all its sub-keys.
  bool DeleteKey(const std::string& Key);
  bool HasSubKeys();  // of the current key

  // Values of the current key ("" names its default value).
  bool ValueExists(const std::string& Name);
  bool DeleteValue(const std::string& Name);
  // The text of a REG_SZ or REG_EXPAND_SZ value up to its first NUL; a
  // missing value (or empty data) reads as "". Other types raise
  // "Invalid data type for 'Name'".
  std::string ReadString(const std::string& Name);
  // A REG_DWORD value; a missing one raises "Failed to get data for 'Name'",
  // another type "Invalid data type for 'Name'".
  int ReadInteger(const std::string& Name);
  bool ReadBool(const std::string& Name);  // ReadInteger(Name) != 0
  // Write REG_SZ / REG_DWORD (WriteBool: 1 or 0); a failure raises
  // "Failed to set data for 'Name'".
  void WriteString(const std::string& Name, const std::string& Value);
  void WriteInteger(const std::string& Name, int Value);
  void WriteBool(const std::string& Name, bool Value);

 protected:
  // The data of the value Name (layout of registry_data.h) and their type;
  // raises "Failed to get data for 'Name'" when it cannot be read.
  TRegDataType GetData(const std::string& Name, std::string& Data);
  // Raises "Failed to set data for 'Name'" when the value cannot be written.
  void PutData(const std::string& Name, const std::string& Data, DWORD Type);
  [[noreturn]] void ReadError(const std::string& Name);  // "Invalid data type for 'Name'"

 private:
  HKEY BaseKey(bool Relative) const { return FCurrentKey == 0 || !Relative ? FRootKey : FCurrentKey; }
  void ChangeKey(HKEY Value, const std::string& Path);

  HKEY FRootKey = HKEY_CURRENT_USER;
  HKEY FCurrentKey = 0;
  std::string FCurrentPath;
  DWORD FAccess;
};

}  // namespace zt::platform
