#include "checksums/InOutError.h"

namespace zt::package {

std::string InOutErrorMessage(platform::DWORD ErrorCode) {
  switch (ErrorCode) {
    case 2: return "File not found";
    case 3: return "Invalid filename";
    case 4: return "Too many open files";
    case 5: return "File access denied";
    default: return "I/O error " + std::to_string(ErrorCode);
  }
}

}  // namespace zt::package
