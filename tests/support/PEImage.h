// Windows executables built in memory, for the version-resource reader's
// tests, fuzz seeds and benchmark: a PE32 or PE32+ image with one .rsrc
// section whose resource tree holds one version resource per language.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zt::testing {

struct TVersionTable {
  std::string Key;                                           // "040904B0"
  std::vector<std::pair<std::string, std::string>> Strings;  // UTF-8 name -> value
};

namespace pe {

inline void Put16(std::string& S, std::size_t At, std::uint32_t V) {
  S[At] = static_cast<char>(V & 0xFF);
  S[At + 1] = static_cast<char>(V >> 8 & 0xFF);
}
inline void Put32(std::string& S, std::size_t At, std::uint32_t V) {
  Put16(S, At, V & 0xFFFF);
  Put16(S, At + 2, V >> 16);
}
inline void Pad4(std::string& S) { S.resize((S.size() + 3) & ~std::size_t{3}, '\0'); }

// UTF-8 to UTF-16LE with a terminating NUL.
inline std::string Utf16z(const std::string& Utf8) {
  std::string Out;
  auto Unit = [&](std::uint32_t U) { Out += static_cast<char>(U & 0xFF), Out += static_cast<char>(U >> 8); };
  for (std::size_t I = 0; I < Utf8.size();) {
    const auto B = static_cast<unsigned char>(Utf8[I]);
    const int N = B < 0x80 ? 1 : B < 0xE0 ? 2 : B < 0xF0 ? 3 : 4;
    std::uint32_t C = N == 1 ? B : B & (0x7F >> N);
    for (int K = 1; K < N; ++K) C = C << 6 | (static_cast<unsigned char>(Utf8[I + K]) & 0x3F);
    I += N;
    if (C >= 0x10000) Unit(0xD800 + ((C - 0x10000) >> 10)), Unit(0xDC00 + ((C - 0x10000) & 0x3FF));
    else Unit(C);
  }
  Unit(0);
  return Out;
}

// One block: header, key, padding, value, then the children, each aligned.
inline std::string Block(const std::string& Key, const std::string& Value, std::uint16_t ValueLength,
                         std::uint16_t Type, const std::vector<std::string>& Children = {}) {
  std::string B(6, '\0');
  B += Utf16z(Key);
  Pad4(B);
  B += Value;
  for (const auto& C : Children) Pad4(B), B += C;
  Put16(B, 0, static_cast<std::uint32_t>(B.size()));
  Put16(B, 2, ValueLength);
  Put16(B, 4, Type);
  return B;
}

}  // namespace pe

// A VS_VERSIONINFO block: file and product versions as four numbers each.
inline std::string VersionResource(const std::uint16_t (&File)[4], const std::uint16_t (&Product)[4],
                                   const std::vector<TVersionTable>& Tables,
                                   const std::vector<std::uint32_t>& Translations) {
  std::string Fixed(52, '\0');
  pe::Put32(Fixed, 0, 0xFEEF04BD);
  pe::Put32(Fixed, 4, 0x10000);
  pe::Put32(Fixed, 8, static_cast<std::uint32_t>(File[0]) << 16 | File[1]);
  pe::Put32(Fixed, 12, static_cast<std::uint32_t>(File[2]) << 16 | File[3]);
  pe::Put32(Fixed, 16, static_cast<std::uint32_t>(Product[0]) << 16 | Product[1]);
  pe::Put32(Fixed, 20, static_cast<std::uint32_t>(Product[2]) << 16 | Product[3]);
  std::vector<std::string> TableBlocks;
  for (const auto& T : Tables) {
    std::vector<std::string> Strings;
    for (const auto& [Name, Value] : T.Strings) {
      const std::string V = pe::Utf16z(Value);
      Strings.push_back(pe::Block(Name, V, static_cast<std::uint16_t>(V.size() / 2), 1));
    }
    TableBlocks.push_back(pe::Block(T.Key, "", 0, 1, Strings));
  }
  std::string Pairs(4 * Translations.size(), '\0');
  for (std::size_t I = 0; I < Translations.size(); ++I)
    pe::Put16(Pairs, 4 * I, Translations[I] >> 16), pe::Put16(Pairs, 4 * I + 2, Translations[I] & 0xFFFF);
  const std::string Var = pe::Block("Translation", Pairs, static_cast<std::uint16_t>(Pairs.size()), 0);
  return pe::Block("VS_VERSION_INFO", Fixed, 52, 0,
                   {pe::Block("StringFileInfo", "", 0, 1, TableBlocks), pe::Block("VarFileInfo", "", 0, 1, {Var})});
}

// A PE32 (or PE32+) image whose resource tree holds type 16, name 1, and
// one language entry per (language, VS_VERSIONINFO) pair; none: no
// resource directory at all.
inline std::string PEImage(bool Pe32Plus, const std::vector<std::pair<std::uint16_t, std::string>>& Resources) {
  constexpr std::uint32_t kRva = 0x1000, kRaw = 0x200;
  const std::uint32_t N = static_cast<std::uint32_t>(Resources.size());
  // Three directories (root, type 16, name 1), the data entries, the data.
  std::string Rsrc(24 + 24 + 16 + 8 * N + 16 * N, '\0');
  pe::Put16(Rsrc, 14, 1), pe::Put32(Rsrc, 16, 16), pe::Put32(Rsrc, 20, 0x80000000 | 24);
  pe::Put16(Rsrc, 24 + 14, 1), pe::Put32(Rsrc, 24 + 16, 1), pe::Put32(Rsrc, 24 + 20, 0x80000000 | 48);
  pe::Put16(Rsrc, 48 + 14, static_cast<std::uint16_t>(N));
  for (std::uint32_t I = 0; I < N; ++I) {
    const std::uint32_t Entry = 64 + 8 * N + 16 * I;
    pe::Put32(Rsrc, 64 + 8 * I, Resources[I].first);
    pe::Put32(Rsrc, 68 + 8 * I, Entry);
    pe::Pad4(Rsrc);
    pe::Put32(Rsrc, Entry, kRva + static_cast<std::uint32_t>(Rsrc.size()));
    pe::Put32(Rsrc, Entry + 4, static_cast<std::uint32_t>(Resources[I].second.size()));
    Rsrc += Resources[I].second;
  }
  const std::uint32_t OptionalSize = Pe32Plus ? 240 : 224, Directories = Pe32Plus ? 112 : 96;
  std::string Image(kRaw, '\0');
  Image[0] = 'M', Image[1] = 'Z';
  pe::Put32(Image, 0x3C, 0x40);
  Image.replace(0x40, 4, std::string("PE\0\0", 4));
  pe::Put16(Image, 0x44, Pe32Plus ? 0x8664 : 0x14C);
  pe::Put16(Image, 0x46, 1);  // sections
  pe::Put16(Image, 0x54, OptionalSize);
  const std::uint32_t Opt = 0x58;
  pe::Put16(Image, Opt, Pe32Plus ? 0x20B : 0x10B);
  pe::Put32(Image, Opt + Directories - 4, 16);
  if (N > 0) pe::Put32(Image, Opt + Directories + 16, kRva), pe::Put32(Image, Opt + Directories + 20,
                                                                        static_cast<std::uint32_t>(Rsrc.size()));
  const std::uint32_t Section = Opt + OptionalSize;
  Image.replace(Section, 5, ".rsrc");
  pe::Put32(Image, Section + 8, static_cast<std::uint32_t>(Rsrc.size()));
  pe::Put32(Image, Section + 12, kRva);
  pe::Put32(Image, Section + 16, static_cast<std::uint32_t>((Rsrc.size() + 0x1FF) & ~0x1FFu));
  pe::Put32(Image, Section + 20, kRaw);
  Rsrc.resize((Rsrc.size() + 0x1FF) & ~std::size_t{0x1FF}, '\0');
  return Image + Rsrc;
}

}  // namespace zt::testing
