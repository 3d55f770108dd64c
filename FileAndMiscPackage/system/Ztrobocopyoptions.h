// The robocopy options object: which engine the robocopy actions use, and
// the retry defaults for actions that leave Retries or RetryWait at -1.
#pragma once

#include "frame/ZTServices.h"

namespace zt::package {

enum TZTRobocopyEngine { reBuiltIn, reSystemTool };

struct TZTRobocopyOptions {
  static const frame::TZTOptionsClass& ClassType() {
    // Robocopy's own defaults (a million retries, 30 s apart) would make one
    // locked file a year-long hang.
    static const frame::TZTOptionsClass C{"TZTRobocopyOptions",
                                          {{"Engine", "reBuiltIn", {"reBuiltIn", "reSystemTool"}},
                                           {"RobocopyPath", "", {}},
                                           {"DefaultRetries", 3, {}},
                                           {"DefaultRetryWait", 2, {}}}};
    return C;
  }
};

}  // namespace zt::package
