// Closes an open FindFirst search however the walk that opened it ends.
#pragma once

#include "platform/files.h"

namespace zt::package {

struct TSearchGuard {
  platform::TSearchRec& F;
  bool Open = false;
  ~TSearchGuard() {
    if (Open) platform::FindClose(F);
  }
};

}  // namespace zt::package
