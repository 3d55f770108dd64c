#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/errors.h"
#include "platform/posix/posix_env.h"
#include "platform/system_paths.h"

namespace zt::platform {

std::string GetSysDirectory() { return "/usr/bin"; }

std::string GetHomeDirectory() {
  if (const char* Home = std::getenv("HOME"); Home && *Home) return Home;
  const struct passwd* Pw = getpwuid(getuid());
  return Pw && Pw->pw_dir ? Pw->pw_dir : "";
}

std::string GetTemporaryFileName(const std::string& Extension) {
  const char* Dir = std::getenv("TMPDIR");
  std::string Suffix = Extension.empty() || Extension[0] == '.' ? Extension : "." + Extension;
  std::string Name = std::string(Dir && *Dir ? Dir : "/tmp") + "/zt-XXXXXX" + Suffix;
  const int Fd = posix::CreatePendingTemporary(Name, static_cast<int>(Suffix.size()));
  if (Fd < 0) {
    SetLastError(ErrnoToWindowsError(errno));
    return {};
  }
  close(Fd);
  return Name;
}

void DeleteTemporaryFile(const std::string& Name) { posix::RemovePendingFile(Name); }

}  // namespace zt::platform
