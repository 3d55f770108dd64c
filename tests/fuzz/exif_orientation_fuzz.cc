// The EXIF orientation reader over any bytes taken as a JPEG. Never a crash
// or a read out of bounds; a tag found can be set and reads back, and
// setting it changes its two bytes and nothing else.
#include <cstddef>
#include <cstdint>
#include <string>

#include "images/Exiforientation.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace zt::package;
  const std::string Jpeg(reinterpret_cast<const char*>(Data), Size);
  const TExifOrientationTag Tag = FindExifOrientation(Jpeg);
  const int Orientation = ReadExifOrientation(Jpeg);
  std::string Edited = Jpeg;
  const bool Set = SetExifOrientation(Edited, 0x0107);
  if (Set != (Tag.Offset != 0) || (Orientation != 0 && !Set)) __builtin_trap();
  if (!Set) {
    if (Edited != Jpeg) __builtin_trap();
    return 0;
  }
  if (Tag.Offset + 2 > Size || ReadExifOrientation(Edited) != 0x0107) __builtin_trap();
  for (std::size_t I = 0; I < Size; ++I)
    if (Edited[I] != Jpeg[I] && I != Tag.Offset && I != Tag.Offset + 1) __builtin_trap();
  return 0;
}
