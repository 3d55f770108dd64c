#include "platform/registry_store.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "platform/registry_data.h"

namespace zt::platform {

namespace {

// The five predefined root keys in handle order, with their names.
struct TRootKeyName {
  HKEY Key;
  const char* Name;
};
constexpr std::array<TRootKeyName, 5> RootKeyNames = {{
    {HKEY_CLASSES_ROOT, "HKEY_CLASSES_ROOT"},
    {HKEY_CURRENT_USER, "HKEY_CURRENT_USER"},
    {HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE"},
    {HKEY_USERS, "HKEY_USERS"},
    {HKEY_CURRENT_CONFIG, "HKEY_CURRENT_CONFIG"},
}};

using Json = nlohmann::ordered_json;

int RootIndex(HKEY Key) {
  for (std::size_t I = 0; I < RootKeyNames.size(); ++I)
    if (RootKeyNames[I].Key == Key) return static_cast<int>(I);
  return -1;
}

struct TypeName {
  DWORD Type;
  const char* Name;
};
constexpr TypeName TypeNames[] = {
    {REG_SZ, "REG_SZ"},       {REG_EXPAND_SZ, "REG_EXPAND_SZ"}, {REG_MULTI_SZ, "REG_MULTI_SZ"},
    {REG_DWORD, "REG_DWORD"}, {REG_QWORD, "REG_QWORD"},         {REG_BINARY, "REG_BINARY"}};

// ---- Reading ----

[[noreturn]] void Fail(const std::string& File, const std::string& Place, const std::string& What) {
  throw ERegistryStoreError(File + ": " + Place + ": " + What);
}

std::string KeyPlace(const std::string& Path) { return "key \"" + Path + "\""; }
std::string ValuePlace(const std::string& Path, const std::string& Name) {
  return KeyPlace(Path) + ", value \"" + Name + "\"";
}

// Line and column (1-based) of the byte at 1-based Position.
std::string LineAndColumn(const std::string& Text, std::size_t Position) {
  std::size_t End = std::min(Position > 0 ? Position - 1 : 0, Text.size());
  std::size_t Line = 1 + static_cast<std::size_t>(std::count(Text.begin(), Text.begin() + End, '\n'));
  std::size_t LineStart = Text.rfind('\n', End > 0 ? End - 1 : 0);
  LineStart = LineStart == std::string::npos || End == 0 ? 0 : LineStart + 1;
  return std::to_string(Line) + ":" + std::to_string(End - LineStart + 1);
}

// The parser's own words without its "[json.exception...] parse error at
// line L, column C: " prefix (the position is given separately).
std::string ParserWords(const std::string& What) {
  std::size_t At = What.find("column ");
  At = At == std::string::npos ? std::string::npos : What.find(": ", At);
  return At == std::string::npos ? What : What.substr(At + 2);
}

// Refuses names given twice in one object, with the place in the store: the
// parser itself would keep only the last.
class DuplicateNames {
 public:
  explicit DuplicateNames(const std::string& File) : File_(File) {}

  bool operator()(int, Json::parse_event_t Event, Json& Parsed) {
    switch (Event) {
      case Json::parse_event_t::object_start:
        Levels_.push_back({true, {}, {}});
        break;
      case Json::parse_event_t::array_start:
        Levels_.push_back({false, {}, {}});
        break;
      case Json::parse_event_t::object_end:
      case Json::parse_event_t::array_end:
        Levels_.pop_back();
        break;
      case Json::parse_event_t::key: {
        Level& L = Levels_.back();
        L.Current = Parsed.get<std::string>();
        if (!L.Names.insert(L.Current).second) Duplicate();
        break;
      }
      case Json::parse_event_t::value:
        break;
    }
    return true;
  }

 private:
  struct Level {
    bool IsObject;
    std::set<std::string> Names;
    std::string Current;
  };

  [[noreturn]] void Duplicate() const {
    const std::string& Name = Levels_.back().Current;
    if (Levels_.size() == 1) Fail(File_, KeyPlace(Name), "is listed twice");
    const std::string& Path = Levels_[0].Current;
    if (Levels_.size() == 2) Fail(File_, ValuePlace(Path, Name), "is listed twice");
    Fail(File_, ValuePlace(Path, Levels_[1].Current), "\"" + Name + "\" is given twice");
  }

  const std::string& File_;
  std::vector<Level> Levels_;
};

std::string TypeList() {
  std::string R;
  for (const TypeName& T : TypeNames) R += std::string(R.empty() ? "" : ", ") + T.Name;
  return R;
}

// The data of one value in the layout of registry_data.h.
std::string DataOf(DWORD Type, const Json& Data, const std::string& File, const std::string& Place) {
  switch (Type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
      if (!Data.is_string()) Fail(File, Place, std::string(RegTypeName(Type)) + " data must be a string");
      return Data.get<std::string>();
    case REG_DWORD:
      if (!Data.is_number_unsigned() || Data.get<std::uint64_t>() > 0xFFFFFFFFu)
        Fail(File, Place, "REG_DWORD data must be a whole number from 0 to 4294967295");
      return RegDwordData(static_cast<DWORD>(Data.get<std::uint64_t>()));
    case REG_QWORD:
      if (!Data.is_number_unsigned())
        Fail(File, Place, "REG_QWORD data must be a whole number from 0 to 18446744073709551615");
      return RegQwordData(Data.get<std::uint64_t>());
    case REG_BINARY: {
      std::string Bytes;
      if (!Data.is_string() || !HexToBytes(Data.get<std::string>(), Bytes))
        Fail(File, Place, "REG_BINARY data must be a string of hexadecimal byte pairs, as \"0a1b\"");
      return Bytes;
    }
    case REG_MULTI_SZ: {
      std::vector<std::string> Strings;
      if (Data.is_array())
        for (const Json& S : Data) {
          if (!S.is_string() || S.get<std::string>().find('\0') != std::string::npos) break;
          Strings.push_back(S.get<std::string>());
        }
      if (!Data.is_array() || Strings.size() != Data.size())
        Fail(File, Place, "REG_MULTI_SZ data must be a list of strings without NUL characters");
      return RegMultiData(Strings);
    }
  }
  return {};
}

TRegValue ValueOf(const std::string& Name, const Json& V, const std::string& File, const std::string& Place) {
  if (!V.is_object()) Fail(File, Place, "must be an object {\"type\": ..., \"data\": ...}");
  for (const auto& [Member, Unused] : V.items())
    if (Member != "type" && Member != "data")
      Fail(File, Place, "unknown member \"" + Member + "\" (a value has \"type\" and \"data\")");
  TRegValue R;
  R.Name = Name;
  auto Type = V.find("type");
  R.Type = REG_NONE;
  if (Type != V.end() && Type->is_string())
    for (const TypeName& T : TypeNames)
      if (Type->get<std::string>() == T.Name) R.Type = T.Type;
  if (R.Type == REG_NONE) Fail(File, Place, "\"type\" must be one of " + TypeList());
  auto Data = V.find("data");
  if (Data == V.end()) Fail(File, Place, "\"data\" is missing");
  R.Data = DataOf(R.Type, *Data, File, Place);
  return R;
}

// ---- Writing ----

std::string Quoted(const std::string& S) { return Json(S).dump(); }

std::string DataJson(const TRegValue& V) {
  switch (V.Type) {
    case REG_DWORD:
      return std::to_string(RegDwordValue(V.Data));
    case REG_QWORD:
      return std::to_string(RegQwordValue(V.Data));
    case REG_BINARY:
      return "\"" + BytesToHex(V.Data) + "\"";
    case REG_MULTI_SZ: {
      std::string R = "[";
      for (const std::string& S : RegMultiStrings(V.Data)) R += (R.size() > 1 ? ", " : "") + Quoted(S);
      return R + "]";
    }
    default:
      return Quoted(V.Data);
  }
}

void WriteKey(const TRegKeyNode& Key, const std::string& Path, bool IsRoot, std::string& Out) {
  if (!Key.Values.empty() || (Key.SubKeys.empty() && !IsRoot)) {
    Out += Out.size() > 1 ? ",\n  " : "\n  ";
    Out += Quoted(Path) + ": {";
    for (std::size_t I = 0; I < Key.Values.size(); ++I) {
      const TRegValue& V = Key.Values[I];
      Out += I ? ",\n    " : "\n    ";
      Out += Quoted(V.Name) + ": {\"type\": \"" + RegTypeName(V.Type) + "\", \"data\": " + DataJson(V) + "}";
    }
    Out += Key.Values.empty() ? "}" : "\n  }";
  }
  for (const auto& [Folded, Sub] : Key.SubKeys) WriteKey(Sub, Path + "\\" + Sub.Name, false, Out);
}

}  // namespace

// ---- TRegKeyNode ----

TRegValue* TRegKeyNode::FindValue(const std::string& ValueName) {
  return const_cast<TRegValue*>(std::as_const(*this).FindValue(ValueName));
}

const TRegValue* TRegKeyNode::FindValue(const std::string& ValueName) const {
  const std::string Folded = FoldCase(ValueName);
  for (const TRegValue& V : Values)
    if (V.Name.size() == ValueName.size() && FoldCase(V.Name) == Folded) return &V;
  return nullptr;
}

TRegKeyNode* TRegKeyNode::FindSubKey(const std::string& KeyName) {
  auto It = SubKeys.find(FoldCase(KeyName));
  return It == SubKeys.end() ? nullptr : &It->second;
}

const TRegKeyNode* TRegKeyNode::FindSubKey(const std::string& KeyName) const {
  auto It = SubKeys.find(FoldCase(KeyName));
  return It == SubKeys.end() ? nullptr : &It->second;
}

void TRegKeyNode::SetValue(TRegValue Value) {
  if (TRegValue* Existing = FindValue(Value.Name)) {
    Existing->Type = Value.Type;
    Existing->Data = std::move(Value.Data);
  } else {
    Values.push_back(std::move(Value));
  }
}

bool TRegKeyNode::DeleteValue(const std::string& ValueName) {
  TRegValue* V = FindValue(ValueName);
  if (!V) return false;
  Values.erase(Values.begin() + (V - Values.data()));
  return true;
}

// ---- TRegistryDocument ----

TRegistryDocument::TRegistryDocument() = default;

TRegKeyNode* TRegistryDocument::Root(HKEY Key) {
  int I = RootIndex(Key);
  return I < 0 ? nullptr : &Roots_[static_cast<std::size_t>(I)];
}

const TRegKeyNode* TRegistryDocument::Root(HKEY Key) const {
  return const_cast<TRegistryDocument*>(this)->Root(Key);
}

TRegKeyNode* TRegistryDocument::Find(HKEY Key, const std::vector<std::string>& Path) {
  TRegKeyNode* Node = Root(Key);
  for (std::size_t I = 0; Node && I < Path.size(); ++I) Node = Node->FindSubKey(Path[I]);
  return Node;
}

const TRegKeyNode* TRegistryDocument::Find(HKEY Key, const std::vector<std::string>& Path) const {
  return const_cast<TRegistryDocument*>(this)->Find(Key, Path);
}

TRegKeyNode& TRegistryDocument::Create(HKEY Key, const std::vector<std::string>& Path, bool& Created) {
  TRegKeyNode* Node = Root(Key);
  if (!Node) throw std::invalid_argument("not a root key");
  Created = false;
  for (const std::string& Part : Path) {
    auto [It, New] = Node->SubKeys.try_emplace(FoldCase(Part));
    if (New) It->second.Name = Part;
    Created = New;
    Node = &It->second;
  }
  return *Node;
}

bool TRegistryDocument::Delete(HKEY Key, const std::vector<std::string>& Path) {
  if (Path.empty()) return false;
  TRegKeyNode* Parent = Find(Key, std::vector<std::string>(Path.begin(), Path.end() - 1));
  return Parent && Parent->SubKeys.erase(FoldCase(Path.back())) > 0;
}

TRegistryDocument TRegistryDocument::Parse(const std::string& Text, const std::string& FileName) {
  Json Doc;
  try {
    Doc = Json::parse(Text, DuplicateNames(FileName));
  } catch (const Json::parse_error& E) {
    throw ERegistryStoreError(FileName + ":" + LineAndColumn(Text, E.byte) +
                              ": not valid JSON: " + ParserWords(E.what()));
  } catch (const Json::exception& E) {  // a number beyond a double, which has no place to report
    const std::string What = E.what();
    const std::size_t At = What.find("] ");
    throw ERegistryStoreError(FileName + ": not valid JSON: " + (At == std::string::npos ? What : What.substr(At + 2)));
  }
  if (!Doc.is_object())
    Fail(FileName, "the top level",
         "must be an object of key paths, as {\"HKEY_CURRENT_USER\\\\Software\": {}}");
  TRegistryDocument R;
  std::map<std::string, std::string> Listed;  // folded path -> the path as listed
  for (const auto& [Path, Values] : Doc.items()) {
    std::vector<std::string> Parts = SplitKeyPath(Path);
    HKEY Root = 0;
    if (Parts.empty() || !RootKeyFromName(Parts[0], Root))
      Fail(FileName, KeyPlace(Path),
           "does not start with a root key (HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, "
           "HKEY_USERS or HKEY_CURRENT_CONFIG)");
    std::string Folded = FoldCase(RootKeyName(Root));
    for (std::size_t I = 1; I < Parts.size(); ++I) Folded += "\\" + FoldCase(Parts[I]);
    auto [Before, New] = Listed.emplace(Folded, Path);
    if (!New) Fail(FileName, KeyPlace(Path), "is listed twice (also as \"" + Before->second + "\")");
    if (!Values.is_object())
      Fail(FileName, KeyPlace(Path), "must be an object of named values ({} for none)");
    bool Created = false;
    TRegKeyNode& Key = R.Create(Root, std::vector<std::string>(Parts.begin() + 1, Parts.end()), Created);
    for (const auto& [Name, V] : Values.items()) {
      if (Key.FindValue(Name))
        Fail(FileName, ValuePlace(Path, Name), "is listed twice (names are compared without regard to case)");
      Key.Values.push_back(ValueOf(Name, V, FileName, ValuePlace(Path, Name)));
    }
  }
  return R;
}

std::string TRegistryDocument::Serialize() const {
  std::string Out = "{";
  for (std::size_t I = 0; I < Roots_.size(); ++I) WriteKey(Roots_[I], RootKeyNames[I].Name, true, Out);
  Out += Out.size() > 1 ? "\n}\n" : "}\n";
  return Out;
}

// ---- Names ----

std::string RootKeyName(HKEY Key) {
  int I = RootIndex(Key);
  return I < 0 ? std::string() : RootKeyNames[static_cast<std::size_t>(I)].Name;
}

bool RootKeyFromName(const std::string& Name, HKEY& Key) {
  for (const TRootKeyName& R : RootKeyNames)
    if (FoldCase(Name) == FoldCase(R.Name)) {
      Key = R.Key;
      return true;
    }
  return false;
}

std::vector<std::string> SplitKeyPath(const std::string& Path) {
  std::vector<std::string> Parts;
  std::size_t Start = 0;
  while (Start <= Path.size()) {
    std::size_t End = Path.find('\\', Start);
    if (End == std::string::npos) End = Path.size();
    if (End > Start) Parts.push_back(Path.substr(Start, End - Start));
    Start = End + 1;
  }
  return Parts;
}

std::string FoldCase(std::string Name) {
  for (char& C : Name)
    if (C >= 'A' && C <= 'Z') C = static_cast<char>(C - 'A' + 'a');
  return Name;
}

const char* RegTypeName(DWORD Type) {
  for (const TypeName& T : TypeNames)
    if (T.Type == Type) return T.Name;
  return "";
}

}  // namespace zt::platform
