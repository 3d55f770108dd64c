#include "host/cli/reg_file.h"

#include <cstdio>

#include "platform/registry_data.h"

namespace zt::host {

using namespace platform;

namespace {

constexpr const char* kVersion5 = "Windows Registry Editor Version 5.00";
constexpr const char* kVersion4 = "REGEDIT4";

// ---- Text encodings ----

void AppendUtf8(std::uint32_t Cp, std::string& Out) {
  if (Cp < 0x80) {
    Out += static_cast<char>(Cp);
  } else if (Cp < 0x800) {
    Out += static_cast<char>(0xC0 | (Cp >> 6));
    Out += static_cast<char>(0x80 | (Cp & 0x3F));
  } else if (Cp < 0x10000) {
    Out += static_cast<char>(0xE0 | (Cp >> 12));
    Out += static_cast<char>(0x80 | ((Cp >> 6) & 0x3F));
    Out += static_cast<char>(0x80 | (Cp & 0x3F));
  } else {
    Out += static_cast<char>(0xF0 | (Cp >> 18));
    Out += static_cast<char>(0x80 | ((Cp >> 12) & 0x3F));
    Out += static_cast<char>(0x80 | ((Cp >> 6) & 0x3F));
    Out += static_cast<char>(0x80 | (Cp & 0x3F));
  }
}

// UTF-16 (little-endian unless BigEndian) to UTF-8; false for an odd
// number of bytes or a lone surrogate.
bool Utf16ToUtf8(const std::string& Bytes, bool BigEndian, std::string& Out) {
  if (Bytes.size() % 2) return false;
  Out.clear();
  auto Unit = [&](std::size_t I) {
    auto B0 = static_cast<unsigned char>(Bytes[I]), B1 = static_cast<unsigned char>(Bytes[I + 1]);
    return static_cast<std::uint32_t>(BigEndian ? (B0 << 8) | B1 : (B1 << 8) | B0);
  };
  for (std::size_t I = 0; I < Bytes.size(); I += 2) {
    std::uint32_t U = Unit(I);
    if (U >= 0xDC00 && U <= 0xDFFF) return false;
    if (U >= 0xD800 && U <= 0xDBFF) {
      if (I + 2 >= Bytes.size()) return false;
      std::uint32_t Low = Unit(I + 2);
      if (Low < 0xDC00 || Low > 0xDFFF) return false;
      U = 0x10000 + ((U - 0xD800) << 10) + (Low - 0xDC00);
      I += 2;
    }
    AppendUtf8(U, Out);
  }
  return true;
}

// UTF-8 (well-formed) to UTF-16 little-endian.
std::string Utf8ToUtf16(const std::string& Text) {
  std::string Out;
  auto Put = [&Out](std::uint32_t U) {
    Out += static_cast<char>(U & 0xFF);
    Out += static_cast<char>(U >> 8);
  };
  for (std::size_t I = 0; I < Text.size();) {
    auto C = static_cast<unsigned char>(Text[I]);
    int More = C < 0x80 ? 0 : C < 0xE0 ? 1 : C < 0xF0 ? 2 : 3;
    std::uint32_t Cp = More == 0 ? C : C & (0x3F >> More);
    for (int K = 1; K <= More && I + K < Text.size(); ++K) Cp = (Cp << 6) | (Text[I + K] & 0x3F);
    I += static_cast<std::size_t>(More) + 1;
    if (Cp >= 0x10000) {
      Put(0xD800 + ((Cp - 0x10000) >> 10));
      Put(0xDC00 + ((Cp - 0x10000) & 0x3FF));
    } else {
      Put(Cp);
    }
  }
  return Out;
}

// Text in UTF-8 as it is, anything else taken as Latin-1 (a REGEDIT4 file
// is in the code page of the machine that wrote it).
std::string AsUtf8(const std::string& Bytes) {
  if (IsValidUtf8(Bytes)) return Bytes;
  std::string Out;
  for (unsigned char B : Bytes) AppendUtf8(B, Out);
  return Out;
}

// ---- Reading ----

bool IsBlank(char C) { return C == ' ' || C == '\t'; }

std::string Trim(const std::string& S) {
  std::size_t B = 0, E = S.size();
  while (B < E && IsBlank(S[B])) ++B;
  while (E > B && IsBlank(S[E - 1])) --E;
  return S.substr(B, E - B);
}

struct Line {
  int Number;
  std::string Text;
};

// The lines of Text, trimmed, with "\" at a line's end joining the next.
std::vector<Line> LogicalLines(const std::string& Text) {
  std::vector<Line> Lines;
  bool Joining = false;
  int Number = 0;
  for (std::size_t Start = 0; Start < Text.size();) {
    std::size_t End = Text.find_first_of("\r\n", Start);
    if (End == std::string::npos) End = Text.size();
    std::string L = Trim(Text.substr(Start, End - Start));
    ++Number;
    if (Joining)
      Lines.back().Text += L;
    else
      Lines.push_back({Number, L});
    Joining = !Lines.back().Text.empty() && Lines.back().Text.back() == '\\';
    if (Joining) Lines.back().Text.pop_back();
    Start = End + (Text.compare(End, 2, "\r\n") == 0 ? 2 : 1);
  }
  return Lines;
}

class Reader {
 public:
  Reader(const std::string& FileName, bool Unicode) : FileName_(FileName), Unicode_(Unicode) {}

  [[noreturn]] void Fail(const std::string& What) const {
    throw BadRegFile(FileName_ + ":" + std::to_string(Line_) + ": " + What);
  }
  void At(int Line) { Line_ = Line; }

  RegFileChange Key(const std::string& Text) {
    if (Text.back() != ']') Fail("a key line must end with \"]\"");
    RegFileChange C;
    std::string Path = Text.substr(1, Text.size() - 2);
    C.DeleteKey = !Path.empty() && Path[0] == '-';
    if (C.DeleteKey) Path.erase(0, 1);
    std::vector<std::string> Parts = SplitKeyPath(Path);
    if (Parts.empty() || !RootKeyFromName(Parts[0], C.Root))
      Fail("\"" + Path +
           "\" does not start with a root key (HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, "
           "HKEY_LOCAL_MACHINE, HKEY_USERS or HKEY_CURRENT_CONFIG)");
    C.Path.assign(Parts.begin() + 1, Parts.end());
    if (C.DeleteKey && C.Path.empty()) Fail("a root key cannot be deleted");
    return C;
  }

  // A value line of the key Key.
  RegFileChange Value(const RegFileChange& Key, const std::string& Text) {
    if (Key.DeleteKey) Fail("a value under a key that is being deleted");
    RegFileChange C = Key;
    C.HasValue = true;
    std::size_t At = 0;
    if (Text[0] == '@')
      At = 1;
    else if (Text[0] == '"')
      C.Value.Name = Quoted(Text, At);
    else
      Fail("a line must be a key in [ ], a value (\"NAME\"= or @=), a comment (;) or blank");
    while (At < Text.size() && IsBlank(Text[At])) ++At;
    if (At >= Text.size() || Text[At] != '=') Fail("\"=\" expected after the value's name");
    std::string Data = Trim(Text.substr(At + 1));
    if (Data == "-") {
      C.DeleteValue = true;
    } else if (!Data.empty() && Data[0] == '"') {
      std::size_t End = 0;
      C.Value.Type = REG_SZ;
      C.Value.Data = Quoted(Data, End);
      if (End != Data.size()) Fail("text after the closing quote");
    } else if (Data.compare(0, 6, "dword:") == 0) {
      C.Value.Type = REG_DWORD;
      C.Value.Data = RegDwordData(Dword(Data.substr(6)));
    } else if (Data.compare(0, 3, "hex") == 0) {
      HexValue(Data, C.Value);
    } else {
      Fail("unknown data \"" + Data + "\" (expected \"text\", dword:, hex:, hex(N): or -)");
    }
    if (!C.DeleteValue && (!IsValidUtf8(C.Value.Name) || !IsStorableValue(C.Value.Type, C.Value.Data)))
      Fail("the store cannot hold this value");
    return C;
  }

 private:
  // The text of the quoted string that starts at Text[At]; At ends past it.
  std::string Quoted(const std::string& Text, std::size_t& At) const {
    std::string R;
    for (std::size_t I = At + 1; I < Text.size(); ++I) {
      if (Text[I] == '"') {
        At = I + 1;
        return R;
      }
      if (Text[I] == '\\') {
        if (++I >= Text.size() || (Text[I] != '\\' && Text[I] != '"'))
          Fail("only \\\\ and \\\" may follow a backslash in a quoted text");
      }
      R += Text[I];
    }
    Fail("a quoted text is not closed");
  }

  DWORD Dword(const std::string& Hex) const {
    if (Hex.empty() || Hex.size() > 8 || Hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
      Fail("dword: needs 1 to 8 hexadecimal digits");
    return static_cast<DWORD>(std::stoul(Hex, nullptr, 16));
  }

  // "hex:..." or "hex(N):..." into Value.
  void HexValue(const std::string& Data, TRegValue& Value) const {
    std::size_t Colon = Data.find(':');
    std::string Kind = Data.substr(0, Colon == std::string::npos ? Data.size() : Colon);
    unsigned long Type = REG_BINARY;
    if (Kind != "hex") {
      std::string N = Kind.size() > 5 && Kind.compare(0, 4, "hex(") == 0 && Kind.back() == ')'
                          ? Kind.substr(4, Kind.size() - 5)
                          : "";
      if (N.empty() || N.size() > 8 || N.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        Fail("unknown data \"" + Data + "\" (expected \"text\", dword:, hex:, hex(N): or -)");
      Type = std::stoul(N, nullptr, 16);
    }
    if (Colon == std::string::npos) Fail("\":\" expected after " + Kind);
    std::string Bytes = HexBytes(Data.substr(Colon + 1));
    Value.Type = static_cast<DWORD>(Type);
    switch (Type) {
      case REG_BINARY:
        Value.Data = Bytes;
        return;
      case REG_DWORD:
      case REG_QWORD:
        if (Bytes.size() != (Type == REG_DWORD ? 4u : 8u))
          Fail(std::string(RegTypeName(Value.Type)) + " data must be " + (Type == REG_DWORD ? "4" : "8") +
               " bytes");
        Value.Data = Bytes;
        return;
      case REG_SZ:
      case REG_EXPAND_SZ:
        Value.Data = DecodeText(Bytes);
        if (!Value.Data.empty() && Value.Data.back() == '\0') Value.Data.pop_back();
        return;
      case REG_MULTI_SZ:
        Value.Data = DecodeText(Bytes);
        if (Value.Data.size() >= 2 && Value.Data.compare(Value.Data.size() - 2, 2, std::string(2, '\0')) == 0)
          Value.Data.pop_back();  // the list's own terminator
        if (!Value.Data.empty() && Value.Data.back() != '\0') Value.Data += '\0';
        if (Value.Data == std::string(1, '\0')) Value.Data.clear();
        return;
      default:
        Fail("hex(" + Kind.substr(4, Kind.size() - 5) + "): the store holds no values of this type");
    }
  }

  // Text bytes of hex(1), hex(2) and hex(7): UTF-16 in a version 5 file,
  // the machine's code page in a REGEDIT4 file.
  std::string DecodeText(const std::string& Bytes) const {
    if (!Unicode_) return AsUtf8(Bytes);
    std::string Out;
    if (!Utf16ToUtf8(Bytes, false, Out)) Fail("the text is not valid UTF-16");
    return Out;
  }

  std::string HexBytes(const std::string& List) const {
    std::string Bytes;
    if (Trim(List).empty()) return Bytes;
    for (std::size_t Start = 0;;) {
      std::size_t Comma = List.find(',', Start);
      std::string Item =
          Trim(List.substr(Start, Comma == std::string::npos ? std::string::npos : Comma - Start));
      std::string Byte;
      if (Item.size() != 2 || !HexToBytes(Item, Byte))
        Fail("hexadecimal bytes must be pairs separated by commas");
      Bytes += Byte;
      if (Comma == std::string::npos) return Bytes;
      Start = Comma + 1;
    }
  }

  const std::string& FileName_;
  bool Unicode_;
  int Line_ = 1;
};

// ---- Writing ----

std::string QuotedText(const std::string& S) {
  std::string R = "\"";
  for (char C : S) {
    if (C == '\\' || C == '"') R += '\\';
    R += C;
  }
  return R + "\"";
}

// Name=hex...: bytes in pairs, wrapped as the registry editor wraps them
// (lines of at most 80 characters, continued with "\" and two blanks).
std::string HexLine(const std::string& Head, const std::string& Bytes) {
  std::string Out, Line = Head;
  char Pair[4];
  for (std::size_t I = 0; I < Bytes.size(); ++I) {
    std::snprintf(Pair, sizeof Pair, "%02x", static_cast<unsigned char>(Bytes[I]));
    std::string Item = std::string(Pair) + (I + 1 < Bytes.size() ? "," : "");
    if (Line.size() + Item.size() + 1 > 80 && Line.size() > 2) {
      Out += Line + "\\\r\n";
      Line = "  ";
    }
    Line += Item;
  }
  return Out + Line;
}

std::string ValueLine(const TRegValue& V) {
  std::string Head = (V.Name.empty() ? "@" : QuotedText(V.Name)) + "=";
  const std::string Terminator(2, '\0');
  switch (V.Type) {
    case REG_SZ:
      if (V.Data.find_first_of(std::string("\r\n\0", 3)) == std::string::npos)
        return Head + QuotedText(V.Data);
      return HexLine(Head + "hex(1):", Utf8ToUtf16(V.Data) + Terminator);
    case REG_EXPAND_SZ:
      return HexLine(Head + "hex(2):", Utf8ToUtf16(V.Data) + Terminator);
    case REG_MULTI_SZ:
      return HexLine(Head + "hex(7):", Utf8ToUtf16(V.Data) + Terminator);
    case REG_DWORD: {
      char Hex[16];
      std::snprintf(Hex, sizeof Hex, "%08x", RegDwordValue(V.Data));
      return Head + "dword:" + Hex;
    }
    case REG_QWORD:
      return HexLine(Head + "hex(b):", V.Data);
    default:
      return HexLine(Head + "hex:", V.Data);
  }
}

void WriteKey(const TRegKeyNode& Key, const std::string& Path, std::string& Out) {
  Out += "\r\n[" + Path + "]\r\n";
  for (const TRegValue& V : Key.Values) Out += ValueLine(V) + "\r\n";
  for (const auto& [Folded, Sub] : Key.SubKeys) WriteKey(Sub, Path + "\\" + Sub.Name, Out);
}

}  // namespace

std::vector<RegFileChange> ReadRegFile(const std::string& Bytes, const std::string& FileName) {
  std::string Text;
  bool Utf16 =
      Bytes.size() >= 2 && (Bytes.compare(0, 2, "\xFF\xFE") == 0 || Bytes.compare(0, 2, "\xFE\xFF") == 0);
  if (Utf16 && !Utf16ToUtf8(Bytes.substr(2), Bytes[0] == '\xFE', Text))
    throw BadRegFile(FileName + ":1: the file is not valid UTF-16");
  if (!Utf16) Text = AsUtf8(Bytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? Bytes.substr(3) : Bytes);

  std::vector<Line> Lines = LogicalLines(Text);
  std::size_t I = 0;
  while (I < Lines.size() && Lines[I].Text.empty()) ++I;
  const bool Version5 = I < Lines.size() && Lines[I].Text == kVersion5;
  if (!Version5 && !(I < Lines.size() && Lines[I].Text == kVersion4))
    throw BadRegFile(FileName + ":" + std::to_string(I < Lines.size() ? Lines[I].Number : 1) +
                     ": not a registry file: it must begin with \"" + kVersion5 + "\" or \"" + kVersion4 +
                     "\"");
  Reader R(FileName, Version5);
  std::vector<RegFileChange> Changes;
  RegFileChange Key;  // the last key line
  bool HaveKey = false;
  for (++I; I < Lines.size(); ++I) {
    const std::string& L = Lines[I].Text;
    if (L.empty() || L[0] == ';') continue;
    R.At(Lines[I].Number);
    if (L[0] == '[') {
      Key = R.Key(L);
      HaveKey = true;
      Changes.push_back(Key);
    } else {
      if (!HaveKey) R.Fail("a value before the first key");
      Changes.push_back(R.Value(Key, L));
    }
  }
  return Changes;
}

bool ApplyRegFile(const std::vector<RegFileChange>& Changes, TRegistryDocument& Doc) {
  bool Changed = false;
  for (const RegFileChange& C : Changes) {
    if (C.DeleteKey) {
      Changed |= Doc.Delete(C.Root, C.Path);
      continue;
    }
    bool Created = false;
    TRegKeyNode& Key = Doc.Create(C.Root, C.Path, Created);
    Changed |= Created;
    if (!C.HasValue) continue;
    if (C.DeleteValue) {
      Changed |= Key.DeleteValue(C.Value.Name);
      continue;
    }
    const TRegValue* Old = Key.FindValue(C.Value.Name);
    if (Old && Old->Type == C.Value.Type && Old->Data == C.Value.Data) continue;
    Key.SetValue(C.Value);
    Changed = true;
  }
  return Changed;
}

std::string WriteRegFile(const TRegKeyNode& Key, const std::string& Path) {
  std::string Out = std::string(kVersion5) + "\r\n";
  WriteKey(Key, Path, Out);
  return Out + "\r\n";
}

}  // namespace zt::host
