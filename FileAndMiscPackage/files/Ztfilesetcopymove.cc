#include "files/Ztfilesetcopymove.h"

#include <atomic>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "files/Copyprogress.h"
#include "frame/ZTUtils.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TZTFileSetCopyMoveAction, &TZTFileSetCopyMoveAction::Publish)

namespace {

pf::DWORD ProgressRoutine(std::int64_t TotalFileSize, std::int64_t TotalBytesTransferred, std::int64_t,
                          std::int64_t, pf::DWORD, pf::DWORD, void* Data) {
  auto* Action = static_cast<TZTFileSetCopyMoveAction*>(Data);
  Action->ProgressCallback(TotalFileSize, TotalBytesTransferred);
  // A move has no cancel flag of its own: the routine's answer stops it.
  return Action->Terminated() ? pf::PROGRESS_CANCEL : pf::PROGRESS_CONTINUE;
}

// File's path below Base ("sub/a.txt"); its name when it is not below Base.
std::string RelativePath(const std::string& File, const std::string& Base) {
  const std::string Prefix = pf::IncludeTrailingPathDelimiter(Base);
  return File.size() > Prefix.size() && File.compare(0, Prefix.size(), Prefix) == 0 ? File.substr(Prefix.size())
                                                                                      : pf::ExtractFileName(File);
}

// Whether a file lies inside the destination directory, by identity (any
// spelling, any link); each directory on the way is asked once.
class TInsideDestination {
 public:
  explicit TInsideDestination(const std::string& Destination) {
    pf::FileInfo Info;
    Known_ = pf::Env::Default()->QueryFileInfo(Destination, Info) == 0 && (Info.Attributes & pf::faDirectory);
    Device_ = Info.Device;
    Inode_ = Info.Inode;
  }
  bool Holds(const std::string& File) { return Known_ && Inside(pf::ExtractFileDir(File)); }

 private:
  bool Inside(const std::string& Dir) {
    if (Dir.empty()) return false;
    if (auto It = Memo_.find(Dir); It != Memo_.end()) return It->second;
    pf::FileInfo Info;
    bool Result = pf::Env::Default()->QueryFileInfo(Dir, Info) == 0 && Info.Device == Device_ && Info.Inode == Inode_;
    if (!Result) {
      const std::string Parent = pf::ExtractFileDir(Dir);
      Result = Parent != Dir && Inside(Parent);
    }
    return Memo_[Dir] = Result;
  }

  bool Known_ = false;
  std::uint64_t Device_ = 0, Inode_ = 0;
  std::unordered_map<std::string, bool> Memo_;
};

}  // namespace

void TZTFileSetCopyMoveAction::Publish(frame::TZTPublisher<TZTFileSetCopyMoveAction>& P) {
  using A = TZTFileSetCopyMoveAction;
  P.String("FileSetName", &A::GetFileSetName, &A::SetFileSetName);
  P.String("TargetDir", &A::GetTargetDir, &A::SetTargetDir);
  P.Enumeration("Operation", "TZTFileSetOperation", {"foCopy", "foMove"}, &A::GetOperation, &A::SetOperation);
  P.Boolean("KeepStructure", &A::GetKeepStructure, &A::SetKeepStructure);
  P.Boolean("RefreshFileSet", &A::GetRefreshFileSet, &A::SetRefreshFileSet);
  P.Boolean("OverwriteExisting", &A::GetOverwriteExisting, &A::SetOverwriteExisting);
  P.Boolean("OnlyIfNewer", &A::GetOnlyIfNewer, &A::SetOnlyIfNewer);
  P.Boolean("OverwriteReadOnly", &A::GetOverwriteReadOnly, &A::SetOverwriteReadOnly);
  P.Boolean("ClearAttributes", &A::GetClearAttributes, &A::SetClearAttributes);
  P.Boolean("FailIfZeroFiles", &A::GetFailIfZeroFiles, &A::SetFailIfZeroFiles);
  P.Integer("FilesAffected", &A::ReadFilesAffected);
}

void TZTFileSetCopyMoveAction::TerminateAction() { std::atomic_ref<pf::BOOL>(FTerminate).store(1); }

bool TZTFileSetCopyMoveAction::Terminated() const {
  return std::atomic_ref<pf::BOOL>(const_cast<pf::BOOL&>(FTerminate)).load() != 0;
}

void TZTFileSetCopyMoveAction::ProgressCallback(std::int64_t TotalFileSize, std::int64_t TotalBytesTransferred) {
  const std::int32_t Percent = RoundedPercent(TotalFileSize, TotalBytesTransferred);
  if (Percent == FLastPercent) return;
  FLastPercent = Percent;
  SendProgress(FProgressText, Percent);
}

bool TZTFileSetCopyMoveAction::Execute() {
  FFilesAffected = 0;
  std::atomic_ref<pf::BOOL>(FTerminate).store(0);
  std::string Target;
  if (!TryExpandExpression("Destination Directory", FTargetDir, true, Target)) return false;
  Target = frame::Trim(Target);
  if (Target.empty()) {
    SendMessage("Error: No destination directory specified.");
    return false;
  }
  frame::IZTFileSet* Set = GetFileSet();
  if (!Set) {
    SendMessage("Could not find FileSet: " + GetFileSetName());
    return false;
  }
  if (FRefreshFileSet) Set->Refresh(*this);
  const std::string Base = Set->GetBaseDir();
  const bool Move = FOperation == TZTFileSetOperation::foMove;

  frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
  frame::TStrings& Details = Entry->Details();
  Details.Add(std::string(Move ? "Moving" : "Copying") + " file set " + GetFileSetName() + " -> " + Target);
  int Skipped = 0;
  auto TransferAll = [&] {
    // Every destination first: a refusal comes before any file moves.
    std::vector<std::pair<std::string, std::string>> Files;
    TInsideDestination Inside(Target);
    std::unordered_set<std::string> Names;
    const std::string Dir = pf::IncludeTrailingPathDelimiter(Target);
    for (int I = 0, Count = Set->GetFileCount(); I < Count; ++I) {
      std::string File = Set->GetFile(I);
      if (Inside.Holds(File)) {
        Details.Add(" --> The destination holds files of the set : " + File);
        return false;
      }
      std::string Name = FKeepStructure ? RelativePath(File, Base) : pf::ExtractFileName(File);
      if (!FKeepStructure && !Names.insert(Name).second) {
        Details.Add(" --> Two files of the set have the same name : " + Name);
        return false;
      }
      Files.emplace_back(std::move(File), Dir + Name);
    }
    std::unordered_set<std::string> Made;  // directories made or found, once each
    for (const auto& [Source, Destination] : Files) {
      if (StopSignalled() || Terminated()) {
        Details.Add("Stopping...");
        return false;
      }
      if (const std::string Parent = pf::ExtractFileDir(Destination); Made.insert(Parent).second)
        pf::ForceDirectories(Parent);  // a failure shows as the copy's own
      switch (TransferFile(Details, Source, Destination)) {
        case TFileOutcome::Done: ++FFilesAffected; break;
        case TFileOutcome::Skipped: ++Skipped; break;
        case TFileOutcome::Failed: return false;
      }
    }
    return true;
  };
  const bool Result = TransferAll();
  Details.Add(std::to_string(FFilesAffected) + (Move ? " Files Moved." : " Files Copied."));
  if (Skipped > 0) Details.Add(std::to_string(Skipped) + " Files Skipped.");
  SendStatusMessage(Entry);
  return Result && !(FFailIfZeroFiles && FFilesAffected == 0);
}

TZTFileSetCopyMoveAction::TFileOutcome TZTFileSetCopyMoveAction::TransferFile(frame::TStrings& Details,
                                                                              const std::string& Source,
                                                                              const std::string& Target) {
  const bool Move = FOperation == TZTFileSetOperation::foMove;
  const std::string FailedLine = std::string(Move ? "Failed to move File : " : "Failed to copy File : ") + Source +
                                 " -> " + Target;
  pf::WIN32_FILE_ATTRIBUTE_DATA Existing;
  const bool Exists = pf::GetFileAttributesExA(Target, Existing);
  bool ReadOnlyCleared = false;
  if (Exists) {
    pf::WIN32_FILE_ATTRIBUTE_DATA Src;
    if (FOnlyIfNewer && pf::GetFileAttributesExA(Source, Src) && Existing.ftLastWriteTime >= Src.ftLastWriteTime)
      return TFileOutcome::Skipped;
    if (!FOverwriteExisting) {
      Details.Add(FailedLine);
      Details.Add("File Already Exists!");
      return TFileOutcome::Failed;
    }
    if (Existing.dwFileAttributes & pf::FILE_ATTRIBUTE_READONLY) {
      if (!FOverwriteReadOnly) {
        Details.Add(FailedLine);
        Details.Add("File Already Exists and is marked as Read Only");
        return TFileOutcome::Failed;
      }
      ReadOnlyCleared =
          pf::SetFileAttributesA(Target, Existing.dwFileAttributes & ~pf::FILE_ATTRIBUTE_READONLY);
    }
  }

  FProgressText = std::string(Move ? "Moving File : " : "Copying File : ") + Source + " to : " + Target;
  FLastPercent = 0;
  SendProgress(FProgressText, 0);
  const bool Done =
      Move ? pf::MoveFileWithProgressA(Source, Target, &ProgressRoutine, this,
                                       pf::MOVEFILE_COPY_ALLOWED | pf::MOVEFILE_WRITE_THROUGH |
                                           (Exists ? pf::MOVEFILE_REPLACE_EXISTING : 0))
           : pf::CopyFileExA(Source, Target, &ProgressRoutine, this, &FTerminate,
                             FOverwriteExisting ? 0 : pf::COPY_FILE_FAIL_IF_EXISTS);
  if (Done) {
    if (FClearAttributes) pf::SetFileAttributesA(Target, pf::FILE_ATTRIBUTE_NORMAL);
    return TFileOutcome::Done;
  }
  const pf::DWORD Error = pf::GetLastError();
  // The old target stays as it was, read-only bit included.
  if (ReadOnlyCleared) pf::SetFileAttributesA(Target, Existing.dwFileAttributes);
  if (StopSignalled() || Terminated()) {
    Details.Add("Stopping...");
  } else {
    Details.Add(FailedLine);
    Details.Add("Win32 Error : " + pf::SysErrorMessage(Error));
  }
  return TFileOutcome::Failed;
}

bool TZTFileSetCopyMoveAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Valid = true;
  if (GetFileSetName().empty()) {
    Errors.AddError("File Set", "A File Set must be provided");
    Valid = false;
  }
  if (FTargetDir.empty()) {
    Errors.AddError("Destination Directory", "The target directory has not been set");
    Valid = false;
  }
  return Valid;
}

void TZTFileSetCopyMoveAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[FileSet Copy/Move]");
  List.Add("FileSetName=File Set");
  List.Add("TargetDir=Destination Directory");
  List.Add("Operation=Operation");
  List.Add("KeepStructure=Keep Directory Structure");
  List.Add("RefreshFileSet=Refresh File Set");
  List.Add("OverwriteExisting=Overwrite Existing");
  List.Add("OnlyIfNewer=Only Newer Files");
  List.Add("OverwriteReadOnly=Overwrite Read Only");
  List.Add("ClearAttributes=Clear Attributes");
  List.Add("FailIfZeroFiles=Fail If Zero Files");
  List.Add("FilesAffected=Files Affected");
}

void TZTFileSetCopyMoveAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("KeepStructure=false: all files straight into TargetDir");
  List.Add("OnlyIfNewer=skip targets as new or newer");
  List.Add("OverwriteReadOnly=replace a read-only target (its read-only bit is cleared first)");
  List.Add("ClearAttributes=clear the attributes of each file copied or moved");
  List.Add("FailIfZeroFiles=fail when no file was copied or moved");
  List.Add("FilesAffected=the number of files copied or moved (read-only)");
}

}  // namespace zt::package
