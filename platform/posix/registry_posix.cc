// The registry services on POSIX, over the store of registry_file.h. An
// opened key is a handle to a root and a key path; each call looks the path
// up in the store as it is at that moment, so a key deleted by another
// process after it was opened gives ERROR_KEY_DELETED, as a deleted key's
// handle does on Windows.
#include <mutex>
#include <unordered_map>
#include <vector>

#include "platform/posix/posix_env.h"
#include "platform/registry_data.h"
#include "platform/registry_file.h"

namespace zt::platform::posix {

namespace {

struct OpenKey {
  HKEY Root = 0;
  std::vector<std::string> Path;
  DWORD Access = 0;
};

std::mutex HandlesMutex;
std::unordered_map<HKEY, OpenKey> Handles;
HKEY NextHandle = 0x1000;  // below the predefined roots' 0x80000000

bool IsRoot(HKEY Key) { return !RootKeyName(Key).empty(); }

// The key a handle stands for; false for an unknown handle.
bool Resolve(HKEY Key, OpenKey& Out) {
  if (IsRoot(Key)) {
    Out = {Key, {}, KEY_ALL_ACCESS};
    return true;
  }
  std::lock_guard<std::mutex> Lock(HandlesMutex);
  auto It = Handles.find(Key);
  if (It == Handles.end()) return false;
  Out = It->second;
  return true;
}

HKEY AddHandle(OpenKey Key) {
  std::lock_guard<std::mutex> Lock(HandlesMutex);
  HKEY H = NextHandle++;
  Handles.emplace(H, std::move(Key));
  return H;
}

std::vector<std::string> Below(const OpenKey& Base, const std::string& SubKey) {
  std::vector<std::string> Path = Base.Path;
  for (std::string& Part : SplitKeyPath(SubKey)) Path.push_back(std::move(Part));
  return Path;
}

bool AllUtf8(const std::vector<std::string>& Parts) {
  for (const std::string& P : Parts)
    if (!IsValidUtf8(P)) return false;
  return true;
}

// Looks Key up in the store as it is now: 0 with Node set, or the error.
DWORD Lookup(HKEY Key, DWORD Needed, std::shared_ptr<const TRegistryDocument>& Doc,
             const TRegKeyNode*& Node) {
  OpenKey K;
  if (!Resolve(Key, K)) return ERROR_INVALID_HANDLE;
  if ((K.Access & Needed) != Needed) return ERROR_ACCESS_DENIED;
  Doc = ReadRegistry();
  Node = Doc->Find(K.Root, K.Path);
  return Node ? ERROR_SUCCESS : ERROR_KEY_DELETED;
}

// Changes the key Key stands for under the store's lock.
template <class Fn>
DWORD ChangeKey(HKEY Key, DWORD Needed, Fn Change) {
  OpenKey K;
  if (!Resolve(Key, K)) return ERROR_INVALID_HANDLE;
  if ((K.Access & Needed) != Needed) return ERROR_ACCESS_DENIED;
  return UpdateRegistry([&](TRegistryDocument& Doc, bool& Changed) -> DWORD {
    TRegKeyNode* Node = Doc.Find(K.Root, K.Path);
    return Node ? Change(*Node, Changed) : ERROR_KEY_DELETED;
  });
}

}  // namespace

DWORD PosixEnv::RegOpenKeyExA(HKEY Key, const std::string& SubKey, DWORD Access, HKEY& Result) {
  OpenKey Base;
  if (!Resolve(Key, Base)) return ERROR_INVALID_HANDLE;
  auto Doc = ReadRegistry();
  if (!Doc->Find(Base.Root, Base.Path)) return ERROR_KEY_DELETED;
  std::vector<std::string> Path = Below(Base, SubKey);
  if (!Doc->Find(Base.Root, Path)) return ERROR_FILE_NOT_FOUND;
  Result = AddHandle({Base.Root, std::move(Path), Access});
  return ERROR_SUCCESS;
}

DWORD PosixEnv::RegCreateKeyExA(HKEY Key, const std::string& SubKey, DWORD Access, HKEY& Result,
                                DWORD* Disposition) {
  OpenKey Base;
  if (!Resolve(Key, Base)) return ERROR_INVALID_HANDLE;
  std::vector<std::string> Path = Below(Base, SubKey);
  if (!AllUtf8(Path)) return ERROR_INVALID_PARAMETER;
  bool Created = false;
  DWORD Error = UpdateRegistry([&](TRegistryDocument& Doc, bool& Changed) -> DWORD {
    if (!Doc.Find(Base.Root, Base.Path)) return ERROR_KEY_DELETED;
    Doc.Create(Base.Root, Path, Created);
    Changed = Created;
    return ERROR_SUCCESS;
  });
  if (Error) return Error;
  if (Disposition) *Disposition = Created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
  Result = AddHandle({Base.Root, std::move(Path), Access});
  return ERROR_SUCCESS;
}

DWORD PosixEnv::RegCloseKey(HKEY Key) {
  if (IsRoot(Key)) return ERROR_SUCCESS;
  std::lock_guard<std::mutex> Lock(HandlesMutex);
  return Handles.erase(Key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

DWORD PosixEnv::RegQueryValueExA(HKEY Key, const std::string& ValueName, DWORD* Type, std::string* Data) {
  std::shared_ptr<const TRegistryDocument> Doc;
  const TRegKeyNode* Node = nullptr;
  if (DWORD Error = Lookup(Key, KEY_QUERY_VALUE, Doc, Node)) return Error;
  const TRegValue* V = Node->FindValue(ValueName);
  if (!V) return ERROR_FILE_NOT_FOUND;
  if (Type) *Type = V->Type;
  if (Data) *Data = V->Data;
  return ERROR_SUCCESS;
}

DWORD PosixEnv::RegSetValueExA(HKEY Key, const std::string& ValueName, DWORD Type, const std::string& Data) {
  if (!IsStorableValue(Type, Data) || !IsValidUtf8(ValueName)) return ERROR_INVALID_PARAMETER;
  return ChangeKey(Key, KEY_SET_VALUE, [&](TRegKeyNode& Node, bool& Changed) -> DWORD {
    const TRegValue* Old = Node.FindValue(ValueName);
    Changed = !Old || Old->Type != Type || Old->Data != Data;
    if (Changed) Node.SetValue({ValueName, Type, Data});
    return ERROR_SUCCESS;
  });
}

DWORD PosixEnv::RegDeleteValueA(HKEY Key, const std::string& ValueName) {
  return ChangeKey(Key, KEY_SET_VALUE, [&](TRegKeyNode& Node, bool& Changed) -> DWORD {
    Changed = Node.DeleteValue(ValueName);
    return Changed ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
  });
}

DWORD PosixEnv::RegDeleteKeyA(HKEY Key, const std::string& SubKey) {
  OpenKey Base;
  if (!Resolve(Key, Base)) return ERROR_INVALID_HANDLE;
  std::vector<std::string> Path = Below(Base, SubKey);
  if (Path.empty()) return ERROR_ACCESS_DENIED;  // a root key stays
  return UpdateRegistry([&](TRegistryDocument& Doc, bool& Changed) -> DWORD {
    const TRegKeyNode* Node = Doc.Find(Base.Root, Path);
    if (!Node) return ERROR_FILE_NOT_FOUND;
    if (!Node->SubKeys.empty()) return ERROR_ACCESS_DENIED;
    Changed = Doc.Delete(Base.Root, Path);
    return ERROR_SUCCESS;
  });
}

DWORD PosixEnv::RegQueryInfoKeyA(HKEY Key, DWORD* SubKeys, DWORD* Values) {
  std::shared_ptr<const TRegistryDocument> Doc;
  const TRegKeyNode* Node = nullptr;
  if (DWORD Error = Lookup(Key, KEY_QUERY_VALUE, Doc, Node)) return Error;
  if (SubKeys) *SubKeys = static_cast<DWORD>(Node->SubKeys.size());
  if (Values) *Values = static_cast<DWORD>(Node->Values.size());
  return ERROR_SUCCESS;
}

DWORD PosixEnv::RegEnumKeyExA(HKEY Key, DWORD Index, std::string& Name) {
  std::shared_ptr<const TRegistryDocument> Doc;
  const TRegKeyNode* Node = nullptr;
  if (DWORD Error = Lookup(Key, KEY_ENUMERATE_SUB_KEYS, Doc, Node)) return Error;
  if (Index >= Node->SubKeys.size()) return ERROR_NO_MORE_ITEMS;
  Name = std::next(Node->SubKeys.begin(), Index)->second.Name;
  return ERROR_SUCCESS;
}

}  // namespace zt::platform::posix
