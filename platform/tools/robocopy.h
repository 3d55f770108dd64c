// The built-in robocopy: copies, mirrors and moves directory trees as
// robocopy does, on the layer's services (so read-only files, attributes and
// error texts behave as on Windows, and no copy is ever left half written).
// Used by the robocopy actions on every platform and by `zt robocopy`.
#pragma once

#include <string>
#include <vector>

#include "platform/tools/tool_output.h"
#include "platform/win_types.h"

namespace zt::platform {

// robocopy's exit code bits; 16 stands alone.
constexpr int kRobocopyCopied = 1;
constexpr int kRobocopyExtras = 2;
constexpr int kRobocopyMismatches = 4;
constexpr int kRobocopyFailures = 8;
constexpr int kRobocopyFatal = 16;

// Runs robocopy on Args (the command line after the program name; see
// robocopy_args.h). Lines go to Out live, in walk order whatever /MT is.
// *Cancel (may be null), the program's stop (stop.h) and
// Out.StopRequested() each end the run after the current file, with 16.
int RunRobocopy(const std::vector<std::string>& Args, IToolOutput& Out, BOOL* Cancel = nullptr);

}  // namespace zt::platform
