// The built-in xcopy: copies a file, a directory's files or a wildcard's
// matches (and, with /S or /E, the subdirectories') as xcopy does, on the
// layer's services, so no copy is ever left half written. Used by the XCopy
// action where the system has no xcopy, and by `zt xcopy`.
#pragma once

#include <string>
#include <vector>

#include "platform/tools/tool_output.h"
#include "platform/win_types.h"

namespace zt::platform {

// xcopy's exit codes.
constexpr int kXCopyDone = 0;
constexpr int kXCopyNoFileFound = 1;
constexpr int kXCopyStopped = 2;
constexpr int kXCopyInvalid = 4;  // invalid switch, missing source, cyclic copy
constexpr int kXCopyWriteError = 5;

// Runs xcopy on Args (source, destination and switches, in any order).
// *Cancel (may be null), the program's stop (stop.h) and
// Out.StopRequested() each end the run after the current file, with 2.
int RunXCopy(const std::vector<std::string>& Args, IToolOutput& Out, BOOL* Cancel = nullptr);

}  // namespace zt::platform
