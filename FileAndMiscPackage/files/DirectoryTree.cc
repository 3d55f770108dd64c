#include "files/DirectoryTree.h"

#include "files/SearchGuard.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/system_paths.h"

namespace zt::package {

namespace pf = zt::platform;

namespace {

bool IsDotEntry(const std::string& Name) { return Name == "." || Name == ".."; }

// The bits a copy carries over: what the copy service adds (archive) or
// keeps must match the source's.
constexpr pf::DWORD kCopiedBits = pf::faReadOnly | pf::faHidden | pf::faSysFile | pf::faArchive;

}  // namespace

bool IsSameOrInside(const std::string& Path, const pf::FileInfo& Dir) {
  std::string P = Path.empty() ? "." : Path;
  pf::FileInfo Here;
  if (!GetIdentity(P, Here)) return false;
  // Up through ".." until the root, whose parent is itself.
  for (;;) {
    if (SameIdentity(Here, Dir)) return true;
    P += pf::PathDelim();
    P += "..";
    pf::FileInfo Up;
    if (!GetIdentity(P, Up) || SameIdentity(Up, Here)) return false;
    Here = Up;
  }
}

bool IsProtectedDirectory(const std::string& Dir) {
  pf::FileInfo D, Up;
  if (!GetIdentity(Dir, D) || !(D.Attributes & pf::FILE_ATTRIBUTE_DIRECTORY)) return false;
  if (GetIdentity(Dir + pf::PathDelim() + "..", Up) && SameIdentity(Up, D)) return true;
  const std::string Home = pf::GetHomeDirectory();
  return !Home.empty() && IsSameOrInside(Home, D);
}

// ---- Walks ----

bool TDirectoryTree::CheckStop() {
  if (Stop_ && Stop_()) Stopped_ = true;
  return Stopped_;
}

bool TDirectoryTree::Fail(const char* What, const std::string& Path) {
  const pf::DWORD Error = pf::GetLastError();
  // A copy or read the program's stop cancelled is a stop, not a fault.
  if (Error == pf::ERROR_OPERATION_ABORTED) {
    Stopped_ = true;
    return false;
  }
  FailedWhat_ = What;
  FailedPath_ = Path;
  FailedError_ = Error;
  return false;
}

void TDirectoryTree::AddFailure(frame::TStrings& Details) const {
  if (Stopped_) {
    Details.Add("Stopping...");
    return;
  }
  if (FailedWhat_.empty()) return;
  Details.Add(" --> Error " + FailedWhat_ + " : " + FailedPath_);
  Details.Add(" --> " + pf::SysErrorMessage(FailedError_));
}

bool TDirectoryTree::Delete(const std::string& Dir, bool ClearReadOnly, bool WithContents) {
  const pf::DWORD Attr = pf::GetFileAttributesA(Dir);
  if (Attr == pf::INVALID_FILE_ATTRIBUTES) return Fail("Deleting Directory", Dir);
  return DeleteDirectory(Dir, Attr, ClearReadOnly, WithContents);
}

bool TDirectoryTree::DeleteDirectory(const std::string& Dir, pf::DWORD Attr, bool ClearReadOnly,
                                     bool WithContents) {
  // A link to a directory goes as a link: what it leads to is not ours. A
  // file is left for RemoveDirectory to refuse (267).
  if ((Attr & pf::faDirectory) && !(Attr & pf::FILE_ATTRIBUTE_REPARSE_POINT)) {
    if (ClearReadOnly && (Attr & pf::faReadOnly) && !pf::SetFileAttributesA(Dir, Attr & ~pf::faReadOnly))
      return Fail("Deleting Directory", Dir);
    if (WithContents && !DeleteContents(Dir, ClearReadOnly)) return false;
  }
  if (!pf::RemoveDirectory(Dir)) return Fail("Deleting Directory", Dir);
  ++Dirs_;
  return true;
}

bool TDirectoryTree::DeleteContents(const std::string& Dir, bool ClearReadOnly) {
  const std::string Prefix = Dir + pf::PathDelim();
  pf::TSearchRec F;
  TSearchGuard Search{F};
  Search.Open = pf::FindFirst(Prefix + "*", pf::faAnyFile, F) == 0;
  if (!Search.Open) return true;  // nothing listed: removing the directory tells why
  do {
    if (IsDotEntry(F.Name)) continue;
    if (CheckStop()) return false;
    const std::string Path = Prefix + F.Name;
    if (F.Attr & pf::faSymLink) {
      const bool ToDir = F.Attr & pf::faDirectory;
      if (!(ToDir ? pf::RemoveDirectory(Path) : pf::DeleteFile(Path)))
        return Fail(ToDir ? "Deleting Directory" : "Deleting File", Path);
      ++(ToDir ? Dirs_ : Files_);
    } else if (F.Attr & pf::faDirectory) {
      if (!DeleteDirectory(Path, F.Attr, ClearReadOnly, true)) return false;
    } else {
      if (ClearReadOnly && (F.Attr & pf::faReadOnly) && !pf::SetFileAttributesA(Path, F.Attr & ~pf::faReadOnly))
        return Fail("Deleting File", Path);
      if (!pf::DeleteFile(Path)) return Fail("Deleting File", Path);
      ++Files_;
    }
  } while (pf::FindNext(F) == 0);
  return true;
}

bool TDirectoryTree::Copy(const std::string& Src, const std::string& Dst) {
  pf::WIN32_FILE_ATTRIBUTE_DATA Self;
  if (!pf::GetFileAttributesExA(Src, Self)) return Fail("Copying Directory", Src);
  if (!pf::CreateDirectory(Dst)) return Fail("Creating Directory", Dst);
  ++Dirs_;
  {
    const std::string From = Src + pf::PathDelim(), To = Dst + pf::PathDelim();
    pf::TSearchRec F;
    TSearchGuard Search{F};
    Search.Open = pf::FindFirst(From + "*", pf::faAnyFile, F) == 0;
    if (Search.Open) {
      do {
        if (IsDotEntry(F.Name)) continue;
        if (CheckStop()) return false;
        if (F.Attr & pf::faDirectory) {
          if (!Copy(From + F.Name, To + F.Name)) return false;
          continue;
        }
        if (!pf::CopyFileExA(From + F.Name, To + F.Name, nullptr, nullptr, nullptr, pf::COPY_FILE_FAIL_IF_EXISTS))
          return Fail("Copying File", From + F.Name);
        // The copy adds archive; a file without it keeps its bits exactly.
        if (!(F.Attr & pf::faArchive) && !pf::SetFileAttributesA(To + F.Name, F.Attr & kCopiedBits))
          return Fail("Copying File", From + F.Name);
        ++Files_;
      } while (pf::FindNext(F) == 0);
    }
  }
  // Last: entries made inside changed the time, a read-only bit would have
  // refused them.
  if (!pf::SetFileLastWriteTime(Dst, Self.ftLastWriteTime)) return Fail("Copying Directory", Src);
  const pf::DWORD Bits = Self.dwFileAttributes & kCopiedBits;
  if (Bits && !pf::SetFileAttributesA(Dst, Bits)) return Fail("Copying Directory", Src);
  return true;
}

}  // namespace zt::package
