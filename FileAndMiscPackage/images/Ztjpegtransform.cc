#include "images/Ztjpegtransform.h"

#include <turbojpeg.h>

#include <memory>
#include <utility>

#include "Ztpropertytexts.h"
#include "frame/ZTUtils.h"
#include "images/Exiforientation.h"
#include "platform/errors.h"
#include "platform/files.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TZTJPEGLosslessTransformAction, &TZTJPEGLosslessTransformAction::Publish)

namespace {

constexpr TPropertyText kTexts[] = {
    {"FileSpec", "File Specification", "the JPEG files to transform (wildcards allowed)"},
    {"Recurse", nullptr, "also in every sub-directory; the tree is rebuilt under the output directory"},
    {"OutputDirectory", nullptr, "empty: beside each source"},
    {"FileNameSuffix", nullptr,
     "added before the extension (\"_rotated\"); no directory and no suffix: in place"},
    {"OverwriteExisting", nullptr, "required to replace an existing output, the source itself included"},
    {"FailIfNoFiles", nullptr, "fail when the specification matches no file"},
    {"Transform", nullptr, "rotation or flip; auto: upright by the EXIF orientation"},
    {"Trim", nullptr, "drop partial edge blocks that cannot be transformed (else they stay as they were)"},
    {"Perfect", nullptr, "fail files whose partial edge blocks cannot be transformed"},
    {"Crop", nullptr, "keep only the region below (in the transformed image)"},
    {"CropLeft", nullptr, "moved left to the block boundary when needed"},
    {"CropTop", nullptr, "moved up to the block boundary when needed"},
    {"CropWidth", nullptr, "0: to the right edge"},
    {"CropHeight", nullptr, "0: to the bottom edge"},
    {"Grayscale", nullptr, "drop the colour"},
    {"Progressive", nullptr, "write a progressive JPEG"},
    {"CopyMarkers", nullptr, "keep EXIF, ICC and comments, or drop them all"},
    {"ResetOrientation", nullptr, "set the EXIF orientation to 1 after a rotation or flip"},
};

// EXIF orientation 1-8 -> the transform that makes the image upright.
TZTJpegTransform FromOrientation(int Orientation) {
  constexpr TZTJpegTransform kByOrientation[] = {
      TZTJpegTransform::jtNone,      TZTJpegTransform::jtNone,         TZTJpegTransform::jtFlipHorizontal,
      TZTJpegTransform::jtRotate180, TZTJpegTransform::jtFlipVertical, TZTJpegTransform::jtTranspose,
      TZTJpegTransform::jtRotate90,  TZTJpegTransform::jtTransverse,   TZTJpegTransform::jtRotate270};
  return Orientation >= 1 && Orientation <= 8 ? kByOrientation[Orientation] : TZTJpegTransform::jtNone;
}

int Operation(TZTJpegTransform T) {
  switch (T) {
    case TZTJpegTransform::jtRotate90:
      return TJXOP_ROT90;
    case TZTJpegTransform::jtRotate180:
      return TJXOP_ROT180;
    case TZTJpegTransform::jtRotate270:
      return TJXOP_ROT270;
    case TZTJpegTransform::jtFlipHorizontal:
      return TJXOP_HFLIP;
    case TZTJpegTransform::jtFlipVertical:
      return TJXOP_VFLIP;
    case TZTJpegTransform::jtTranspose:
      return TJXOP_TRANSPOSE;
    case TZTJpegTransform::jtTransverse:
      return TJXOP_TRANSVERSE;
    default:
      return TJXOP_NONE;
  }
}

bool SwapsSides(int Op) {
  return Op == TJXOP_TRANSPOSE || Op == TJXOP_TRANSVERSE || Op == TJXOP_ROT90 || Op == TJXOP_ROT270;
}

struct TTurboFree {
  void operator()(unsigned char* P) const { tjFree(P); }
};

}  // namespace

TZTJPEGLosslessTransformAction::~TZTJPEGLosslessTransformAction() {
  if (FHandle) tjDestroy(FHandle);
}

void TZTJPEGLosslessTransformAction::Publish(frame::TZTPublisher<TZTJPEGLosslessTransformAction>& P) {
  using A = TZTJPEGLosslessTransformAction;
  P.String("FileSpec", &A::GetFileSpec, &A::SetFileSpec);
  P.Boolean("Recurse", &A::GetRecurse, &A::SetRecurse);
  P.String("OutputDirectory", &A::GetOutputDirectory, &A::SetOutputDirectory);
  P.String("FileNameSuffix", &A::GetFileNameSuffix, &A::SetFileNameSuffix);
  P.Boolean("OverwriteExisting", &A::GetOverwriteExisting, &A::SetOverwriteExisting);
  P.Boolean("FailIfNoFiles", &A::GetFailIfNoFiles, &A::SetFailIfNoFiles);
  P.Enumeration("Transform", "TZTJpegTransform",
                {"jtNone", "jtRotate90", "jtRotate180", "jtRotate270", "jtFlipHorizontal", "jtFlipVertical",
                 "jtTranspose", "jtTransverse", "jtAutoOrient"},
                &A::GetTransform, &A::SetTransform);
  P.Boolean("Trim", &A::GetTrim, &A::SetTrim);
  P.Boolean("Perfect", &A::GetPerfect, &A::SetPerfect);
  P.Boolean("Crop", &A::GetCrop, &A::SetCrop);
  P.Integer("CropLeft", &A::GetCropLeft, &A::SetCropLeft);
  P.Integer("CropTop", &A::GetCropTop, &A::SetCropTop);
  P.Integer("CropWidth", &A::GetCropWidth, &A::SetCropWidth);
  P.Integer("CropHeight", &A::GetCropHeight, &A::SetCropHeight);
  P.Boolean("Grayscale", &A::GetGrayscale, &A::SetGrayscale);
  P.Boolean("Progressive", &A::GetProgressive, &A::SetProgressive);
  P.Enumeration("CopyMarkers", "TZTJpegMarkers", {"jmAll", "jmNone"}, &A::GetCopyMarkers, &A::SetCopyMarkers);
  P.Boolean("ResetOrientation", &A::GetResetOrientation, &A::SetResetOrientation);
}

bool TZTJPEGLosslessTransformAction::BeginRun(frame::TStrings& Details) {
  if (FCrop && (FCropLeft < 0 || FCropTop < 0 || FCropWidth < 0 || FCropHeight < 0)) {
    Details.Add("Error: Crop values cannot be negative.");
    return false;
  }
  if (!FHandle) FHandle = tjInitTransform();
  if (FHandle) return true;
  Details.Add(" --> " + std::string(tjGetErrorStr2(nullptr)));
  return false;
}

bool TZTJPEGLosslessTransformAction::TransformFailed(const std::string& Source,
                                                     frame::TStrings& Details) const {
  std::string Error = tjGetErrorStr2(FHandle);
  for (char& C : Error)
    if (C == '\n') C = ' ';
  Details.Add(" --> Error Transforming File : " + Source);
  Details.Add(" --> " + frame::Trim(Error));
  return false;
}

bool TZTJPEGLosslessTransformAction::ProcessImage(const std::string& Source, const std::string& Output,
                                                  frame::TStrings& Details, int& Width, int& Height) {
  std::string Jpeg;
  const pf::THandle In = pf::FileOpen(Source, pf::fmOpenRead | pf::fmShareDenyNone);
  unsigned char Head[2] = {0, 0};
  bool Read = In != pf::INVALID_HANDLE_VALUE && pf::FileRead(In, Head, 2) >= 0;
  const bool IsJpeg = Read && Head[0] == 0xFF && Head[1] == 0xD8;
  if (IsJpeg) Read = pf::ReadWholeFile(In, Jpeg);
  const pf::DWORD Error = pf::GetLastError();
  if (In != pf::INVALID_HANDLE_VALUE) pf::FileClose(In);
  if (!Read) {
    Details.Add(" --> Error Reading File : " + Source);
    Details.Add(" --> " + pf::SysErrorMessage(Error));
    return false;
  }
  if (!IsJpeg) {
    Details.Add(" --> Not a JPEG file : " + Source);
    return false;
  }
  const auto* Data = reinterpret_cast<const unsigned char*>(Jpeg.data());
  int SourceWidth = 0, SourceHeight = 0, Subsampling = 0, Colorspace = 0;
  if (tjDecompressHeader3(FHandle, Data, Jpeg.size(), &SourceWidth, &SourceHeight, &Subsampling,
                          &Colorspace) != 0)
    return TransformFailed(Source, Details);

  const bool Auto = FTransform == TZTJpegTransform::jtAutoOrient;
  tjtransform X{};
  X.op = Operation(Auto ? FromOrientation(ReadExifOrientation(Jpeg)) : FTransform);
  X.options = (FTrim ? TJXOPT_TRIM : 0) | (FPerfect ? TJXOPT_PERFECT : 0) | (FGrayscale ? TJXOPT_GRAY : 0) |
              (FProgressive ? TJXOPT_PROGRESSIVE : 0) |
              (FCopyMarkers == TZTJpegMarkers::jmNone ? TJXOPT_COPYNONE : 0);
  if (FCrop) {
    // The origin must lie on an iMCU boundary of the transformed image.
    const bool Gray =
        FGrayscale || Subsampling < 0 || Subsampling >= TJ_NUMSAMP || Subsampling == TJSAMP_GRAY;
    int BlockWidth = Gray ? 8 : tjMCUWidth[Subsampling], BlockHeight = Gray ? 8 : tjMCUHeight[Subsampling];
    int FullWidth = SourceWidth, FullHeight = SourceHeight;
    if (SwapsSides(X.op)) {
      std::swap(BlockWidth, BlockHeight);
      std::swap(FullWidth, FullHeight);
    }
    const int DX = FCropLeft % BlockWidth, DY = FCropTop % BlockHeight;
    X.options |= TJXOPT_CROP;
    X.r = {FCropLeft - DX, FCropTop - DY, FCropWidth ? FCropWidth + DX : 0,
           FCropHeight ? FCropHeight + DY : 0};
    if (DX || DY)
      Details.Add("Crop adjusted to " + std::to_string(X.r.x) + "," + std::to_string(X.r.y) + " " +
                  std::to_string(X.r.w ? X.r.w : FullWidth - X.r.x) + "x" +
                  std::to_string(X.r.h ? X.r.h : FullHeight - X.r.y));
  }
  unsigned char* Transformed = nullptr;
  unsigned long TransformedSize = 0;
  const int Status = tjTransform(FHandle, Data, Jpeg.size(), 1, &Transformed, &TransformedSize, &X, 0);
  const std::unique_ptr<unsigned char, TTurboFree> Owner(Transformed);
  if (Status != 0) return TransformFailed(Source, Details);

  const std::span<char> Result(reinterpret_cast<char*>(Transformed), TransformedSize);
  if (Auto || (FResetOrientation && X.op != TJXOP_NONE)) SetExifOrientation(Result, 1);
  if (tjDecompressHeader3(FHandle, Transformed, TransformedSize, &Width, &Height, &Subsampling,
                          &Colorspace) != 0)
    return TransformFailed(Source, Details);
  return WriteOutput(Output, Transformed, TransformedSize, Details);
}

bool TZTJPEGLosslessTransformAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Valid = ValidateFileSpec(Errors);
  if (FCropLeft < 0 || FCropTop < 0 || FCropWidth < 0 || FCropHeight < 0) {
    Errors.AddError("Crop", "Crop values cannot be negative");
    Valid = false;
  }
  return Valid;
}

void TZTJPEGLosslessTransformAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  AddPropertyAliases(List, GetActionName(), kTexts);
}

void TZTJPEGLosslessTransformAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  AddPropertyHelp(List, kTexts);
}

}  // namespace zt::package
