#include "files/Peversioninfo.h"

#include <algorithm>
#include <cstring>

#include "platform/files.h"

namespace zt::package {

namespace pf = zt::platform;

namespace {

constexpr std::uint32_t kRTVersion = 16;
constexpr std::uint32_t kSubdirectory = 0x80000000;
constexpr std::uint64_t kMaxResourceData = 16 << 20;
constexpr std::uint32_t kFixedSignature = 0xFEEF04BD;
constexpr std::size_t kFixedSize = 52;

std::uint16_t U16(const std::uint8_t* P) { return static_cast<std::uint16_t>(P[0] | P[1] << 8); }
std::uint32_t U32(const std::uint8_t* P) { return U16(P) | static_cast<std::uint32_t>(U16(P + 2)) << 16; }
const std::uint8_t* Bytes(std::string_view S) { return reinterpret_cast<const std::uint8_t*>(S.data()); }
std::size_t Align4(std::size_t N) { return (N + 3) & ~std::size_t{3}; }

void AppendUtf8(std::string& Out, char32_t C) {
  if (C < 0x80) {
    Out += static_cast<char>(C);
  } else if (C < 0x800) {
    Out += static_cast<char>(0xC0 | C >> 6);
    Out += static_cast<char>(0x80 | (C & 0x3F));
  } else if (C < 0x10000) {
    Out += static_cast<char>(0xE0 | C >> 12);
    Out += static_cast<char>(0x80 | (C >> 6 & 0x3F));
    Out += static_cast<char>(0x80 | (C & 0x3F));
  } else {
    Out += static_cast<char>(0xF0 | C >> 18);
    Out += static_cast<char>(0x80 | (C >> 12 & 0x3F));
    Out += static_cast<char>(0x80 | (C >> 6 & 0x3F));
    Out += static_cast<char>(0x80 | (C & 0x3F));
  }
}

// UTF-16LE code units [Begin, End) of Data up to the first NUL, as UTF-8;
// a lone surrogate becomes U+FFFD.
std::string Utf16Text(std::string_view Data, std::size_t Begin, std::size_t End) {
  std::string Out;
  const std::uint8_t* P = Bytes(Data);
  for (std::size_t I = Begin; I + 2 <= End; I += 2) {
    char32_t C = U16(P + I);
    if (C == 0) break;
    if (C >= 0xD800 && C < 0xDC00 && I + 4 <= End && U16(P + I + 2) >= 0xDC00 && U16(P + I + 2) < 0xE000) {
      C = 0x10000 + ((C - 0xD800) << 10) + (U16(P + I + 2) - 0xDC00);
      I += 2;
    } else if (C >= 0xD800 && C < 0xE000) {
      C = 0xFFFD;
    }
    AppendUtf8(Out, C);
  }
  return Out;
}

// One block of the version resource: wLength, wValueLength, wType, a
// NUL-terminated UTF-16 key, padding to 4, the value, padding, children.
struct TBlock {
  std::size_t End = 0;         // one past its last byte
  std::size_t ValueBegin = 0;  // after the key and its padding (at most End)
  std::uint16_t ValueLength = 0;
  std::string Key;
};

// The block at Begin, which must fit within Limit; false when it does not
// (shorter than its header, longer than its parent, a key without its NUL).
bool ReadBlock(std::string_view Data, std::size_t Begin, std::size_t Limit, TBlock& B) {
  const std::uint8_t* P = Bytes(Data);
  if (Begin + 6 > Limit) return false;
  const std::size_t Length = U16(P + Begin);
  if (Length < 6 || Length > Limit - Begin) return false;
  B.End = Begin + Length;
  B.ValueLength = U16(P + Begin + 2);
  std::size_t K = Begin + 6;
  while (K + 2 <= B.End && U16(P + K) != 0) K += 2;
  if (K + 2 > B.End) return false;
  B.Key = Utf16Text(Data, Begin + 6, K);
  B.ValueBegin = std::min(Align4(K + 2), B.End);
  return true;
}

// Calls Visit(child) for each child block from From (aligned) to the end of
// Parent; false when a child does not fit or Visit says so.
template <class F>
bool ForEachChild(std::string_view Data, const TBlock& Parent, std::size_t From, F Visit) {
  for (std::size_t C = Align4(From); C + 6 <= Parent.End;) {
    TBlock Child;
    if (!ReadBlock(Data, C, Parent.End, Child) || !Visit(Child)) return false;
    C = Align4(Child.End);
  }
  return true;
}

// Reads only within the image; remembers an I/O failure apart from a short
// image.
struct TBoundedReader {
  TPEImageSource& Image;
  bool Failed = false;

  bool Read(std::uint64_t Offset, void* Buffer, std::size_t Count) {
    const std::uint64_t Size = Image.Size();
    if (Offset > Size || Count > Size - Offset) return false;
    if (Count == 0) return true;
    if (Image.ReadAt(Offset, Buffer, Count)) return true;
    Failed = true;
    return false;
  }
};

// The headers up to the resource directory: its RVA and size (0 when the
// image has none) and the file offset and size of the bytes there.
struct TResourceLocation {
  std::uint32_t Rva = 0, Size = 0;
  std::uint64_t FileOffset = 0, Available = 0;
};

TPEVersionStatus LocateResources(TBoundedReader& R, TResourceLocation& Loc) {
  std::uint8_t Dos[64], Nt[24];
  if (!R.Read(0, Dos, sizeof Dos) || Dos[0] != 'M' || Dos[1] != 'Z') return TPEVersionStatus::vsNotExecutable;
  const std::uint64_t NtOffset = U32(Dos + 0x3C);
  if (!R.Read(NtOffset, Nt, sizeof Nt) || std::memcmp(Nt, "PE\0\0", 4) != 0) return TPEVersionStatus::vsNotExecutable;
  const std::uint16_t Sections = U16(Nt + 6);
  const std::uint16_t OptionalSize = U16(Nt + 20);
  std::vector<std::uint8_t> Optional(OptionalSize);
  if (OptionalSize < 2 || !R.Read(NtOffset + 24, Optional.data(), OptionalSize))
    return TPEVersionStatus::vsNotExecutable;
  const std::uint16_t Magic = U16(Optional.data());
  const std::size_t Directories = Magic == 0x10B ? 96 : Magic == 0x20B ? 112 : 0;
  if (Directories == 0 || OptionalSize < Directories) return TPEVersionStatus::vsNotExecutable;
  // Directory 2 holds the resources.
  if (U32(Optional.data() + Directories - 4) <= 2 || OptionalSize < Directories + 24)
    return TPEVersionStatus::vsNoVersionInfo;
  Loc.Rva = U32(Optional.data() + Directories + 16);
  Loc.Size = U32(Optional.data() + Directories + 20);
  if (Loc.Rva == 0 || Loc.Size == 0) return TPEVersionStatus::vsNoVersionInfo;

  std::vector<std::uint8_t> Table(static_cast<std::size_t>(Sections) * 40);
  if (!R.Read(NtOffset + 24 + OptionalSize, Table.data(), Table.size())) return TPEVersionStatus::vsDamaged;
  for (std::size_t S = 0; S < Sections; ++S) {
    const std::uint8_t* E = Table.data() + S * 40;
    const std::uint64_t VirtualSize = U32(E + 8), Address = U32(E + 12), RawSize = U32(E + 16),
                        RawPointer = U32(E + 20);
    if (Loc.Rva < Address || Loc.Rva >= Address + std::max(VirtualSize, RawSize)) continue;
    const std::uint64_t Into = Loc.Rva - Address;
    if (Into >= RawSize) return TPEVersionStatus::vsDamaged;  // in memory only: no bytes in the file
    Loc.FileOffset = RawPointer + Into;
    Loc.Available = RawSize - Into;
    return TPEVersionStatus::vsFound;
  }
  return TPEVersionStatus::vsDamaged;
}

// The data entry of the version resource in the resource tree Tree (type
// 16, its first name, the language Language or else the first): exactly
// three levels. Offset and size within Tree.
TPEVersionStatus FindVersionData(std::string_view Tree, std::uint32_t TreeRva, std::uint16_t Language,
                                 std::size_t& Offset, std::size_t& Size) {
  const std::uint8_t* P = Bytes(Tree);
  // The entries of the directory at DirOffset: [First, First + 8 * Count).
  auto Entries = [&](std::uint32_t DirOffset, std::size_t& First, std::size_t& Count) {
    if (DirOffset > Tree.size() || Tree.size() - DirOffset < 16) return false;
    Count = static_cast<std::size_t>(U16(P + DirOffset + 12)) + U16(P + DirOffset + 14);
    First = DirOffset + 16;
    return Count * 8 <= Tree.size() - First;
  };
  std::size_t First, Count;
  if (!Entries(0, First, Count)) return TPEVersionStatus::vsDamaged;
  std::uint32_t Next = 0;
  bool Found = false;
  for (std::size_t I = 0; I < Count && !Found; ++I)
    if (U32(P + First + 8 * I) == kRTVersion) Next = U32(P + First + 8 * I + 4), Found = true;
  if (!Found) return TPEVersionStatus::vsNoVersionInfo;
  // Its first name...
  if (!(Next & kSubdirectory) || !Entries(Next & ~kSubdirectory, First, Count) || Count == 0)
    return TPEVersionStatus::vsDamaged;
  Next = U32(P + First + 4);
  // ...in the language asked for, else the first.
  if (!(Next & kSubdirectory) || !Entries(Next & ~kSubdirectory, First, Count) || Count == 0)
    return TPEVersionStatus::vsDamaged;
  std::size_t Chosen = 0;
  for (std::size_t I = 0; I < Count; ++I)
    if (Language != 0 && U32(P + First + 8 * I) == Language) Chosen = I;
  const std::uint32_t Entry = U32(P + First + 8 * Chosen + 4);
  if ((Entry & kSubdirectory) || Entry > Tree.size() || Tree.size() - Entry < 16) return TPEVersionStatus::vsDamaged;
  const std::uint32_t DataRva = U32(P + Entry), DataSize = U32(P + Entry + 4);
  if (DataRva < TreeRva || DataRva - TreeRva > Tree.size() || DataSize > Tree.size() - (DataRva - TreeRva))
    return TPEVersionStatus::vsDamaged;
  Offset = DataRva - TreeRva;
  Size = DataSize;
  return TPEVersionStatus::vsFound;
}

class TMemoryImage : public TPEImageSource {
 public:
  explicit TMemoryImage(std::string_view Image) : Image_(Image) {}
  std::uint64_t Size() const override { return Image_.size(); }
  bool ReadAt(std::uint64_t Offset, void* Buffer, std::size_t Count) override {
    std::memcpy(Buffer, Image_.data() + Offset, Count);
    return true;
  }

 private:
  std::string_view Image_;
};

class TFileImage : public TPEImageSource {
 public:
  TFileImage(pf::THandle Handle, std::uint64_t Size) : Handle_(Handle), Size_(Size) {}
  std::uint64_t Size() const override { return Size_; }
  bool ReadAt(std::uint64_t Offset, void* Buffer, std::size_t Count) override {
    if (pf::FileSeek(Handle_, static_cast<std::int64_t>(Offset), 0) != static_cast<std::int64_t>(Offset))
      return false;
    auto* Out = static_cast<char*>(Buffer);
    while (Count > 0) {
      const int Step = static_cast<int>(std::min<std::size_t>(Count, 1 << 30));
      const int Got = pf::FileRead(Handle_, Out, Step);
      if (Got <= 0) {
        if (Got == 0) pf::SetLastError(pf::ERROR_HANDLE_EOF);  // the file shrank meanwhile
        return false;
      }
      Out += Got;
      Count -= static_cast<std::size_t>(Got);
    }
    return true;
  }

 private:
  pf::THandle Handle_;
  std::uint64_t Size_;
};

}  // namespace

bool TVersionStringTable::Find(const std::string& Name, std::string& Value) const {
  for (const auto& [N, V] : Strings)
    if (N == Name) {
      Value = V;
      return true;
    }
  return false;
}

TPEVersionStatus ParseVersionResource(std::string_view Data, TPEVersionInfo& Info) {
  Info = TPEVersionInfo();
  TBlock Root;
  if (!ReadBlock(Data, 0, Data.size(), Root) || Root.Key != "VS_VERSION_INFO" || Root.ValueLength == 0 ||
      Root.End - Root.ValueBegin < kFixedSize)
    return TPEVersionStatus::vsDamaged;
  const std::uint8_t* Fixed = Bytes(Data) + Root.ValueBegin;
  if (U32(Fixed) != kFixedSignature) return TPEVersionStatus::vsDamaged;
  Info.FileVersionMS = U32(Fixed + 8);
  Info.FileVersionLS = U32(Fixed + 12);
  Info.ProductVersionMS = U32(Fixed + 16);
  Info.ProductVersionLS = U32(Fixed + 20);

  // Values are measured by the block's length, never by wValueLength, which
  // compilers write in bytes or in characters.
  const bool Whole = ForEachChild(Data, Root, Root.ValueBegin + kFixedSize, [&](const TBlock& Section) {
    if (Section.Key == "StringFileInfo")
      return ForEachChild(Data, Section, Section.ValueBegin, [&](const TBlock& Table) {
        TVersionStringTable& T = Info.Tables.emplace_back();
        T.Key = Table.Key;
        return ForEachChild(Data, Table, Table.ValueBegin, [&](const TBlock& String) {
          T.Strings.emplace_back(String.Key, Utf16Text(Data, String.ValueBegin, String.End));
          return true;
        });
      });
    if (Section.Key == "VarFileInfo")
      return ForEachChild(Data, Section, Section.ValueBegin, [&](const TBlock& Var) {
        if (Var.Key == "Translation")
          for (std::size_t I = Var.ValueBegin; I + 4 <= Var.End; I += 4)
            Info.Translations.push_back(static_cast<std::uint32_t>(U16(Bytes(Data) + I)) << 16 |
                                        U16(Bytes(Data) + I + 2));
        return true;
      });
    return true;
  });
  return Whole ? TPEVersionStatus::vsFound : TPEVersionStatus::vsDamaged;
}

TPEVersionStatus ReadPEVersionInfo(TPEImageSource& Image, std::uint16_t Language, TPEVersionInfo& Info) {
  TBoundedReader R{Image};
  TResourceLocation Loc;
  TPEVersionStatus Status = LocateResources(R, Loc);
  if (R.Failed) return TPEVersionStatus::vsReadError;
  if (Status != TPEVersionStatus::vsFound) return Status;
  // A file cut short holds less than its headers promise: read what is there.
  if (Loc.FileOffset >= Image.Size()) return TPEVersionStatus::vsDamaged;
  std::string Tree(
      std::min({std::uint64_t{Loc.Size}, Loc.Available, kMaxResourceData, Image.Size() - Loc.FileOffset}), '\0');
  if (!R.Read(Loc.FileOffset, Tree.data(), Tree.size()))
    return R.Failed ? TPEVersionStatus::vsReadError : TPEVersionStatus::vsDamaged;
  std::size_t Offset = 0, Size = 0;
  Status = FindVersionData(Tree, Loc.Rva, Language, Offset, Size);
  if (Status != TPEVersionStatus::vsFound) return Status;
  return ParseVersionResource(std::string_view(Tree).substr(Offset, Size), Info);
}

TPEVersionStatus ReadPEVersionInfoMemory(std::string_view Image, std::uint16_t Language, TPEVersionInfo& Info) {
  TMemoryImage Source(Image);
  return ReadPEVersionInfo(Source, Language, Info);
}

TPEVersionStatus ReadPEVersionInfoFile(const std::string& Path, std::uint16_t Language, TPEVersionInfo& Info) {
  const pf::THandle Handle = pf::FileOpen(Path, pf::fmOpenRead | pf::fmShareDenyNone);
  if (Handle == pf::INVALID_HANDLE_VALUE) return TPEVersionStatus::vsReadError;
  const std::int64_t Size = pf::FileSeek(Handle, 0, 2);
  TPEVersionStatus Status = TPEVersionStatus::vsReadError;
  if (Size >= 0) {
    TFileImage Source(Handle, static_cast<std::uint64_t>(Size));
    Status = ReadPEVersionInfo(Source, Language, Info);
  }
  const pf::DWORD Error = pf::GetLastError();
  pf::FileClose(Handle);
  pf::SetLastError(Error);
  return Status;
}

}  // namespace zt::package
