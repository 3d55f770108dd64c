// `zt robocopy ARGS...` and `zt xcopy ARGS...`: the layer's built-in copy
// tools run directly (for scripts and benchmarks), printing their lines to
// standard output and returning their own exit codes.
#pragma once

#include <string>
#include <vector>

namespace zt::host {

int RobocopyCommand(const std::vector<std::string>& Args);
int XCopyCommand(const std::vector<std::string>& Args);

}  // namespace zt::host
