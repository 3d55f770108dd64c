// The orientation tag of a JPEG's EXIF data (APP1 "Exif", TIFF IFD0, tag
// 0x0112), found by a reader that checks every offset against the bytes it
// was given. Viewers turn an image by this tag, so a lossless rotation must
// set it back to 1, or they would turn it again.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace zt::package {

// Where the tag's 16-bit value lies in Jpeg (its first byte), and the byte
// order of the TIFF data around it.
struct TExifOrientationTag {
  std::size_t Offset = 0;  // 0: the image has no orientation tag
  bool BigEndian = false;
};

// Looks through the markers before the first scan for the first EXIF APP1
// segment and its IFD0 orientation entry (type SHORT, count 1).
TExifOrientationTag FindExifOrientation(std::string_view Jpeg);

// The orientation (1-8 by EXIF; other values as stored), 0 without a tag.
int ReadExifOrientation(std::string_view Jpeg);

// Rewrites the tag in place; false when the image has none.
bool SetExifOrientation(std::span<char> Jpeg, int Value);

}  // namespace zt::package
