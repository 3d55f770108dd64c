// DeleteFile on POSIX: Windows refuses read-only files and directories,
// also for an administrator, so the check is ours and not the kernel's.
#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/posix_env.h"

namespace zt::platform::posix {

bool PosixEnv::DeleteFile(const std::string& Path) {
  struct stat St;
  if (lstat(Path.c_str(), &St) != 0) return Fail(PathError(errno, Path));
  if (!S_ISLNK(St.st_mode) && CheckWritable(St) != ERROR_SUCCESS) return Fail(ERROR_ACCESS_DENIED);
  if (unlink(Path.c_str()) != 0) return Fail(PathError(errno, Path));
  return true;
}

}  // namespace zt::platform::posix
