// DeleteFile on POSIX: Windows refuses read-only files and directories,
// also for an administrator, so the check is ours and not the kernel's.
// A pending delete (files.h, TPendingDelete) makes the same checks and
// renames the file aside instead, until its outcome is known.
#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/posix_env.h"

namespace zt::platform::posix {

namespace {

// What Windows refuses to delete: 0, or the error.
DWORD CheckDeletable(const std::string& Path) {
  struct stat St;
  if (lstat(Path.c_str(), &St) != 0) return PathError(errno, Path);
  if (!S_ISLNK(St.st_mode) && CheckWritable(St) != ERROR_SUCCESS) return ERROR_ACCESS_DENIED;
  return ERROR_SUCCESS;
}

}  // namespace

bool PosixEnv::DeleteFile(const std::string& Path) {
  if (DWORD Error = CheckDeletable(Path)) return Fail(Error);
  if (unlink(Path.c_str()) != 0) return Fail(PathError(errno, Path));
  return true;
}

bool PosixEnv::SetFileAside(const std::string& Path, std::string& Aside) {
  if (DWORD Error = CheckDeletable(Path)) return Fail(Error);
  if (int Error = SetFileAsidePending(Path, Aside)) return Fail(PathError(Error, Path));
  return true;
}

void PosixEnv::EndFileAside(const std::string& Aside, const std::string& Original, bool PutBack) {
  if (PutBack)
    PutBackPendingFile(Aside, Original);
  else
    RemovePendingFile(Aside);
}

}  // namespace zt::platform::posix
