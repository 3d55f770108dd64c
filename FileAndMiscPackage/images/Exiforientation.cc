#include "images/Exiforientation.h"

#include <cstdint>

namespace zt::package {

namespace {

constexpr std::uint16_t kOrientationTag = 0x0112;
constexpr std::uint16_t kTypeShort = 3;

// Reads big- or little-endian words of a TIFF block; every read is checked.
class TTiffReader {
 public:
  TTiffReader(std::string_view Data, bool BigEndian) : Data_(Data), BigEndian_(BigEndian) {}
  bool U16(std::size_t At, std::uint16_t& Value) const {
    if (At > Data_.size() || Data_.size() - At < 2) return false;
    const auto B0 = static_cast<unsigned char>(Data_[At]), B1 = static_cast<unsigned char>(Data_[At + 1]);
    Value = static_cast<std::uint16_t>(BigEndian_ ? (B0 << 8) | B1 : (B1 << 8) | B0);
    return true;
  }
  bool U32(std::size_t At, std::uint32_t& Value) const {
    std::uint16_t A, B;
    if (!U16(At, A) || !U16(At + 2, B)) return false;
    Value = BigEndian_ ? (std::uint32_t{A} << 16) | B : (std::uint32_t{B} << 16) | A;
    return true;
  }

 private:
  std::string_view Data_;
  bool BigEndian_;
};

// The orientation entry's value offset within Tiff, 0 when there is none.
std::size_t FindInTiff(std::string_view Tiff, bool& BigEndian) {
  if (Tiff.size() < 8) return 0;
  if (Tiff.substr(0, 2) == "MM")
    BigEndian = true;
  else if (Tiff.substr(0, 2) == "II")
    BigEndian = false;
  else
    return 0;
  const TTiffReader R(Tiff, BigEndian);
  std::uint16_t Magic = 0, Count = 0;
  std::uint32_t Ifd = 0;
  if (!R.U16(2, Magic) || Magic != 42 || !R.U32(4, Ifd) || !R.U16(Ifd, Count)) return 0;
  for (std::size_t I = 0; I < Count; ++I) {
    const std::size_t Entry = std::size_t{Ifd} + 2 + 12 * I;
    std::uint16_t Tag = 0, Type = 0, Value = 0;
    std::uint32_t N = 0;
    if (!R.U16(Entry, Tag) || !R.U16(Entry + 2, Type) || !R.U32(Entry + 4, N) || !R.U16(Entry + 8, Value))
      return 0;
    if (Tag == kOrientationTag) return Type == kTypeShort && N == 1 ? Entry + 8 : 0;
  }
  return 0;
}

}  // namespace

TExifOrientationTag FindExifOrientation(std::string_view Jpeg) {
  auto Byte = [&](std::size_t At) { return static_cast<unsigned char>(Jpeg[At]); };
  if (Jpeg.size() < 4 || Byte(0) != 0xFF || Byte(1) != 0xD8) return {};
  std::size_t At = 2;
  while (At + 4 <= Jpeg.size()) {
    if (Byte(At) != 0xFF) return {};
    const unsigned char Marker = Byte(At + 1);
    if (Marker == 0xFF) {  // fill byte
      ++At;
      continue;
    }
    if (Marker == 0xDA || Marker == 0xD9) return {};  // the scan, or the end
    if (Marker == 0x01 || (Marker >= 0xD0 && Marker <= 0xD7)) {
      At += 2;
      continue;
    }
    const std::size_t Length = (std::size_t{Byte(At + 2)} << 8) | Byte(At + 3);
    if (Length < 2 || Jpeg.size() - At - 2 < Length) return {};
    const std::string_view Segment = Jpeg.substr(At + 4, Length - 2);
    if (Marker == 0xE1 && Segment.substr(0, 6) == std::string_view("Exif\0\0", 6)) {
      TExifOrientationTag Tag;
      const std::size_t InTiff = FindInTiff(Segment.substr(6), Tag.BigEndian);
      if (InTiff == 0) return {};
      Tag.Offset = At + 4 + 6 + InTiff;
      return Tag;
    }
    At += 2 + Length;
  }
  return {};
}

int ReadExifOrientation(std::string_view Jpeg) {
  const TExifOrientationTag Tag = FindExifOrientation(Jpeg);
  if (Tag.Offset == 0) return 0;
  const auto B0 = static_cast<unsigned char>(Jpeg[Tag.Offset]),
             B1 = static_cast<unsigned char>(Jpeg[Tag.Offset + 1]);
  return Tag.BigEndian ? (B0 << 8) | B1 : (B1 << 8) | B0;
}

bool SetExifOrientation(std::span<char> Jpeg, int Value) {
  const TExifOrientationTag Tag = FindExifOrientation(std::string_view(Jpeg.data(), Jpeg.size()));
  if (Tag.Offset == 0) return false;
  const auto High = static_cast<char>((Value >> 8) & 0xFF), Low = static_cast<char>(Value & 0xFF);
  Jpeg[Tag.Offset] = Tag.BigEndian ? High : Low;
  Jpeg[Tag.Offset + 1] = Tag.BigEndian ? Low : High;
  return true;
}

}  // namespace zt::package
