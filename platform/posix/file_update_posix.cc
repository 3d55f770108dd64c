// TFileUpdate on POSIX: an exclusive flock(2) on the file itself, which every
// update takes for its read-modify-write. Because an update replaces the file
// by rename, one that waited may hold the lock of a file no longer at the
// path: after locking it checks that the path still names the locked file,
// and starts again when not. A missing file is created empty to have
// something to lock.
#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "platform/posix/posix_env.h"
#include "platform/stop.h"

namespace zt::platform {

namespace {

using Clock = std::chrono::steady_clock;

// How long an update waits for another before it gives up with 32.
constexpr auto kLockPatience = std::chrono::seconds(10);

// Locks Fd: 0, or the Windows error when the wait is cut short.
DWORD LockExclusively(int Fd, Clock::time_point Deadline) {
  auto Pause = std::chrono::microseconds(200);
  for (;;) {
    if (flock(Fd, LOCK_EX | LOCK_NB) == 0) return ERROR_SUCCESS;
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) return ERROR_SUCCESS;  // no locks here (some network file systems): go on
    if (LongOperationsCancelled()) return ERROR_OPERATION_ABORTED;
    if (Clock::now() >= Deadline) return ERROR_SHARING_VIOLATION;
    std::this_thread::sleep_for(Pause);
    Pause = std::min<std::chrono::microseconds>(Pause * 2, std::chrono::milliseconds(10));
  }
}

bool SameFile(const struct stat& A, const struct stat& B) {
  return A.st_dev == B.st_dev && A.st_ino == B.st_ino;
}

}  // namespace

TFileUpdate::~TFileUpdate() { End(); }

void TFileUpdate::End() {
  if (Handle_ == INVALID_HANDLE_VALUE) return;
  const int Fd = static_cast<int>(Handle_);
  // An empty file that only this update made, and that is still at its
  // name, goes again: a failed first write leaves no trace.
  struct stat Mine, Now;
  if (Created_ && fstat(Fd, &Mine) == 0 && Mine.st_size == 0 && stat(Path_.c_str(), &Now) == 0 &&
      SameFile(Mine, Now))
    unlink(Path_.c_str());
  close(Fd);  // also releases the lock and the lease
  Handle_ = INVALID_HANDLE_VALUE;
}

bool TFileUpdate::Begin(const std::string& Path, bool Create) {
  End();
  Missing_ = Created_ = false;
  Path_ = posix::FinalTarget(Path);
  const Clock::time_point Deadline = Clock::now() + kLockPatience;
  for (;;) {
    int Fd = open(Path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    bool Created = false;
    if (Fd < 0 && errno == ENOENT && Create) {
      Fd = open(Path_.c_str(), O_RDONLY | O_CREAT | O_EXCL | O_NONBLOCK | O_CLOEXEC, 0666);
      if (Fd < 0 && errno == EEXIST) continue;  // another update made it first
      Created = Fd >= 0;
    }
    if (Fd < 0 && errno == ENOENT && !Create) {
      Missing_ = true;
      return true;
    }
    if (Fd < 0) return posix::Fail(posix::PathError(errno, Path_));
    Handle_ = Fd;
    Created_ = Created;
    struct stat Locked, Named;
    DWORD Error = fstat(Fd, &Locked) != 0 ? ErrnoToWindowsError(errno) : ERROR_SUCCESS;
    if (Error == ERROR_SUCCESS && posix::CheckWritable(Locked) != ERROR_SUCCESS)
      Error = ERROR_ACCESS_DENIED;
    if (Error == ERROR_SUCCESS) Error = LockExclusively(Fd, Deadline);
    if (Error != ERROR_SUCCESS) {
      End();
      return posix::Fail(Error);
    }
    if (stat(Path_.c_str(), &Named) == 0 && SameFile(Locked, Named)) break;
    Created_ = false;  // replaced or removed meanwhile: not ours to remove
    End();
  }
  if (DWORD Error = posix::DenyWriters(static_cast<int>(Handle_))) {
    End();
    return posix::Fail(Error);
  }
  return true;
}

bool TFileUpdate::Read(std::string& Contents) {
  Contents.clear();
  return Missing_ || ReadWholeFile(Handle_, Contents);
}

bool TFileUpdate::Commit(const std::string& Contents) {
  // The lease would refuse this process's own open for writing (a file
  // rewritten in place); the lock still keeps other updates out.
  fcntl(static_cast<int>(Handle_), F_SETLEASE, F_UNLCK);
  if (!WriteFileAtomically(Path_, Contents)) return false;
  Created_ = false;
  return true;
}

bool TFileUpdate::CommitBefore(const std::string& Head) {
  fcntl(static_cast<int>(Handle_), F_SETLEASE, F_UNLCK);  // as Commit
  if (!WriteFileAtomically(Path_, Head, Handle_)) return false;
  Created_ = false;
  return true;
}

}  // namespace zt::platform
