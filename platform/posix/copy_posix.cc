// CopyFileExA on POSIX. The data goes into a temporary file beside the
// target, in large chunks (copy_file_range lets the kernel or the file system
// move the bytes), and is renamed into place only when complete: a cancel, a
// full disk or any other failure leaves no partial target.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

#include "platform/posix/posix_env.h"

namespace zt::platform::posix {

namespace {

// One progress step; large enough that copying runs at the file system's speed.
constexpr std::int64_t kChunkBytes = std::int64_t{16} << 20;

// Read/write copy for file systems without copy_file_range between them.
DWORD ReadWriteCopy(int From, int To, std::int64_t MaxBytes, std::int64_t& Copied) {
  thread_local std::vector<char> Buffer(std::size_t{1} << 20);
  while (Copied < MaxBytes) {
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

// Owns the temporary file: closes it and, unless kept, removes it.
class TempFile {
 public:
  TempFile(int Fd, std::string Path) : Fd_(Fd), Path_(std::move(Path)) {}
  ~TempFile() {
    if (Fd_ >= 0) close(Fd_);
    if (!Kept_) unlink(Path_.c_str());
  }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;
  int Fd() const { return Fd_; }
  const std::string& Path() const { return Path_; }
  // Closes the descriptor: 0, or the error a delayed write reports.
  DWORD Close() {
    int Result = close(Fd_);
    Fd_ = -1;
    return Result == 0 ? ERROR_SUCCESS : ErrnoToWindowsError(errno);
  }
  void Keep() { Kept_ = true; }

 private:
  int Fd_;
  std::string Path_;
  bool Kept_ = false;
};

class FdCloser {
 public:
  explicit FdCloser(int Fd) : Fd_(Fd) {}
  ~FdCloser() { close(Fd_); }
  FdCloser(const FdCloser&) = delete;
  FdCloser& operator=(const FdCloser&) = delete;

 private:
  int Fd_;
};

// Calls the progress routine; false when it asks to stop (PROGRESS_CANCEL or
// PROGRESS_STOP). PROGRESS_QUIET silences it for the rest of the copy.
bool Report(LPPROGRESS_ROUTINE& Progress, void* Data, std::int64_t Total, std::int64_t Done, DWORD Reason) {
  if (!Progress) return true;
  DWORD Answer = Progress(Total, Done, Total, Done, 1, Reason, Data);
  if (Answer == PROGRESS_QUIET) Progress = nullptr;
  return Answer == PROGRESS_CONTINUE || Answer == PROGRESS_QUIET;
}

// Why an existing target refuses to be replaced (0 when it may be).
DWORD CheckTarget(const std::string& New, const struct stat& Source, const CopyOptions& Options) {
  struct stat Target;
  if (stat(New.c_str(), &Target) != 0) return ERROR_SUCCESS;  // nothing there; missing folders show later
  if (Target.st_dev == Source.st_dev && Target.st_ino == Source.st_ino) return ERROR_SHARING_VIOLATION;
  if (Options.FailIfExists) return Options.ExistsError;
  if (CheckWritable(Target) != ERROR_SUCCESS) return ERROR_ACCESS_DENIED;
  // Windows will not replace a hidden or system file with a copy either.
  if (ReadStoredBits(New) & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)) return ERROR_ACCESS_DENIED;
  return ERROR_SUCCESS;
}

// Gives the copy the source's stored attributes plus archive, its
// permissions (so read-only stays read-only) and its last-write time.
DWORD CopyMetadata(const std::string& Existing, const struct stat& Source, const TempFile& Temp) {
  DWORD Bits = ReadStoredBits(Existing) | FILE_ATTRIBUTE_ARCHIVE;
  DWORD Error = Env::Default()->WriteDosAttributes(Temp.Path(), Bits);
  // A file system without extended attributes still gets the data.
  if (Error != ERROR_SUCCESS && Error != ERROR_NOT_SUPPORTED) return Error;
  struct timespec Times[2] = {{0, UTIME_OMIT}, Source.st_mtim};
  if (futimens(Temp.Fd(), Times) != 0) return ErrnoToWindowsError(errno);
  if (fchmod(Temp.Fd(), Source.st_mode & 07777) != 0) return ErrnoToWindowsError(errno);
  return ERROR_SUCCESS;
}

DWORD RenameIntoPlace(const std::string& Temp, const std::string& New, const CopyOptions& Options) {
  if (Options.FailIfExists) {
    if (renameat2(AT_FDCWD, Temp.c_str(), AT_FDCWD, New.c_str(), RENAME_NOREPLACE) == 0) return ERROR_SUCCESS;
    if (errno == EEXIST) return Options.ExistsError;
    if (errno != EINVAL && errno != ENOSYS) return PathError(errno, New);
    // The file system cannot refuse atomically: check, then rename.
    struct stat St;
    if (lstat(New.c_str(), &St) == 0) return Options.ExistsError;
  }
  return rename(Temp.c_str(), New.c_str()) == 0 ? ERROR_SUCCESS : PathError(errno, New);
}

}  // namespace

DWORD PosixEnv::CopyChunk(THandle From, THandle To, std::int64_t MaxBytes, std::int64_t& Copied) {
  Copied = 0;
  const int In = static_cast<int>(From), Out = static_cast<int>(To);
  while (Copied < MaxBytes) {
    ssize_t N = copy_file_range(In, nullptr, Out, nullptr, static_cast<size_t>(MaxBytes - Copied), 0);
    if (N > 0) {
      Copied += N;
      continue;
    }
    if (N == 0) break;
    if (errno == EINTR) continue;
    if (errno == EXDEV || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP || errno == EBADF)
      return ReadWriteCopy(In, Out, MaxBytes, Copied);
    return ErrnoToWindowsError(errno);
  }
  return ERROR_SUCCESS;
}

bool CopyWithProgress(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                      void* Data, BOOL* Cancel, const CopyOptions& Options) {
  struct stat Source;
  if (stat(Existing.c_str(), &Source) != 0) return Fail(PathError(errno, Existing));
  if (S_ISDIR(Source.st_mode)) return Fail(ERROR_ACCESS_DENIED);
  if (DWORD Error = CheckTarget(New, Source, Options)) return Fail(Error);

  int In = open(Existing.c_str(), O_RDONLY | O_CLOEXEC);
  if (In < 0) return Fail(PathError(errno, Existing));
  FdCloser InCloser(In);
  std::string TempPath;
  DWORD Error = ERROR_SUCCESS;
  int Fd = CreateTempBeside(New, TempPath, Error);
  if (Fd < 0) return Fail(Error);
  TempFile Temp(Fd, TempPath);

  const std::int64_t Total = Source.st_size;
  std::int64_t Done = 0;
  if (!Report(Progress, Data, Total, 0, CALLBACK_STREAM_SWITCH)) return Fail(ERROR_REQUEST_ABORTED);
  posix_fadvise(In, 0, 0, POSIX_FADV_SEQUENTIAL);
  for (;;) {
    if (Cancel && *Cancel) return Fail(ERROR_REQUEST_ABORTED);
    // Asking for exactly what is left spares small files a call; one more
    // call past the size finds the end (or what was appended meanwhile).
    std::int64_t Want = Done < Total ? std::min(kChunkBytes, Total - Done) : kChunkBytes;
    std::int64_t Copied = 0;
    Error = Env::Default()->CopyChunk(In, Temp.Fd(), Want, Copied);
    if (Error != ERROR_SUCCESS) return Fail(Error);
    if (Copied == 0) break;
    Done += Copied;
    if (!Report(Progress, Data, std::max(Total, Done), Done, CALLBACK_CHUNK_FINISHED))
      return Fail(ERROR_REQUEST_ABORTED);
  }
  if (Done == 0 && !Report(Progress, Data, 0, 0, CALLBACK_CHUNK_FINISHED)) return Fail(ERROR_REQUEST_ABORTED);

  if ((Error = CopyMetadata(Existing, Source, Temp))) return Fail(Error);
  if (Options.WriteThrough && fdatasync(Temp.Fd()) != 0) return Fail(ErrnoToWindowsError(errno));
  if ((Error = Temp.Close())) return Fail(Error);
  if ((Error = RenameIntoPlace(Temp.Path(), New, Options))) return Fail(Error);
  Temp.Keep();
  return true;
}

bool PosixEnv::CopyFileExA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                           void* Data, BOOL* Cancel, DWORD CopyFlags) {
  CopyOptions Options;
  Options.FailIfExists = (CopyFlags & COPY_FILE_FAIL_IF_EXISTS) != 0;
  return CopyWithProgress(Existing, New, Progress, Data, Cancel, Options);
}

}  // namespace zt::platform::posix
