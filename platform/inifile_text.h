// Private to the INI engine (inifile.cc): an INI file's text in memory, its
// encoding, and the line scanner every operation parses with. One pass over
// the text per call; lines are spans into the text, never copies.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zt::platform::ini {

enum class TEncoding { Ansi, Utf8Bom, Utf16LE, Utf16BE };

// A file's contents as UTF-8 text. UTF-16 files are decoded losslessly (a
// lone surrogate becomes its three-byte form, a stray odd byte is kept in
// Tail), so Encode(Decode(B)) == B for every byte string B.
struct TIniText {
  TEncoding Encoding = TEncoding::Ansi;
  std::string Text;  // without the byte-order mark
  std::string Tail;  // the last byte of a UTF-16 file of odd length
};
TIniText Decode(std::string Bytes);
// Bytes of Doc in its encoding; bytes of Text that are not UTF-8 become
// U+FFFD in a UTF-16 file.
std::string Encode(const TIniText& Doc);

enum class TLineKind {
  Blank,    // nothing but blanks
  Comment,  // first non-blank character ';'
  Section,  // first non-blank character '['
  Key,      // contains '='
  Other,    // anything else: neither a key nor a section
};

struct TIniLine {
  TLineKind Kind = TLineKind::Blank;
  std::string_view Name;   // section or key name, blanks removed
  std::string_view Value;  // key value, blanks removed, quotes kept
  std::size_t Begin = 0;   // first character of the line
  std::size_t End = 0;     // one past its last character (before CR / LF)
  std::size_t Next = 0;    // start of the following line
};

// Splits Text at CR LF, CR or LF and classifies each line.
class TLineScanner {
 public:
  explicit TLineScanner(std::string_view Text) : Text_(Text) {}
  // Fills Line with the next line; false at the end of the text.
  bool Next(TIniLine& Line);
  // While set, lines that are no section header come back as Other without
  // being parsed (a scan that looks for a section skips the rest cheaply).
  void SetHeadersOnly(bool HeadersOnly) { HeadersOnly_ = HeadersOnly; }

 private:
  static constexpr std::size_t kUnknown = static_cast<std::size_t>(-1);
  std::string_view Text_;
  std::size_t Pos_ = 0;
  bool HeadersOnly_ = false;
  std::size_t NextCR_ = kUnknown, NextLF_ = kUnknown;  // positions found ahead of Pos_
};

// The blanks that surround names and values: space, tab, VT and FF.
bool IsBlank(char C);
std::string_view TrimBlanks(std::string_view S);
std::string_view TrimTrailingBlanks(std::string_view S);
// Names compare without regard to ASCII letter case.
bool SameName(std::string_view A, std::string_view B);
// A value with one pair of matching quotes (" or ') around it loses them.
std::string_view Unquote(std::string_view Value);
// S cut to at most MaxUnits UTF-16 code units, at a character boundary.
std::string_view LimitUtf16Units(std::string_view S, std::size_t MaxUnits);

// Where the first section named Section is, and the first key named Key in it.
struct TIniLocation {
  bool SectionFound = false;
  std::size_t SectionBegin = 0;  // its header line
  std::size_t SectionEnd = 0;    // start of the next section header, or the text's end
  std::size_t AppendAt = 0;      // just after the section's last non-blank line
  bool KeyFound = false;
  TIniLine Key;
};
// With StopAtKey the scan ends at the key, leaving SectionEnd and AppendAt unset.
TIniLocation Locate(std::string_view Text, std::string_view Section, std::string_view Key, bool StopAtKey);

}  // namespace zt::platform::ini
