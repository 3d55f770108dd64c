// The free functions of files.h: the services forward to the installed Env;
// the few built from other services live here, once for every platform.
#include "platform/files.h"

#include <algorithm>
#include <utility>

#include "platform/dates.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "platform/paths.h"

namespace zt::platform {

int FindFirst(const std::string& Path, int Attr, TSearchRec& F) {
  return Env::Default()->FindFirst(Path, Attr, F);
}
int FindNext(TSearchRec& F) { return Env::Default()->FindNext(F); }
void FindClose(TSearchRec& F) { Env::Default()->FindClose(F); }

DWORD GetFileAttributesA(const std::string& Path) { return Env::Default()->GetFileAttributesA(Path); }
bool SetFileAttributesA(const std::string& Path, DWORD Attributes) {
  return Env::Default()->SetFileAttributesA(Path, Attributes);
}

bool GetFileAttributesExA(const std::string& Path, WIN32_FILE_ATTRIBUTE_DATA& Data) {
  FileInfo Info;
  if (DWORD Error = Env::Default()->QueryFileInfo(Path, Info)) {
    SetLastError(Error);
    return false;
  }
  Data.dwFileAttributes = Info.Attributes;
  Data.ftLastWriteTime = UnixToFileTime(Info.LastWriteSeconds, Info.LastWriteNanoseconds);
  Data.nFileSize = Info.Size;
  return true;
}

bool SetFileLastWriteTime(const std::string& Path, TFileTime LastWrite) {
  return Env::Default()->SetFileLastWriteTime(Path, LastWrite);
}

bool DeleteFile(const std::string& Path) { return Env::Default()->DeleteFile(Path); }
bool TPendingDelete::Begin(const std::string& Path) {
  Undo();
  if (!Env::Default()->SetFileAside(Path, Aside_)) {
    Aside_.clear();
    return false;
  }
  Path_ = Path;
  return true;
}

void TPendingDelete::Commit() { End(/*PutBack=*/false); }
void TPendingDelete::Undo() { End(/*PutBack=*/true); }

void TPendingDelete::End(bool PutBack) {
  if (Aside_.empty()) return;
  Env::Default()->EndFileAside(Aside_, Path_, PutBack);
  Aside_.clear();
}

bool RemoveDirectory(const std::string& Path) { return Env::Default()->RemoveDirectory(Path); }
bool CreateDirectory(const std::string& Path) { return Env::Default()->CreateDirectory(Path); }

bool CopyFileExA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress, void* Data,
                 BOOL* Cancel, DWORD CopyFlags) {
  return Env::Default()->CopyFileExA(Existing, New, Progress, Data, Cancel, CopyFlags);
}

bool MoveFileWithProgressA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                           void* Data, DWORD Flags) {
  return Env::Default()->MoveFileWithProgressA(Existing, New, Progress, Data, Flags);
}

// Win32's MoveFile is MoveFileEx with MOVEFILE_COPY_ALLOWED.
bool MoveFileA(const std::string& Existing, const std::string& New) {
  return Env::Default()->MoveFileWithProgressA(Existing, New, nullptr, nullptr, MOVEFILE_COPY_ALLOWED);
}

bool MoveFileExA(const std::string& Existing, const std::string& New, DWORD Flags) {
  return Env::Default()->MoveFileWithProgressA(Existing, New, nullptr, nullptr, Flags);
}

// Delphi's rule: create the parent levels first, then this one.
bool ForceDirectories(const std::string& Path) {
  std::string Dir = ExcludeTrailingPathDelimiter(NormalizeDelimiters(Path));
  if (Dir.empty()) {
    SetLastError(ERROR_PATH_NOT_FOUND);
    return false;
  }
  if (DirectoryExists(Dir)) return true;
  std::string Parent = ExtractFileDir(Dir);
  if (!Parent.empty() && Parent != Dir && !ForceDirectories(Parent)) return false;
  return CreateDirectory(Dir);
}

bool FileExists(const std::string& Path) {
  bool IsDirectory = false;
  return Env::Default()->PathExists(Path, IsDirectory) && !IsDirectory;
}

bool DirectoryExists(const std::string& Path) {
  bool IsDirectory = false;
  return Env::Default()->PathExists(Path, IsDirectory) && IsDirectory;
}

bool GetDiskFreeSpaceExA(const std::string& Directory, std::uint64_t* FreeBytesAvailable,
                         std::uint64_t* TotalBytes, std::uint64_t* TotalFreeBytes) {
  return Env::Default()->GetDiskFreeSpaceExA(Directory, FreeBytesAvailable, TotalBytes, TotalFreeBytes);
}

THandle FileOpen(const std::string& Path, int Mode) { return Env::Default()->FileOpen(Path, Mode); }
THandle FileCreate(const std::string& Path) { return Env::Default()->FileCreate(Path); }
int FileRead(THandle Handle, void* Buffer, int Count) {
  return Env::Default()->FileRead(Handle, Buffer, Count);
}
int FileWrite(THandle Handle, const void* Buffer, int Count) {
  return Env::Default()->FileWrite(Handle, Buffer, Count);
}
std::int64_t FileSeek(THandle Handle, std::int64_t Offset, int Origin) {
  return Env::Default()->FileSeek(Handle, Offset, Origin);
}
void FileClose(THandle Handle) { Env::Default()->FileClose(Handle); }

std::int64_t FileSizeOf(const std::string& Path) {
  FileInfo Info;
  DWORD Error = Env::Default()->QueryFileInfo(Path, Info);
  if (Error != 0) {
    SetLastError(Error);
    return -1;
  }
  return Info.Size;
}

int FileAge(const std::string& Path) {
  FileInfo Info;
  DWORD Error = Env::Default()->QueryFileInfo(Path, Info);
  if (Error != 0 || (Info.Attributes & FILE_ATTRIBUTE_DIRECTORY)) {
    SetLastError(Error != 0 ? Error : ERROR_FILE_NOT_FOUND);
    return -1;
  }
  return DateTimeToFileDate(UnixToDateTime(static_cast<std::time_t>(Info.LastWriteSeconds)));
}

int FileGetDate(THandle Handle) { return Env::Default()->FileGetDate(Handle); }
// Delphi's way: open for writing (so a read-only file gives 5), set, close.
int FileSetDate(const std::string& Path, int Age) {
  THandle H = FileOpen(Path, fmOpenWrite);
  if (H == INVALID_HANDLE_VALUE) return static_cast<int>(GetLastError());
  int Result = FileSetDate(H, Age);
  FileClose(H);
  return Result;
}
int FileSetDate(THandle Handle, int Age) { return Env::Default()->FileSetDate(Handle, Age); }

bool WriteFileAtomically(const std::string& Path, const std::string& Contents) {
  return Env::Default()->WriteFileAtomically(Path, Contents);
}

bool WriteFileAtomically(const std::string& Path, const std::string& Head, THandle Tail) {
  return Env::Default()->WriteFileAtomically(Path, Head, Tail);
}

bool TFileReplacement::Begin(const std::string& Path) {
  Abandon();
  Handle_ = Env::Default()->CreateReplacement(Path, Temp_);
  if (Handle_ == INVALID_HANDLE_VALUE) return false;
  Path_ = Path;
  return true;
}

bool TFileReplacement::Write(const void* Data, std::size_t Count) {
  const char* P = static_cast<const char*>(Data);
  while (Count > 0) {
    const int Piece = static_cast<int>(std::min<std::size_t>(Count, 1u << 30));
    if (FileWrite(Handle_, P, Piece) != Piece) return false;
    P += Piece, Count -= static_cast<std::size_t>(Piece);
  }
  return true;
}

bool TFileReplacement::Append(THandle From) {
  std::int64_t Copied = 0;
  do {
    if (DWORD Error = Env::Default()->CopyChunk(From, Handle_, std::int64_t{16} << 20, Copied)) {
      SetLastError(Error);
      return false;
    }
  } while (Copied > 0);
  return true;
}

bool TFileReplacement::Commit() {
  if (Handle_ == INVALID_HANDLE_VALUE) {
    SetLastError(ERROR_INVALID_HANDLE);
    return false;
  }
  const THandle H = std::exchange(Handle_, INVALID_HANDLE_VALUE);
  return Env::Default()->CommitReplacement(H, Temp_, Path_);
}

void TFileReplacement::Abandon() {
  if (Handle_ == INVALID_HANDLE_VALUE) return;
  const DWORD Error = GetLastError();  // the failure that made the caller give up
  Env::Default()->AbandonReplacement(std::exchange(Handle_, INVALID_HANDLE_VALUE), Temp_);
  SetLastError(Error);
}

bool ReadWholeFile(const std::string& Path, std::string& Contents) {
  Contents.clear();
  THandle H = FileOpen(Path, fmOpenRead | fmShareDenyNone);
  if (H == INVALID_HANDLE_VALUE) return false;
  bool Ok = ReadWholeFile(H, Contents);
  DWORD Error = GetLastError();
  FileClose(H);
  SetLastError(Error);
  return Ok;
}

bool ReadWholeFile(THandle H, std::string& Contents) {
  // Read straight into the string, reserved from the file's length, so a
  // large file costs one pass and no re-allocation; the loop still follows a
  // file that grows or shrinks while it is read. The string grows a step at
  // a time: touching gigabytes of fresh memory takes seconds, and a stop is
  // seen between two steps (FileRead checks it).
  constexpr std::size_t kStep = std::size_t{16} << 20;
  Contents.clear();
  std::int64_t Size = FileSeek(H, 0, 2);
  FileSeek(H, 0, 0);
  std::size_t Used = 0;
  Contents.reserve(Size > 0 ? static_cast<std::size_t>(Size) + 1 : 65536);
  for (;;) {
    if (Used == Contents.size()) {
      // Up to the reserve; past it (the file grew), doubling.
      const std::size_t Room = Contents.capacity() > Used ? Contents.capacity() - Used : Used;
      Contents.resize(Used + std::min(Room, kStep));
    }
    std::size_t Want = Contents.size() - Used;
    int N = FileRead(H, Contents.data() + Used, static_cast<int>(Want));
    if (N < 0) {
      Contents.clear();
      return false;
    }
    if (N == 0) break;
    Used += static_cast<std::size_t>(N);
  }
  Contents.resize(Used);
  return true;
}

}  // namespace zt::platform
