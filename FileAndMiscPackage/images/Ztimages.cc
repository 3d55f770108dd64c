#include "images/Ztimages.h"

#include <memory>

#include "Ztpropertytexts.h"
#include "platform/paths.h"

namespace zt::package {

ZT_IMPLEMENT_CLASS(TZTImagesAction, &TZTImagesAction::Publish)

namespace {

constexpr TPropertyText kTexts[] = {
    {"FileSpec", "File Specification", "the images to process (wildcards allowed)"},
    {"Recurse", nullptr, "also in every sub-directory; the tree is rebuilt under the output directory"},
    {"FailIfNoFiles", nullptr, "fail when the specification matches no file"},
    {"OutputDirectory", nullptr, "empty: beside each source"},
    {"OutputFormat", nullptr, "same as the source, or JPEG, PNG, GIF, BMP, TIFF, WebP"},
    {"FileNameSuffix", nullptr, "added before the extension (\"_thumb\")"},
    {"Quality", nullptr, "1-100, for JPEG and WebP"},
    {"Progressive", nullptr, "progressive JPEG, interlaced PNG"},
    {"StripMetadata", nullptr, "drop EXIF, XMP and ICC data"},
    {"OverwriteExisting", nullptr, "required to replace an existing output, the source itself included"},
    {"Rotation", nullptr, "auto: upright by the EXIF orientation"},
    {"FlipHorizontal", nullptr, "mirror left to right, after turning"},
    {"FlipVertical", nullptr, "mirror top to bottom, after turning"},
    {"ResizeMode", nullptr,
     "fit inside the box; fill it, cropping the centre; stretch to it; or scale by the percentage"},
    {"Width", nullptr, "of the box, after turning; 0: any"},
    {"Height", nullptr, "of the box, after turning; 0: any"},
    {"Percent", nullptr, "scale of rmPercent"},
    {"OnlyShrink", nullptr, "never enlarge"},
};

// The extension each output format is written with.
constexpr const char* kExtensions[] = {"", ".jpg", ".png", ".gif", ".bmp", ".tif", ".webp"};

struct TModuleFree {
  const TZTImagesModule* Module;
  void operator()(void* Data) const { Module->Free(Data); }
};

}  // namespace

void TZTImagesAction::Publish(frame::TZTPublisher<TZTImagesAction>& P) {
  using A = TZTImagesAction;
  P.String("FileSpec", &A::GetFileSpec, &A::SetFileSpec);
  P.Boolean("Recurse", &A::GetRecurse, &A::SetRecurse);
  P.Boolean("FailIfNoFiles", &A::GetFailIfNoFiles, &A::SetFailIfNoFiles);
  P.String("OutputDirectory", &A::GetOutputDirectory, &A::SetOutputDirectory);
  P.Enumeration("OutputFormat", "TZTImageFormat",
                {"ifSame", "ifJPEG", "ifPNG", "ifGIF", "ifBMP", "ifTIFF", "ifWebP"}, &A::GetOutputFormat,
                &A::SetOutputFormat);
  P.String("FileNameSuffix", &A::GetFileNameSuffix, &A::SetFileNameSuffix);
  P.Integer("Quality", &A::GetQuality, &A::SetQuality);
  P.Boolean("Progressive", &A::GetProgressive, &A::SetProgressive);
  P.Boolean("StripMetadata", &A::GetStripMetadata, &A::SetStripMetadata);
  P.Boolean("OverwriteExisting", &A::GetOverwriteExisting, &A::SetOverwriteExisting);
  P.Enumeration("Rotation", "TZTImageRotation", {"irNone", "irAuto", "ir90", "ir180", "ir270"},
                &A::GetRotation, &A::SetRotation);
  P.Boolean("FlipHorizontal", &A::GetFlipHorizontal, &A::SetFlipHorizontal);
  P.Boolean("FlipVertical", &A::GetFlipVertical, &A::SetFlipVertical);
  P.Enumeration("ResizeMode", "TZTResizeMode", {"rmNone", "rmFit", "rmFill", "rmStretch", "rmPercent"},
                &A::GetResizeMode, &A::SetResizeMode);
  P.Integer("Width", &A::GetWidth, &A::SetWidth);
  P.Integer("Height", &A::GetHeight, &A::SetHeight);
  P.Integer("Percent", &A::GetPercent, &A::SetPercent);
  P.Boolean("OnlyShrink", &A::GetOnlyShrink, &A::SetOnlyShrink);
}

bool TZTImagesAction::BeginRun(frame::TStrings& Details) {
  if (FQuality < 1 || FQuality > 100) {
    Details.Add("Error: The quality must be between 1 and 100.");
    return false;
  }
  std::string Error;
  FModule = LoadImagesModule(Error);
  if (!FModule) Details.Add("Image support is not installed : " + Error);
  return FModule != nullptr;
}

std::string TZTImagesAction::OutputExtension(const std::string&) const {
  return kExtensions[static_cast<int>(FOutputFormat)];
}

bool TZTImagesAction::ProcessImage(const std::string& Source, const std::string& Output,
                                   frame::TStrings& Details, int& Width, int& Height) {
  const std::string Suffix = platform::ExtractFileExt(Output);
  const TZTImageJob Job{Source.c_str(),  Suffix.c_str(), FQuality,
                        FProgressive,    FStripMetadata, static_cast<int>(FRotation),
                        FFlipHorizontal, FFlipVertical,  static_cast<int>(FResizeMode),
                        FWidth,          FHeight,        FPercent,
                        FOnlyShrink};
  TZTImageResult Result{};
  if (!FModule->Process(&Job, &Result)) {
    Details.Add(" --> Error Processing Image : " + Source);
    Details.Add(" --> " + std::string(Result.Error));
    return false;
  }
  const std::unique_ptr<void, TModuleFree> Owner(Result.Data, TModuleFree{FModule});
  Width = Result.Width;
  Height = Result.Height;
  return WriteOutput(Output, Result.Data, Result.Size, Details);
}

bool TZTImagesAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Valid = ValidateFileSpec(Errors);
  const bool Box = FResizeMode == TZTResizeMode::rmFit || FResizeMode == TZTResizeMode::rmFill ||
                   FResizeMode == TZTResizeMode::rmStretch;
  if (Box && FWidth <= 0 && FHeight <= 0) {
    Errors.AddError("Width", "Set a width or a height");
    Valid = false;
  }
  if (FQuality < 1 || FQuality > 100) {
    Errors.AddError("Quality", "The quality must be between 1 and 100");
    Valid = false;
  }
  if (FResizeMode == TZTResizeMode::rmNone && FRotation == TZTImageRotation::irNone && !FFlipHorizontal &&
      !FFlipVertical && FOutputFormat == TZTImageFormat::ifSame) {
    Errors.AddError("Resize Mode", "Nothing to do: choose a resize, rotation or output format");
    Valid = false;
  }
  return Valid;
}

void TZTImagesAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  AddPropertyAliases(List, GetActionName(), kTexts);
}

void TZTImagesAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  AddPropertyHelp(List, kTexts);
}

}  // namespace zt::package
