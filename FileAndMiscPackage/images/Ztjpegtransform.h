// "JPEG Lossless Transform": rotates, flips, crops or re-encodes the JPEGs a
// specification matches on their DCT coefficients (TurboJPEG), losing
// nothing, and sets the EXIF orientation back to upright after a turn.
#pragma once

#include <string>

#include "frame/ZTStrings.h"
#include "images/Imagefiles.h"

namespace zt::package {

enum class TZTJpegTransform {
  jtNone,
  jtRotate90,
  jtRotate180,
  jtRotate270,
  jtFlipHorizontal,
  jtFlipVertical,
  jtTranspose,
  jtTransverse,
  jtAutoOrient
};
enum class TZTJpegMarkers { jmAll, jmNone };

class TZTJPEGLosslessTransformAction : public TCustomImageFilesAction {
  ZT_DECLARE_CLASS(TZTJPEGLosslessTransformAction, TCustomImageFilesAction)

 public:
  TZTJPEGLosslessTransformAction() = default;
  ~TZTJPEGLosslessTransformAction() override;
  static std::string GetActionName() { return "JPEG Lossless Transform"; }
  static void Publish(frame::TZTPublisher<TZTJPEGLosslessTransformAction>& P);

  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override {
    return "JPEG Lossless Transform [ " + GetFileSpec() + " ]";
  }
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 4110; }
  std::string GetQuickHelpFilename() override { return "Plugins\\JPEGTransform.html"; }

  TZTJpegTransform GetTransform() const { return FTransform; }
  void SetTransform(TZTJpegTransform Value) { FTransform = Value; }
  bool GetTrim() const { return FTrim; }
  void SetTrim(bool Value) { FTrim = Value; }
  bool GetPerfect() const { return FPerfect; }
  void SetPerfect(bool Value) { FPerfect = Value; }
  bool GetCrop() const { return FCrop; }
  void SetCrop(bool Value) { FCrop = Value; }
  int GetCropLeft() const { return FCropLeft; }
  void SetCropLeft(int Value) { FCropLeft = Value; }
  int GetCropTop() const { return FCropTop; }
  void SetCropTop(int Value) { FCropTop = Value; }
  int GetCropWidth() const { return FCropWidth; }
  void SetCropWidth(int Value) { FCropWidth = Value; }
  int GetCropHeight() const { return FCropHeight; }
  void SetCropHeight(int Value) { FCropHeight = Value; }
  bool GetGrayscale() const { return FGrayscale; }
  void SetGrayscale(bool Value) { FGrayscale = Value; }
  bool GetProgressive() const { return FProgressive; }
  void SetProgressive(bool Value) { FProgressive = Value; }
  TZTJpegMarkers GetCopyMarkers() const { return FCopyMarkers; }
  void SetCopyMarkers(TZTJpegMarkers Value) { FCopyMarkers = Value; }
  bool GetResetOrientation() const { return FResetOrientation; }
  void SetResetOrientation(bool Value) { FResetOrientation = Value; }

 protected:
  std::string Heading() const override { return "Transforming JPEG files : "; }
  std::string CountText() const override { return " Files Transformed."; }
  bool BeginRun(frame::TStrings& Details) override;
  std::string OutputExtension(const std::string&) const override { return ""; }
  bool ProcessImage(const std::string& Source, const std::string& Output, frame::TStrings& Details,
                    int& Width, int& Height) override;

 private:
  bool TransformFailed(const std::string& Source, frame::TStrings& Details) const;

  TZTJpegTransform FTransform = TZTJpegTransform::jtNone;
  bool FTrim = true;
  bool FPerfect = false;
  bool FCrop = false;
  int FCropLeft = 0, FCropTop = 0, FCropWidth = 0, FCropHeight = 0;
  bool FGrayscale = false;
  bool FProgressive = false;
  TZTJpegMarkers FCopyMarkers = TZTJpegMarkers::jmAll;
  bool FResetOrientation = true;
  void* FHandle = nullptr;  // tjhandle: one per run
};

}  // namespace zt::package
