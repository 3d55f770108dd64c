#include "platform/inifile.h"

#include <cstdint>
#include <string_view>
#include <unordered_map>

#include "platform/errors.h"
#include "platform/files.h"
#include "platform/inifile_text.h"

namespace zt::platform {
namespace {

using ini::TIniLine;
using ini::TIniText;
using ini::TLineKind;

constexpr std::size_t kMaxReadUnits = 2047;  // a 2048-character buffer less its terminator

std::string Trimmed(const std::string& S) { return std::string(ini::TrimBlanks(S)); }

// The file's text; empty when it is missing or unreadable, so reads give defaults.
TIniText Load(const std::string& Path) {
  std::string Bytes;
  if (!ReadWholeFile(Path, Bytes)) Bytes.clear();
  return ini::Decode(std::move(Bytes));
}

// Reads the file, lets Edit change its text, and replaces the file when
// Edit reports a change, all as one update that others on the same file
// wait for (so none is lost). A missing file starts empty when Create is set
// and is left alone otherwise. False with the last error set when the file
// may not or cannot be written; the file is then unchanged.
template <class F>
bool Update(const std::string& Path, bool Create, F Edit) {
  TFileUpdate File;
  if (!File.Begin(Path, Create)) return false;
  if (File.Missing()) return true;
  std::string Bytes;
  if (!File.Read(Bytes)) return false;
  TIniText Doc = ini::Decode(std::move(Bytes));
  if (!Edit(Doc.Text)) return true;
  return File.Commit(ini::Encode(Doc));
}

// Inserts Lines (without their final line break) at At, a line start or the
// text's end; a last line without a line break gets one first.
void InsertLines(std::string& Text, std::size_t At, const std::string& Lines) {
  std::string Add;
  if (At == Text.size() && At > 0 && Text.back() != '\n' && Text.back() != '\r') Add = "\r\n";
  Add += Lines;
  Add += "\r\n";
  Text.insert(At, Add);
}

// Sets Key=Value in the first section named Sec (both trimmed): the key's
// line is rewritten with its existing spelling, or the key added at the end
// of the section, or the section at the end of the text.
void SetKey(std::string& Text, const std::string& Sec, const std::string& Key, const std::string& Value) {
  ini::TIniLocation Loc = ini::Locate(Text, Sec, Key, /*StopAtKey=*/false);
  if (Loc.KeyFound) {
    std::string Line = std::string(Loc.Key.Name) + "=" + Value;
    Text.replace(Loc.Key.Begin, Loc.Key.End - Loc.Key.Begin, Line);
  } else if (Loc.SectionFound) {
    InsertLines(Text, Loc.AppendAt, Key + "=" + Value);
  } else {
    InsertLines(Text, Text.size(), "[" + Sec + "]\r\n" + Key + "=" + Value);
  }
}

// Removes the first section named Sec with all its lines; false when there is none.
bool RemoveSection(std::string& Text, const std::string& Sec) {
  ini::TIniLocation Loc = ini::Locate(Text, Sec, "", /*StopAtKey=*/false);
  if (!Loc.SectionFound) return false;
  Text.erase(Loc.SectionBegin, Loc.SectionEnd - Loc.SectionBegin);
  return true;
}

// Calls Visit for every key line of the first section named Section.
template <class F>
void ForEachKey(std::string_view Text, std::string_view Section, F Visit) {
  if (Section.empty()) return;
  ini::TLineScanner Scanner(Text);
  Scanner.SetHeadersOnly(true);
  TIniLine L;
  bool Inside = false;
  while (Scanner.Next(L)) {
    if (L.Kind == TLineKind::Section) {
      if (Inside) return;
      Inside = ini::SameName(L.Name, Section);
      Scanner.SetHeadersOnly(!Inside);
    } else if (Inside && L.Kind == TLineKind::Key) {
      Visit(L);
    }
  }
}

std::string ReadValue(std::string_view Value) {
  return std::string(ini::LimitUtf16Units(ini::Unquote(Value), kMaxReadUnits));
}

std::string AsciiLower(std::string_view S) {
  std::string R(S);
  for (char& C : R)
    if (C >= 'A' && C <= 'Z') C = static_cast<char>(C - 'A' + 'a');
  return R;
}

}  // namespace

std::string TIniFile::ReadString(const std::string& Section, const std::string& Ident,
                                 const std::string& Default) const {
  TIniText Doc = Load(FileName_);
  ini::TIniLocation Loc = ini::Locate(Doc.Text, ini::TrimBlanks(Section), ini::TrimBlanks(Ident), true);
  if (Loc.KeyFound) return ReadValue(Loc.Key.Value);
  // Windows drops the default's trailing spaces, but not its tabs.
  std::string_view D = Default;
  D = D.substr(0, D.find_last_not_of(' ') + 1);
  return std::string(ini::LimitUtf16Units(D, kMaxReadUnits));
}

int TIniFile::ReadInteger(const std::string& Section, const std::string& Ident, int Default) const {
  return StrToIntDef(ReadString(Section, Ident, ""), Default);
}

bool TIniFile::ReadBool(const std::string& Section, const std::string& Ident, bool Default) const {
  return ReadInteger(Section, Ident, Default ? 1 : 0) != 0;
}

void TIniFile::WriteString(const std::string& Section, const std::string& Ident, const std::string& Value) {
  WriteSectionValues(Section, {{Ident, Value}}, /*EraseFirst=*/false);
}

void TIniFile::WriteSectionValues(const std::string& Section,
                                  const std::vector<std::pair<std::string, std::string>>& Values, bool EraseFirst) {
  const std::string Sec = Trimmed(Section);
  bool Ok = !Sec.empty();
  if (!Ok) SetLastError(ERROR_INVALID_PARAMETER);  // a nameless section could never be read back
  Ok = Ok && Update(FileName_, /*Create=*/!Values.empty(), [&](std::string& Text) {
         bool Changed = EraseFirst && RemoveSection(Text, Sec);
         for (const auto& [Ident, Value] : Values) SetKey(Text, Sec, Trimmed(Ident), Value);
         return Changed || !Values.empty();
       });
  if (!Ok) throw EIniFileException("Unable to write to " + FileName_);
}

void TIniFile::WriteInteger(const std::string& Section, const std::string& Ident, int Value) {
  WriteString(Section, Ident, std::to_string(Value));
}

void TIniFile::WriteBool(const std::string& Section, const std::string& Ident, bool Value) {
  WriteString(Section, Ident, Value ? "1" : "0");
}

std::vector<std::string> TIniFile::ReadSections() const {
  TIniText Doc = Load(FileName_);
  std::vector<std::string> Names;
  ini::TLineScanner Scanner(Doc.Text);
  Scanner.SetHeadersOnly(true);
  TIniLine L;
  while (Scanner.Next(L))
    if (L.Kind == TLineKind::Section && !L.Name.empty()) Names.emplace_back(L.Name);
  return Names;
}

std::vector<std::string> TIniFile::ReadSection(const std::string& Section) const {
  TIniText Doc = Load(FileName_);
  std::vector<std::string> Keys;
  ForEachKey(Doc.Text, ini::TrimBlanks(Section), [&](const TIniLine& L) { Keys.emplace_back(L.Name); });
  return Keys;
}

std::vector<std::string> TIniFile::ReadSectionValues(const std::string& Section) const {
  TIniText Doc = Load(FileName_);
  std::vector<std::string> Lines;
  std::unordered_map<std::string, std::string> First;  // lower-cased name -> value read
  ForEachKey(Doc.Text, ini::TrimBlanks(Section), [&](const TIniLine& L) {
    auto [It, New] = First.try_emplace(AsciiLower(L.Name));
    if (New) It->second = ReadValue(L.Value);
    Lines.push_back(std::string(L.Name) + "=" + It->second);
  });
  return Lines;
}

void TIniFile::EraseSection(const std::string& Section) {
  const std::string Sec = Trimmed(Section);
  bool Ok = Update(FileName_, /*Create=*/false, [&](std::string& Text) { return RemoveSection(Text, Sec); });
  if (!Ok) throw EIniFileException("Unable to write to " + FileName_);
}

void TIniFile::DeleteKey(const std::string& Section, const std::string& Ident) {
  const std::string Sec = Trimmed(Section), Key = Trimmed(Ident);
  Update(FileName_, /*Create=*/false, [&](std::string& Text) {
    ini::TIniLocation Loc = ini::Locate(Text, Sec, Key, /*StopAtKey=*/true);
    if (!Loc.KeyFound) return false;
    Text.erase(Loc.Key.Begin, Loc.Key.Next - Loc.Key.Begin);
    return true;
  });
}

bool TIniFile::SectionExists(const std::string& Section) const {
  TIniText Doc = Load(FileName_);
  bool Any = false;
  ForEachKey(Doc.Text, ini::TrimBlanks(Section), [&](const TIniLine&) { Any = true; });
  return Any;
}

bool TIniFile::ValueExists(const std::string& Section, const std::string& Ident) const {
  TIniText Doc = Load(FileName_);
  bool Found = false;
  ForEachKey(Doc.Text, ini::TrimBlanks(Section), [&](const TIniLine& L) { Found = Found || ini::SameName(L.Name, Ident); });
  return Found;
}

}  // namespace zt::platform
