#include "files/Ztdeletefilesaction.h"

#include "files/SearchGuard.h"
#include "frame/ZTUtils.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TCustomDeleteFilesAction, nullptr)
ZT_IMPLEMENT_CLASS(TDeleteFilesAction, &TDeleteFilesAction::Publish)

TCustomDeleteFilesAction::TCustomDeleteFilesAction()
    : FDeleteReadOnly(false), FDeleteHidden(false), FFailIfNoFile(true) {}

void TDeleteFilesAction::Publish(frame::TZTPublisher<TDeleteFilesAction>& P) {
  P.String("FileSpec", &TDeleteFilesAction::GetFileSpec, &TDeleteFilesAction::SetFileSpec);
  P.Boolean("DeleteReadOnly", &TDeleteFilesAction::GetDeleteReadOnly, &TDeleteFilesAction::SetDeleteReadOnly);
  P.Boolean("DeleteHidden", &TDeleteFilesAction::GetDeleteHidden, &TDeleteFilesAction::SetDeleteHidden);
  P.Boolean("FailIfNoFile", &TDeleteFilesAction::GetFailIfNoFile, &TDeleteFilesAction::SetFailIfNoFile);
}

bool TCustomDeleteFilesAction::Execute() {
  bool Result = true;
  int Count = 0;
  FFilesDeleted = 0;

  const std::string Spec = frame::Trim(ExpandExpression(FFileSpec, true));
  if (Spec.empty()) {
    if (FFailIfNoFile) Result = false;
    return Result;
  }

  frame::IZTActionLogMessagePtr Msg = CreateStatusMessage();
  frame::TStrings& Details = Msg->Details();
  Details.Add("Deleting files : " + Spec);

  const std::string Dir = pf::ExtractFilePath(Spec);
  pf::TSearchRec F;
  TSearchGuard Search{F};
  // Normal, read-only and hidden files; never system files or directories.
  Search.Open = pf::FindFirst(Spec, pf::faReadOnly | pf::faHidden, F) == 0;
  if (Search.Open) {
    do {
      const std::string Path = Dir + F.Name;
      int Attr = F.Attr;
      if (FDeleteReadOnly && (Attr & pf::faReadOnly)) Attr &= ~pf::faReadOnly;
      if (FDeleteHidden && (Attr & pf::faHidden)) Attr &= ~pf::faHidden;
      if (FDeleteReadOnly || FDeleteHidden) pf::SetFileAttributesA(Path, static_cast<pf::DWORD>(Attr));

      bool Failed;
      if (pf::DeleteFile(Path)) {
        Failed = pf::FileExists(Path);
        if (!Failed) {
          ++Count;
          pf::SetLastError(0);
        }
      } else {
        // A failure that leaves no error code is not worth stopping for.
        Failed = pf::GetLastError() != 0;
      }
      if (Failed) {
        Details.Add(" --> Error Deleting File : " + Path);
        Details.Add(" --> " + pf::SysErrorMessage(pf::GetLastError()));
        Result = false;
        break;
      }
    } while (pf::FindNext(F) == 0);
  }

  FFilesDeleted = Count;
  if (Count == 0 && FFailIfNoFile) Result = false;
  Details.Add(std::to_string(Count) + " Files Deleted.");
  SendStatusMessage(Msg);
  return Result;
}

bool TCustomDeleteFilesAction::Validate(frame::IZTActionValidationError& Errors) {
  if (FFileSpec.empty()) {
    Errors.AddError("File Spec", "The file spec has not been set");
    return false;
  }
  return true;
}

std::string TCustomDeleteFilesAction::GetFormattedDescription() { return GetTitle() + " [ " + FFileSpec + " ]"; }

void TCustomDeleteFilesAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Files]");
  List.Add("FileSpec=File Specification");
  List.Add("DeleteReadOnly=Delete Read Only Files");
  List.Add("DeleteHidden=Delete Hidden Files");
  List.Add("FailIfNoFile=Fail If No File");
}

void TCustomDeleteFilesAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("FileSpec=File Specification, can include wilde cards (* or ?)");
  List.Add("DeleteReadOnly=Delete Read Only Files");
  List.Add("DeleteHidden=Delete Hidden Files");
  List.Add("FailIfNoFile=Fail if no file to Delete");
}

}  // namespace zt::package
