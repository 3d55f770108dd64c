// The platform's own Env on POSIX and the helpers its files share.
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

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
  return S_ISDIR(St.st_mode) || IsReadOnlyMode(St.st_mode) ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

int CreateTempBeside(const std::string& Target, std::string& TempPath, DWORD& Error, mode_t Mode) {
  // A hidden name that keeps the target's, so a crash leaves a recognisable
  // file. The umask applies, as for any new file.
  static std::atomic<unsigned> Counter{0};
  const std::string Stem = ExtractFilePath(Target) + "." + ExtractFileName(Target).substr(0, 200) + ".zt-";
  for (int Attempt = 0; Attempt < 100; ++Attempt) {
    char Suffix[32];
    std::snprintf(Suffix, sizeof Suffix, "%x-%x", static_cast<unsigned>(getpid()), Counter.fetch_add(1));
    TempPath = Stem + Suffix;
    int Fd = open(TempPath.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, Mode);
    if (Fd >= 0) return Fd;
    if (errno != EEXIST) break;
  }
  Error = PathError(errno, TempPath);
  return -1;
}

}  // namespace posix
}  // namespace zt::platform
