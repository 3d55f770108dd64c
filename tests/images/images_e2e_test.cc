// "Image Manipulation" through zt on images made with libvips at run time:
// sizes after turning, formats, output names, EXIF orientation, failures
// that leave nothing behind, and zt without the image module.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>
#include <vips/vips8>

#include "ZtRunner.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;
using vips::VImage;

class ImagesEndToEnd : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_EQ(VIPS_INIT("zt-tests"), 0); }

  // A W x H picture with a gradient, saved by its extension's saver.
  static void MakeImage(const std::string& Path, int W, int H, int Orientation = 0, bool Alpha = false) {
    const VImage Xy = VImage::xyz(W, H);
    VImage Image =
        (Xy[0] * (255.0 / W)).bandjoin(Xy[1] * (255.0 / H)).bandjoin_const({128}).cast(VIPS_FORMAT_UCHAR);
    Image = Image.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
    if (Alpha) Image = Image.bandjoin_const({200});
    if (Orientation) Image.set("orientation", Orientation);
    Image.write_to_file(Path.c_str());
  }

  // "WxH loader" of an output, or the error when it does not load.
  static std::string Describe(const std::string& Path) {
    try {
      VImage Image = VImage::new_from_file(Path.c_str());
      return std::to_string(Image.width()) + "x" + std::to_string(Image.height()) + " " +
             Image.get_string("vips-loader") + " " + std::to_string(Image.bands());
    } catch (const vips::VError& E) {
      return E.what();
    }
  }
};

// One Image Manipulation step whose failure the build ignores, its properties in flow style.
std::string Action(const std::string& Properties) {
  return "  - {action: Image Manipulation, ignoreFailure: true, " + Properties + "}\n";
}

TEST_F(ImagesEndToEnd, ResizesTurnsAndConvertsIntoNamedOutputs) {
  TempDir D;
  std::filesystem::create_directories(D / "src/sub");
  MakeImage(D / "src/wide.jpg", 400, 200);
  MakeImage(D / "src/sub/alpha.png", 400, 200, 0, true);
  const struct {
    std::string Options, Output, Facts;
  } Cases[] = {
      {"ResizeMode: rmFit, Width: 100, Height: 100", "wide_1.jpg", "100x50 jpegload 3"},
      {"ResizeMode: rmFill, Width: 100, Height: 100", "wide_2.jpg", "100x100 jpegload 3"},
      {"ResizeMode: rmStretch, Width: 50, Height: 80", "wide_3.jpg", "50x80 jpegload 3"},
      {"ResizeMode: rmPercent, Percent: 25, OutputFormat: ifPNG", "wide_4.png", "100x50 pngload 3"},
      {"ResizeMode: rmFit, Width: 800", "wide_5.jpg", "400x200 jpegload 3"},
      {"ResizeMode: rmFit, Width: 800, OnlyShrink: false", "wide_6.jpg", "800x400 jpegload 3"},
      {"Rotation: ir90, ResizeMode: rmFit, Height: 100", "wide_7.jpg", "50x100 jpegload 3"},
      {"FlipVertical: true, OutputFormat: ifTIFF", "wide_8.tif", "400x200 tiffload 3"},
      {"OutputFormat: ifWebP, Quality: 50", "wide_9.webp", "400x200 webpload 3"},
  };
  std::string Yaml = "actions:\n";
  for (std::size_t I = 0; I < std::size(Cases); ++I)
    Yaml +=
        Action("FileSpec: src/wide.jpg, FileNameSuffix: _" + std::to_string(I + 1) + ", " + Cases[I].Options);
  // The tree rebuilt under the output directory; alpha flattened into a JPEG.
  Yaml += Action(
      "FileSpec: src/a*.png, Recurse: true, OutputDirectory: out, OutputFormat: ifJPEG, ResizeMode: rmFit, "
      "Width: 40");
  ZtResult R = RunZt(D.Path(), Yaml);
  EXPECT_EQ(R.ExitCode, 0) << R.Stderr;  // libvips' threads end with the process
  for (std::size_t I = 0; I < std::size(Cases); ++I) {
    const std::string Id = std::to_string(I + 1);
    const std::string Size = Cases[I].Facts.substr(0, Cases[I].Facts.find(' '));
    EXPECT_EQ(StatusDetails(R, Id),
              (Lines{"Processing images : src/wide.jpg",
                     "src/wide.jpg -> src/" + Cases[I].Output + " (" + Size + ")", "1 Images Processed."}));
    EXPECT_EQ(Describe(D / ("src/" + Cases[I].Output)), Cases[I].Facts) << Cases[I].Options;
  }
  EXPECT_EQ(StatusDetails(R, "10")[1], "src/sub/alpha.png -> out/sub/alpha.jpg (40x20)");
  EXPECT_EQ(Describe(D / "out/sub/alpha.jpg"), "40x20 jpegload 3");
}

TEST_F(ImagesEndToEnd, AutoRotationStandsImagesUprightByTheirOrientation) {
  TempDir D;
  MakeImage(D / "turned.jpg", 400, 200, 6);
  const std::string Out = "FileSpec: turned.jpg, FileNameSuffix: _";
  ZtResult R =
      RunZt(D.Path(), "actions:\n" + Action(Out + "fit, Rotation: irAuto, ResizeMode: rmFit, Height: 100") +
                          Action(Out + "pct, Rotation: irAuto, ResizeMode: rmPercent, Percent: 50") +
                          Action(Out + "raw, ResizeMode: rmFit, Width: 100"));
  EXPECT_EQ(Describe(D / "turned_fit.jpg"), "50x100 jpegload 3");
  EXPECT_EQ(Describe(D / "turned_pct.jpg"), "100x200 jpegload 3");
  EXPECT_EQ(Describe(D / "turned_raw.jpg"), "100x50 jpegload 3");
  EXPECT_EQ(VImage::new_from_file((D / "turned_fit.jpg").c_str()).get_int("orientation"), 1);
}

TEST_F(ImagesEndToEnd, FailuresStopTheActionAndLeaveNoOutput) {
  TempDir D;
  MakeImage(D / "good.jpg", 400, 200);
  MakeImage(D / "shown.png", 60, 30);
  std::filesystem::copy_file(D / "shown.png", D / "named.jpg");  // a PNG named .jpg
  const std::string Good = D.Read("good.jpg");
  D.Write("cut.jpg", Good.substr(0, Good.size() / 2));
  ZtResult R = RunZt(
      D.Path(), "actions:\n" +
                    Action("FileSpec: cut.jpg, FileNameSuffix: _t, ResizeMode: rmPercent, Percent: 50") +
                    Action("FileSpec: good.jpg, ResizeMode: rmPercent, Percent: 50") +
                    Action("FileSpec: named.jpg, FileNameSuffix: _t, ResizeMode: rmPercent, Percent: 50") +
                    Action("FileSpec: good.jpg, Quality: 0, OutputFormat: ifPNG"));
  const Lines Cut = StatusDetails(R, "1");
  ASSERT_EQ(Cut.size(), 4u);
  EXPECT_EQ(Cut[1], " --> Error Processing Image : cut.jpg");
  EXPECT_EQ(Cut[2].rfind(" --> ", 0), 0u);
  EXPECT_EQ(Cut[3], "0 Images Processed.");
  EXPECT_FALSE(std::filesystem::exists(D / "cut_t.jpg"));
  EXPECT_EQ(StatusDetails(R, "2")[1], " --> Output file exists : good.jpg");
  EXPECT_EQ(D.Read("good.jpg"), Good);
  EXPECT_EQ(Describe(D / "named_t.jpg"), "30x15 jpegload 3");  // read by its content, written as named
  EXPECT_EQ(StatusDetails(R, "4")[1], "Error: The quality must be between 1 and 100.");
  for (const char* Id : {"1", "2", "4"}) EXPECT_EQ(ActionResult(R, Id), "ignored");
}

TEST_F(ImagesEndToEnd, WithoutTheImageModuleZtRunsAndSaysSo) {
  TempDir D;
  std::filesystem::copy_file(ZT_PACKAGE, D / "FileAndMiscPackage.so");
  MakeImage(D / "a.jpg", 40, 20);
  ZtResult R = RunZt(D.Path(),
                     "actions:\n" + Action("FileSpec: a.jpg, OutputFormat: ifPNG") +
                         "  - {action: Create Directory, FileOrDirectory: made}\n",
                     {"--package", D / "FileAndMiscPackage.so"});
  const Lines Details = StatusDetails(R, "1");
  ASSERT_EQ(Details.size(), 3u);
  EXPECT_EQ(Details[1].rfind("Image support is not installed : ", 0), 0u) << Details[1];
  EXPECT_NE(Details[1].find("FileAndMiscImages.so"), std::string::npos);
  EXPECT_EQ(ActionResult(R, "1"), "ignored");
  EXPECT_EQ(ActionResult(R, "2"), "success");
  EXPECT_TRUE(std::filesystem::is_directory(D / "made"));
}

TEST_F(ImagesEndToEnd, ValidateNamesEverySettingThatCannotWork) {
  TempDir D;
  ZtResult R = RunZt(D.Path(),
                     "actions:\n  - {action: Image Manipulation, ResizeMode: rmFit, Quality: 101}\n"
                     "  - {action: Image Manipulation, FileSpec: a.jpg}\n",
                     {}, "validate");
  EXPECT_EQ(R.ExitCode, 1);
  EXPECT_EQ(R.Stdout,
            "1 Image Manipulation: File Specification: The file spec has not been set\n"
            "1 Image Manipulation: Width: Set a width or a height\n"
            "1 Image Manipulation: Quality: The quality must be between 1 and 100\n"
            "2 Image Manipulation: Resize Mode: Nothing to do: choose a resize, rotation or output format\n");
}

}  // namespace
}  // namespace zt::testing
