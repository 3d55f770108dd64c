// The enumerations of Image Manipulation, shared with the image module.
#pragma once

namespace zt::package {

enum class TZTImageFormat { ifSame, ifJPEG, ifPNG, ifGIF, ifBMP, ifTIFF, ifWebP };
enum class TZTImageRotation { irNone, irAuto, ir90, ir180, ir270 };
enum class TZTResizeMode { rmNone, rmFit, rmFill, rmStretch, rmPercent };

}  // namespace zt::package
