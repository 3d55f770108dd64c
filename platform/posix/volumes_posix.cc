// GetDiskFreeSpaceExA on POSIX: statvfs of the path. Free space for this
// user is f_bavail (blocks root keeps in reserve do not count), the size
// f_blocks, all free space f_bfree, each in f_frsize units.
#include <errno.h>
#include <sys/statvfs.h>

#include "platform/posix/posix_env.h"

namespace zt::platform::posix {

bool PosixEnv::GetDiskFreeSpaceExA(const std::string& Directory, std::uint64_t* FreeBytesAvailable,
                                   std::uint64_t* TotalBytes, std::uint64_t* TotalFreeBytes) {
  struct statvfs Vfs;
  if (statvfs(Directory.empty() ? "." : Directory.c_str(), &Vfs) != 0)
    return Fail(PathError(errno, Directory));
  const std::uint64_t Unit = Vfs.f_frsize ? Vfs.f_frsize : Vfs.f_bsize;
  if (FreeBytesAvailable) *FreeBytesAvailable = static_cast<std::uint64_t>(Vfs.f_bavail) * Unit;
  if (TotalBytes) *TotalBytes = static_cast<std::uint64_t>(Vfs.f_blocks) * Unit;
  if (TotalFreeBytes) *TotalFreeBytes = static_cast<std::uint64_t>(Vfs.f_bfree) * Unit;
  return true;
}

}  // namespace zt::platform::posix
