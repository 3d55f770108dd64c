// The built-in xcopy: its switches, the source forms (a directory's files, a
// wildcard's matches, one file), the walk, the selection and the copies.
// Listing and the "inside" checks are the built-in robocopy's; every copy
// goes through the layer's CopyFileExA (temporary file, then rename).
#include "platform/tools/xcopy.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <filesystem>
#include <optional>

#include "platform/dates.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/stop.h"
#include "platform/tools/robocopy_engine.h"

namespace zt::platform {

namespace {

struct TXCopySettings {
  std::string Source, Dest;
  bool Subdirs = false, Empty = false, TreeOnly = false, ListOnly = false, Quiet = false, Full = false;
  bool Hidden = false, Archive = false, ResetArchive = false, Newer = false, Update = false;
  bool ReadOnly = false, Keep = false, Verify = false, Continue = false;
  std::optional<TFileTime> Since;          // /D:m-d-yyyy
  std::vector<std::string> Excluded;       // /EXCLUDE: lines, lower case, '/' delimiters
};

std::string Upper(std::string S) {
  for (char& C : S) C = static_cast<char>(std::toupper(static_cast<unsigned char>(C)));
  return S;
}

// An exclusion line or a path as the exclusion match compares it: ASCII
// case ignored, '\' and '/' equal (projects written on Windows).
std::string MatchKey(std::string S) {
  for (char& C : S) C = C == '\\' ? '/' : static_cast<char>(std::tolower(static_cast<unsigned char>(C)));
  return S;
}

bool ParseDate(const std::string& Text, TFileTime& Out) {
  int M = 0, D = 0, Y = 0;
  char Tail = 0;
  TDateTime Date;
  if (std::sscanf(Text.c_str(), "%d-%d-%d%c", &M, &D, &Y, &Tail) != 3 || !TryEncodeDate(Y, M, D, Date)) return false;
  Out = LocalDateTimeToFileTime(Date);
  return true;
}

bool ReadExclusions(const std::string& Files, std::vector<std::string>& Lines, std::string& Bad) {
  std::size_t Start = 0;
  while (Start <= Files.size()) {
    const std::size_t End = std::min(Files.find('+', Start), Files.size());
    const std::string Name = Files.substr(Start, End - Start);
    TFileView View;
    if (!View.Open(NormalizeDelimiters(Name))) {
      Bad = Name;
      return false;
    }
    std::string Line;
    for (const char C : std::string(View.Text()) + "\n") {
      if (C != '\r' && C != '\n') {
        Line += C;
      } else if (!Line.empty()) {
        Lines.push_back(MatchKey(Line));
        Line.clear();
      }
    }
    Start = End + 1;
  }
  return true;
}

// False with the line to report when a switch is not xcopy's. A '/'-word
// that names no switch is a path (an absolute POSIX path) until the two
// paths are given, as in the built-in robocopy.
bool ParseArgs(const std::vector<std::string>& Args, TXCopySettings& S, std::string& Error) {
  std::vector<std::string> Paths;
  for (const std::string& A : Args) {
    if (A.size() < 2 || A[0] != '/') {
      Paths.push_back(NormalizeDelimiters(A));
      continue;
    }
    const std::string U = Upper(A);
    bool* Flag = U == "/S"   ? &S.Subdirs
                 : U == "/E" ? &S.Empty
                 : U == "/T" ? &S.TreeOnly
                 : U == "/L" ? &S.ListOnly
                 : U == "/Q" ? &S.Quiet
                 : U == "/F" ? &S.Full
                 : U == "/H" ? &S.Hidden
                 : U == "/A" ? &S.Archive
                 : U == "/M" ? &S.ResetArchive
                 : U == "/D" ? &S.Newer
                 : U == "/U" ? &S.Update
                 : U == "/R" ? &S.ReadOnly
                 : U == "/K" ? &S.Keep
                 : U == "/V" ? &S.Verify
                 : U == "/C" ? &S.Continue
                             : nullptr;
    TFileTime Since = 0;
    std::string Bad;
    if (Flag) {
      *Flag = true;
    } else if (U.rfind("/D:", 0) == 0 && ParseDate(A.substr(3), Since)) {
      S.Since = Since;
    } else if (U.rfind("/EXCLUDE:", 0) == 0) {
      if (!ReadExclusions(A.substr(9), S.Excluded, Bad)) {
        Error = "Can't read file: " + Bad;
        return false;
      }
    } else if (U != "/Y" && U != "/-Y" && U != "/I" && U != "/N" && U != "/Z" && U != "/G" && U != "/O" &&
               U != "/X") {
      const bool Refused = U == "/P" || U == "/W" || U == "/-I" || U == "/J" || U.rfind("/D:", 0) == 0;
      if (!Refused && Paths.size() < 2) {
        Paths.push_back(NormalizeDelimiters(A));
        continue;
      }
      // Prompts (/P /W /-I), /J, a bad date and anything unknown: a run that cannot ask.
      Error = "Invalid switch - " + A;
      return false;
    }
  }
  if (Paths.empty() || Paths.size() > 2) {
    Error = Paths.empty() ? "Invalid number of parameters" : "Invalid number of parameters - " + Paths[2];
    return false;
  }
  S.Source = Paths[0];
  S.Dest = Paths.size() > 1 ? Paths[1] : ".";
  S.Subdirs = S.Subdirs || S.Empty || S.TreeOnly;
  S.Archive = S.Archive || S.ResetArchive;
  return true;
}

class TXCopy {
 public:
  TXCopy(const TXCopySettings& S, IToolOutput& Out, BOOL* Cancel) : S_(S), Out_(Out), Cancel_(Cancel) {}
  int Run();

 private:
  void Walk(const std::string& Rel);
  bool Selected(const TRobocopyEntry& F, const std::string& SourcePath, const std::string& DestPath) const;
  bool Excluded(const std::string& Rel) const;
  // False when the run must end (a write error without /C).
  bool CopyOne(const TRobocopyEntry& F, const std::string& SourcePath, const std::string& DestPath);
  bool MakeDir(const std::string& Dir);
  bool Fail(const std::string& SourcePath, bool Listed);
  bool Stopped() {
    if (!Stop_ && ((Cancel_ && std::atomic_ref<BOOL>(*Cancel_).load()) || LongOperationsCancelled() ||
                   Out_.StopRequested()))
      Stop_ = true;
    return Stop_;
  }

  const TXCopySettings& S_;
  IToolOutput& Out_;
  BOOL* Cancel_;
  std::string SourceDir_, Pattern_, DestDir_, DestFile_;  // DestFile_: a single file copied to a name
  std::string AbsSourceDir_, DestCanon_, MadeDir_;
  std::int64_t Found_ = 0, Copied_ = 0;
  bool Stop_ = false, WriteError_ = false;
};

int TXCopy::Run() {
  const bool IsDir = DirectoryExists(S_.Source);
  const std::string Name = ExtractFileName(S_.Source);
  const bool Wildcard = !IsDir && Name.find_first_of("*?") != std::string::npos;
  if (IsDir) {
    SourceDir_ = IncludeTrailingPathDelimiter(S_.Source);
    Pattern_ = "*";
  } else {
    SourceDir_ = ExtractFilePath(S_.Source);
    Pattern_ = Name;
    const std::string Parent = SourceDir_.empty() ? "." : SourceDir_;
    if (Name.empty() || !DirectoryExists(Parent) || (!Wildcard && !FileExists(S_.Source))) {
      Out_.Line("File not found - " + (Name.empty() ? S_.Source : Name));
      Out_.Line("0 File(s) copied");
      return kXCopyInvalid;
    }
  }
  // One file to a name that is not a directory is copied to that name.
  const bool OneFile = !IsDir && !Wildcard;
  const bool DestIsDir = !OneFile || DirectoryExists(S_.Dest) || IsPathDelimiter(S_.Dest.back());
  DestDir_ = DestIsDir ? IncludeTrailingPathDelimiter(S_.Dest) : ExtractFilePath(S_.Dest);
  if (!DestIsDir) DestFile_ = S_.Dest;
  std::error_code Ec;
  AbsSourceDir_ = std::filesystem::absolute(SourceDir_.empty() ? "." : SourceDir_, Ec).string();
  AbsSourceDir_ = IncludeTrailingPathDelimiter(AbsSourceDir_);
  const std::string SourceCanon = CanonicalPath(SourceDir_.empty() ? "." : SourceDir_);
  DestCanon_ = CanonicalPath(DestDir_.empty() ? "." : DestDir_);
  const bool OntoItself = DestFile_.empty() ? DestCanon_ == SourceCanon
                                             : CanonicalPath(DestFile_) == CanonicalPath(S_.Source);
  if (OntoItself || (S_.Subdirs && IsInside(DestCanon_, SourceCanon))) {
    Out_.Line("Cannot perform a cyclic copy");
    Out_.Line("0 File(s) copied");
    return kXCopyInvalid;
  }
  Walk("");
  if (Found_ == 0 && !Stop_ && !WriteError_) Out_.Line("File not found - " + Pattern_);
  Out_.Line(std::to_string(Copied_) + (S_.ListOnly ? " File(s)" : " File(s) copied"));
  if (Stop_) return kXCopyStopped;
  if (WriteError_) return kXCopyWriteError;
  return Found_ == 0 ? kXCopyNoFileFound : kXCopyDone;
}

bool TXCopy::Excluded(const std::string& Path) const {
  const std::string Key = MatchKey(Path);
  return std::any_of(S_.Excluded.begin(), S_.Excluded.end(),
                     [&Key](const std::string& Line) { return Key.find(Line) != std::string::npos; });
}

void TXCopy::Walk(const std::string& Rel) {
  std::vector<TRobocopyEntry> Entries = ListDirectory((SourceDir_.empty() ? "" : SourceDir_) + Rel);
  std::sort(Entries.begin(), Entries.end(), [](const auto& A, const auto& B) { return A.Name < B.Name; });
  constexpr DWORD kHiddenOrSystem = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  for (const TRobocopyEntry& F : Entries) {
    if (F.IsDir() || !MatchesWildcard(F.Name, Pattern_)) continue;
    if (Stopped()) return;
    ++Found_;
    const std::string SourcePath = SourceDir_ + Rel + F.Name;
    const std::string DestPath = DestFile_.empty() ? DestDir_ + Rel + F.Name : DestFile_;
    if (!S_.Hidden && (F.Attr & kHiddenOrSystem)) continue;
    if (!Selected(F, SourcePath, DestPath)) continue;
    if (!CopyOne(F, SourcePath, DestPath)) return;
  }
  if (!S_.Subdirs) return;
  for (const TRobocopyEntry& D : Entries) {
    if (!D.IsDir() || (!S_.Hidden && (D.Attr & kHiddenOrSystem))) continue;
    if (Stopped() || WriteError_) return;
    const std::string Sub = Rel + D.Name + PathDelim();
    // The destination, reached through a link, is never copied into itself.
    if (Excluded(AbsSourceDir_ + Sub) || IsInside(CanonicalPath(SourceDir_ + Sub), DestCanon_)) continue;
    if (S_.Empty && !S_.ListOnly && !MakeDir(DestDir_ + Sub) && !Fail(SourceDir_ + Sub, true)) return;
    Walk(Sub);
  }
}

bool TXCopy::Selected(const TRobocopyEntry& F, const std::string& SourcePath, const std::string& DestPath) const {
  if (Excluded(AbsSourceDir_ + SourcePath.substr(SourceDir_.size()))) return false;
  if (S_.Archive && !(F.Attr & FILE_ATTRIBUTE_ARCHIVE)) return false;
  if (S_.Since && F.Time < *S_.Since) return false;
  if (S_.Newer || S_.Update) {
    WIN32_FILE_ATTRIBUTE_DATA Dest;
    const bool There = GetFileAttributesExA(DestPath, Dest) && !(Dest.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
    if (S_.Update && !There) return false;
    if (S_.Newer && There && F.Time <= Dest.ftLastWriteTime) return false;
  }
  return true;
}

bool TXCopy::MakeDir(const std::string& Dir) {
  if (Dir.empty() || Dir == MadeDir_) return true;
  if (!DirectoryExists(Dir) && !ForceDirectories(Dir)) return false;
  MadeDir_ = Dir;
  return true;
}

// Reports the failure in hand; false when the run ends there (no /C).
bool TXCopy::Fail(const std::string& SourcePath, bool Listed) {
  const DWORD Error = GetLastError();
  if (!Listed || S_.Quiet) Out_.Line(SourcePath);
  Out_.Line(SysErrorMessage(Error));
  if (S_.Continue) return true;
  WriteError_ = true;
  return false;
}

bool TXCopy::CopyOne(const TRobocopyEntry& F, const std::string& SourcePath, const std::string& DestPath) {
  if (S_.TreeOnly) return S_.ListOnly || MakeDir(ExtractFilePath(DestPath)) || Fail(SourcePath, false);
  if (!S_.Quiet) Out_.Line(S_.Full ? SourcePath + " -> " + DestPath : SourcePath);
  if (S_.ListOnly) {
    ++Copied_;
    return true;
  }
  if (!MakeDir(ExtractFilePath(DestPath))) return Fail(SourcePath, true);
  // A read-only file at the destination is replaced only with /R (hidden
  // and system ones with /H); the layer's copy refuses the others.
  const DWORD Old = GetFileAttributesA(DestPath);
  const DWORD Unprotect = (S_.ReadOnly ? FILE_ATTRIBUTE_READONLY : 0) |
                          (S_.Hidden ? FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM : 0);
  const bool Cleared = Old != INVALID_FILE_ATTRIBUTES && (Old & Unprotect) &&
                       SetFileAttributesA(DestPath, Old & ~Unprotect);
  if (!CopyFileExA(SourcePath, DestPath, nullptr, nullptr, Cancel_, 0)) {
    const DWORD Error = GetLastError();
    if (Cleared) SetFileAttributesA(DestPath, Old);
    if (Error == ERROR_REQUEST_ABORTED && Stopped()) return false;
    SetLastError(Error);
    return Fail(SourcePath, true);
  }
  WIN32_FILE_ATTRIBUTE_DATA Copy;
  if (S_.Verify && (!GetFileAttributesExA(DestPath, Copy) || Copy.nFileSize != F.Size)) {
    SetLastError(ERROR_INVALID_DATA);
    return Fail(SourcePath, true);
  }
  if (!S_.Keep && (F.Attr & FILE_ATTRIBUTE_READONLY))
    SetFileAttributesA(DestPath, (static_cast<DWORD>(F.Attr) & 0x27 & ~FILE_ATTRIBUTE_READONLY) |
                                     FILE_ATTRIBUTE_ARCHIVE);
  if (S_.ResetArchive) SetFileAttributesA(SourcePath, static_cast<DWORD>(F.Attr) & 0x27 & ~FILE_ATTRIBUTE_ARCHIVE);
  ++Copied_;
  return true;
}

}  // namespace

int RunXCopy(const std::vector<std::string>& Args, IToolOutput& Out, BOOL* Cancel) {
  TXCopySettings S;
  std::string Error;
  if (!ParseArgs(Args, S, Error)) {
    Out.Line(Error);
    return kXCopyInvalid;
  }
  return TXCopy(S, Out, Cancel).Run();
}

}  // namespace zt::platform
