// The registry store's document: the keys under the five root keys, each
// with its named, typed values, and the JSON text that holds them on POSIX
// (docs/platform.md, "The registry"). Pure data: no file is touched here.
//
// Names of keys and values compare without regard to ASCII letter case and
// keep the spelling they were created with. Value data use the layout of
// registry_data.h.
#pragma once

#include <array>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/win_types.h"

namespace zt::platform {

// A store that is not valid JSON or not the store's shape, or a store file
// that cannot be read. The message names the file and the place:
// "<file>:<line>:<column>: ..." or "<file>: key "...", value "...": ...".
class ERegistryStoreError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct TRegValue {
  std::string Name;  // "" is the key's default value
  DWORD Type = REG_SZ;
  std::string Data;
};

struct TRegKeyNode {
  std::string Name;                            // spelling as created ("" for a root)
  std::vector<TRegValue> Values;               // in the order they were created
  std::map<std::string, TRegKeyNode> SubKeys;  // by FoldCase(name), so sorted without regard to case

  TRegValue* FindValue(const std::string& ValueName);
  const TRegValue* FindValue(const std::string& ValueName) const;
  TRegKeyNode* FindSubKey(const std::string& KeyName);
  const TRegKeyNode* FindSubKey(const std::string& KeyName) const;
  // Sets (or adds, at the end) the value named Value.Name; an existing value
  // keeps its place and its spelling.
  void SetValue(TRegValue Value);
  bool DeleteValue(const std::string& ValueName);
};

class TRegistryDocument {
 public:
  // The five root keys, empty.
  TRegistryDocument();

  // The root key of a predefined handle, or null for any other handle.
  TRegKeyNode* Root(HKEY Key);
  const TRegKeyNode* Root(HKEY Key) const;
  // The key at Path below the root Key, or null.
  TRegKeyNode* Find(HKEY Key, const std::vector<std::string>& Path);
  const TRegKeyNode* Find(HKEY Key, const std::vector<std::string>& Path) const;
  // The key at Path, created with every missing level (new levels take
  // Path's spelling). Created tells whether the last level is new.
  TRegKeyNode& Create(HKEY Key, const std::vector<std::string>& Path, bool& Created);
  // Removes the key at Path (not a root) with everything below it; false
  // when there is no such key.
  bool Delete(HKEY Key, const std::vector<std::string>& Path);

  // Reads a store's JSON text; FileName only names the file in errors.
  // Throws ERegistryStoreError.
  static TRegistryDocument Parse(const std::string& Text, const std::string& FileName);
  // The JSON text: one member per key that has values or no sub-keys
  // (parents are implied by their sub-keys), roots in handle order and
  // sub-keys sorted without regard to case; one line per value.
  std::string Serialize() const;

 private:
  std::array<TRegKeyNode, 5> Roots_;
};

// "HKEY_CURRENT_USER" for 0x80000001; "" for a handle that is no root.
std::string RootKeyName(HKEY Key);
// The root of a name (letter case ignored); false for an unknown name.
bool RootKeyFromName(const std::string& Name, HKEY& Key);

// The parts of a key path split at '\'; empty parts (from a leading,
// doubled or trailing '\') are dropped.
std::vector<std::string> SplitKeyPath(const std::string& Path);
// Name with ASCII letters in lower case: the form names are compared in.
std::string FoldCase(std::string Name);

// The type's name in the store and in listings ("REG_SZ"); "" for a type
// the store cannot hold.
const char* RegTypeName(DWORD Type);

}  // namespace zt::platform
