// Which file a path names: device and inode, however the path is spelt.
#pragma once

#include <string>

#include "platform/env.h"

namespace zt::package {

// Device and inode of Path, links followed; false when Path cannot be reached.
inline bool GetIdentity(const std::string& Path, platform::FileInfo& Info) {
  return platform::Env::Default()->QueryFileInfo(Path, Info) == 0;
}

inline bool SameIdentity(const platform::FileInfo& A, const platform::FileInfo& B) {
  return A.Device == B.Device && A.Inode == B.Inode;
}

}  // namespace zt::package
