// WriteFileAtomically on POSIX: the file a path names (links followed) gets
// new contents, and stays the same file to its other names and to the system:
//  - normally a temporary file beside it takes the contents, the old file's
//    permissions, owner, group and extended attributes, is flushed, and is
//    renamed over it, so readers see the old file or the new one;
//  - a file with several hard links, or one whose owner or attributes the
//    temporary file cannot take (a user cannot give a file away), is
//    rewritten in place after its space is reserved: every name sees the
//    change, and a full disk refuses it before a byte changes.
// A tail file after the new head is copied into the temporary file from
// file to file; a rewrite in place reads it first, since it may be the very
// file being rewritten.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <vector>

#include "platform/paths.h"
#include "platform/posix/posix_env.h"

namespace zt::platform::posix {

namespace {

DWORD WriteAll(int Fd, const std::string& Contents, off_t Offset) {
  const char* P = Contents.data();
  size_t Left = Contents.size();
  while (Left > 0) {
    ssize_t N = pwrite(Fd, P, Left, Offset);
    if (N < 0 && errno == EINTR) continue;
    if (N < 0) return ErrnoToWindowsError(errno);
    P += N, Left -= static_cast<size_t>(N), Offset += N;
  }
  return ERROR_SUCCESS;
}

// Gives the new file Fd everything of Old that is not its contents: the
// owner and group first (changing them may clear set-id bits), then the
// permissions and every extended attribute (ACLs and the stored DOS bits
// are among them). False when any of it cannot be given.
bool TakeOver(int Fd, const std::string& OldPath, const struct stat& Old) {
  if (fchown(Fd, Old.st_uid, Old.st_gid) != 0 || fchmod(Fd, Old.st_mode & 07777) != 0) return false;
  ssize_t Size = llistxattr(OldPath.c_str(), nullptr, 0);
  if (Size < 0) return errno == ENOTSUP;
  std::vector<char> Names(static_cast<size_t>(Size));
  Size = llistxattr(OldPath.c_str(), Names.data(), Names.size());
  if (Size < 0) return false;
  std::vector<char> Value;
  for (const char* Name = Names.data(); Name < Names.data() + Size; Name += strlen(Name) + 1) {
    ssize_t Len = lgetxattr(OldPath.c_str(), Name, nullptr, 0);
    if (Len < 0) return false;
    Value.resize(static_cast<size_t>(Len));
    Len = lgetxattr(OldPath.c_str(), Name, Value.data(), Value.size());
    if (Len < 0 || fsetxattr(Fd, Name, Value.data(), static_cast<size_t>(Len), 0) != 0) return false;
  }
  return true;
}

DWORD RewriteInPlace(const std::string& Path, const std::string& Contents) {
  int Fd = open(Path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  if (Fd < 0) return errno == EWOULDBLOCK ? ERROR_SHARING_VIOLATION : PathError(errno, Path);
  DWORD Error = ERROR_SUCCESS;
  const off_t Size = static_cast<off_t>(Contents.size());
  // Where the file system cannot reserve space, the write itself must do.
  if (Size > 0 && fallocate(Fd, 0, 0, Size) != 0 && errno != EOPNOTSUPP && errno != ENOSYS)
    Error = ErrnoToWindowsError(errno);
  if (Error == ERROR_SUCCESS) Error = WriteAll(Fd, Contents, 0);
  if (Error == ERROR_SUCCESS && ftruncate(Fd, Size) != 0) Error = ErrnoToWindowsError(errno);
  if (Error == ERROR_SUCCESS && fsync(Fd) != 0) Error = ErrnoToWindowsError(errno);
  if (close(Fd) != 0 && Error == ERROR_SUCCESS) Error = ErrnoToWindowsError(errno);
  return Error;
}

// Rewrites Path in place with Head and the whole of Tail, which is read
// before a byte is written: it may be open on Path itself.
bool RewriteWithTail(const std::string& Path, const std::string& Head, THandle Tail) {
  std::string Contents = Head, Rest;
  if (Tail != INVALID_HANDLE_VALUE) {
    if (!ReadWholeFile(Tail, Rest)) return false;
    Contents += Rest;
  }
  DWORD Error = RewriteInPlace(Path, Contents);
  return Error == ERROR_SUCCESS || Fail(Error);
}

// Copies the whole of Tail into Fd after its first At bytes, chunk by chunk
// through the installed Env (tests can fail it; a stop cancels it).
DWORD CopyTail(THandle Tail, int Fd, std::size_t At) {
  if (lseek(Fd, static_cast<off_t>(At), SEEK_SET) < 0 || lseek(static_cast<int>(Tail), 0, SEEK_SET) < 0)
    return ErrnoToWindowsError(errno);
  std::int64_t Copied = 0;
  do {
    if (DWORD Error = Env::Default()->CopyChunk(Tail, Fd, std::int64_t{16} << 20, Copied)) return Error;
  } while (Copied > 0);
  return ERROR_SUCCESS;
}

}  // namespace

std::string FinalTarget(const std::string& Path) {
  std::string Current = Path;
  for (int Hop = 0; Hop < 40; ++Hop) {
    char Link[PATH_MAX];
    ssize_t N = readlink(Current.c_str(), Link, sizeof Link - 1);
    if (N < 0) return Current;  // no link (or nothing there): this is the file
    std::string Next(Link, static_cast<size_t>(N));
    Current = Next[0] == '/' ? Next : ExtractFilePath(Current) + Next;
  }
  return Path;  // a loop: the operations on Path will say so
}

bool PosixEnv::WriteFileAtomically(const std::string& Path, const std::string& Contents) {
  return WriteFileAtomically(Path, Contents, INVALID_HANDLE_VALUE);
}

bool PosixEnv::WriteFileAtomically(const std::string& Path, const std::string& Head, THandle Tail) {
  const std::string File = FinalTarget(Path);
  struct stat Old;
  const bool Exists = stat(File.c_str(), &Old) == 0;
  if (Exists && CheckWritable(Old) != ERROR_SUCCESS) return Fail(ERROR_ACCESS_DENIED);
  if (Exists && Old.st_nlink > 1) return RewriteWithTail(File, Head, Tail);
  std::string TempPath;
  DWORD Error = ERROR_SUCCESS;
  int Fd = CreateTempBeside(File, TempPath, Error);
  if (Fd < 0) return Fail(Error);
  if (Exists && !TakeOver(Fd, File, Old)) {
    close(Fd);
    RemovePendingFile(TempPath);
    return RewriteWithTail(File, Head, Tail);
  }
  Error = WriteAll(Fd, Head, 0);
  if (Error == ERROR_SUCCESS && Tail != INVALID_HANDLE_VALUE) Error = CopyTail(Tail, Fd, Head.size());
  if (Error == ERROR_SUCCESS && fsync(Fd) != 0) Error = ErrnoToWindowsError(errno);
  if (close(Fd) != 0 && Error == ERROR_SUCCESS) Error = ErrnoToWindowsError(errno);
  if (Error == ERROR_SUCCESS) {
    int RenameError = RenamePendingFile(TempPath, File, /*NoReplace=*/false);
    if (RenameError != 0) Error = PathError(RenameError, File);
  }
  if (Error != ERROR_SUCCESS) {
    RemovePendingFile(TempPath);
    return Fail(Error);
  }
  return true;
}

// A replacement written piece by piece (TFileReplacement). Unlike
// WriteFileAtomically it never rewrites in place: its pieces may be read
// from the very file it replaces.
THandle PosixEnv::CreateReplacement(const std::string& Path, std::string& TempPath) {
  const std::string File = FinalTarget(Path);
  struct stat Old;
  const bool Exists = stat(File.c_str(), &Old) == 0;
  if (Exists && (CheckWritable(Old) != ERROR_SUCCESS || !S_ISREG(Old.st_mode))) {
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
  }
  DWORD Error = ERROR_SUCCESS;
  int Fd = CreateTempBeside(File, TempPath, Error);
  if (Fd < 0) {
    SetLastError(Error);
    return INVALID_HANDLE_VALUE;
  }
  // What cannot be taken over (another user's file) leaves the new file ours.
  if (Exists && !TakeOver(Fd, File, Old)) fchmod(Fd, Old.st_mode & 07777);
  return Fd;
}

bool PosixEnv::CommitReplacement(THandle Handle, const std::string& TempPath, const std::string& Path) {
  const int Fd = static_cast<int>(Handle);
  DWORD Error = fsync(Fd) == 0 ? ERROR_SUCCESS : ErrnoToWindowsError(errno);
  if (close(Fd) != 0 && Error == ERROR_SUCCESS) Error = ErrnoToWindowsError(errno);
  const std::string File = FinalTarget(Path);
  struct stat Old;
  // The file may have become read-only since Begin: Windows' replace refuses it.
  if (Error == ERROR_SUCCESS && stat(File.c_str(), &Old) == 0 && CheckWritable(Old) != ERROR_SUCCESS)
    Error = ERROR_ACCESS_DENIED;
  if (Error == ERROR_SUCCESS) {
    if (int RenameError = RenamePendingFile(TempPath, File, /*NoReplace=*/false))
      Error = PathError(RenameError, File);
  }
  if (Error == ERROR_SUCCESS) return true;
  RemovePendingFile(TempPath);
  return Fail(Error);
}

void PosixEnv::AbandonReplacement(THandle Handle, const std::string& TempPath) {
  close(static_cast<int>(Handle));
  RemovePendingFile(TempPath);
}

}  // namespace zt::platform::posix
