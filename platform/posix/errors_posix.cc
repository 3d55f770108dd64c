// The last-error code and the errno mapping on POSIX. The mapping follows
// Wine's (errno -> NT status -> Win32 code); where Windows itself answers
// differently for the same situation (opening a directory as a file gives
// "Access is denied"), Windows wins.
#include <errno.h>

#include "platform/errors.h"

namespace zt::platform {

namespace {
thread_local DWORD LastError = ERROR_SUCCESS;
}  // namespace

DWORD GetLastError() { return LastError; }
void SetLastError(DWORD ErrorCode) { LastError = ErrorCode; }

DWORD ErrnoToWindowsError(int Errno) {
  switch (Errno) {
    case 0:
      return ERROR_SUCCESS;
    case ENOENT:
      return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
      return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
      return ERROR_ACCESS_DENIED;
    case EAGAIN:
    case ETXTBSY:
      return ERROR_SHARING_VIOLATION;
    case EBADF:
      return ERROR_INVALID_HANDLE;
    case EBUSY:
      return ERROR_BUSY;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return ERROR_DISK_FULL;
    case EEXIST:
      return ERROR_ALREADY_EXISTS;
    case ENAMETOOLONG:
      return ERROR_FILENAME_EXCED_RANGE;
    case ENOTEMPTY:
      return ERROR_DIR_NOT_EMPTY;
    case EXDEV:
      return ERROR_NOT_SAME_DEVICE;
    case EINVAL:
    case EOVERFLOW:
      return ERROR_INVALID_PARAMETER;
    case EMFILE:
    case ENFILE:
      return ERROR_TOO_MANY_OPEN_FILES;
    case ENOMEM:
      return ERROR_NOT_ENOUGH_MEMORY;
    case EIO:
      return ERROR_NOT_READY;
    case ENOTSUP:
    case ENOTTY:
    case ENOSYS:
      return ERROR_NOT_SUPPORTED;
    case ESPIPE:
      return ERROR_INVALID_FUNCTION;
    case EPIPE:
      return ERROR_BROKEN_PIPE;
    case ELOOP:
      return ERROR_CANT_RESOLVE_FILENAME;
    default:
      return ERROR_GEN_FAILURE;
  }
}

}  // namespace zt::platform
