// "JPEG Lossless Transform" through zt on JPEGs made at run time: turns that
// lose nothing, partial edge blocks, crops moved to the block grid, the EXIF
// orientation, and files it refuses without touching them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ZtRunner.h"
#include "support/Files.h"
#include "support/JpegImages.h"
#include "support/TempDir.h"

namespace zt::testing {
namespace {

using Lines = std::vector<std::string>;

// One transform, in flow style; a failure is logged and the run goes on.
std::string Action(const std::string& Properties) {
  return "  - {action: JPEG Lossless Transform, ignoreFailure: true, " + Properties + "}\n";
}

bool IsMarkedCorner(const TJpegPicture& P, int X, int Y) { return P.At(X, Y)[2] > 200; }

// The EXIF orientation as our test segment lays it out, 0 without one.
int Orientation(const std::string& Jpeg) {
  const std::size_t Exif = Jpeg.find(std::string("Exif\0\0", 6));
  if (Exif == std::string::npos) return 0;
  const std::size_t Value = Exif + 6 + 18;
  const bool Big = Jpeg[Exif + 6] == 'M';
  const auto B0 = static_cast<unsigned char>(Jpeg[Value]), B1 = static_cast<unsigned char>(Jpeg[Value + 1]);
  return Big ? (B0 << 8) | B1 : (B1 << 8) | B0;
}

TEST(JpegTransformEndToEnd, QuarterTurnsMoveTheImageAndFourGiveBackTheOriginal) {
  TempDir D;
  const std::string Original = MakeJpeg(64, 32);
  for (const char* F : {"src/a.jpg", "src/sub/b.jpg", "c.jpg"}) WriteText(D / F, Original);
  std::string Yaml =
      "actions:\n" +
      Action("FileSpec: src/*.jpg, Recurse: true, OutputDirectory: out, Transform: jtRotate90");
  for (int I = 0; I < 4; ++I)
    Yaml += Action("FileSpec: c.jpg, Transform: jtRotate90, OverwriteExisting: true");
  ZtResult R = RunZt(D.Path(), Yaml);
  EXPECT_EQ(StatusDetails(R, "1"),
            (Lines{"Transforming JPEG files : src/*.jpg", "src/a.jpg -> out/a.jpg (32x64)",
                   "src/sub/b.jpg -> out/sub/b.jpg (32x64)", "2 Files Transformed."}));
  const TJpegPicture Turned = ReadJpeg(D.Read("out/sub/b.jpg"));
  EXPECT_TRUE(IsMarkedCorner(Turned, 31, 0));  // clockwise: top left to top right
  EXPECT_FALSE(IsMarkedCorner(Turned, 0, 0));
  for (const char* Id : {"2", "3", "4", "5"}) EXPECT_EQ(ActionResult(R, Id), "success");
  EXPECT_EQ(ReadJpeg(D.Read("c.jpg")).Rgb, ReadJpeg(Original).Rgb);
  EXPECT_NE(D.Read("c.jpg"), D.Read("out/a.jpg"));
}

TEST(JpegTransformEndToEnd, PartialEdgeBlocksAreTrimmedKeptOrRefused) {
  TempDir D;
  D.Write("odd.jpg", MakeJpeg(40, 32, TJSAMP_420));  // 4:2:0 blocks are 16 wide
  const std::string Flip = "FileSpec: odd.jpg, Transform: jtFlipHorizontal, FileNameSuffix: ";
  ZtResult R = RunZt(D.Path(), "actions:\n" + Action(Flip + "_1") + Action(Flip + "_2, Trim: false") +
                                   Action(Flip + "_3, Trim: false, Perfect: true"));
  EXPECT_EQ(StatusDetails(R, "1")[1], "odd.jpg -> odd_1.jpg (32x32)");
  EXPECT_EQ(StatusDetails(R, "2")[1], "odd.jpg -> odd_2.jpg (40x32)");
  EXPECT_EQ(StatusDetails(R, "3"),
            (Lines{"Transforming JPEG files : odd.jpg", " --> Error Transforming File : odd.jpg",
                   " --> tjTransform(): Transform is not perfect", "0 Files Transformed."}));
  EXPECT_FALSE(Exists(D / "odd_3.jpg"));
}

TEST(JpegTransformEndToEnd, CropsStartOnTheBlockGridOfTheTransformedImage) {
  TempDir D;
  D.Write("a.jpg", MakeJpeg(64, 48));
  D.Write("b.jpg", MakeJpeg(64, 32));
  ZtResult R = RunZt(
      D.Path(),
      "actions:\n" +
          Action("FileSpec: a.jpg, FileNameSuffix: _c, Crop: true, CropLeft: 20, CropTop: 10, CropWidth: 30, "
                 "CropHeight: 20") +
          // 32 wide and 64 high once turned: the crop lies below the source's height.
          Action("FileSpec: b.jpg, FileNameSuffix: _c, Transform: jtRotate90, Crop: true, CropLeft: 8, "
                 "CropTop: 40"));
  EXPECT_EQ(StatusDetails(R, "1"), (Lines{"Transforming JPEG files : a.jpg", "Crop adjusted to 16,0 34x30",
                                          "a.jpg -> a_c.jpg (34x30)", "1 Files Transformed."}));
  EXPECT_EQ(StatusDetails(R, "2")[1], "Crop adjusted to 0,32 32x32");
  EXPECT_EQ(StatusDetails(R, "2")[2], "b.jpg -> b_c.jpg (32x32)");
}

TEST(JpegTransformEndToEnd, OrientationIsUsedAndResetAndMarkersFollowTheOptions) {
  TempDir D;
  D.Write("le.jpg", MakeJpeg(64, 32, TJSAMP_420, 6, false));
  D.Write("be.jpg", MakeJpeg(64, 32, TJSAMP_444, 6, true));
  const std::string Out = ", OutputDirectory: out, FileNameSuffix: _";
  ZtResult R = RunZt(
      D.Path(),
      "actions:\n" + Action("FileSpec: le.jpg, Transform: jtAutoOrient" + Out + "auto") +
          Action("FileSpec: be.jpg, Transform: jtRotate180" + Out + "reset") +
          Action("FileSpec: be.jpg, Transform: jtRotate180, ResetOrientation: false" + Out + "kept") +
          Action("FileSpec: be.jpg, CopyMarkers: jmNone, Grayscale: true, Progressive: true" + Out + "none"));
  const std::string Auto = D.Read("out/le_auto.jpg");
  EXPECT_EQ(StatusDetails(R, "1")[1], "le.jpg -> out/le_auto.jpg (32x64)");
  EXPECT_TRUE(IsMarkedCorner(ReadJpeg(Auto), 31, 0));
  EXPECT_EQ(Orientation(Auto), 1);
  EXPECT_EQ(Orientation(D.Read("out/be_reset.jpg")), 1);
  EXPECT_EQ(Orientation(D.Read("out/be_kept.jpg")), 6);
  const std::string Plain = D.Read("out/be_none.jpg");
  EXPECT_EQ(Orientation(Plain), 0);
  EXPECT_EQ(ReadJpeg(Plain).Subsampling, TJSAMP_GRAY);
  EXPECT_NE(Plain.find("\xFF\xC2"), std::string::npos);  // a progressive frame
  EXPECT_EQ(Orientation(D.Read("be.jpg")), 6);           // the source untouched
}

TEST(JpegTransformEndToEnd, FilesItCannotTransformFailAndStayAsTheyWere) {
  TempDir D;
  const std::string Good = MakeJpeg(256, 256);
  const std::string Truncated = Good.substr(0, Good.size() * 3 / 4);  // inside the scan
  D.Write("cut.jpg", Truncated);
  D.Write("png.jpg", std::string("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR", 16));
  D.Write("good.jpg", Good);
  const std::string Head = "Transforming JPEG files : ", None = "0 Files Transformed.";
  const std::string NoMatch = "No files were found matching the file spec.";
  const struct {
    std::string Properties;
    Lines Details;
    std::string Result;
  } Cases[] = {
      // clang-format off
      {"FileSpec: cut.jpg, OverwriteExisting: true, Transform: jtRotate90",
       {Head + "cut.jpg", " --> Error Transforming File : cut.jpg", " --> Premature end of JPEG file", None},
       "ignored"},
      {"FileSpec: png.jpg, OverwriteExisting: true", {Head + "png.jpg", " --> Not a JPEG file : png.jpg", None},
       "ignored"},
      {"FileSpec: good.jpg, Transform: jtRotate90", {Head + "good.jpg", " --> Output file exists : good.jpg", None},
       "ignored"},
      {"FileSpec: none*.jpg", {Head + "none*.jpg", NoMatch, None}, "ignored"},
      {"FileSpec: none*.jpg, FailIfNoFiles: false", {Head + "none*.jpg", NoMatch, None}, "success"},
      {"FileSpec: good.jpg, Crop: true, CropLeft: -8",
       {Head + "good.jpg", "Error: Crop values cannot be negative.", None}, "ignored"},
      // clang-format on
  };
  std::string Yaml = "actions:\n";
  for (const auto& C : Cases) Yaml += Action(C.Properties);
  ZtResult R = RunZt(D.Path(), Yaml);
  for (std::size_t I = 0; I < std::size(Cases); ++I) {
    EXPECT_EQ(StatusDetails(R, std::to_string(I + 1)), Cases[I].Details) << I;
    EXPECT_EQ(ActionResult(R, std::to_string(I + 1)), Cases[I].Result) << I;
  }
  EXPECT_EQ(D.Read("cut.jpg"), Truncated);
  EXPECT_EQ(D.Read("good.jpg"), Good);
  // The three images, the project and its log: no temporary file left.
  EXPECT_EQ(ListNames(D.Path()), (Lines{"cut.jpg", "good.jpg", "log.jsonl", "png.jpg", "project.yml"}));
}

}  // namespace
}  // namespace zt::testing
