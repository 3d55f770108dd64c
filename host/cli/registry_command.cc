#include "host/cli/registry_command.h"

#include <stdlib.h>

#include <filesystem>

#include "host/cli/commands.h"
#include "host/cli/reg_file.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/registry_data.h"
#include "platform/registry_file.h"

namespace zt::host {

using namespace platform;

namespace {

// A key named on the command line, found in the store.
struct FoundKey {
  const TRegKeyNode* Node = nullptr;
  std::string Path;  // with the spelling the store keeps
};

// Finds Key in Doc: 0 with Found set, or the exit code after a line on Err.
int FindKey(const TRegistryDocument& Doc, const std::string& Key, FoundKey& Found, std::ostream& Err) {
  std::vector<std::string> Parts = SplitKeyPath(Key);
  HKEY Root = 0;
  if (Parts.empty() || !RootKeyFromName(Parts[0], Root)) {
    Err << "zt: \"" << Key << "\" does not start with a root key (HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, "
        << "HKEY_LOCAL_MACHINE, HKEY_USERS or HKEY_CURRENT_CONFIG)\n";
    return kExitCannotLoad;
  }
  Found.Node = Doc.Root(Root);
  Found.Path = RootKeyName(Root);
  for (std::size_t I = 1; I < Parts.size() && Found.Node; ++I) {
    Found.Node = Found.Node->FindSubKey(Parts[I]);
    if (Found.Node) Found.Path += "\\" + Found.Node->Name;
  }
  if (Found.Node) return kExitOk;
  Err << "zt: " << Key << ": no such key in " << RegistryFileName() << "\n";
  return kExitFailed;
}

// A value's data as text: strings as they are, numbers in decimal, bytes
// in hexadecimal pairs, a list's strings joined by Separator.
std::string DataText(const TRegValue& V, const std::string& Separator) {
  switch (V.Type) {
    case REG_DWORD:
      return std::to_string(RegDwordValue(V.Data));
    case REG_QWORD:
      return std::to_string(RegQwordValue(V.Data));
    case REG_BINARY:
      return BytesToHex(V.Data);
    case REG_MULTI_SZ: {
      std::string R;
      for (const std::string& S : RegMultiStrings(V.Data)) R += (R.empty() ? "" : Separator) + S;
      return R;
    }
    default:
      return V.Data;
  }
}

int Import(const RegistryOptions& O, std::ostream& Out, std::ostream& Err) {
  std::string Bytes;
  if (!ReadWholeFile(O.File, Bytes)) {
    Err << "zt: " << O.File << ": cannot read: " << SysErrorMessage(GetLastError()) << "\n";
    return kExitCannotLoad;
  }
  std::vector<RegFileChange> Changes;
  try {
    Changes = ReadRegFile(Bytes, O.File);
  } catch (const BadRegFile& E) {
    Err << E.what() << "\n";
    return kExitCannotLoad;
  }
  if (DWORD Error = UpdateRegistry([&](TRegistryDocument& Doc, bool& Changed) -> DWORD {
        Changed = ApplyRegFile(Changes, Doc);
        return ERROR_SUCCESS;
      })) {
    Err << "zt: " << RegistryFileName() << ": cannot write the registry store: " << SysErrorMessage(Error)
        << "\n";
    return kExitFailed;
  }
  Out << "Imported " << O.File << " into " << RegistryFileName() << "\n";
  return kExitOk;
}

int Export(const RegistryOptions& O, std::ostream& Out, std::ostream& Err) {
  auto Doc = ReadRegistry();
  FoundKey Key;
  if (int Code = FindKey(*Doc, O.Key, Key, Err)) return Code;
  std::string Text = WriteRegFile(*Key.Node, Key.Path);
  if (O.File.empty() || O.File == "-") {
    Out << Text;
  } else if (!WriteFileAtomically(O.File, Text)) {
    Err << "zt: " << O.File << ": cannot write: " << SysErrorMessage(GetLastError()) << "\n";
    return kExitFailed;
  }
  return kExitOk;
}

int Get(const RegistryOptions& O, std::ostream& Out, std::ostream& Err) {
  auto Doc = ReadRegistry();
  FoundKey Key;
  if (int Code = FindKey(*Doc, O.Key, Key, Err)) return Code;
  if (O.HasName) {
    const TRegValue* V = Key.Node->FindValue(O.Name);
    if (!V) {
      Err << "zt: " << Key.Path << ": no value \"" << O.Name << "\" in " << RegistryFileName() << "\n";
      return kExitFailed;
    }
    Out << DataText(*V, "\n") << "\n";
    return kExitOk;
  }
  Out << Key.Path << "\n";
  for (const TRegValue& V : Key.Node->Values)
    Out << "    " << (V.Name.empty() ? "(Default)" : V.Name) << "    " << RegTypeName(V.Type) << "    "
        << DataText(V, "\\0") << "\n";
  for (const auto& [Folded, Sub] : Key.Node->SubKeys) Out << Key.Path << "\\" << Sub.Name << "\n";
  return kExitOk;
}

}  // namespace

void UseRegistryStore(const std::string& Option) {
  const char* Env = getenv("ZT_REGISTRY");
  std::string Path = !Option.empty() ? Option : Env ? Env : "";
  if (!Path.empty()) setenv("ZT_REGISTRY", std::filesystem::absolute(Path).c_str(), 1);
}

CLI::App* AddRegistryCommand(CLI::App& App, RegistryOptions& O) {
  CLI::App* Registry =
      App.add_subcommand("registry", "the registry store, in the registry editor's .reg format");
  Registry->require_subcommand(1);
  auto AddStore = [&O](CLI::App* Sub) {
    Sub->add_option("--registry", O.Store,
                    "the registry store file (default: $ZT_REGISTRY, else "
                    "$XDG_DATA_HOME/zt/registry.json)")
        ->type_name("FILE");
  };
  CLI::App* Sub = Registry->add_subcommand("import", "apply a .reg file to the store");
  Sub->add_option("FILE", O.File, "the .reg file")->required();
  AddStore(Sub);
  Sub = Registry->add_subcommand("export", "write a key and everything below it as a .reg file");
  Sub->add_option("KEY", O.Key, "the key, as HKEY_CURRENT_USER\\Software\\Acme")->required();
  Sub->add_option("FILE", O.File, "where to write (default: standard output)");
  AddStore(Sub);
  Sub = Registry->add_subcommand("get", "print a key's values and sub-keys, or one value's data");
  Sub->add_option("KEY", O.Key, "the key, as HKEY_CURRENT_USER\\Software\\Acme")->required();
  Sub->add_option("NAME", O.Name, "the value (\"\" for the default value)");
  AddStore(Sub);
  return Registry;
}

int RegistryCommand(CLI::App& Command, const RegistryOptions& Given, std::ostream& Out, std::ostream& Err) {
  RegistryOptions O = Given;
  CLI::App* GetCommand = Command.get_subcommand("get");
  O.HasName = GetCommand->parsed() && GetCommand->count("NAME") > 0;
  UseRegistryStore(O.Store);
  try {
    if (Command.get_subcommand("import")->parsed()) return Import(O, Out, Err);
    if (Command.get_subcommand("export")->parsed()) return Export(O, Out, Err);
    return Get(O, Out, Err);
  } catch (const ERegistryStoreError& E) {
    Err << "zt: " << E.what() << "\n";
    return kExitFailed;
  }
}

}  // namespace zt::host
