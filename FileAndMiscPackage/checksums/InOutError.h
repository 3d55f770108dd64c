// The run-time library's input/output exception: raised when a file cannot
// be opened for a checksum, with the run-time's text for the error code.
#pragma once

#include <stdexcept>
#include <string>

#include "platform/win_types.h"

namespace zt::package {

// "File not found" (2), "Invalid filename" (3), "Too many open files" (4),
// "File access denied" (5), otherwise "I/O error " + the code.
std::string InOutErrorMessage(platform::DWORD ErrorCode);

class EInOutError : public std::runtime_error {
 public:
  explicit EInOutError(platform::DWORD Code) : std::runtime_error(InOutErrorMessage(Code)), ErrorCode(Code) {}
  platform::DWORD ErrorCode;
};

}  // namespace zt::package
