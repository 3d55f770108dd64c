// The contract between the package and FileAndMiscImages.so, the module that
// holds the libvips pipeline. libvips maps about a hundred libraries, so the
// package opens the module only when an image action first runs: zt starts
// as fast without it, and runs every other action where it is missing.
// Plain C types only, so either side can be rebuilt alone.
#pragma once

#include <cstddef>
#include <string>

namespace zt::package {

constexpr int kImagesModuleVersion = 1;

// The values of the Image Manipulation properties the pipeline needs
// (TZTImageRotation, TZTResizeMode as integers).
struct TZTImageJob {
  const char* Source;
  const char* SaveSuffix;  // ".jpg", ".png", ...: picks the saver
  int Quality;
  bool Progressive, StripMetadata;
  int Rotation;
  bool FlipHorizontal, FlipVertical;
  int ResizeMode;
  int Width, Height, Percent;
  bool OnlyShrink;
};

// The encoded output (to be given back to ZTImagesFree) and its size in
// pixels, or the first line of libvips' error.
struct TZTImageResult {
  void* Data;
  std::size_t Size;
  int Width, Height;
  char Error[512];
};

// The module's entry points (extern "C" there).
using TZTImagesVersionFn = int (*)();
using TZTImagesProcessFn = bool (*)(const TZTImageJob*, TZTImageResult*);
using TZTImagesFreeFn = void (*)(void*);

struct TZTImagesModule {
  TZTImagesProcessFn Process;
  TZTImagesFreeFn Free;
};

// Opens the module beside the package once per process and starts libvips;
// null with the loader's message in Error when it cannot.
const TZTImagesModule* LoadImagesModule(std::string& Error);

}  // namespace zt::package
