// The one replaceable object behind the file services of files.h.
//
// Env has two kinds of operations:
//  - services with Win32 semantics (find, attributes, copy, move, handles,
//    the registry ...), which the free functions of files.h and registry.h
//    forward to, and
//  - primitives the POSIX services are built from (file information, one copy
//    chunk, the stored DOS attribute bits).
// Services reach their primitives through Env::Default(), never through
// `this`, so a test that installs an EnvWrapper overriding a primitive sees
// every chunk a copy writes and every entry a search visits, and can make
// either fail (disk full in mid-file, a file vanishing in mid-walk).
//
// Every operation reports failure with a Windows error code: the DWORD
// returners give it directly (0 = success); the others set the last-error
// code (errors.h) and return the Win32 failure value.
// Thread use: any thread. Installing a replacement is not synchronised with
// calls running at the same time: tests install one before they start work.
#pragma once

#include <cstdint>
#include <string>

#include "platform/files.h"
#include "platform/win_types.h"

namespace zt::platform {

// What the file system knows about one path (symbolic links followed; a
// link still reports FILE_ATTRIBUTE_REPARSE_POINT).
struct FileInfo {
  DWORD Attributes = 0;               // FILE_ATTRIBUTE_* bits; NORMAL when no other bit is set
  std::int64_t Size = 0;              // bytes; 0 for directories
  std::int64_t LastWriteSeconds = 0;  // seconds since 1970-01-01 UTC
  std::int32_t LastWriteNanoseconds = 0;
  std::uint64_t Device = 0;  // Device and Inode together identify the file:
  std::uint64_t Inode = 0;   // two paths with equal pairs name the same file
};

// Per-search state of FindFirst / FindNext, owned by the search record.
// Each Env derives its own; a search is finished by the Env that started it.
class FindState {
 public:
  virtual ~FindState() = default;
};

class Env {
 public:
  virtual ~Env() = default;

  // The Env in use: the platform's own unless a replacement is installed.
  static Env* Default();
  // Installs Replacement (not owned; must outlive its use; null restores the
  // platform's own) and returns the Env it replaces.
  static Env* SetDefault(Env* Replacement);
  // The operating system's own Env, whatever is installed.
  static Env* Platform();

  // ---- Primitives ----

  // Fills Info for Path. 0, or ERROR_FILE_NOT_FOUND / ERROR_PATH_NOT_FOUND
  // when Path (or a directory on the way) does not exist.
  virtual DWORD QueryFileInfo(const std::string& Path, FileInfo& Info) = 0;
  // Copies at most MaxBytes from the current position of From to the current
  // position of To, both advancing; Copied receives the count (0 only at the
  // end of From). 0, or the Windows error of the failed read or write.
  virtual DWORD CopyChunk(THandle From, THandle To, std::int64_t MaxBytes, std::int64_t& Copied) = 0;
  // Stores the hidden, system and archive bits of Bits beside the file,
  // replacing what was stored (other bits are ignored). 0, or
  // ERROR_NOT_SUPPORTED when the file system cannot keep them.
  virtual DWORD WriteDosAttributes(const std::string& Path, DWORD Bits) = 0;
  // True when Path exists (symbolic links followed; a dangling link exists
  // as a file), with IsDirectory filled: all FileExists and DirectoryExists
  // ask. Built from QueryFileInfo, so a replacement that overrides that sees
  // the question; the platform's own Env answers without the attribute bits
  // and the error's detail, which cost a call each. Not forwarded by
  // EnvWrapper, for the same reason.
  virtual bool PathExists(const std::string& Path, bool& IsDirectory);

  // ---- Services (contracts in files.h) ----

  virtual int FindFirst(const std::string& Path, int Attr, TSearchRec& F) = 0;
  virtual int FindNext(TSearchRec& F) = 0;
  virtual void FindClose(TSearchRec& F) = 0;

  virtual DWORD GetFileAttributesA(const std::string& Path) = 0;
  virtual bool SetFileAttributesA(const std::string& Path, DWORD Attributes) = 0;

  virtual bool DeleteFile(const std::string& Path) = 0;
  // The two halves of a TPendingDelete (files.h). SetFileAside refuses what
  // DeleteFile refuses, with its errors, then renames Path to a new hidden
  // name beside it (filled into Aside). EndFileAside puts Aside back as
  // Original when PutBack and its name is free, else deletes it.
  virtual bool SetFileAside(const std::string& Path, std::string& Aside) = 0;
  virtual void EndFileAside(const std::string& Aside, const std::string& Original, bool PutBack) = 0;
  virtual bool RemoveDirectory(const std::string& Path) = 0;
  virtual bool CreateDirectory(const std::string& Path) = 0;

  virtual bool CopyFileExA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                           void* Data, BOOL* Cancel, DWORD CopyFlags) = 0;
  virtual bool MoveFileWithProgressA(const std::string& Existing, const std::string& New,
                                     LPPROGRESS_ROUTINE Progress, void* Data, DWORD Flags) = 0;

  virtual THandle FileOpen(const std::string& Path, int Mode) = 0;
  virtual THandle FileCreate(const std::string& Path) = 0;
  virtual int FileRead(THandle Handle, void* Buffer, int Count) = 0;
  virtual int FileWrite(THandle Handle, const void* Buffer, int Count) = 0;
  virtual std::int64_t FileSeek(THandle Handle, std::int64_t Offset, int Origin) = 0;
  virtual void FileClose(THandle Handle) = 0;

  virtual int FileGetDate(THandle Handle) = 0;
  virtual int FileSetDate(THandle Handle, int Age) = 0;
  virtual bool SetFileLastWriteTime(const std::string& Path, TFileTime LastWrite) = 0;

  virtual bool GetDiskFreeSpaceExA(const std::string& Directory, std::uint64_t* FreeBytesAvailable,
                                   std::uint64_t* TotalBytes, std::uint64_t* TotalFreeBytes) = 0;

  virtual bool WriteFileAtomically(const std::string& Path, const std::string& Contents) = 0;
  virtual bool WriteFileAtomically(const std::string& Path, const std::string& Head, THandle Tail) = 0;
  // The three steps of a TFileReplacement (files.h). CreateReplacement
  // refuses what WriteFileAtomically refuses, then creates a new hidden file
  // beside the file Path leads to, pending (stop.h), and returns its handle
  // (read/write) with its name in TempPath. CommitReplacement flushes and
  // closes it and renames it over that file; AbandonReplacement closes and
  // removes it. Either ends the replacement, whatever the result.
  virtual THandle CreateReplacement(const std::string& Path, std::string& TempPath) = 0;
  virtual bool CommitReplacement(THandle Handle, const std::string& TempPath, const std::string& Path) = 0;
  virtual void AbandonReplacement(THandle Handle, const std::string& TempPath) = 0;

  // ---- Registry services (contracts in registry.h) ----

  virtual DWORD RegOpenKeyExA(HKEY Key, const std::string& SubKey, DWORD Access, HKEY& Result) = 0;
  virtual DWORD RegCreateKeyExA(HKEY Key, const std::string& SubKey, DWORD Access, HKEY& Result,
                                DWORD* Disposition) = 0;
  virtual DWORD RegCloseKey(HKEY Key) = 0;
  virtual DWORD RegQueryValueExA(HKEY Key, const std::string& ValueName, DWORD* Type, std::string* Data) = 0;
  virtual DWORD RegSetValueExA(HKEY Key, const std::string& ValueName, DWORD Type,
                               const std::string& Data) = 0;
  virtual DWORD RegDeleteValueA(HKEY Key, const std::string& ValueName) = 0;
  virtual DWORD RegDeleteKeyA(HKEY Key, const std::string& SubKey) = 0;
  virtual DWORD RegQueryInfoKeyA(HKEY Key, DWORD* SubKeys, DWORD* Values) = 0;
  virtual DWORD RegEnumKeyExA(HKEY Key, DWORD Index, std::string& Name) = 0;
};

// Forwards every operation to Target. Tests derive from it and override the
// operations they want to fail.
class EnvWrapper : public Env {
 public:
  explicit EnvWrapper(Env* Target) : Target_(Target) {}
  Env* Target() const { return Target_; }

  DWORD QueryFileInfo(const std::string& Path, FileInfo& Info) override {
    return Target_->QueryFileInfo(Path, Info);
  }
  DWORD CopyChunk(THandle From, THandle To, std::int64_t MaxBytes, std::int64_t& Copied) override {
    return Target_->CopyChunk(From, To, MaxBytes, Copied);
  }
  DWORD WriteDosAttributes(const std::string& Path, DWORD Bits) override {
    return Target_->WriteDosAttributes(Path, Bits);
  }
  int FindFirst(const std::string& Path, int Attr, TSearchRec& F) override {
    return Target_->FindFirst(Path, Attr, F);
  }
  int FindNext(TSearchRec& F) override { return Target_->FindNext(F); }
  void FindClose(TSearchRec& F) override { Target_->FindClose(F); }
  DWORD GetFileAttributesA(const std::string& Path) override { return Target_->GetFileAttributesA(Path); }
  bool SetFileAttributesA(const std::string& Path, DWORD Attributes) override {
    return Target_->SetFileAttributesA(Path, Attributes);
  }
  bool DeleteFile(const std::string& Path) override { return Target_->DeleteFile(Path); }
  bool SetFileAside(const std::string& Path, std::string& Aside) override {
    return Target_->SetFileAside(Path, Aside);
  }
  void EndFileAside(const std::string& Aside, const std::string& Original, bool PutBack) override {
    Target_->EndFileAside(Aside, Original, PutBack);
  }
  bool RemoveDirectory(const std::string& Path) override { return Target_->RemoveDirectory(Path); }
  bool CreateDirectory(const std::string& Path) override { return Target_->CreateDirectory(Path); }
  bool CopyFileExA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                   void* Data, BOOL* Cancel, DWORD CopyFlags) override {
    return Target_->CopyFileExA(Existing, New, Progress, Data, Cancel, CopyFlags);
  }
  bool MoveFileWithProgressA(const std::string& Existing, const std::string& New, LPPROGRESS_ROUTINE Progress,
                             void* Data, DWORD Flags) override {
    return Target_->MoveFileWithProgressA(Existing, New, Progress, Data, Flags);
  }
  THandle FileOpen(const std::string& Path, int Mode) override { return Target_->FileOpen(Path, Mode); }
  THandle FileCreate(const std::string& Path) override { return Target_->FileCreate(Path); }
  int FileRead(THandle Handle, void* Buffer, int Count) override {
    return Target_->FileRead(Handle, Buffer, Count);
  }
  int FileWrite(THandle Handle, const void* Buffer, int Count) override {
    return Target_->FileWrite(Handle, Buffer, Count);
  }
  std::int64_t FileSeek(THandle Handle, std::int64_t Offset, int Origin) override {
    return Target_->FileSeek(Handle, Offset, Origin);
  }
  void FileClose(THandle Handle) override { Target_->FileClose(Handle); }
  int FileGetDate(THandle Handle) override { return Target_->FileGetDate(Handle); }
  int FileSetDate(THandle Handle, int Age) override { return Target_->FileSetDate(Handle, Age); }
  bool SetFileLastWriteTime(const std::string& Path, TFileTime LastWrite) override {
    return Target_->SetFileLastWriteTime(Path, LastWrite);
  }
  bool GetDiskFreeSpaceExA(const std::string& Directory, std::uint64_t* FreeBytesAvailable,
                           std::uint64_t* TotalBytes, std::uint64_t* TotalFreeBytes) override {
    return Target_->GetDiskFreeSpaceExA(Directory, FreeBytesAvailable, TotalBytes, TotalFreeBytes);
  }
  bool WriteFileAtomically(const std::string& Path, const std::string& Contents) override {
    return Target_->WriteFileAtomically(Path, Contents);
  }
  bool WriteFileAtomically(const std::string& Path, const std::string& Head, THandle Tail) override {
    return Target_->WriteFileAtomically(Path, Head, Tail);
  }
  THandle CreateReplacement(const std::string& Path, std::string& TempPath) override {
    return Target_->CreateReplacement(Path, TempPath);
  }
  bool CommitReplacement(THandle Handle, const std::string& TempPath, const std::string& Path) override {
    return Target_->CommitReplacement(Handle, TempPath, Path);
  }
  void AbandonReplacement(THandle Handle, const std::string& TempPath) override {
    Target_->AbandonReplacement(Handle, TempPath);
  }
  DWORD RegOpenKeyExA(HKEY Key, const std::string& SubKey, DWORD Access, HKEY& Result) override {
    return Target_->RegOpenKeyExA(Key, SubKey, Access, Result);
  }
  DWORD RegCreateKeyExA(HKEY Key, const std::string& SubKey, DWORD Access, HKEY& Result,
                        DWORD* Disposition) override {
    return Target_->RegCreateKeyExA(Key, SubKey, Access, Result, Disposition);
  }
  DWORD RegCloseKey(HKEY Key) override { return Target_->RegCloseKey(Key); }
  DWORD RegQueryValueExA(HKEY Key, const std::string& ValueName, DWORD* Type, std::string* Data) override {
    return Target_->RegQueryValueExA(Key, ValueName, Type, Data);
  }
  DWORD RegSetValueExA(HKEY Key, const std::string& ValueName, DWORD Type, const std::string& Data) override {
    return Target_->RegSetValueExA(Key, ValueName, Type, Data);
  }
  DWORD RegDeleteValueA(HKEY Key, const std::string& ValueName) override {
    return Target_->RegDeleteValueA(Key, ValueName);
  }
  DWORD RegDeleteKeyA(HKEY Key, const std::string& SubKey) override {
    return Target_->RegDeleteKeyA(Key, SubKey);
  }
  DWORD RegQueryInfoKeyA(HKEY Key, DWORD* SubKeys, DWORD* Values) override {
    return Target_->RegQueryInfoKeyA(Key, SubKeys, Values);
  }
  DWORD RegEnumKeyExA(HKEY Key, DWORD Index, std::string& Name) override {
    return Target_->RegEnumKeyExA(Key, Index, Name);
  }

 private:
  Env* Target_;
};

// Installs Replacement for the lifetime of the object, then restores the
// Env that was installed before.
class ScopedEnv {
 public:
  explicit ScopedEnv(Env* Replacement) : Previous_(Env::SetDefault(Replacement)) {}
  ~ScopedEnv() { Env::SetDefault(Previous_); }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  Env* Previous_;
};

}  // namespace zt::platform
