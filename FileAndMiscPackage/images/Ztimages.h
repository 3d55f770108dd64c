// "Image Manipulation": resizes, turns, flips and converts the images a
// specification matches, on libvips in the image module (Imagesmodule.h).
#pragma once

#include <string>

#include "images/Imagefiles.h"
#include "images/Imagesmodule.h"
#include "images/Ztimagetypes.h"

namespace zt::package {

class TZTImagesAction : public TCustomImageFilesAction {
  ZT_DECLARE_CLASS(TZTImagesAction, TCustomImageFilesAction)

 public:
  static std::string GetActionName() { return "Image Manipulation"; }
  static void Publish(frame::TZTPublisher<TZTImagesAction>& P);

  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override { return "Image Manipulation [ " + GetFileSpec() + " ]"; }
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 4100; }
  std::string GetQuickHelpFilename() override { return "Plugins\\Images.html"; }

  TZTImageFormat GetOutputFormat() const { return FOutputFormat; }
  void SetOutputFormat(TZTImageFormat Value) { FOutputFormat = Value; }
  int GetQuality() const { return FQuality; }
  void SetQuality(int Value) { FQuality = Value; }
  bool GetProgressive() const { return FProgressive; }
  void SetProgressive(bool Value) { FProgressive = Value; }
  bool GetStripMetadata() const { return FStripMetadata; }
  void SetStripMetadata(bool Value) { FStripMetadata = Value; }
  TZTImageRotation GetRotation() const { return FRotation; }
  void SetRotation(TZTImageRotation Value) { FRotation = Value; }
  bool GetFlipHorizontal() const { return FFlipHorizontal; }
  void SetFlipHorizontal(bool Value) { FFlipHorizontal = Value; }
  bool GetFlipVertical() const { return FFlipVertical; }
  void SetFlipVertical(bool Value) { FFlipVertical = Value; }
  TZTResizeMode GetResizeMode() const { return FResizeMode; }
  void SetResizeMode(TZTResizeMode Value) { FResizeMode = Value; }
  int GetWidth() const { return FWidth; }
  void SetWidth(int Value) { FWidth = Value; }
  int GetHeight() const { return FHeight; }
  void SetHeight(int Value) { FHeight = Value; }
  int GetPercent() const { return FPercent; }
  void SetPercent(int Value) { FPercent = Value; }
  bool GetOnlyShrink() const { return FOnlyShrink; }
  void SetOnlyShrink(bool Value) { FOnlyShrink = Value; }

 protected:
  std::string Heading() const override { return "Processing images : "; }
  std::string CountText() const override { return " Images Processed."; }
  bool BeginRun(frame::TStrings& Details) override;
  std::string OutputExtension(const std::string& Source) const override;
  bool ProcessImage(const std::string& Source, const std::string& Output, frame::TStrings& Details,
                    int& Width, int& Height) override;

 private:
  TZTImageFormat FOutputFormat = TZTImageFormat::ifSame;
  int FQuality = 85;
  bool FProgressive = false;
  bool FStripMetadata = false;
  TZTImageRotation FRotation = TZTImageRotation::irNone;
  bool FFlipHorizontal = false;
  bool FFlipVertical = false;
  TZTResizeMode FResizeMode = TZTResizeMode::rmNone;
  int FWidth = 0, FHeight = 0, FPercent = 100;
  bool FOnlyShrink = true;
  const TZTImagesModule* FModule = nullptr;
};

}  // namespace zt::package
