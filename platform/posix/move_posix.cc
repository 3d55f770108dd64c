// MoveFileWithProgressA on POSIX: rename(2) on one file system; across file
// systems, with MOVEFILE_COPY_ALLOWED, a file is copied (with progress) to a
// temporary name beside the target, renamed into place, and the source
// deleted. Directories never cross file systems, as on Windows.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/posix_env.h"

namespace zt::platform::posix {

namespace {

// Renames without replacing: ERROR_ALREADY_EXISTS when New appears meanwhile.
int RenameNoReplace(const std::string& Existing, const std::string& New) {
  if (renameat2(AT_FDCWD, Existing.c_str(), AT_FDCWD, New.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // The file system cannot refuse atomically; New was checked just before.
  return rename(Existing.c_str(), New.c_str()) == 0 ? 0 : errno;
}

}  // namespace

bool PosixEnv::MoveFileWithProgressA(const std::string& Existing, const std::string& New,
                                     LPPROGRESS_ROUTINE Progress, void* Data, DWORD Flags) {
  struct stat Source, Target;
  if (lstat(Existing.c_str(), &Source) != 0) return Fail(PathError(errno, Existing));
  const bool Replace = (Flags & MOVEFILE_REPLACE_EXISTING) != 0;
  bool CaseOnly = false;
  if (lstat(New.c_str(), &Target) == 0) {
    if (Existing == New) return true;  // moving a file onto itself changes nothing
    // A file system that ignores letter case finds the file itself under
    // its new spelling: that is a rename, not an existing target.
    CaseOnly = Target.st_dev == Source.st_dev && Target.st_ino == Source.st_ino &&
               strcasecmp(Existing.c_str(), New.c_str()) == 0;
    if (!CaseOnly) {
      if (!Replace) return Fail(ERROR_ALREADY_EXISTS);
      // A link is replaced itself, whatever it leads to; a directory never replaces anything.
      if ((!S_ISLNK(Target.st_mode) && CheckWritable(Target) != ERROR_SUCCESS) || S_ISDIR(Source.st_mode))
        return Fail(ERROR_ACCESS_DENIED);
    }
  }

  int Error = Replace || CaseOnly ? (rename(Existing.c_str(), New.c_str()) == 0 ? 0 : errno)
                                  : RenameNoReplace(Existing, New);
  if (Error == 0) return true;
  if (Error == EEXIST) return Fail(ERROR_ALREADY_EXISTS);
  if (Error != EXDEV) return Fail(PathError(Error, Error == ENOENT ? New : Existing));
  if (!(Flags & MOVEFILE_COPY_ALLOWED) || S_ISDIR(Source.st_mode)) return Fail(ERROR_NOT_SAME_DEVICE);

  CopyOptions Options;
  Options.FailIfExists = !Replace;
  Options.ExistsError = ERROR_ALREADY_EXISTS;
  Options.WriteThrough = (Flags & MOVEFILE_WRITE_THROUGH) != 0;
  // The source is the only whole copy until the end: no half file ever bears the target's name.
  Options.ViaTemporary = true;
  if (!CopyWithProgress(Existing, New, Progress, Data, nullptr, Options)) return false;
  // A source that cannot go away must not leave two copies behind.
  if (unlink(Existing.c_str()) != 0) {
    DWORD UnlinkError = PathError(errno, Existing);
    unlink(New.c_str());
    return Fail(UnlinkError);
  }
  return true;
}

}  // namespace zt::platform::posix
