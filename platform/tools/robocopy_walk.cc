// The walker of the built-in robocopy: per directory pair, list both sides
// once, report and purge extras, select and classify the source's files,
// hand the copies to jobs, then go down into the subdirectories.
#include <algorithm>
#include <cctype>
#include <unordered_map>
#include <unordered_set>

#include "platform/dates.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/tools/robocopy_engine.h"

namespace zt::platform {

namespace {

constexpr DWORD kRASH = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_SYSTEM |
                        FILE_ATTRIBUTE_HIDDEN;
constexpr TFileTime kTwoSeconds = 20000000;
constexpr TFileTime kOneHour = 36000000000LL;

// Names as the file system compares them.
std::string NameKey(const std::string& Name) {
#ifdef _WIN32
  std::string K = Name;
  for (char& C : K) C = static_cast<char>(std::toupper(static_cast<unsigned char>(C)));
  return K;
#else
  return Name;
#endif
}

bool HasDelimiter(const std::string& S) { return S.find_first_of("/\\") != std::string::npos; }

// An /XF or /XD entry: with a delimiter it is matched against the full path.
bool MatchesEntry(const std::vector<std::string>& Entries, const std::string& Name, const std::string& FullPath) {
  for (const std::string& P : Entries)
    if (MatchesWildcard(HasDelimiter(P) ? NormalizeDelimiters(FullPath) : Name,
                        HasDelimiter(P) ? NormalizeDelimiters(P) : P))
      return true;
  return false;
}

bool SameTime(TFileTime A, TFileTime B, bool Fat, bool Dst) {
  TFileTime D = A > B ? A - B : B - A;
  if (Dst && D >= kOneHour - (Fat ? kTwoSeconds : 0) && D <= kOneHour + (Fat ? kTwoSeconds : 0)) return true;
  return Fat ? D <= kTwoSeconds : D == 0;
}

std::string Lower(std::string S) {
  for (char& C : S) C = static_cast<char>(std::tolower(static_cast<unsigned char>(C)));
  return S;
}

}  // namespace

std::vector<TRobocopyEntry> ListDirectory(const std::string& Dir) {
  std::vector<TRobocopyEntry> Entries;
  TSearchRec F;
  if (FindFirst(Dir + "*", faAnyFile, F) != 0) return Entries;
  do {
    if (F.Name == "." || F.Name == "..") continue;
    Entries.push_back({F.Name, F.Attr, F.Size, F.LastWriteTime});
  } while (FindNext(F) == 0);
  FindClose(F);
  return Entries;
}

bool TRobocopyEngine::Selected(const Entry& E, const std::string& FullPath) const {
  bool Pattern = S_.Files.empty() && MatchesWildcard(E.Name, "*.*");
  for (const std::string& P : S_.Files) Pattern = Pattern || MatchesWildcard(E.Name, P);
  if (!Pattern || MatchesEntry(S_.ExcludeFiles, E.Name, FullPath)) return false;
  if (S_.ExcludeFileLinks && E.IsLink()) return false;
  const DWORD A = static_cast<DWORD>(E.Attr);
  if ((S_.IncludeAttributes && !(A & S_.IncludeAttributes)) || (A & S_.ExcludeAttributes)) return false;
  if ((S_.MaxSize >= 0 && E.Size > S_.MaxSize) || (S_.MinSize >= 0 && E.Size < S_.MinSize)) return false;
  // The layer keeps no access time apart from the write time (docs/decisions.md).
  for (const auto& Oldest : {S_.OldestWrite, S_.OldestAccess})
    if (Oldest && E.Time < *Oldest) return false;
  for (const auto& Newest : {S_.NewestWrite, S_.NewestAccess})
    if (Newest && E.Time > *Newest) return false;
  return true;
}

bool TRobocopyEngine::ExcludedDir(const Entry& E, const std::string& FullPath) const {
  return (S_.ExcludeDirLinks && E.IsLink()) || MatchesEntry(S_.ExcludeDirs, E.Name, FullPath);
}

std::string TRobocopyEngine::FileLine(const std::string& Tag, const std::string& Rel, const Entry& E,
                                      bool FromDest) const {
  std::string L = S_.NoClasses ? std::string() : Tag + " : ";
  L += (S_.FullPaths ? (FromDest ? DestDir_ : SourceDir_) : std::string()) + Rel + E.Name;
  if (!S_.NoSizes) L += " (" + std::to_string(E.Size) + " bytes)";
  if (S_.TimeStamps) L += " " + FormatDateTime("yyyy-mm-dd hh:nn:ss", FileTimeToLocalDateTime(E.Time));
  return L;
}

std::string TRobocopyEngine::DirLine(const std::string& Tag, const std::string& Rel, bool FromDest) const {
  return (S_.NoClasses ? std::string() : Tag + " : ") +
         (S_.FullPaths ? (FromDest ? DestDir_ : SourceDir_) : std::string()) + Rel;
}

bool TRobocopyEngine::EnsureDirs() {
  for (std::size_t I = 0; I < PendingDirs_.size(); ++I) {
    const std::string& Rel = PendingDirs_[I];
    const std::uint64_t Slot = Lines_.Open({}, false);
    if (!S_.NoDirList) Log(Slot, DirLine("New Dir", Rel, true));
    const std::string Path = DestDir_ + Rel;
    const bool Ok = S_.ListOnly || Retry("Creating Directory", Path, Slot, [&Path] {
                      return CreateDirectory(Path) || GetLastError() == ERROR_ALREADY_EXISTS;
                    });
    Lines_.Finish(Slot);
    std::lock_guard<std::mutex> L(CountMutex_);
    ++(Ok ? Dirs_.Copied : Dirs_.Failed);
    if (!Ok) {
      PendingDirs_.clear();
      return false;
    }
    if (!S_.ListOnly && S_.DirCopyFlags.find('T') != std::string::npos)
      DirTimes_.emplace_back(Path, SourceDir_ + Rel);
  }
  PendingDirs_.clear();
  return true;
}

void TRobocopyEngine::Extras(const std::string& Rel, const std::vector<Entry>& Source,
                             const std::vector<Entry>& Dest, bool WalkDirs) {
  if (S_.ExcludeExtra || Dest.empty()) return;
  std::unordered_set<std::string> Names;
  for (const Entry& E : Source) Names.insert(NameKey(E.Name));
  for (const Entry& E : Dest) {
    if (Names.count(NameKey(E.Name))) continue;
    const std::string Path = DestDir_ + Rel + E.Name;
    const bool Dir = E.IsDir();
    if (Dir && (!WalkDirs || ExcludedDir(E, Path))) continue;
    const bool Visible = Dir || Selected(E, Path);
    if (!Visible && !S_.ReportExtra) continue;
    // The source inside an extra directory (a mirror onto a parent of the
    // source) is never purged.
    const bool HoldsSource = Dir && SourceInsideDest_ && IsInside(SourceCanon_, CanonicalPath(Path));
    const bool Purge = S_.Purge && Visible && !S_.ListOnly && !HoldsSource;
    const std::uint64_t Slot = Lines_.Open({}, false);
    if (Dir ? !S_.NoDirList : !S_.NoFileList)
      Log(Slot, (Dir ? DirLine("*EXTRA Dir", Rel + E.Name + "/", true) : FileLine("*EXTRA File", Rel, E, true)) +
                    (Purge ? " (purged)" : ""));
    if (Purge && !(Dir ? DeleteTree(Path, Slot) : Retry("Deleting", Path, Slot, [&Path] {
                    return DeleteFileForce(Path);
                  })))
      AnyFailure_ = true;
    Lines_.Finish(Slot);
    std::lock_guard<std::mutex> L(CountMutex_);
    ++(Dir ? Dirs_ : Files_).Extra;
    if (!Dir) Bytes_.Extra += E.Size;
  }
}

void TRobocopyEngine::Walk(const std::string& Rel, int Level, bool DestExists) {
  Lines_.Flush();
  {
    std::lock_guard<std::mutex> L(CountMutex_);
    ++Dirs_.Total;
  }
  const std::vector<Entry> Source = ListDirectory(SourceDir_ + Rel);
  const std::vector<Entry> Dest = DestExists ? ListDirectory(DestDir_ + Rel) : std::vector<Entry>{};
  std::unordered_map<std::string, const Entry*> AtDest;
  for (const Entry& E : Dest) AtDest.emplace(NameKey(E.Name), &E);
  const bool WalkDirs = S_.SubDirs && (S_.Levels == 0 || Level < S_.Levels);
  Extras(Rel, Source, Dest, WalkDirs);
  const bool CopyData = !S_.NoCopy && S_.CopyFlags.find('D') != std::string::npos;

  for (const Entry& E : Source) {
    if (E.IsDir()) continue;
    if (Stopped()) return;
    const std::string From = SourceDir_ + Rel + E.Name;
    if (!Selected(E, From)) {
      if (S_.Verbose && !S_.NoFileList) Lines_.Open({FileLine("excluded", Rel, E, false)}, true);
      continue;
    }
    {
      std::lock_guard<std::mutex> L(CountMutex_);
      ++Files_.Total;
      Bytes_.Total += E.Size;
    }
    auto It = AtDest.find(NameKey(E.Name));
    const Entry* D = It == AtDest.end() ? nullptr : It->second;
    if (D && D->IsDir()) {
      if (!S_.NoFileList) Lines_.Open({FileLine("*MISMATCH", Rel, E, false)}, true);
      std::lock_guard<std::mutex> L(CountMutex_);
      ++Files_.Mismatched;
      Bytes_.Mismatched += E.Size;
      continue;
    }
    std::string Tag;
    bool Copy;
    if (!D) {
      Tag = "New File", Copy = !S_.ExcludeLonely;
    } else if (SameTime(E.Time, D->Time, S_.FatTimes, S_.Dst)) {
      if (E.Size != D->Size) Tag = "Changed", Copy = !S_.ExcludeChanged;
      else if (S_.IncludeTweaked && ((E.Attr ^ D->Attr) & kRASH)) Tag = "Tweaked", Copy = true;
      else Tag = "Same", Copy = S_.IncludeSame;
    } else if (E.Time > D->Time) {
      Tag = "Newer", Copy = !S_.ExcludeNewer;
    } else {
      Tag = "Older", Copy = !S_.ExcludeOlder;
    }
    Job J{From, DestDir_ + Rel + E.Name, E, D ? static_cast<DWORD>(D->Attr) : INVALID_FILE_ATTRIBUTES};
    if (!Copy || !CopyData) {
      if (S_.Verbose && !S_.NoFileList) Lines_.Open({FileLine(Lower(Tag), Rel, E, false)}, true);
      // A move takes the file away once the destination holds the same one.
      if (S_.MoveFiles && (Tag == "Same" || Tag == "Tweaked")) {
        J.Copy = false, J.DeleteSource = true;
        Submit(std::move(J), {});
      } else if (S_.TimeFix && D && !S_.ListOnly && (Tag == "Newer" || Tag == "Older")) {
        SetFileLastWriteTime(J.Dest, E.Time);
      }
      continue;
    }
    if (!EnsureDirs()) {
      std::lock_guard<std::mutex> L(CountMutex_);
      ++Files_.Failed;
      Bytes_.Failed += E.Size;
      continue;
    }
    J.DeleteSource = S_.MoveFiles;
    Submit(std::move(J), S_.NoFileList ? std::vector<std::string>{} : std::vector<std::string>{FileLine(Tag, Rel, E, false)});
  }

  if (!WalkDirs) return;
  for (const Entry& E : Source) {
    if (!E.IsDir()) continue;
    if (Stopped()) return;
    const std::string From = SourceDir_ + Rel + E.Name;
    if (ExcludedDir(E, From)) continue;
    if (DestInsideSource_ && CanonicalPath(From) == DestCanon_) {
      // The destination itself: it is left out of the walk.
      if (!SaidInside_) Lines_.Open({"Destination is inside the source; it is not copied into itself"}, true);
      SaidInside_ = true;
      continue;
    }
    const std::string ChildRel = Rel + E.Name + "/";
    auto It = AtDest.find(NameKey(E.Name));
    const Entry* D = It == AtDest.end() ? nullptr : It->second;
    if (D && !D->IsDir()) {
      if (!S_.NoDirList) Lines_.Open({DirLine("*MISMATCH", ChildRel, false)}, true);
      std::lock_guard<std::mutex> L(CountMutex_);
      ++Dirs_.Total;
      ++Dirs_.Mismatched;
      continue;
    }
    if (!D) {
      PendingDirs_.push_back(ChildRel);
      if (S_.EmptySubDirs) EnsureDirs();
    }
    Walk(ChildRel, Level + 1, D != nullptr);
    if (!PendingDirs_.empty() && PendingDirs_.back() == ChildRel) PendingDirs_.pop_back();
    if (S_.MoveDirs) EmptiedDirs_.push_back(From);
  }
}

}  // namespace zt::platform
