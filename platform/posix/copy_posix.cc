// CopyFileExA on POSIX. The data moves in large chunks (copy_file_range lets
// the kernel or the file system move the bytes); a cancel, a full disk or any
// other failure leaves no partial target and an existing target untouched:
//  - a target that does not exist yet is created exclusively under its own
//    name (the name is ours from then on) and removed again on failure;
//  - an existing target, or any target of a move, is written to a temporary
//    file beside it, renamed over it only when complete, so the old file is
//    never lost and no half file ever bears the name.
// Either file is pending (stop.h) until it is complete, so an abrupt end of
// the program removes it. Only regular files are copied: a FIFO would block
// the open or the reads forever, a device never end.
// The source is opened and described once (fstat); its stored attributes,
// and the copy's times, attributes and permissions, go through the open
// descriptors, so a small file costs about as many calls as `cp` makes.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <vector>

#include "platform/posix/posix_env.h"
#include "platform/stop.h"

namespace zt::platform::posix {

namespace {

// One progress step; large enough that copying runs at the file system's speed.
constexpr std::int64_t kChunkBytes = std::int64_t{16} << 20;
// At most this much per system call, so a cancel is seen within a few
// milliseconds even on a slow disk.
constexpr std::int64_t kCallBytes = std::int64_t{4} << 20;

// Read/write copy for file systems without copy_file_range between them, and
// for files whose data the kernel will not copy (those of /proc and /sys).
DWORD ReadWriteCopy(int From, int To, std::int64_t MaxBytes, std::int64_t& Copied) {
  thread_local std::vector<char> Buffer(std::size_t{1} << 20);
  while (Copied < MaxBytes) {
    if (LongOperationsCancelled()) return ERROR_OPERATION_ABORTED;
    size_t Want = static_cast<size_t>(std::min<std::int64_t>(MaxBytes - Copied, Buffer.size()));
    ssize_t N = read(From, Buffer.data(), Want);
    if (N < 0 && errno == EINTR) continue;
    if (N < 0) return ErrnoToWindowsError(errno);
    if (N == 0) break;
    for (ssize_t Done = 0; Done < N;) {
      ssize_t W = write(To, Buffer.data() + Done, static_cast<size_t>(N - Done));
      if (W < 0 && errno == EINTR) continue;
      if (W < 0) return ErrnoToWindowsError(errno);
      Done += W;
    }
    Copied += N;
  }
  return ERROR_SUCCESS;
}

class FdCloser {
 public:
  explicit FdCloser(int Fd) : Fd_(Fd) {}
  ~FdCloser() { close(Fd_); }
  FdCloser(const FdCloser&) = delete;
  FdCloser& operator=(const FdCloser&) = delete;

 private:
  int Fd_;
};

// The file being written, pending: the target itself (created by this copy)
// or a temporary file beside it. Until it is kept or renamed into place,
// destroying it closes the descriptor and removes the file, so a failed copy
// leaves nothing behind.
class OutputFile {
 public:
  OutputFile(int Fd, std::string Path) : Fd_(Fd), Path_(std::move(Path)) {}
  ~OutputFile() {
    if (Fd_ >= 0) close(Fd_);
    if (!Kept_) RemovePendingFile(Path_);
  }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  int Fd() const { return Fd_; }
  const std::string& Path() const { return Path_; }
  // Closes the descriptor: 0, or the error a delayed write reports.
  DWORD Close() {
    int Result = close(Fd_);
    Fd_ = -1;
    return Result == 0 ? ERROR_SUCCESS : ErrnoToWindowsError(errno);
  }
  // The file is complete where it is.
  void Keep() {
    KeepPendingFile(Path_);
    Kept_ = true;
  }
  // Renames the complete file to New: 0, or the errno of the failure.
  int RenameTo(const std::string& New, bool NoReplace) {
    int Error = RenamePendingFile(Path_, New, NoReplace);
    Kept_ = Error == 0;
    return Error;
  }

 private:
  int Fd_;
  std::string Path_;
  bool Kept_ = false;
};

// Calls the progress routine; false when it asks to stop (PROGRESS_CANCEL or
// PROGRESS_STOP). PROGRESS_QUIET silences it for the rest of the copy.
bool Report(LPPROGRESS_ROUTINE& Progress, void* Data, std::int64_t Total, std::int64_t Done, DWORD Reason) {
  if (!Progress) return true;
  DWORD Answer = Progress(Total, Done, Total, Done, 1, Reason, Data);
  if (Answer == PROGRESS_QUIET) Progress = nullptr;
  return Answer == PROGRESS_CONTINUE || Answer == PROGRESS_QUIET;
}

// The caller's cancel flag, which another thread may set at any time.
bool Cancelled(BOOL* Cancel) {
  return Cancel && std::atomic_ref<BOOL>(*Cancel).load(std::memory_order_relaxed) != 0;
}

// Why an existing target refuses to be replaced (0 when it may be).
DWORD CheckTarget(const std::string& New, const struct stat& Source, const CopyOptions& Options) {
  struct stat Target;
  if (stat(New.c_str(), &Target) != 0) return ERROR_SUCCESS;  // a dangling link: replaced by the rename
  if (Target.st_dev == Source.st_dev && Target.st_ino == Source.st_ino) return ERROR_SHARING_VIOLATION;
  if (Options.FailIfExists) return Options.ExistsError;
  if (CheckWritable(Target) != ERROR_SUCCESS) return ERROR_ACCESS_DENIED;
  // Windows will not replace a hidden or system file with a copy either.
  if (ReadStoredBits(New) & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)) return ERROR_ACCESS_DENIED;
  return ERROR_SUCCESS;
}

// Stores Bits beside the file being written. The platform's own Env writes
// through the descriptor; an installed replacement sees the primitive call.
DWORD StoreDosBits(const OutputFile& Out, DWORD Bits) {
  Env* E = Env::Default();
  if (E != Env::Platform()) return E->WriteDosAttributes(Out.Path(), Bits);
  char Value[16];
  int Len = std::snprintf(Value, sizeof Value, "0x%x", static_cast<unsigned>(Bits & kStoredBits));
  if (fsetxattr(Out.Fd(), kDosAttributeName, Value, static_cast<size_t>(Len), 0) == 0) return ERROR_SUCCESS;
  return errno == ENOTSUP ? ERROR_NOT_SUPPORTED : ErrnoToWindowsError(errno);
}

// Gives the copy the source's stored attributes plus archive and its
// last-write time. The permissions are the source's less the umask, as for
// any new file: the output was created with them plus the owner's write bit
// (so that the attributes could go in), which a source without it (a
// read-only one, for instance) takes away again here.
DWORD CopyMetadata(int In, const struct stat& Source, const struct timespec& Before, const OutputFile& Out) {
  DWORD Error = StoreDosBits(Out, StoredBitsOf(In, Source, Before) | FILE_ATTRIBUTE_ARCHIVE);
  // A file system without extended attributes still gets the data.
  if (Error != ERROR_SUCCESS && Error != ERROR_NOT_SUPPORTED) return Error;
  struct timespec Times[2] = {{0, UTIME_OMIT}, Source.st_mtim};
  if (futimens(Out.Fd(), Times) != 0) return ErrnoToWindowsError(errno);
  if (!(Source.st_mode & S_IWUSR)) {
    struct stat Created;
    if (fstat(Out.Fd(), &Created) != 0 || fchmod(Out.Fd(), Created.st_mode & 07777 & ~S_IWUSR) != 0)
      return ErrnoToWindowsError(errno);
  }
  return ERROR_SUCCESS;
}

DWORD RenameIntoPlace(OutputFile& Out, const std::string& New, const CopyOptions& Options) {
  int Error = Out.RenameTo(New, Options.FailIfExists);
  if (Error == 0) return ERROR_SUCCESS;
  return Error == EEXIST ? Options.ExistsError : PathError(Error, New);
}

// Copies the data of In (Total bytes when the copy started) to Out with
// progress: at the start, after every chunk, and once at the end for an
// empty file. Stops at Total, or earlier when the source shrinks. A size of
// 0 may be unknown (files of /proc say 0): such a file is copied to its end.
DWORD CopyData(int In, int Out, std::int64_t Total, LPPROGRESS_ROUTINE Progress, void* Data, BOOL* Cancel) {
  if (!Report(Progress, Data, Total, 0, CALLBACK_STREAM_SWITCH)) return ERROR_REQUEST_ABORTED;
  if (Total > kChunkBytes) posix_fadvise(In, 0, 0, POSIX_FADV_SEQUENTIAL);
  const bool SizeKnown = Total > 0;
  std::int64_t Done = 0;
  do {
    if (Cancelled(Cancel)) return ERROR_REQUEST_ABORTED;
    if (LongOperationsCancelled()) return ERROR_OPERATION_ABORTED;
    if (SizeKnown && Done == Total) break;
    std::int64_t Copied = 0;
    const std::int64_t Want = SizeKnown ? std::min(kChunkBytes, Total - Done) : kChunkBytes;
    DWORD Error = Env::Default()->CopyChunk(In, Out, Want, Copied);
    if (Error != ERROR_SUCCESS) return Error;
    if (Copied == 0) break;  // the end: the source became shorter, or was empty
    Done += Copied;
    if (!Report(Progress, Data, SizeKnown ? Total : Done, Done, CALLBACK_CHUNK_FINISHED))
      return ERROR_REQUEST_ABORTED;
  } while (!SizeKnown || Done < Total);
  if (Done == 0 && !Report(Progress, Data, 0, 0, CALLBACK_CHUNK_FINISHED)) return ERROR_REQUEST_ABORTED;
  return ERROR_SUCCESS;
}

}  // namespace

DWORD PosixEnv::CopyChunk(THandle From, THandle To, std::int64_t MaxBytes, std::int64_t& Copied) {
  Copied = 0;
  const int In = static_cast<int>(From), Out = static_cast<int>(To);
  while (Copied < MaxBytes) {
    if (LongOperationsCancelled()) return ERROR_OPERATION_ABORTED;
    const std::int64_t Want = std::min(MaxBytes - Copied, kCallBytes);
    ssize_t N = copy_file_range(In, nullptr, Out, nullptr, static_cast<size_t>(Want), 0);
    if (N > 0) {
      Copied += N;
      continue;
    }
    // The end, or data the kernel will not copy (/proc, /sys): reading tells.
    if (N == 0) return ReadWriteCopy(In, Out, MaxBytes, Copied);
    if (errno == EINTR) continue;
    if (errno == EXDEV || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP || errno == EBADF)
      return ReadWriteCopy(In, Out, MaxBytes, Copied);
    return ErrnoToWindowsError(errno);
  }
  return ERROR_SUCCESS;
}

bool CopyWithProgress(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                      void* Data, BOOL* Cancel, const CopyOptions& Options) {
  if (LongOperationsCancelled()) return Fail(ERROR_OPERATION_ABORTED);
  // Non-blocking, so a FIFO cannot hold the open; it is refused just after.
  int In = open(Existing.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (In < 0) return Fail(PathError(errno, Existing));
  FdCloser InCloser(In);
  const struct timespec Before = ClockBeforeStat();
  struct stat Source;
  if (fstat(In, &Source) != 0) return Fail(ErrnoToWindowsError(errno));
  if (!S_ISREG(Source.st_mode)) return Fail(ERROR_ACCESS_DENIED);

  const mode_t CreateMode = (Source.st_mode & 07777) | S_IWUSR;
  std::string OutPath = New;
  int Fd = Options.ViaTemporary ? -1 : CreatePendingFile(New, O_WRONLY, CreateMode);
  bool Replacing = Fd < 0;
  if (Fd < 0) {
    if (!Options.ViaTemporary && errno != EEXIST) return Fail(PathError(errno, New));
    // Replace what is there only through a complete temporary file.
    if (DWORD Error = CheckTarget(New, Source, Options)) return Fail(Error);
    DWORD Error = ERROR_SUCCESS;
    Fd = CreateTempBeside(New, OutPath, Error, CreateMode);
    if (Fd < 0) return Fail(Error);
  }
  OutputFile Out(Fd, OutPath);

  DWORD Error = CopyData(In, Out.Fd(), Source.st_size, Progress, Data, Cancel);
  if (Error == ERROR_SUCCESS) Error = CopyMetadata(In, Source, Before, Out);
  if (Error == ERROR_SUCCESS && Options.WriteThrough && fdatasync(Out.Fd()) != 0)
    Error = ErrnoToWindowsError(errno);
  if (Error == ERROR_SUCCESS) Error = Out.Close();
  if (Error == ERROR_SUCCESS && Replacing) Error = RenameIntoPlace(Out, New, Options);
  if (Error != ERROR_SUCCESS) return Fail(Error);
  if (!Replacing) Out.Keep();
  return true;
}

bool PosixEnv::CopyFileExA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                           void* Data, BOOL* Cancel, DWORD CopyFlags) {
  CopyOptions Options;
  Options.FailIfExists = (CopyFlags & COPY_FILE_FAIL_IF_EXISTS) != 0;
  return CopyWithProgress(Existing, New, Progress, Data, Cancel, Options);
}

}  // namespace zt::platform::posix
