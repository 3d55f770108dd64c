// FileAndMiscImages.so: the Image Manipulation pipeline on libvips. Fit and
// fill without a fixed turn go through vips_thumbnail, which shrinks JPEGs
// while decoding; everything else loads, turns, flips and resizes. The
// result is encoded in memory: the package writes it through a replacement
// file, so a failure never leaves half an image.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <vips/vips8>

#include "images/Imagesmodule.h"
#include "images/Ztimagetypes.h"

using namespace vips;
using zt::package::TZTImageJob;
using zt::package::TZTImageResult;
using zt::package::TZTImageRotation;
using zt::package::TZTResizeMode;

namespace {

constexpr int kUnbounded = VIPS_MAX_COORD;

bool Started(std::string& Error) {
  static std::once_flag Once;
  static std::string InitError;
  std::call_once(Once, [] {
    if (VIPS_INIT("zt") != 0) {
      InitError = vips_error_buffer();
      return;
    }
    vips_cache_set_max(0);  // every file is read once: a cache only holds memory and open files
    // Ends libvips' worker threads before the process ends, so that exit
    // (and a leak check) meets one thread.
    std::atexit(vips_shutdown);
  });
  Error = InitError;
  return InitError.empty();
}

bool Is(const TZTImageJob& Job, TZTResizeMode Mode) { return Job.ResizeMode == static_cast<int>(Mode); }
bool Is(const TZTImageJob& Job, TZTImageRotation Rotation) {
  return Job.Rotation == static_cast<int>(Rotation);
}

bool SuffixIs(const TZTImageJob& Job, std::initializer_list<const char*> Suffixes) {
  return std::any_of(Suffixes.begin(), Suffixes.end(),
                     [&](const char* S) { return g_ascii_strcasecmp(Job.SaveSuffix, S) == 0; });
}

VImage Flipped(VImage Image, const TZTImageJob& Job) {
  if (Job.FlipHorizontal) Image = Image.flip(VIPS_DIRECTION_HORIZONTAL);
  if (Job.FlipVertical) Image = Image.flip(VIPS_DIRECTION_VERTICAL);
  return Image;
}

// Fit and fill (fill needs both sides; with one it fits) with no turn or an
// upright one: the thumbnail operation, which shrinks on load.
VImage Thumbnail(const TZTImageJob& Job) {
  const bool Fill = Is(Job, TZTResizeMode::rmFill) && Job.Width > 0 && Job.Height > 0;
  VOption* Options = VImage::option()
                         ->set("height", Job.Height > 0 ? Job.Height : kUnbounded)
                         ->set("no_rotate", !Is(Job, TZTImageRotation::irAuto))
                         ->set("size", Job.OnlyShrink ? VIPS_SIZE_DOWN : VIPS_SIZE_BOTH)
                         ->set("fail_on", VIPS_FAIL_ON_ERROR);
  if (Fill) Options->set("crop", VIPS_INTERESTING_CENTRE);
  return Flipped(VImage::thumbnail(Job.Source, Job.Width > 0 ? Job.Width : kUnbounded, Options), Job);
}

// Scale factors of the other resize modes for an image of W x H.
void Scales(const TZTImageJob& Job, int W, int H, double& HScale, double& VScale) {
  const double SX = Job.Width > 0 ? double(Job.Width) / W : 0,
               SY = Job.Height > 0 ? double(Job.Height) / H : 0;
  if (Is(Job, TZTResizeMode::rmPercent)) {
    HScale = VScale = Job.Percent / 100.0;
  } else if (Is(Job, TZTResizeMode::rmStretch) && SX > 0 && SY > 0) {
    HScale = SX;
    VScale = SY;
  } else if (Is(Job, TZTResizeMode::rmFill) && SX > 0 && SY > 0) {
    HScale = VScale = std::max(SX, SY);
  } else if (SX > 0 || SY > 0) {  // fit, or one side given
    HScale = VScale = SX > 0 && SY > 0 ? std::min(SX, SY) : std::max(SX, SY);
  } else {
    HScale = VScale = 1;
  }
  if (Job.OnlyShrink) {
    HScale = std::min(HScale, 1.0);
    VScale = std::min(VScale, 1.0);
  }
}

VImage LoadAndTransform(const TZTImageJob& Job) {
  // Turns and vertical flips read the image out of order: load it whole then.
  const bool InOrder = Is(Job, TZTImageRotation::irNone) && !Job.FlipVertical;
  VImage Image = VImage::new_from_file(
      Job.Source, VImage::option()
                      ->set("access", InOrder ? VIPS_ACCESS_SEQUENTIAL : VIPS_ACCESS_RANDOM)
                      ->set("fail_on", VIPS_FAIL_ON_ERROR));
  if (Is(Job, TZTImageRotation::irAuto))
    Image = Image.autorot();
  else if (Is(Job, TZTImageRotation::ir90))
    Image = Image.rot(VIPS_ANGLE_D90);
  else if (Is(Job, TZTImageRotation::ir180))
    Image = Image.rot(VIPS_ANGLE_D180);
  else if (Is(Job, TZTImageRotation::ir270))
    Image = Image.rot(VIPS_ANGLE_D270);
  Image = Flipped(Image, Job);
  if (Is(Job, TZTResizeMode::rmNone)) return Image;
  double HScale = 1, VScale = 1;
  Scales(Job, Image.width(), Image.height(), HScale, VScale);
  if (HScale != 1 || VScale != 1) Image = Image.resize(HScale, VImage::option()->set("vscale", VScale));
  if (Is(Job, TZTResizeMode::rmFill) && Job.Width > 0 && Job.Height > 0) {
    const int W = std::min(Job.Width, Image.width()), H = std::min(Job.Height, Image.height());
    Image = Image.extract_area((Image.width() - W) / 2, (Image.height() - H) / 2, W, H);
  }
  return Image;
}

void Save(VImage Image, const TZTImageJob& Job, TZTImageResult& Result) {
  const bool Jpeg = SuffixIs(Job, {".jpg", ".jpeg", ".jpe", ".jfif"});
  if (Image.has_alpha() && (Jpeg || SuffixIs(Job, {".bmp"})))
    Image = Image.flatten(VImage::option()->set("background", 255.0));
  VOption* Options = VImage::option()->set("strip", Job.StripMetadata);
  if (Jpeg || SuffixIs(Job, {".webp"})) Options->set("Q", Job.Quality);
  if (Jpeg || SuffixIs(Job, {".png"})) Options->set("interlace", Job.Progressive);
  Image.write_to_buffer(Job.SaveSuffix, &Result.Data, &Result.Size, Options);
  Result.Width = Image.width();
  Result.Height = Image.height();
}

void SetError(TZTImageResult& Result, const std::string& Text) {
  const std::string Line = Text.substr(0, Text.find('\n'));
  std::snprintf(Result.Error, sizeof Result.Error, "%s", Line.c_str());
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int ZTImagesVersion() {
  return zt::package::kImagesModuleVersion;
}

extern "C" __attribute__((visibility("default"))) bool ZTImagesProcess(const TZTImageJob* Job,
                                                                       TZTImageResult* Result) {
  *Result = {};
  std::string Error;
  if (!Started(Error)) {
    SetError(*Result, Error);
    return false;
  }
  const bool Boxed = (Is(*Job, TZTResizeMode::rmFit) || Is(*Job, TZTResizeMode::rmFill)) &&
                     (Is(*Job, TZTImageRotation::irNone) || Is(*Job, TZTImageRotation::irAuto));
  try {
    Save(Boxed ? Thumbnail(*Job) : LoadAndTransform(*Job), *Job, *Result);
    return true;
  } catch (const VError& E) {
    SetError(*Result, E.what());
    vips_error_clear();
    return false;
  }
}

extern "C" __attribute__((visibility("default"))) void ZTImagesFree(void* Data) { g_free(Data); }
