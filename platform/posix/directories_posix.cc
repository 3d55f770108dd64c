// CreateDirectory and RemoveDirectory on POSIX; RemoveDirectory takes a
// link to a directory away as a link.
#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/paths.h"
#include "platform/posix/posix_env.h"

namespace zt::platform::posix {

bool PosixEnv::CreateDirectory(const std::string& Path) {
  if (Path.empty()) return Fail(ERROR_PATH_NOT_FOUND);
  if (mkdir(Path.c_str(), 0777) == 0) return true;
  int Error = errno;
  // A missing parent is ERROR_PATH_NOT_FOUND, as on Windows.
  if (Error == ENOENT || Error == ENOTDIR) return Fail(ERROR_PATH_NOT_FOUND);
  return Fail(ErrnoToWindowsError(Error));  // EEXIST: 183, for a directory or a file
}

bool PosixEnv::RemoveDirectory(const std::string& Path) {
  struct stat St;
  if (lstat(Path.c_str(), &St) != 0) return Fail(PathError(errno, Path));
  if (S_ISLNK(St.st_mode)) {
    // A link to a directory goes as a link (Windows removes a directory
    // link so); what it leads to is never touched.
    struct stat Target;
    if (stat(Path.c_str(), &Target) != 0 || !S_ISDIR(Target.st_mode)) return Fail(ERROR_DIRECTORY);
    if (unlink(Path.c_str()) != 0) return Fail(PathError(errno, Path));
    return true;
  }
  if (!S_ISDIR(St.st_mode)) return Fail(ERROR_DIRECTORY);
  if (IsReadOnlyMode(St.st_mode)) return Fail(ERROR_ACCESS_DENIED);
  if (rmdir(Path.c_str()) == 0) return true;
  int Error = errno;
  return Fail(Error == EEXIST ? ERROR_DIR_NOT_EMPTY : PathError(Error, Path));
}

}  // namespace zt::platform::posix
