// The version zt reports (--version, ZT_VERSION).
#pragma once

namespace zt::host {
inline constexpr const char* kZtVersion = "0.1.0";
}  // namespace zt::host
