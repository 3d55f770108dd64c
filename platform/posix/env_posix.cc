// The platform's own Env on POSIX and the helpers its files share.
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/paths.h"
#include "platform/posix/posix_env.h"

namespace zt::platform {

Env* Env::Platform() {
  static posix::PosixEnv Instance;
  return &Instance;
}

namespace posix {

DWORD PathError(int Errno, const std::string& Path) {
  if (Errno != ENOENT) return ErrnoToWindowsError(Errno);
  std::string Dir = ExtractFileDir(ExcludeTrailingPathDelimiter(Path));
  if (Dir.empty()) return ERROR_FILE_NOT_FOUND;
  struct stat St;
  return stat(Dir.c_str(), &St) == 0 && S_ISDIR(St.st_mode) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

DWORD CheckWritable(const struct stat& St) {
  return !S_ISREG(St.st_mode) || IsReadOnlyMode(St.st_mode) ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

int CreateTempBeside(const std::string& Target, std::string& TempPath, DWORD& Error, mode_t Mode) {
  // The umask applies, as for any new file.
  for (int Attempt = 0; Attempt < 100; ++Attempt) {
    TempPath = TempNameBeside(Target);
    int Fd = CreatePendingFile(TempPath, O_RDWR, Mode);
    if (Fd >= 0) return Fd;
    if (errno != EEXIST) break;
  }
  Error = PathError(errno, TempPath);
  return -1;
}

}  // namespace posix
}  // namespace zt::platform
