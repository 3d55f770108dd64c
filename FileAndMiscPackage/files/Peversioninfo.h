// A reader of the version resource of Windows executables (PE32 and PE32+:
// .exe, .dll, .ocx, .sys ...), the same on every platform. Every offset the
// file gives is checked against the bytes there are: a truncated or damaged
// file is reported as such, never read out of bounds. The file is never read
// whole: a few header reads, then the resource data in one read (at most
// 16 MiB).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zt::package {

// One StringFileInfo table: its key (language and code page as 8 hex
// digits, "040904B0") and its Name -> value pairs, UTF-8, in file order.
struct TVersionStringTable {
  std::string Key;
  std::vector<std::pair<std::string, std::string>> Strings;

  // The value of Name (exact); false when the table has none.
  bool Find(const std::string& Name, std::string& Value) const;
};

struct TPEVersionInfo {
  // VS_FIXEDFILEINFO: major.minor in the high and low words of MS,
  // release.build in those of LS.
  std::uint32_t FileVersionMS = 0, FileVersionLS = 0;
  std::uint32_t ProductVersionMS = 0, ProductVersionLS = 0;
  std::vector<TVersionStringTable> Tables;
  std::vector<std::uint32_t> Translations;  // VarFileInfo: language << 16 | code page
};

enum class TPEVersionStatus {
  vsFound,          // Info is filled
  vsNotExecutable,  // no PE32 / PE32+ headers
  vsNoVersionInfo,  // an executable without a version resource
  vsDamaged,        // a version resource that does not hold together
  vsReadError,      // the file could not be read (the last error says why)
};

// Random access to the bytes of an image. ReadAt is only asked for bytes
// within [0, Size()).
class TPEImageSource {
 public:
  virtual ~TPEImageSource() = default;
  virtual std::uint64_t Size() const = 0;
  // False when the bytes could not be read (an I/O error).
  virtual bool ReadAt(std::uint64_t Offset, void* Buffer, std::size_t Count) = 0;
};

// Reads the version resource of Image. Language picks the resource's
// language entry (a LANGID such as 0x0409); 0, or one the file lacks, takes
// the first.
TPEVersionStatus ReadPEVersionInfo(TPEImageSource& Image, std::uint16_t Language, TPEVersionInfo& Info);
// The same for the file Path (opened for reading; vsReadError with the last
// error set when it cannot be opened or read).
TPEVersionStatus ReadPEVersionInfoFile(const std::string& Path, std::uint16_t Language, TPEVersionInfo& Info);
// The same for an image in memory.
TPEVersionStatus ReadPEVersionInfoMemory(std::string_view Image, std::uint16_t Language, TPEVersionInfo& Info);

// Parses a VS_VERSIONINFO block (the resource's data): vsFound or vsDamaged.
TPEVersionStatus ParseVersionResource(std::string_view Data, TPEVersionInfo& Info);

}  // namespace zt::package
