#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/errors.h"
#include "platform/system_paths.h"

namespace zt::platform {

std::string GetSysDirectory() { return "/usr/bin"; }

std::string GetTemporaryFileName(const std::string& Extension) {
  const char* Dir = std::getenv("TMPDIR");
  std::string Suffix = Extension.empty() || Extension[0] == '.' ? Extension : "." + Extension;
  std::string Name = std::string(Dir && *Dir ? Dir : "/tmp") + "/zt-XXXXXX" + Suffix;
  const int Fd = mkostemps(Name.data(), static_cast<int>(Suffix.size()), O_CLOEXEC);
  if (Fd < 0) {
    SetLastError(ErrnoToWindowsError(errno));
    return {};
  }
  close(Fd);
  return Name;
}

}  // namespace zt::platform
