// Delphi file handles on POSIX (a handle is the descriptor).
//
// "Deny writers" (fmShareDenyWrite, fmShareExclusive) on a handle opened for
// reading is a read lease (fcntl F_SETLEASE F_RDLCK): the kernel refuses it
// while any process has the file open for writing, and while it is held an
// open for writing or truncating is broken off. Every open for writing here
// is non-blocking, so it meets a lease with EWOULDBLOCK and fails at once
// with ERROR_SHARING_VIOLATION, as on Windows. Closing the handle releases
// the lease. Limits are in docs/platform.md.
//
// Only regular files open as files: every open is non-blocking, so a FIFO
// cannot hold it, and anything else (FIFO, socket, device, directory) is
// refused with "Access is denied", as Windows refuses a directory. Reads
// stop within a few milliseconds of the program's stop (stop.h).
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>

#include "platform/dates.h"
#include "platform/posix/posix_env.h"
#include "platform/stop.h"

namespace zt::platform::posix {

namespace {

// A broken lease is signalled with SIGIO, whose default action ends the
// process. The layer takes SIGIO over only when nobody else has.
void IgnoreLeaseBreakSignal() {
  static std::once_flag Once;
  std::call_once(Once, [] {
    struct sigaction Current;
    if (sigaction(SIGIO, nullptr, &Current) == 0 && Current.sa_handler == SIG_DFL) signal(SIGIO, SIG_IGN);
  });
}

}  // namespace

DWORD DenyWriters(int Fd) {
  IgnoreLeaseBreakSignal();
  if (fcntl(Fd, F_SETLEASE, F_RDLCK) == 0) return ERROR_SUCCESS;
  return errno == EAGAIN || errno == EBUSY ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS;
}

namespace {

DWORD OpenError(int Errno, const std::string& Path) {
  return Errno == EWOULDBLOCK ? ERROR_SHARING_VIOLATION : PathError(Errno, Path);
}

THandle Failed(DWORD Error) {
  SetLastError(Error);
  return INVALID_HANDLE_VALUE;
}

// The most one read(2) asks for, so a cancel is seen between two of them.
constexpr int kReadCallBytes = 4 << 20;

}  // namespace

THandle PosixEnv::FileOpen(const std::string& Path, int Mode) {
  const int Access = Mode & 3, Share = Mode & 0xF0;
  if (Access == 3) return Failed(ERROR_INVALID_PARAMETER);
  const bool Writing = Access != fmOpenRead;
  struct stat St;
  if (Writing && stat(Path.c_str(), &St) == 0 && CheckWritable(St) != ERROR_SUCCESS)
    return Failed(ERROR_ACCESS_DENIED);
  int Flags = O_CLOEXEC | (Access == fmOpenWrite ? O_WRONLY : Access == fmOpenReadWrite ? O_RDWR : O_RDONLY);
  int Fd = open(Path.c_str(), Flags | O_NONBLOCK);
  if (Fd < 0) return Failed(OpenError(errno, Path));
  if (fstat(Fd, &St) != 0 || !S_ISREG(St.st_mode)) {
    close(Fd);
    return Failed(ERROR_ACCESS_DENIED);
  }
  if (!Writing && (Share == fmShareDenyWrite || Share == fmShareExclusive)) {
    if (DWORD Error = DenyWriters(Fd)) {
      close(Fd);
      return Failed(Error);
    }
  }
  return Fd;
}

THandle PosixEnv::FileCreate(const std::string& Path) {
  struct stat St;
  if (stat(Path.c_str(), &St) == 0) {
    if (CheckWritable(St) != ERROR_SUCCESS) return Failed(ERROR_ACCESS_DENIED);
    // Windows will not recreate a hidden or system file as a normal one.
    if (ReadStoredBits(Path) & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM))
      return Failed(ERROR_ACCESS_DENIED);
  }
  int Fd = open(Path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666);
  if (Fd < 0) return Failed(OpenError(errno, Path));
  return Fd;
}

int PosixEnv::FileRead(THandle Handle, void* Buffer, int Count) {
  if (Count < 0) return SetLastError(ERROR_INVALID_PARAMETER), -1;
  // A large read goes in pieces; as on Windows it returns less than Count
  // only at the end of the file.
  char* P = static_cast<char*>(Buffer);
  int Done = 0;
  do {
    if (LongOperationsCancelled()) return SetLastError(ERROR_OPERATION_ABORTED), -1;
    const int Want = std::min(Count - Done, kReadCallBytes);
    ssize_t N = read(static_cast<int>(Handle), P + Done, static_cast<size_t>(Want));
    if (N < 0 && errno == EINTR) continue;
    if (N < 0) return SetLastError(ErrnoToWindowsError(errno)), -1;
    Done += static_cast<int>(N);
    if (N < Want) break;
  } while (Done < Count);
  return Done;
}

int PosixEnv::FileWrite(THandle Handle, const void* Buffer, int Count) {
  if (Count < 0) return SetLastError(ERROR_INVALID_PARAMETER), -1;
  const char* P = static_cast<const char*>(Buffer);
  int Done = 0;
  while (Done < Count) {
    ssize_t N = write(static_cast<int>(Handle), P + Done, static_cast<size_t>(Count - Done));
    if (N < 0 && errno == EINTR) continue;
    if (N < 0) return SetLastError(ErrnoToWindowsError(errno)), -1;  // Windows fails the whole write
    Done += static_cast<int>(N);
  }
  return Done;
}

std::int64_t PosixEnv::FileSeek(THandle Handle, std::int64_t Offset, int Origin) {
  static const int Whence[] = {SEEK_SET, SEEK_CUR, SEEK_END};
  if (Origin < 0 || Origin > 2) return SetLastError(ERROR_INVALID_PARAMETER), -1;
  off_t Result = lseek(static_cast<int>(Handle), static_cast<off_t>(Offset), Whence[Origin]);
  if (Result < 0) return SetLastError(errno == EINVAL ? ERROR_NEGATIVE_SEEK : ErrnoToWindowsError(errno)), -1;
  return Result;
}

void PosixEnv::FileClose(THandle Handle) {
  if (Handle >= 0) close(static_cast<int>(Handle));  // also releases a lease
}

int PosixEnv::FileGetDate(THandle Handle) {
  struct stat St;
  if (fstat(static_cast<int>(Handle), &St) != 0) return SetLastError(ErrnoToWindowsError(errno)), -1;
  return DateTimeToFileDate(UnixToDateTime(St.st_mtim.tv_sec));
}

int PosixEnv::FileSetDate(THandle Handle, int Age) {
  TDateTime When = FileDateToDateTime(Age);
  if (When == 0) return static_cast<int>(ERROR_INVALID_PARAMETER);
  struct timespec Times[2] = {{0, UTIME_OMIT}, {DateTimeToUnix(When), 0}};
  if (futimens(static_cast<int>(Handle), Times) != 0) return static_cast<int>(ErrnoToWindowsError(errno));
  return 0;
}

// Times only, no data: like SetFileTime it needs no write access, so a
// read-only file may be given a time (utimensat asks for ownership instead).
bool PosixEnv::SetFileLastWriteTime(const std::string& Path, TFileTime LastWrite) {
  const std::int64_t Units = LastWrite - UnixToFileTime(0, 0);
  // Floor division, so times before 1970 keep a positive fraction.
  std::int64_t Seconds = Units / 10000000, Rest = Units % 10000000;
  if (Rest < 0) --Seconds, Rest += 10000000;
  struct timespec Times[2] = {{0, UTIME_OMIT}, {static_cast<time_t>(Seconds), static_cast<long>(Rest * 100)}};
  if (utimensat(AT_FDCWD, Path.c_str(), Times, 0) != 0) return Fail(PathError(errno, Path));
  return true;
}

}  // namespace zt::platform::posix
