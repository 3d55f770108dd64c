// JPEG images made at run time with TurboJPEG (no binary fixtures): a test
// pattern of 8x8 blocks in distinct colours, optionally with an EXIF
// orientation, and the facts a test reads back from an output.
#pragma once

#include <turbojpeg.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace zt::testing {

struct TJpegPicture {
  int Width = 0, Height = 0, Subsampling = -1;
  std::vector<unsigned char> Rgb;  // decoded pixels, 3 bytes each
  // The colour of the block whose top-left pixel is (X, Y).
  const unsigned char* At(int X, int Y) const { return &Rgb[3 * (std::size_t(Y) * Width + X)]; }
};

// The colour of the 8x8 block (BX, BY): far enough apart to survive quality 95.
inline void BlockColour(int BX, int BY, unsigned char* Rgb) {
  Rgb[0] = static_cast<unsigned char>(40 * (BX % 6));
  Rgb[1] = static_cast<unsigned char>(40 * (BY % 6));
  Rgb[2] = static_cast<unsigned char>(BX < 2 && BY < 2 ? 255 : 0);  // a marked top-left corner
}

// An APP1 "Exif" segment whose IFD0 holds one entry: the orientation.
inline std::string ExifSegment(int Orientation, bool BigEndian) {
  auto U16 = [&](int V) {
    return BigEndian ? std::string{char(V >> 8), char(V & 0xFF)} : std::string{char(V & 0xFF), char(V >> 8)};
  };
  auto U32 = [&](int V) { return BigEndian ? U16(0) + U16(V) : U16(V) + U16(0); };
  const std::string Tiff = (BigEndian ? "MM" : "II") + U16(42) + U32(8) + U16(1) + U16(0x0112) + U16(3) +
                           U32(1) + U16(Orientation) + U16(0) + U32(0);
  const std::string Payload = std::string("Exif\0\0", 6) + Tiff;
  const int Length = static_cast<int>(Payload.size()) + 2;
  return std::string{'\xFF', '\xE1', char(Length >> 8), char(Length & 0xFF)} + Payload;
}

// A baseline JPEG of the test pattern; Orientation > 0 adds an EXIF segment.
inline std::string MakeJpeg(int Width, int Height, int Subsampling = TJSAMP_420, int Orientation = 0,
                            bool BigEndian = false) {
  std::vector<unsigned char> Rgb(std::size_t(Width) * Height * 3);
  for (int Y = 0; Y < Height; ++Y)
    for (int X = 0; X < Width; ++X) BlockColour(X / 8, Y / 8, &Rgb[3 * (std::size_t(Y) * Width + X)]);
  tjhandle H = tjInitCompress();
  unsigned char* Out = nullptr;
  unsigned long Size = 0;
  if (tjCompress2(H, Rgb.data(), Width, 0, Height, TJPF_RGB, &Out, &Size, Subsampling, 95, 0) != 0)
    throw std::runtime_error(tjGetErrorStr2(H));
  std::string Jpeg(reinterpret_cast<char*>(Out), Size);
  tjFree(Out);
  tjDestroy(H);
  if (Orientation > 0) Jpeg.insert(2, ExifSegment(Orientation, BigEndian));
  return Jpeg;
}

// Decodes Jpeg; throws when TurboJPEG cannot.
inline TJpegPicture ReadJpeg(const std::string& Jpeg) {
  TJpegPicture P;
  tjhandle H = tjInitDecompress();
  const auto* Data = reinterpret_cast<const unsigned char*>(Jpeg.data());
  int Colorspace = 0;
  if (tjDecompressHeader3(H, Data, Jpeg.size(), &P.Width, &P.Height, &P.Subsampling, &Colorspace) != 0)
    throw std::runtime_error(tjGetErrorStr2(H));
  P.Rgb.resize(std::size_t(P.Width) * P.Height * 3);
  if (tjDecompress2(H, Data, Jpeg.size(), P.Rgb.data(), P.Width, 0, P.Height, TJPF_RGB, 0) != 0)
    throw std::runtime_error(tjGetErrorStr2(H));
  tjDestroy(H);
  return P;
}

}  // namespace zt::testing
