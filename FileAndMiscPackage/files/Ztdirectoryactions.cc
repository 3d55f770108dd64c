#include "files/Ztdirectoryactions.h"

#include "Ztpropertytexts.h"
#include "files/DirectoryTree.h"
#include "frame/ZTUtils.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TDeleteDirectoryAction, &TDeleteDirectoryAction::Publish)
ZT_IMPLEMENT_CLASS(TZTMoveDirectoryAction, &TZTMoveDirectoryAction::Publish)
ZT_IMPLEMENT_CLASS(TRenameDirAction, &TRenameDirAction::Publish)

namespace {

bool IsDelimiter(char C) { return pf::IsPathDelimiter(C) || C == '\\'; }

// One trailing delimiter less; a root ("/") stays whole.
std::string WithoutTrailingDelimiter(std::string S) {
  if (S.size() > 1 && IsDelimiter(S.back())) S.pop_back();
  return S;
}

std::string WithoutTrailingDelimiters(std::string S) {
  while (S.size() > 1 && IsDelimiter(S.back())) S.pop_back();
  return S;
}

// Expands a path property; false after the host has logged why.
bool ExpandPath(frame::TCustomZTAction& Action, const char* Caption, const std::string& Text, std::string& Path) {
  if (!Action.TryExpandExpression(Caption, Text, true, Path)) return false;
  Path = frame::Trim(Path);
  return true;
}

std::string LastErrorText() { return pf::SysErrorMessage(pf::GetLastError()); }

// The nearest directory above Path that exists ("." for a bare name).
std::string ExistingParent(const std::string& Path) {
  std::string P = Path;
  for (;;) {
    const std::string Dir = pf::ExtractFilePath(WithoutTrailingDelimiters(P));
    if (Dir.empty()) return ".";
    if (pf::DirectoryExists(Dir) || Dir == P) return Dir;
    P = Dir;
  }
}

// A free hidden name beside Path, for a directory set aside.
std::string AsideName(const std::string& Path) {
  const std::string Base = pf::ExtractFilePath(Path) + "." + pf::ExtractFileName(Path) + ".zt-replaced";
  std::string Name = Base;
  for (int I = 1; pf::GetFileAttributesA(Name) != pf::INVALID_FILE_ATTRIBUTES; ++I)
    Name = Base + "-" + std::to_string(I);
  return Name;
}

constexpr TPropertyText kDeleteTexts[] = {
    {"FileOrDirectory", "Directory", "the directory"},
    {"DeleteTree", "Delete Tree", "delete its contents too; false: only an empty directory"},
    {"DeleteReadOnly", "Delete Read Only Files", "clear read-only files and directories in the way"},
    {"FailIfMissing", nullptr, "a missing directory fails"},
};

constexpr TPropertyText kMoveTexts[] = {
    {"FileOrDirectory", "Directory", "what to move"},
    {"Target", "Destination", "its new path"},
    {"MoveInto", "Move Into Destination", "Destination is a directory that receives it under its own name"},
    {"Force", "Force Directories", "create Destination's missing parents"},
    {"ReplaceExisting", nullptr, "an existing destination directory is tree-deleted first"},
};

constexpr TPropertyText kRenameTexts[] = {
    {"FileOrDirectory", "File or Directory", "what to rename; no wildcards"},
    {"NewName", "New Name", "a plain name"},
    {"OverwriteExisting", "Overwrite Existing File", "a file may replace a file of that name"},
};

}  // namespace

// ---- Delete Directory ----

void TDeleteDirectoryAction::Publish(frame::TZTPublisher<TDeleteDirectoryAction>& P) {
  using A = TDeleteDirectoryAction;
  P.Boolean("DeleteTree", &A::GetDeleteTree, &A::SetDeleteTree);
  P.Boolean("DeleteReadOnly", &A::GetDeleteReadOnly, &A::SetDeleteReadOnly);
  P.Boolean("FailIfMissing", &A::GetFailIfMissing, &A::SetFailIfMissing);
}

bool TDeleteDirectoryAction::Execute() {
  FFilesDeleted = 0;
  std::string Dir;
  if (!ExpandPath(*this, "Directory", FFileOrDirectory, Dir)) return false;
  if (Dir.empty()) {
    SendMessage("Error: No directory specified.");
    return false;
  }
  Dir = WithoutTrailingDelimiter(Dir);
  // Checked on what the path leads to: "%EMPTY%/", "/tmp/.." and a link to
  // the home directory are all refused.
  if (IsProtectedDirectory(Dir)) {
    SendMessage("Refusing to delete : " + Dir);
    return false;
  }
  frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
  frame::TStrings& Details = Entry->Details();
  Details.Add("Deleting directory : " + Dir);
  if (pf::GetFileAttributesA(Dir) == pf::INVALID_FILE_ATTRIBUTES &&
      (pf::GetLastError() == pf::ERROR_FILE_NOT_FOUND || pf::GetLastError() == pf::ERROR_PATH_NOT_FOUND)) {
    Details.Add("Directory does not exist : " + Dir);
    SendStatusMessage(Entry);
    return !FFailIfMissing;
  }
  TDirectoryTree Tree([this] { return StopSignalled(); });
  const bool Result = Tree.Delete(Dir, FDeleteReadOnly, FDeleteTree);
  Tree.AddFailure(Details);
  FFilesDeleted = Tree.Files();
  Details.Add(std::to_string(Tree.Files()) + " Files Deleted.");
  Details.Add(std::to_string(Tree.Dirs()) + " Directories Deleted.");
  SendStatusMessage(Entry);
  return Result;
}

bool TDeleteDirectoryAction::Validate(frame::IZTActionValidationError& Errors) {
  if (!FFileOrDirectory.empty()) return true;
  Errors.AddError("Directory", "The directory to delete has not been set");
  return false;
}

std::string TDeleteDirectoryAction::GetFormattedDescription() {
  return "Delete Directory [ " + FFileOrDirectory + " ]";
}

void TDeleteDirectoryAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  AddPropertyAliases(List, GetActionName(), kDeleteTexts);
}

void TDeleteDirectoryAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  AddPropertyHelp(List, kDeleteTexts);
}

// ---- Move Directory ----

void TZTMoveDirectoryAction::Publish(frame::TZTPublisher<TZTMoveDirectoryAction>& P) {
  using A = TZTMoveDirectoryAction;
  P.WideString("Target", &A::GetTarget, &A::SetTarget);
  P.Boolean("MoveInto", &A::GetMoveInto, &A::SetMoveInto);
  P.Boolean("Force", &A::GetForce, &A::SetForce);
  P.Boolean("ReplaceExisting", &A::GetReplaceExisting, &A::SetReplaceExisting);
}

bool TZTMoveDirectoryAction::Execute() {
  std::string Src, Dst;
  if (!ExpandPath(*this, "Directory", FFileOrDirectory, Src)) return false;
  if (Src.empty()) {
    SendMessage("Error: No directory specified.");
    return false;
  }
  if (!ExpandPath(*this, "Destination", FTarget, Dst)) return false;
  if (Dst.empty()) {
    SendMessage("Error: No destination specified.");
    return false;
  }
  Src = WithoutTrailingDelimiters(Src);
  Dst = WithoutTrailingDelimiters(Dst);
  if (FMoveInto) Dst = pf::IncludeTrailingPathDelimiter(Dst) + pf::ExtractFileName(Src);

  frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
  frame::TStrings& Details = Entry->Details();
  Details.Add("Moving directory : " + Src + " -> " + Dst);
  const bool Result = MoveTree(Src, Dst, Details);
  SendStatusMessage(Entry);
  return Result;
}

bool TZTMoveDirectoryAction::MoveTree(const std::string& Src, const std::string& Dst, frame::TStrings& Details) {
  auto Fail = [&](const std::string& Reason) {
    Details.Add(" --> Error Moving Directory : " + Src + " -> " + Dst);
    if (!Reason.empty()) Details.Add(Reason);
    return false;
  };
  const pf::DWORD SrcAttr = pf::GetFileAttributesA(Src);
  if (SrcAttr == pf::INVALID_FILE_ATTRIBUTES) return Fail(" --> " + LastErrorText());
  pf::FileInfo SrcId;
  if (!(SrcAttr & pf::faDirectory) || !GetIdentity(Src, SrcId))
    return Fail(" --> " + pf::SysErrorMessage(pf::ERROR_DIRECTORY));
  if (IsSameOrInside(ExistingParent(Dst), SrcId)) return Fail(" --> The destination is inside the directory being moved");

  // An existing destination that is not the source itself (a new letter
  // case) is refused, or set aside until the move has succeeded.
  std::string Aside;
  pf::FileInfo DstId;
  if (pf::GetFileAttributesA(Dst) != pf::INVALID_FILE_ATTRIBUTES && !(GetIdentity(Dst, DstId) && SameIdentity(DstId, SrcId))) {
    if (!FReplaceExisting || !pf::DirectoryExists(Dst)) return Fail(" --> " + pf::SysErrorMessage(pf::ERROR_ALREADY_EXISTS));
    if (IsProtectedDirectory(Dst)) return Fail(" --> Refusing to delete : " + Dst);
    if (IsSameOrInside(Src, DstId)) return Fail(" --> The directory being moved is inside the destination");
    Details.Add("Replacing existing directory : " + Dst);
    Aside = AsideName(Dst);
    if (!pf::MoveFileExA(Dst, Aside, 0)) return Fail(" --> " + LastErrorText());
  }
  // Puts an aside destination back after a failure.
  auto Restore = [&] {
    if (!Aside.empty()) pf::MoveFileExA(Aside, Dst, 0);
  };

  const std::string Parent = pf::ExtractFileDir(Dst);
  if (FForce && !Parent.empty() && !pf::DirectoryExists(Parent) && !pf::ForceDirectories(Parent)) {
    const std::string Why = LastErrorText();
    Restore();
    return Fail(" --> " + Why);
  }
  if (!pf::MoveFileExA(Src, Dst, 0)) {
    if (pf::GetLastError() != pf::ERROR_NOT_SAME_DEVICE) {
      const std::string Why = LastErrorText();
      Restore();
      return Fail(" --> " + Why);
    }
    // Copy, then delete: the source goes only once the copy is whole.
    Details.Add("Moving across volumes : copying and deleting");
    TDirectoryTree Copy([this] { return StopSignalled(); });
    if (!Copy.Copy(Src, Dst)) {
      if (Copy.Dirs() > 0) TDirectoryTree(nullptr).Delete(Dst, true);  // the partial copy
      Restore();
      Fail("");
      Copy.AddFailure(Details);
      return false;
    }
    TDirectoryTree Remove([this] { return StopSignalled(); });
    if (!Remove.Delete(Src, true)) {
      Fail("");
      Remove.AddFailure(Details);
      return false;
    }
  }
  if (!Aside.empty()) {
    TDirectoryTree Old(nullptr);
    if (!Old.Delete(Aside, true)) {
      Details.Add("Directory Moved.");
      Details.Add(" --> The replaced directory is left at : " + Aside);
      Old.AddFailure(Details);
      return false;
    }
  }
  Details.Add("Directory Moved.");
  return true;
}

bool TZTMoveDirectoryAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Ok = true;
  if (FFileOrDirectory.empty()) {
    Errors.AddError("Directory", "The directory to move has not been set");
    Ok = false;
  }
  if (FTarget.empty()) {
    Errors.AddError("Destination", "The destination has not been set");
    Ok = false;
  }
  return Ok;
}

std::string TZTMoveDirectoryAction::GetFormattedDescription() {
  return "Move Directory [ " + FFileOrDirectory + " -> " + FTarget + " ]";
}

void TZTMoveDirectoryAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  AddPropertyAliases(List, GetActionName(), kMoveTexts);
}

void TZTMoveDirectoryAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  AddPropertyHelp(List, kMoveTexts);
}

// ---- Rename File or Directory ----

void TRenameDirAction::Publish(frame::TZTPublisher<TRenameDirAction>& P) {
  using A = TRenameDirAction;
  P.String("NewName", &A::GetNewName, &A::SetNewName);
  P.Boolean("OverwriteExisting", &A::GetOverwriteExisting, &A::SetOverwriteExisting);
}

bool TRenameDirAction::Execute() {
  std::string Path, NewName;
  if (!ExpandPath(*this, "File or Directory", FFileOrDirectory, Path)) return false;
  if (Path.empty()) {
    SendMessage("Error: No file or directory specified.");
    return false;
  }
  if (!ExpandPath(*this, "New Name", FNewName, NewName)) return false;
  if (NewName.empty()) {
    SendMessage("Error: No new name specified.");
    return false;
  }
  if (Path.find_first_of("*?") != std::string::npos) {
    SendMessage("Error: Wildcards are not allowed : " + Path);
    return false;
  }
  if (NewName.find_first_of("/\\*?") != std::string::npos || NewName == "." || NewName == "..") {
    SendMessage("Error: The new name must be a plain name : " + NewName);
    return false;
  }
  Path = WithoutTrailingDelimiters(Path);
  const std::string NewPath = pf::ExtractFilePath(Path) + NewName;
  if (NewPath == Path) {
    SendMessage("Renamed : " + Path + " -> " + NewPath);
    return true;
  }
  const pf::DWORD Flags = FOverwriteExisting && pf::FileExists(Path) ? pf::MOVEFILE_REPLACE_EXISTING : 0;
  if (pf::MoveFileExA(Path, NewPath, Flags)) {
    SendMessage("Renamed : " + Path + " -> " + NewPath);
    return true;
  }
  const std::string Why = LastErrorText();
  SendMessage("Unable to rename : " + Path + " -> " + NewPath);
  SendMessage(" --> " + Why);
  return false;
}

bool TRenameDirAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Ok = true;
  if (FFileOrDirectory.empty()) {
    Errors.AddError("File or Directory", "The file or directory to rename has not been set");
    Ok = false;
  }
  if (FNewName.empty()) {
    Errors.AddError("New Name", "The new name has not been set");
    Ok = false;
  }
  return Ok;
}

std::string TRenameDirAction::GetFormattedDescription() {
  return "Rename [ " + FFileOrDirectory + " -> " + FNewName + " ]";
}

void TRenameDirAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  AddPropertyAliases(List, GetActionName(), kRenameTexts);
}

void TRenameDirAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  AddPropertyHelp(List, kRenameTexts);
}

}  // namespace zt::package
