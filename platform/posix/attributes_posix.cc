// Windows attributes on POSIX:
//   read-only  no write permission bit (set: remove every w; clear: owner w back)
//   hidden     a leading dot, or the bit stored in user.DOSATTRIB
//   system, archive   stored in user.DOSATTRIB ("0x" + hex, as Samba and Wine);
//              FIFOs, sockets and devices are always system files
//   directory  from the file type
//   normal     when no other bit is set
#include <errno.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <time.h>

#include <cstdio>
#include <cstdlib>

#include "platform/paths.h"
#include "platform/posix/posix_env.h"

namespace zt::platform::posix {

bool IsDotHiddenName(const char* Name) {
  return Name[0] == '.' && Name[1] != '\0' && !(Name[1] == '.' && Name[2] == '\0');
}

bool IsDotHidden(const std::string& Path) {
  return IsDotHiddenName(ExtractFileName(ExcludeTrailingPathDelimiter(Path)).c_str());
}

namespace {

// The bits of a stored value of N bytes (N < 0: nothing stored, or no
// extended attributes here).
DWORD ParseStoredBits(char* Value, ssize_t N) {
  if (N < 3) return 0;
  Value[N] = '\0';
  if (Value[0] != '0' || (Value[1] != 'x' && Value[1] != 'X')) return 0;  // a binary form we do not read
  return static_cast<DWORD>(std::strtoul(Value + 2, nullptr, 16)) & kStoredBits;
}

}  // namespace

DWORD ReadStoredBits(const std::string& Path) {
  char Value[64];
  return ParseStoredBits(Value, getxattr(Path.c_str(), kDosAttributeName, Value, sizeof Value - 1));
}

DWORD ReadStoredBits(int Fd) {
  char Value[64];
  return ParseStoredBits(Value, fgetxattr(Fd, kDosAttributeName, Value, sizeof Value - 1));
}

// The stored bits last read, per thread, by file identity and change time.
// Storing the attribute sets the file's change time to the current time, so
// an entry whose change time still matches the file's describes the file as
// it is. That holds only for change times that were already in the past when
// the file was described: the clock that stamps them may tick coarsely, and
// a change within the same tick would leave the time as it was. Hence an
// entry is kept only for a change time over a second older than the clock
// read before the stat.
namespace {

struct CachedBits {
  std::uint64_t Device = 0, Inode = 0;
  std::int64_t Seconds = -1;
  std::int64_t Nanoseconds = 0;
  DWORD Bits = 0;
};
constexpr std::size_t kCachedFiles = 256;
constexpr std::int64_t kSettledSeconds = 1;
thread_local CachedBits Cache[kCachedFiles];

template <class ReadFn>
DWORD CachedStoredBits(const struct stat& St, const struct timespec& Before, ReadFn Read) {
  CachedBits& E = Cache[St.st_ino % kCachedFiles];
  if (E.Seconds == St.st_ctim.tv_sec && E.Nanoseconds == St.st_ctim.tv_nsec && E.Inode == St.st_ino &&
      E.Device == St.st_dev)
    return E.Bits;
  DWORD Bits = Read();
  if (St.st_ctim.tv_sec + kSettledSeconds < Before.tv_sec)
    E = {St.st_dev, St.st_ino, St.st_ctim.tv_sec, St.st_ctim.tv_nsec, Bits};
  return Bits;
}

}  // namespace

struct timespec ClockBeforeStat() {
  struct timespec Now;
  clock_gettime(CLOCK_REALTIME, &Now);
  return Now;
}

DWORD StoredBitsOf(const std::string& Path, const struct stat& St, const struct timespec& Before) {
  return CachedStoredBits(St, Before, [&] { return ReadStoredBits(Path); });
}

DWORD StoredBitsOf(int Fd, const struct stat& St, const struct timespec& Before) {
  return CachedStoredBits(St, Before, [&] { return ReadStoredBits(Fd); });
}

DWORD CombineAttributes(const struct stat& St, DWORD Stored, bool DotHidden) {
  DWORD A = Stored;
  if (DotHidden) A |= FILE_ATTRIBUTE_HIDDEN;
  if (IsReadOnlyMode(St.st_mode)) A |= FILE_ATTRIBUTE_READONLY;
  if (S_ISDIR(St.st_mode)) A |= FILE_ATTRIBUTE_DIRECTORY;
  // FIFOs, sockets and devices are no files to Windows: as system files
  // they stay out of every search whose mask lacks the system bit.
  if (S_ISFIFO(St.st_mode) || S_ISSOCK(St.st_mode) || S_ISCHR(St.st_mode) || S_ISBLK(St.st_mode))
    A |= FILE_ATTRIBUTE_SYSTEM;
  return A ? A : FILE_ATTRIBUTE_NORMAL;
}

DWORD WithLinkBit(DWORD Attributes) {
  return (Attributes & ~FILE_ATTRIBUTE_NORMAL) | FILE_ATTRIBUTE_REPARSE_POINT;
}

DWORD AttributesOf(const std::string& Path, const struct stat& St) {
  return CombineAttributes(St, ReadStoredBits(Path), IsDotHidden(Path));
}

void FillInfo(const struct stat& St, DWORD Attributes, FileInfo& Info) {
  Info.Attributes = Attributes;
  Info.Size = S_ISDIR(St.st_mode) ? 0 : St.st_size;
  Info.LastWriteSeconds = St.st_mtim.tv_sec;
  Info.LastWriteNanoseconds = static_cast<std::int32_t>(St.st_mtim.tv_nsec);
  Info.Device = St.st_dev;
  Info.Inode = St.st_ino;
}

namespace {

// stat data of Path: 0, or the errno. One call for a file or a missing name;
// a symbolic link is followed, and a dangling one is still an entry: it
// describes the link itself.
int StatEntry(const std::string& Path, struct stat& St, bool& Link) {
  if (lstat(Path.c_str(), &St) != 0) return errno;
  Link = S_ISLNK(St.st_mode);
  if (Link) {
    struct stat Target;
    if (stat(Path.c_str(), &Target) == 0)
      St = Target;
    else if (errno != ENOENT)
      return errno;
  }
  return 0;
}

}  // namespace

bool PosixEnv::PathExists(const std::string& Path, bool& IsDirectory) {
  if (!PlatformEnvInstalled()) return Env::PathExists(Path, IsDirectory);
  struct stat St;
  bool Link = false;
  if (StatEntry(Path, St, Link) != 0) return false;
  IsDirectory = S_ISDIR(St.st_mode);
  return true;
}

DWORD PosixEnv::QueryFileInfo(const std::string& Path, FileInfo& Info) {
  const struct timespec Before = ClockBeforeStat();
  struct stat St;
  bool Link = false;
  if (int Error = StatEntry(Path, St, Link)) return PathError(Error, Path);
  const DWORD Attributes = CombineAttributes(St, StoredBitsOf(Path, St, Before), IsDotHidden(Path));
  FillInfo(St, Link ? WithLinkBit(Attributes) : Attributes, Info);
  return ERROR_SUCCESS;
}

DWORD PosixEnv::WriteDosAttributes(const std::string& Path, DWORD Bits) {
  Bits &= kStoredBits;
  if (Bits == 0) {
    if (removexattr(Path.c_str(), kDosAttributeName) == 0 || errno == ENODATA || errno == ENOTSUP)
      return ERROR_SUCCESS;
    return PathError(errno, Path);
  }
  char Value[16];
  int Len = std::snprintf(Value, sizeof Value, "0x%x", static_cast<unsigned>(Bits));
  if (setxattr(Path.c_str(), kDosAttributeName, Value, static_cast<size_t>(Len), 0) == 0)
    return ERROR_SUCCESS;
  return errno == ENOTSUP ? ERROR_NOT_SUPPORTED : PathError(errno, Path);
}

DWORD PosixEnv::GetFileAttributesA(const std::string& Path) {
  FileInfo Info;
  DWORD Error = Env::Default()->QueryFileInfo(Path, Info);
  if (Error != ERROR_SUCCESS) {
    SetLastError(Error);
    return INVALID_FILE_ATTRIBUTES;
  }
  return Info.Attributes;
}

bool PosixEnv::SetFileAttributesA(const std::string& Path, DWORD Attributes) {
  struct stat St;
  if (stat(Path.c_str(), &St) != 0) return Fail(PathError(errno, Path));
  // The name already hides a dot file: store hidden only where the name does not.
  DWORD Stored = Attributes & kStoredBits;
  if (IsDotHidden(Path)) Stored &= ~FILE_ATTRIBUTE_HIDDEN;
  // Stored bits first: when the file system cannot keep them nothing changes.
  if (Stored != ReadStoredBits(Path)) {
    DWORD Error = Env::Default()->WriteDosAttributes(Path, Stored);
    if (Error != ERROR_SUCCESS) return Fail(Error);
  }
  mode_t Mode = St.st_mode & 07777;
  mode_t NewMode = (Attributes & FILE_ATTRIBUTE_READONLY) ? Mode & ~mode_t{S_IWUSR | S_IWGRP | S_IWOTH}
                   : IsReadOnlyMode(Mode)                 ? Mode | S_IWUSR
                                                          : Mode;
  if (NewMode != Mode && chmod(Path.c_str(), NewMode) != 0) return Fail(PathError(errno, Path));
  return true;
}

}  // namespace zt::platform::posix
