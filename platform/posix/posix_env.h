// The POSIX Env and the helpers its files share. Internal to platform/posix.
#pragma once

#include <sys/stat.h>

#include <string>

#include "platform/env.h"
#include "platform/errors.h"

namespace zt::platform::posix {

class PosixEnv final : public Env {
 public:
  DWORD QueryFileInfo(const std::string& Path, FileInfo& Info) override;
  DWORD CopyChunk(THandle From, THandle To, std::int64_t MaxBytes, std::int64_t& Copied) override;
  DWORD WriteDosAttributes(const std::string& Path, DWORD Bits) override;
  bool PathExists(const std::string& Path, bool& IsDirectory) override;

  int FindFirst(const std::string& Path, int Attr, TSearchRec& F) override;
  int FindNext(TSearchRec& F) override;
  void FindClose(TSearchRec& F) override;

  DWORD GetFileAttributesA(const std::string& Path) override;
  bool SetFileAttributesA(const std::string& Path, DWORD Attributes) override;

  bool DeleteFile(const std::string& Path) override;
  bool SetFileAside(const std::string& Path, std::string& Aside) override;
  void EndFileAside(const std::string& Aside, const std::string& Original, bool PutBack) override;
  bool RemoveDirectory(const std::string& Path) override;
  bool CreateDirectory(const std::string& Path) override;

  bool CopyFileExA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                   void* Data, BOOL* Cancel, DWORD CopyFlags) override;
  bool MoveFileWithProgressA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                             void* Data, DWORD Flags) override;

  THandle FileOpen(const std::string& Path, int Mode) override;
  THandle FileCreate(const std::string& Path) override;
  int FileRead(THandle Handle, void* Buffer, int Count) override;
  int FileWrite(THandle Handle, const void* Buffer, int Count) override;
  std::int64_t FileSeek(THandle Handle, std::int64_t Offset, int Origin) override;
  void FileClose(THandle Handle) override;

  int FileGetDate(THandle Handle) override;
  int FileSetDate(THandle Handle, int Age) override;
  bool SetFileLastWriteTime(const std::string& Path, TFileTime LastWrite) override;

  bool GetDiskFreeSpaceExA(const std::string& Directory, std::uint64_t* FreeBytesAvailable,
                           std::uint64_t* TotalBytes, std::uint64_t* TotalFreeBytes) override;

  bool WriteFileAtomically(const std::string& Path, const std::string& Contents) override;
  bool WriteFileAtomically(const std::string& Path, const std::string& Head, THandle Tail) override;
  THandle CreateReplacement(const std::string& Path, std::string& TempPath) override;
  bool CommitReplacement(THandle Handle, const std::string& TempPath, const std::string& Path) override;
  void AbandonReplacement(THandle Handle, const std::string& TempPath) override;

  DWORD RegOpenKeyExA(HKEY Key, const std::string& SubKey, DWORD Access, HKEY& Result) override;
  DWORD RegCreateKeyExA(HKEY Key, const std::string& SubKey, DWORD Access, HKEY& Result,
                        DWORD* Disposition) override;
  DWORD RegCloseKey(HKEY Key) override;
  DWORD RegQueryValueExA(HKEY Key, const std::string& ValueName, DWORD* Type, std::string* Data) override;
  DWORD RegSetValueExA(HKEY Key, const std::string& ValueName, DWORD Type, const std::string& Data) override;
  DWORD RegDeleteValueA(HKEY Key, const std::string& ValueName) override;
  DWORD RegDeleteKeyA(HKEY Key, const std::string& SubKey) override;
  DWORD RegQueryInfoKeyA(HKEY Key, DWORD* SubKeys, DWORD* Values) override;
  DWORD RegEnumKeyExA(HKEY Key, DWORD Index, std::string& Name) override;
};

// The extended attribute that keeps hidden, system and archive (the Samba
// and Wine convention: text "0x" + hex).
inline constexpr const char* kDosAttributeName = "user.DOSATTRIB";
inline constexpr DWORD kStoredBits = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;

// The Windows error for a failed call on Path: ENOENT is "file not found"
// when Path's directory exists and "path not found" when it does not.
DWORD PathError(int Errno, const std::string& Path);

// Sets the last-error code and returns false (the Win32 failure value).
inline bool Fail(DWORD Error) {
  SetLastError(Error);
  return false;
}

// Windows' read-only attribute: no write permission bit at all.
inline bool IsReadOnlyMode(mode_t Mode) { return (Mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0; }

// Attributes of an existing file from its stat data and name (reads the
// stored DOS bits).
DWORD AttributesOf(const std::string& Path, const struct stat& St);
// Attributes from stat data, the stored DOS bits and whether the name hides
// the file.
DWORD CombineAttributes(const struct stat& St, DWORD Stored, bool DotHidden);
// The stored DOS bits (kStoredBits) of Path, or of the open file Fd; 0 when
// none are stored.
DWORD ReadStoredBits(const std::string& Path);
DWORD ReadStoredBits(int Fd);
// The same for a file described by St, from a per-thread memory of recent
// reads when the file has not changed since (see attributes_posix.cc).
// Before is the clock read just before St was taken (ClockBeforeStat).
struct timespec ClockBeforeStat();
DWORD StoredBitsOf(const std::string& Path, const struct stat& St, const struct timespec& Before);
DWORD StoredBitsOf(int Fd, const struct stat& St, const struct timespec& Before);
// True for a name the platform hides: a leading dot, except "." and "..".
// IsDotHidden takes a path, IsDotHiddenName a bare name.
bool IsDotHidden(const std::string& Path);
bool IsDotHiddenName(const char* Name);

// Attributes of a symbolic link: those of what it leads to, plus the
// reparse-point bit (and never "normal", which stands alone).
DWORD WithLinkBit(DWORD Attributes);

// Fills Info from stat data and the file's attributes.
void FillInfo(const struct stat& St, DWORD Attributes, FileInfo& Info);

// True while the platform's own Env is installed. Services then may use
// descriptor- and directory-relative calls instead of their path-based
// primitives; with a replacement installed they call the primitives, so the
// replacement sees (and can fail) every one.
inline bool PlatformEnvInstalled() { return Env::Default() == Env::Platform(); }

// Files this large or larger are mapped rather than read (TFileView,
// FileConsumeMapped): below it a read costs less than setting up and
// tearing down a mapping.
constexpr std::int64_t kMapFrom = 1 << 20;

// The file that Path leads to: symbolic links of its last component followed
// (also to a file that does not exist yet), or Path itself when it is none.
std::string FinalTarget(const std::string& Path);

// Takes a read lease on Fd (opened for reading), so that writers are kept
// out: 0, or ERROR_SHARING_VIOLATION while the file is open for writing.
// Where no lease can be had for another reason, 0 without one.
DWORD DenyWriters(int Fd);

// Checks that a file may be written, replaced or removed: 0, or
// ERROR_ACCESS_DENIED for a read-only file, a directory, or anything else
// that is no regular file (a FIFO, socket or device is never written over,
// replaced by a copy or removed: writing could block or reach hardware, and
// replacing /dev/null would break the whole system).
DWORD CheckWritable(const struct stat& St);

// The copy behind CopyFileExA and a move across file systems. A new target
// is created under its own name (unless ViaTemporary), an existing one
// replaced by a temporary file renamed over it at the end; on any failure or
// cancel the file being written is removed and an existing New is left as it
// was. Only regular files are copied (others: ERROR_ACCESS_DENIED).
struct CopyOptions {
  bool FailIfExists = false;
  DWORD ExistsError = ERROR_FILE_EXISTS;  // what an existing New gives when FailIfExists
  bool WriteThrough = false;              // flush the data before the rename
  bool ViaTemporary = false;              // also a new target is written under a temporary name
};
bool CopyWithProgress(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                      void* Data, BOOL* Cancel, const CopyOptions& Options);

// A unique temporary file next to Target (same directory, so renaming it
// over Target is atomic), created with Mode less the umask and registered as
// a pending file (below). Returns the descriptor and fills TempPath, or -1
// with the Windows error in Error.
int CreateTempBeside(const std::string& Target, std::string& TempPath, DWORD& Error, mode_t Mode = 0666);
// A new hidden name beside Target: ".NAME.zt-" + process and counter.
std::string TempNameBeside(const std::string& Target);

// ---- Pending files (stop.h) ----
// A file the layer creates to write, or sets aside, is pending until its
// owner renames, keeps or removes it; AbandonPendingFiles cleans up what is
// still pending. Each call does its file operation and the bookkeeping under
// one lock, so the two never part.

// open(Path, Flags | O_CREAT | O_EXCL | O_CLOEXEC, Mode), the new file
// pending: the descriptor, or -1 with errno set.
int CreatePendingFile(const std::string& Path, int Flags, mode_t Mode);
// mkostemps(Template, SuffixLength, O_CLOEXEC), the new file pending: the
// descriptor, or -1 with errno set.
int CreatePendingTemporary(std::string& Template, int SuffixLength);
// Renames the pending file From to To (NoReplace: fails with EEXIST when To
// exists), which ends its pending state. 0, or the errno of the failure.
int RenamePendingFile(const std::string& From, const std::string& To, bool NoReplace);
// The pending file stays where it is, finished.
void KeepPendingFile(const std::string& Path);
// Removes the pending file.
void RemovePendingFile(const std::string& Path);
// Renames Path to a new hidden name beside it (filled into Aside), pending
// until PutBackPendingFile or RemovePendingFile. 0, or the errno of the failure.
int SetFileAsidePending(const std::string& Path, std::string& Aside);
// Renames Aside back to Original unless that name is taken (EEXIST; the
// aside file then stays as it is). 0, or the errno of the failure.
int PutBackPendingFile(const std::string& Aside, const std::string& Original);

}  // namespace zt::platform::posix
