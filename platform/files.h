// File services with Win32 / Delphi semantics. Every function forwards to
// Env::Default() (env.h); on failure it sets the Windows last-error code
// (errors.h) and returns the Win32 failure value. Paths are narrow (UTF-8)
// strings. Thread use: any thread; the last-error code is per thread.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/errors.h"
#include "platform/win_types.h"

namespace zt::platform {

class FindState;  // opaque per-search state owned by the search record

// Delphi's TSearchRec: one directory entry found by FindFirst / FindNext.
struct TSearchRec {
  int Time = 0;  // last-write time, DOS packed local time (dates.h)
  std::int64_t Size = 0;
  int Attr = 0;                 // fa* bits of the entry; faSymLink for a symbolic link
  TFileTime LastWriteTime = 0;  // the same time to 100 ns, UTC (FindData's ftLastWriteTime)
  std::string Name;             // name only, no directory
  int ExcludeAttr = 0;          // fa* bits that exclude an entry (the mask rule)
  std::shared_ptr<FindState> State;
};

// Starts a search over Path, a directory part plus a name pattern with
// Windows wildcards (* and ?). Returns 0 and fills F with the first entry that
// passes the attribute mask Attr, or a Windows error code (2 no match or no
// such file, 3 missing directory). Entries come in directory order, "." and
// ".." included. Mask rule: an entry is skipped when it has the hidden, system,
// volume or directory bit and Attr lacks it; read-only and archive never
// exclude. A directory that Path reaches a second time (through a symbolic
// link to a directory before it on the path) is not listed: 3, as if it were
// missing, so a recursive walk stops at the first repeat. Close every
// successful search with FindClose.
int FindFirst(const std::string& Path, int Attr, TSearchRec& F);
// Next entry of the search: 0, or ERROR_NO_MORE_FILES (18) at the end.
int FindNext(TSearchRec& F);
void FindClose(TSearchRec& F);

// Windows' wildcard match of one file name against one pattern
// (FindFirstFile's DOS rules: "*.*" matches names without a dot, "?" may
// match nothing before a "." or at the end, "*." only names without a dot).
bool MatchesWildcard(const std::string& Name, const std::string& Pattern);

// Attributes of Path (links followed, FILE_ATTRIBUTE_REPARSE_POINT added for
// a link); INVALID_FILE_ATTRIBUTES on failure. The setter ignores the
// reparse-point bit.
DWORD GetFileAttributesA(const std::string& Path);
bool SetFileAttributesA(const std::string& Path, DWORD Attributes);

// Win32's GetFileAttributesEx(GetFileExInfoStandard), less the times zt
// does not keep.
struct WIN32_FILE_ATTRIBUTE_DATA {
  DWORD dwFileAttributes = 0;
  TFileTime ftLastWriteTime = 0;
  std::int64_t nFileSize = 0;  // 0 for a directory
};
bool GetFileAttributesExA(const std::string& Path, WIN32_FILE_ATTRIBUTE_DATA& Data);
// Sets a file's or directory's last-write time (links followed). Like
// Windows' SetFileTime, it needs no write access to the data: a read-only
// file may be given a time.
bool SetFileLastWriteTime(const std::string& Path, TFileTime LastWrite);

// Deletes a file. Read-only file or a directory: ERROR_ACCESS_DENIED (5),
// also when the process runs as root.
bool DeleteFile(const std::string& Path);

// A delete that waits for what is to replace the file. Begin takes Path away
// as DeleteFile does (the same refusals and errors) but keeps it under a
// hidden name beside it (".NAME.zt-…"); Commit deletes it for good, Undo, or
// the end of the object, puts it back (unless something new took the name;
// then it is deleted). An abrupt end of the program puts it back too
// (stop.h). For "delete the target, then move onto its name": a move that
// fails loses nothing.
class TPendingDelete {
 public:
  TPendingDelete() = default;
  ~TPendingDelete() { Undo(); }
  TPendingDelete(const TPendingDelete&) = delete;
  TPendingDelete& operator=(const TPendingDelete&) = delete;
  bool Begin(const std::string& Path);  // false with the last error set, as DeleteFile
  void Commit();
  void Undo();

 private:
  void End(bool PutBack);
  std::string Path_, Aside_;  // Aside_ empty: nothing pending
};

// Removes an empty directory, or a symbolic link to a directory without
// following it, as Windows removes a directory link. Not empty: 145; a file
// or a link to one: 267; read-only: 5.
bool RemoveDirectory(const std::string& Path);

// Copy progress routine, as Win32's LPPROGRESS_ROUTINE less the two handles.
// Called at the start (0 bytes), after every chunk and at the end.
using LPPROGRESS_ROUTINE = DWORD (*)(std::int64_t TotalFileSize, std::int64_t TotalBytesTransferred,
                                     std::int64_t StreamSize, std::int64_t StreamBytesTransferred,
                                     DWORD StreamNumber, DWORD CallbackReason, void* Data);

// Copies a file with Windows semantics: COPY_FILE_FAIL_IF_EXISTS gives
// ERROR_FILE_EXISTS (80); a read-only, hidden or system target gives
// ERROR_ACCESS_DENIED (5); a copy onto itself ERROR_SHARING_VIOLATION (32);
// a failed copy leaves an existing target untouched. The target gets the
// source's attributes (plus archive) and last-write time.
// *Cancel (may be null) is polled between chunks; when it becomes non-zero,
// or Progress returns PROGRESS_CANCEL, the copy stops with
// ERROR_REQUEST_ABORTED and no partial target is left. Any failure in mid-copy
// removes the partial target.
bool CopyFileExA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress, void* Data,
                 BOOL* Cancel, DWORD CopyFlags);

// Moves a file or directory. Without MOVEFILE_REPLACE_EXISTING an existing
// target gives ERROR_ALREADY_EXISTS (183). MOVEFILE_COPY_ALLOWED copies then
// deletes across file systems (reporting progress); MOVEFILE_WRITE_THROUGH
// flushes before returning.
bool MoveFileWithProgressA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                           void* Data, DWORD Flags);
// Win32's MoveFile: MoveFileWithProgressA with MOVEFILE_COPY_ALLOWED, so a
// file may cross file systems; a directory may not (ERROR_NOT_SAME_DEVICE).
bool MoveFileA(const std::string& Existing, const std::string& New);
// Win32's MoveFileEx: MoveFileWithProgressA without progress. Flags:
// MOVEFILE_REPLACE_EXISTING (files only; a directory target refuses with
// ERROR_ACCESS_DENIED), MOVEFILE_COPY_ALLOWED (files cross file systems by
// copy and delete), MOVEFILE_WRITE_THROUGH. A directory is only ever renamed:
// across file systems ERROR_NOT_SAME_DEVICE (17). A rename that changes only
// the letter case of the name succeeds also where the file system ignores
// case.
bool MoveFileExA(const std::string& Existing, const std::string& New, DWORD Flags);

bool CreateDirectory(const std::string& Path);   // parent must exist (3); existing: 183
bool ForceDirectories(const std::string& Path);  // creates every missing level
bool FileExists(const std::string& Path);        // a file, not a directory
bool DirectoryExists(const std::string& Path);

// Win32's GetDiskFreeSpaceEx for the volume that holds Directory (any path
// on it): bytes available to this user, the volume's size and its free
// bytes. Each pointer may be null. On POSIX, statvfs: f_bavail, f_blocks and
// f_bfree times f_frsize.
bool GetDiskFreeSpaceExA(const std::string& Directory, std::uint64_t* FreeBytesAvailable,
                         std::uint64_t* TotalBytes, std::uint64_t* TotalFreeBytes);

// Delphi file handles. FileOpen modes are fmOpen* | fmShare* (win_types.h);
// fmShareDenyWrite fails with ERROR_SHARING_VIOLATION while another process
// has the file open for writing (see docs/platform.md for the POSIX limits).
// Opening a read-only file for writing fails with ERROR_ACCESS_DENIED.
using THandle = std::intptr_t;
constexpr THandle INVALID_HANDLE_VALUE = -1;
THandle FileOpen(const std::string& Path, int Mode);
// Creates or truncates, read/write. An existing read-only, hidden or system
// file gives ERROR_ACCESS_DENIED (Windows will not recreate it as normal).
THandle FileCreate(const std::string& Path);
int FileRead(THandle Handle, void* Buffer, int Count);                   // bytes read, -1 on error
// For a checksum of a large file: hands the file's bytes from the handle's
// position on to Consume, in order, without copying them out of the page
// cache, and leaves the position after the last byte handed. It hands what
// it can (nothing for a small file, another kind of file, or while a
// substitute Env is in place); the caller reads the rest with FileRead until
// the end, so a file that shrinks or grows meanwhile reads as reads would
// see it. A piece of the file that vanishes while Consume reads it (another
// program truncated the file) ends Consume at once, without its return:
// Consume must commit its result only as it returns, and hold nothing that
// needs a destructor while it reads. False, with ERROR_OPERATION_ABORTED,
// when the program is stopped.
bool FileConsumeMapped(THandle Handle, const std::function<void(const unsigned char*, std::size_t)>& Consume);
int FileWrite(THandle Handle, const void* Buffer, int Count);            // bytes written, -1 on error
std::int64_t FileSeek(THandle Handle, std::int64_t Offset, int Origin);  // 0 begin, 1 current, 2 end
void FileClose(THandle Handle);
std::int64_t FileSizeOf(const std::string& Path);  // -1 when missing

// Last-write time in the DOS packed local format (two-second resolution).
int FileAge(const std::string& Path);               // -1 when missing
int FileGetDate(THandle Handle);                    // -1 on failure
int FileSetDate(const std::string& Path, int Age);  // opens for writing: read-only gives 5
int FileSetDate(THandle Handle, int Age);           // 0, or a Windows error code

// Replaces the contents of the file Path names with Contents atomically (a
// new file, flushed, renamed over the old one): readers see the old file or
// the new one, never half a file. Symbolic links are followed (the file they
// lead to is replaced, they stay links); the file keeps its permissions,
// owner, group and extended attributes. A file with more than one name (hard
// links), or whose owner or attributes a new file could not be given, is
// rewritten in place instead, so that every name sees the change; its space
// is reserved first, so a full disk refuses the write before anything
// changes. A read-only Path, or one that is no regular file, gives
// ERROR_ACCESS_DENIED and stays as it was.
bool WriteFileAtomically(const std::string& Path, const std::string& Contents);
// The same with Contents made of Head followed by the whole of the open file
// Tail, which may be open on Path itself (prepending). Tail is copied from
// file to file, so memory use does not grow with its size (except where the
// file must be rewritten in place: it is read first there).
bool WriteFileAtomically(const std::string& Path, const std::string& Head, THandle Tail);
// A new version of a file written piece by piece and put in place at once.
// Begin refuses what WriteFileAtomically refuses (5 for a read-only file or
// one that is no regular file) and opens a new hidden file beside the file
// Path leads to; Write and Append fill it; Commit flushes it and renames it
// over the file, so readers see the old file or the new one. The end of the
// object without Commit removes it (as does an abrupt end of the program,
// stop.h): a failure never leaves half a file or changes the old one. The
// new file takes the old one's permissions, and its owner and extended
// attributes where it can; other hard links to the old file keep the old
// contents (a copy over a file does the same).
// Thread use: one object per replacement; any thread.
class TFileReplacement {
 public:
  TFileReplacement() = default;
  ~TFileReplacement() { Abandon(); }
  TFileReplacement(const TFileReplacement&) = delete;
  TFileReplacement& operator=(const TFileReplacement&) = delete;

  bool Begin(const std::string& Path);  // false with the last error set
  bool Write(const void* Data, std::size_t Count);
  // Copies From, from its current position to its end, in 16 MiB steps of
  // the Env's CopyChunk; a stop of the program ends it with 995.
  bool Append(THandle From);
  bool Commit();
  void Abandon();

 private:
  std::string Path_, Temp_;
  THandle Handle_ = INVALID_HANDLE_VALUE;
};

// Reads a whole file into Contents; false with the last error set on failure.
bool ReadWholeFile(const std::string& Path, std::string& Contents);
// The same from the start of an open file.
bool ReadWholeFile(THandle Handle, std::string& Contents);

// One read-modify-write of a file, kept apart from every other one on the
// same file, in this process or another: Begin waits while another update
// holds the file (an advisory lock, which programs other than zt ignore unless
// they lock the same way). Symbolic links are followed. Begin also denies
// writers (FileOpen's fmShareDenyWrite) while the update reads and edits.
// Thread use: one object per update; any thread.
class TFileUpdate {
 public:
  TFileUpdate() = default;
  ~TFileUpdate();
  TFileUpdate(const TFileUpdate&) = delete;
  TFileUpdate& operator=(const TFileUpdate&) = delete;

  // Takes the file. A missing file is created empty when Create (its folder
  // must exist) and otherwise leaves Missing() true. False with the last
  // error set: 5 for a read-only file or one that is no regular file, 32 while
  // another program writes it or another update holds it for over ten
  // seconds, 995 when the program stops meanwhile, or why it cannot be opened.
  bool Begin(const std::string& Path, bool Create);
  bool Missing() const { return Missing_; }
  bool Read(std::string& Contents);
  // Writes Contents as WriteFileAtomically does. A file that Begin created
  // and no Commit filled is removed again when the update ends.
  bool Commit(const std::string& Contents);
  // The same with Head followed by the file's own contents (prepending),
  // copied from file to file rather than read.
  bool CommitBefore(const std::string& Head);

 private:
  void End();
  std::string Path_;  // the file itself, links resolved
  THandle Handle_ = INVALID_HANDLE_VALUE;
  bool Missing_ = false, Created_ = false;
};

// A whole file, read-only, for as long as the view is open: the way to
// search a large file without copying it. Open takes the file as Delphi's
// TStrings.LoadFromFile does (fmOpenRead | fmShareDenyWrite). While writers
// are kept out (where the platform can) the view maps the file into memory;
// otherwise (a file another process has open for writing, a file system
// without the means) it reads a snapshot, as it does for small files.
class TFileView {
 public:
  TFileView() = default;
  ~TFileView() { Close(); }
  TFileView(const TFileView&) = delete;
  TFileView& operator=(const TFileView&) = delete;

  // False with the last error set when Path cannot be opened or read.
  bool Open(const std::string& Path);
  void Close();
  // The file's bytes; valid until Close.
  std::string_view Text() const { return Text_; }

 private:
  THandle Handle_ = INVALID_HANDLE_VALUE;  // held open (with its lease) while mapped
  void* Mapping_ = nullptr;
  std::size_t MappedSize_ = 0;
  std::string Copy_;
  std::string_view Text_;
};

}  // namespace zt::platform
