#include "files/Ztcopymove.h"

#include <atomic>
#include <exception>

#include "files/Copyprogress.h"
#include "files/SearchGuard.h"
#include "frame/ZTUtils.h"
#include "platform/env.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TCustomCopyFilesAction, nullptr)
ZT_IMPLEMENT_CLASS(TCopyFilesAction, &TCopyFilesAction::Publish)
ZT_IMPLEMENT_CLASS(TMoveFilesAction, &TMoveFilesAction::Publish)

namespace {

// The properties both types publish, in declaration order; Recurse only
// where the type walks sub-directories.
template <class Cls>
void PublishCommon(frame::TZTPublisher<Cls>& P, bool WithRecurse) {
  P.WideString("FileSpec", &Cls::GetFileSpec, &Cls::SetFileSpec);
  P.WideString("Target", &Cls::GetTarget, &Cls::SetTarget);
  P.Boolean("Force", &Cls::GetForce, &Cls::SetForce);
  P.Boolean("TargetIsDir", &Cls::GetTargetIsDir, &Cls::SetTargetIsDir);
  P.Boolean("FailIfExists", &Cls::GetFailIfExists, &Cls::SetFailIfExists);
  P.Boolean("OverwriteReadOnly", &Cls::GetOverwriteReadOnly, &Cls::SetOverwriteReadOnly);
  if (WithRecurse) P.Boolean("Recurse", &Cls::GetRecurse, &Cls::SetRecurse);
  P.Boolean("ClearAttributes", &Cls::GetClearAttributes, &Cls::SetClearAttributes);
  P.Boolean("FailIfZeroFiles", &Cls::GetFailIfZeroFiles, &Cls::SetFailIfZeroFiles);
  P.Integer("FilesAffected", &Cls::ReadFilesAffected);
  P.Integer("ErrorCount", &Cls::GetErrorCount);
}

bool HasWildcard(const std::string& S) { return S.find_first_of("*?") != std::string::npos; }

// The plain routine the platform calls during a copy or move; Data is the
// action that started it.
pf::DWORD CopyProgressRoutine(std::int64_t TotalFileSize, std::int64_t TotalBytesTransferred, std::int64_t,
                              std::int64_t, pf::DWORD, pf::DWORD, void* Data) {
  static_cast<TCustomCopyFilesAction*>(Data)->ProgressCallback(TotalFileSize, TotalBytesTransferred);
  return pf::PROGRESS_CONTINUE;
}

// True when both names lead to one existing file, however they are spelt.
bool SameExistingFile(const std::string& A, const std::string& B) {
  pf::FileInfo InfoA, InfoB;
  pf::Env* E = pf::Env::Default();
  return E->QueryFileInfo(A, InfoA) == 0 && E->QueryFileInfo(B, InfoB) == 0 && InfoA.Device == InfoB.Device &&
         InfoA.Inode == InfoB.Inode;
}

}  // namespace

void TCopyFilesAction::Publish(frame::TZTPublisher<TCopyFilesAction>& P) { PublishCommon(P, true); }

void TMoveFilesAction::Publish(frame::TZTPublisher<TMoveFilesAction>& P) {
  PublishCommon(P, false);
  P.Boolean("StopOnAnyErrors", &TMoveFilesAction::GetStopOnAnyErrors, &TMoveFilesAction::SetStopOnAnyErrors);
}

TCustomCopyFilesAction::TCustomCopyFilesAction() { FFailIfZeroFiles = false; }

TMoveFilesAction::TMoveFilesAction() : FStopOnAnyErrors(false) {}

// ---- Coupled setters ----

void TCustomCopyFilesAction::SetFileSpec(const std::string& Value) {
  if (Value == FFileSpec) return;
  FFileSpec = Value;
  if (HasWildcard(Value)) SetTargetIsDir(true);
}

void TCustomCopyFilesAction::SetTargetIsDir(bool Value) {
  FTargetIsDir = Value;
  if (!Value) FRecurse = false;
}

void TCustomCopyFilesAction::SetRecurse(bool Value) {
  FRecurse = Value;
  if (Value) FTargetIsDir = true;
}

// ---- Terminate flag and progress ----

void TCustomCopyFilesAction::TerminateAction() { std::atomic_ref<pf::BOOL>(FTerminate).store(1); }

bool TCustomCopyFilesAction::Terminated() const {
  return std::atomic_ref<pf::BOOL>(const_cast<pf::BOOL&>(FTerminate)).load() != 0;
}

void TCustomCopyFilesAction::ResetTerminated() { std::atomic_ref<pf::BOOL>(FTerminate).store(0); }

void TCustomCopyFilesAction::BeginProgress(const std::string& Text) {
  FLastPercent = 0;
  FProgressText = Text;
  SendProgress(FProgressText, 0);
}

void TCustomCopyFilesAction::ProgressCallback(std::int64_t TotalFileSize, std::int64_t TotalBytesTransferred) {
  const std::int32_t Percent = RoundedPercent(TotalFileSize, TotalBytesTransferred);
  if (Percent == FLastPercent) return;
  FLastPercent = Percent;
  SendProgress(FProgressText, Percent);
}

// ---- Copy ----

bool TCustomCopyFilesAction::Execute() {
  FFilesAffected = 0;
  ResetTerminated();
  FLastForcedDir.clear();
  FRunTargetKnown = false;

  const std::string Source = frame::Trim(ExpandExpression(FFileSpec, true));
  if (Source.empty()) {
    SendMessage("Error: No source file specified.");
    return false;
  }
  const std::string TargetPath = frame::Trim(ExpandExpression(FTarget, true));
  if (TargetPath.empty()) {
    SendMessage("Error: No target file specified.");
    return false;
  }
  FRunTarget = TargetPath;

  frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
  Entry->Details().Add("Copying files : " + Source + " -> " + TargetPath);
  // The count line is left out when the action alone was told to stop: the
  // user cancelled this copy, not the build.
  auto Finish = [&] {
    if (!(Terminated() && !StopSignalled()))
      Entry->Details().Add(std::to_string(FFilesAffected) + " Files Copied.");
    SendStatusMessage(Entry);
  };
  bool Result;
  try {
    Result = DoRecursiveCopyMove(*Entry, Source, TargetPath, FFilesAffected);
    if (FFailIfZeroFiles && FFilesAffected == 0) Result = false;
  } catch (...) {
    Finish();
    throw;
  }
  Finish();
  return Result;
}

bool TCustomCopyFilesAction::DoRecursiveCopyMove(frame::IZTActionLogMessage& Entry, const std::string& Spec,
                                                 const std::string& Target, int& Count) {
  const bool Wildcard = HasWildcard(Spec);
  // The directory part with its delimiter; empty for a bare name, which then
  // means the current directory (never the root).
  const std::string SourceDir = pf::ExtractFilePath(Spec);
  const std::string Mask = pf::ExtractFileName(Spec);
  const std::string TargetDir = pf::ExcludeTrailingPathDelimiter(Target) + pf::PathDelim();

  pf::TSearchRec F;
  {
    TSearchGuard Search{F};
    Search.Open = pf::FindFirst(Spec, pf::faAnyFile, F) == 0;
    if (Search.Open) {
      do {
        if (F.Attr & pf::faDirectory) continue;
        const std::string TargetFile = FTargetIsDir ? TargetDir + F.Name : Target;
        const std::string SourceFile = SourceDir + F.Name;
        if (FForce) ForceTargetDirectory(pf::ExtractFileDir(TargetFile));
        if (!ProcessFile(Entry, SourceFile, TargetFile)) return false;
        ++Count;
      } while (Wildcard && pf::FindNext(F) == 0);
    }
  }

  if (FRecurse) {
    TSearchGuard Search{F};
    Search.Open = pf::FindFirst(SourceDir + "*", pf::faDirectory, F) == 0;
    if (Search.Open) {
      do {
        if (!(F.Attr & pf::faDirectory) || F.Name == "." || F.Name == "..") continue;
        if (IsRunTargetDirectory(SourceDir + F.Name)) continue;
        // A sub-directory that fails has logged why; its siblings still run.
        DoRecursiveCopyMove(Entry, SourceDir + F.Name + pf::PathDelim() + Mask, TargetDir + F.Name, Count);
      } while (pf::FindNext(F) == 0);
    }
  }
  return true;
}

void TCustomCopyFilesAction::ForceTargetDirectory(const std::string& Dir) {
  if (Dir == FLastForcedDir) return;
  FLastForcedDir = pf::ForceDirectories(Dir) ? Dir : std::string();
}

bool TCustomCopyFilesAction::IsRunTargetDirectory(const std::string& Dir) {
  if (!FTargetIsDir) return false;
  pf::Env* E = pf::Env::Default();
  pf::FileInfo Info;
  // The target may come into being during the run (Force): ask until it has.
  if (!FRunTargetKnown && E->QueryFileInfo(FRunTarget, Info) == 0 && (Info.Attributes & pf::faDirectory)) {
    FRunTargetDevice = Info.Device;
    FRunTargetInode = Info.Inode;
    FRunTargetKnown = true;
  }
  return FRunTargetKnown && E->QueryFileInfo(Dir, Info) == 0 && Info.Device == FRunTargetDevice &&
         Info.Inode == FRunTargetInode;
}

bool TCustomCopyFilesAction::ProcessFile(frame::IZTActionLogMessage& Entry, const std::string& SourceFile,
                                         const std::string& TargetFile) {
  frame::TStrings& Details = Entry.Details();
  if (StopSignalled() || Terminated()) {
    Details.Add("Stopping...");
    return false;
  }
  const std::string FailedLine = "Failed to copy File : " + SourceFile + " -> " + TargetFile;
  if (FFailIfExists && pf::FileExists(TargetFile)) {
    Details.Add(FailedLine);
    Details.Add("File Already Exists!");
    return false;
  }
  const pf::DWORD TargetAttr = pf::GetFileAttributesA(TargetFile);
  if (TargetAttr != pf::INVALID_FILE_ATTRIBUTES && (TargetAttr & pf::FILE_ATTRIBUTE_READONLY)) {
    if (!FOverwriteReadOnly) {
      Details.Add(FailedLine);
      Details.Add("File Already Exists and is marked as Read Only");
      return false;
    }
    pf::SetFileAttributesA(TargetFile, FClearAttributes ? pf::FILE_ATTRIBUTE_NORMAL
                                                        : TargetAttr & ~pf::FILE_ATTRIBUTE_READONLY);
  }

  BeginProgress("Copying File : " + SourceFile + " to : " + TargetFile);
  const pf::DWORD Flags = FFailIfExists ? pf::COPY_FILE_FAIL_IF_EXISTS : 0;
  if (pf::CopyFileExA(SourceFile, TargetFile, &CopyProgressRoutine, this, CancelFlag(), Flags)) {
    if (FClearAttributes) pf::SetFileAttributesA(TargetFile, pf::FILE_ATTRIBUTE_NORMAL);
    return true;
  }
  if (Terminated()) {
    Details.Add("Terminating...");
  } else {
    const pf::DWORD Error = pf::GetLastError();
    Details.Add(FailedLine);
    Details.Add("Win32 Error : " + pf::SysErrorMessage(Error));
  }
  return false;
}

// ---- Move ----

bool TMoveFilesAction::Execute() {
  FFilesAffected = 0;
  FErrorCount = 0;
  const pf::DWORD MoveFlags = pf::MOVEFILE_COPY_ALLOWED | pf::MOVEFILE_WRITE_THROUGH;
  ResetTerminated();
  bool Result = true;
  // Once one existing target was read-only, every later existing target of
  // the run is treated as read-only too.
  bool ReadOnlyMarker = false;

  std::string Source, TargetPath;
  try {
    // An empty source or target is a silent success, unlike copy.
    Source = frame::Trim(ExpandExpression(FFileSpec, true));
    if (Source.empty()) return true;
    TargetPath = frame::Trim(ExpandExpression(FTarget, true));
    if (TargetPath.empty()) return true;
  } catch (const std::exception& E) {
    frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
    Entry->Details().Add(" --> Unable to Move files : " + Source);
    Entry->Details().Add(std::string(" --> ") + E.what());
    SendStatusMessage(Entry);
    return false;
  }

  frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
  frame::TStrings& Details = Entry->Details();
  Details.Add("Moving files : " + Source + " -> " + TargetPath);
  const std::string SourceDir = pf::ExtractFilePath(Source);

  bool Stopped = false;
  {
    pf::TSearchRec F;
    TSearchGuard Search{F};
    Search.Open = pf::FindFirst(Source, pf::faReadOnly | pf::faHidden, F) == 0;
    while (Search.Open) {
      const bool ToDir = FTargetIsDir;
      if (ToDir && FForce) pf::ForceDirectories(TargetPath);
      const std::string TargetFile = ToDir ? pf::IncludeTrailingPathDelimiter(TargetPath) + F.Name : TargetPath;
      const std::string SourceFile = SourceDir + F.Name;
      const bool TargetExists = pf::FileExists(TargetFile);
      // Two spellings of one file count as the same file: deleting the
      // "target" would delete the source.
      const bool Same = SourceFile == TargetFile || (TargetExists && SameExistingFile(SourceFile, TargetFile));
      const std::string ErrorLine = " --> Error Moving File : " + SourceFile + " -> " + TargetFile;
      auto Fail = [&](const std::string& Why) {
        Details.Add(ErrorLine);
        Details.Add(" --> " + Why);
        Result = false;
        Stopped = true;
      };

      if (FStopOnAnyErrors && !pf::FileExists(SourceFile)) {
        Fail("Source File Does not exist");
        break;
      }
      if (FFailIfExists && TargetExists) {
        Fail("The target File exists and \"Fail if Exists\" is checked");
        break;
      }
      // The delete of an existing target waits for the move: a move that
      // fails puts the old target back, attributes and all.
      pf::TPendingDelete OldTarget;
      pf::DWORD OldAttr = pf::INVALID_FILE_ATTRIBUTES;
      if (TargetExists) {
        const pf::DWORD Attr = pf::GetFileAttributesA(TargetFile);
        if (Attr != pf::INVALID_FILE_ATTRIBUTES && (Attr & pf::FILE_ATTRIBUTE_READONLY)) ReadOnlyMarker = true;
        if (ReadOnlyMarker && !FOverwriteReadOnly) {
          Fail("The target File is marked \"Read Only\"");
          break;
        }
        if (ReadOnlyMarker && pf::SetFileAttributesA(TargetFile, pf::FILE_ATTRIBUTE_NORMAL)) OldAttr = Attr;
        if (!Same && !OldTarget.Begin(TargetFile) && FStopOnAnyErrors) {
          Fail(pf::SysErrorMessage(pf::GetLastError()));
          break;
        }
      }

      bool Moved;
      if (ToDir) {
        BeginProgress("Moving File : " + SourceFile + " to : " + TargetFile);
        Moved = pf::MoveFileWithProgressA(SourceFile, TargetFile, &CopyProgressRoutine, this, MoveFlags);
      } else {
        if (FForce) ForceTargetDirectory(pf::ExtractFileDir(TargetFile));
        Moved = pf::MoveFileA(SourceFile, TargetFile);
      }
      if (Moved) {
        OldTarget.Commit();
        if (FClearAttributes) pf::SetFileAttributesA(TargetFile, pf::FILE_ATTRIBUTE_NORMAL);
        ++FFilesAffected;
      } else {
        const pf::DWORD Error = pf::GetLastError();
        OldTarget.Undo();
        if (OldAttr != pf::INVALID_FILE_ATTRIBUTES) pf::SetFileAttributesA(TargetFile, OldAttr);
        Details.Add(ErrorLine);
        Details.Add(" --> " + pf::SysErrorMessage(Error));
        ++FErrorCount;
        if (FStopOnAnyErrors) {
          Result = false;
          Stopped = true;
          break;
        }
      }
      // Without a target directory only the first match is ever moved.
      if (!ToDir || pf::FindNext(F) != 0) break;
    }
  }

  if (!Stopped && FFailIfZeroFiles && FFilesAffected == 0) Result = false;
  Details.Add(std::to_string(FFilesAffected) + " Files Moved.");
  SendStatusMessage(Entry);
  return Result;
}

// ---- Design time ----

bool TCustomCopyFilesAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Valid = true;
  if (FFileSpec.empty()) {
    Errors.AddError("File Spec", "The file spec has not been set");
    Valid = false;
  }
  if (FTarget.empty()) {
    Errors.AddError("Target", "The target file/directory has not been set");
    Valid = false;
  }
  return Valid;
}

std::string TCustomCopyFilesAction::GetFormattedDescription() {
  return inherited::GetFormattedDescription() + " [ " + FFileSpec + " ]";
}

void TCustomCopyFilesAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Misc]");
  List.Add("Force=Force Directories");
  List.Add("FileSpec=File Specification");
  List.Add("Target=Destination");
  List.Add("TargetIsDir=Destination Is Directory");
  List.Add("FailIfExists=Fail if Exists");
  List.Add("OverwriteReadOnly=Overwrite Read Only");
  List.Add("Recurse");
  List.Add("ClearAttributes=Clear Attributes");
}

void TCustomCopyFilesAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("Force=Use Force Directories to create a directory and all parent directories that do not already exist.");
  List.Add("FileSpec=The file specification of the files to copy. Wildcards (*, ?) may be used");
  List.Add("Target=The Destination File or Directory");
  List.Add("TargetIsDir=Specifies that the Destination Is a Directory");
  List.Add("FailIfExists=Fail if the target file Exists");
  List.Add("OverwriteReadOnly=Overwrite Read Only Files");
  List.Add("Recurse=Resurse Sub Directories");
  List.Add("ClearAttributes=Clear the copied/moved files attribute flags after the copy/move");
}

void TCustomCopyFilesAction::GetHiddenProperties(frame::TStrings& List) {
  inherited::GetHiddenProperties(List);
  List.Add("ErrorCount");
}

}  // namespace zt::package
