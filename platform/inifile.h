// INI files read and written as the Windows private-profile services do,
// behind the operations of Delphi's TIniFile. Every call reads the file
// afresh and parses it once (no cache, as the services keep none), so a
// call costs time linear in the file's size. Writes splice the one line
// they change into the text, keep every other byte, and replace the file
// atomically. docs/platform.md ("INI files") lists the rules.
// Thread use: any thread; writes to one file from several threads or
// processes take turns (each is a locked read-modify-write), so none is lost.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/conversions.h"  // TryStrToInt, StrToIntDef

namespace zt::platform {

// Raised by the writing operations; the message is "Unable to write to "
// followed by the file name, and the last-error code tells why.
class EIniFileException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class TIniFile {
 public:
  // Only remembers the name; the file is opened by each call.
  explicit TIniFile(std::string FileName) : FileName_(std::move(FileName)) {}

  const std::string& FileName() const { return FileName_; }

  // The value of Ident in the first section named Section, without
  // surrounding blanks and one pair of quotes, or Default without its
  // trailing spaces (tabs stay) when the file, section or key is missing. At most
  // 2047 UTF-16 code units come back (Delphi's 2048-character buffer).
  std::string ReadString(const std::string& Section, const std::string& Ident, const std::string& Default) const;
  // ReadString read with TryStrToInt; Default when that fails.
  int ReadInteger(const std::string& Section, const std::string& Ident, int Default) const;
  // ReadInteger(Section, Ident, Default ? 1 : 0) != 0: "true" reads as Default.
  bool ReadBool(const std::string& Section, const std::string& Ident, bool Default) const;

  // Sets Ident=Value in the first section named Section (the key's line is
  // rewritten with its existing spelling), or adds the key at the end of
  // the section, or the section at the end of the file, or creates the
  // file. Throws EIniFileException when the file is read-only (5), open for
  // writing elsewhere or held by another update for over ten seconds (32),
  // or cannot be written; the file is unchanged.
  void WriteString(const std::string& Section, const std::string& Ident, const std::string& Value);
  // EraseSection (when EraseFirst) and then WriteString for each name and
  // value in order, as one update of the file: one read and one replace
  // however many keys. Throws as WriteString does; the file is then unchanged.
  void WriteSectionValues(const std::string& Section, const std::vector<std::pair<std::string, std::string>>& Values,
                          bool EraseFirst);
  void WriteInteger(const std::string& Section, const std::string& Ident, int Value);  // decimal
  void WriteBool(const std::string& Section, const std::string& Ident, bool Value);    // "1" or "0"

  // Every section name in file order, duplicates included.
  std::vector<std::string> ReadSections() const;
  // The key names of the first section named Section, in file order.
  std::vector<std::string> ReadSection(const std::string& Section) const;
  // "name=value" for each key of ReadSection; a repeated name shows the
  // first occurrence's value (each value read as ReadString reads it).
  std::vector<std::string> ReadSectionValues(const std::string& Section) const;

  // Removes the first section named Section with all its lines. A missing
  // file or section is no error. Throws as WriteString does.
  void EraseSection(const std::string& Section);
  // Removes the line of Ident from the first section named Section.
  // Failures are ignored, as Delphi's TIniFile ignores them.
  void DeleteKey(const std::string& Section, const std::string& Ident);

  // True when the section has at least one key (an empty section counts
  // as missing, as in Delphi).
  bool SectionExists(const std::string& Section) const;
  // True when ReadSection lists Ident (letter case ignored, Ident taken as
  // given, not trimmed).
  bool ValueExists(const std::string& Section, const std::string& Ident) const;

 private:
  std::string FileName_;
};

}  // namespace zt::platform
