// WriteFileAtomically on POSIX: a temporary file beside the target, flushed,
// then renamed over it, so readers see the old file or the new one.
#include <errno.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/posix_env.h"

namespace zt::platform::posix {

bool PosixEnv::WriteFileAtomically(const std::string& Path, const std::string& Contents) {
  struct stat Old;
  const bool Exists = stat(Path.c_str(), &Old) == 0;
  if (Exists && CheckWritable(Old) != ERROR_SUCCESS) return Fail(ERROR_ACCESS_DENIED);
  std::string TempPath;
  DWORD Error = ERROR_SUCCESS;
  int Fd = CreateTempBeside(Path, TempPath, Error);
  if (Fd < 0) return Fail(Error);
  // A replaced file keeps its permissions and stored attributes.
  const char* P = Contents.data();
  size_t Left = Contents.size();
  while (Error == ERROR_SUCCESS && Left > 0) {
    ssize_t N = write(Fd, P, Left);
    if (N < 0 && errno == EINTR) continue;
    if (N < 0)
      Error = ErrnoToWindowsError(errno);
    else
      P += N, Left -= static_cast<size_t>(N);
  }
  if (Error == ERROR_SUCCESS && Exists && fchmod(Fd, Old.st_mode & 07777) != 0)
    Error = ErrnoToWindowsError(errno);
  if (Error == ERROR_SUCCESS && Exists) {
    DWORD Bits = ReadStoredBits(Path);
    if (Bits) Error = Env::Default()->WriteDosAttributes(TempPath, Bits);
  }
  if (Error == ERROR_SUCCESS && fsync(Fd) != 0) Error = ErrnoToWindowsError(errno);
  if (close(Fd) != 0 && Error == ERROR_SUCCESS) Error = ErrnoToWindowsError(errno);
  if (Error == ERROR_SUCCESS && rename(TempPath.c_str(), Path.c_str()) != 0) Error = PathError(errno, Path);
  if (Error != ERROR_SUCCESS) {
    unlink(TempPath.c_str());
    return Fail(Error);
  }
  return true;
}

}  // namespace zt::platform::posix
