#include "files/Ztgetfilesize.h"

#include "Ztpropertytexts.h"
#include "files/SearchGuard.h"
#include "frame/ZTUtils.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TZTGetFileSizeAction, &TZTGetFileSizeAction::Publish)

namespace {

constexpr TPropertyText kTexts[] = {
    {"FileName", "File Name", "a file, a wildcard specification, or a directory (= all below it)"},
    {"Recurse", "Include Sub Directories", "matches in sub-directories too"},
    {"ZTVariable", "Variable", "total bytes (integer)"},
    {"FailIfMissing", nullptr, "no match fails"},
};

}  // namespace

void TZTGetFileSizeAction::Publish(frame::TZTPublisher<TZTGetFileSizeAction>& P) {
  using A = TZTGetFileSizeAction;
  P.String("FileName", &A::GetFileName, &A::SetFileName);
  P.Boolean("Recurse", &A::GetRecurse, &A::SetRecurse);
  P.String("ZTVariable", &A::GetZTVariable, &A::SetZTVariable);
  P.Boolean("FailIfMissing", &A::GetFailIfMissing, &A::SetFailIfMissing);
}

bool TZTGetFileSizeAction::Execute() {
  FBytes = FFiles = 0;
  std::string Name;
  if (!TryExpandExpression("File Name", FFileName, true, Name)) return false;
  Name = frame::Trim(Name);
  if (Name.empty()) {
    SendMessage("Error: No source file specified.");
    return false;
  }
  // A directory means every file below it.
  const bool IsDir = pf::DirectoryExists(Name);
  if (!AddSizes(IsDir ? pf::IncludeTrailingPathDelimiter(Name) + "*" : Name, FRecurse || IsDir)) {
    SendMessage("Stopping...");
    return false;
  }
  if (FFiles == 0 && FFailIfMissing) {
    SendMessage("No file matches : " + Name);
    return false;
  }
  SendMessage("Size of " + Name + " : " + std::to_string(FBytes) + " bytes in " + std::to_string(FFiles) + " files");
  if (!FZTVariable.empty()) SetVariable(FZTVariable, frame::TZTVariant(FBytes));
  return true;
}

bool TZTGetFileSizeAction::AddSizes(const std::string& Spec, bool Recurse) {
  const std::string Dir = pf::ExtractFilePath(Spec);
  pf::TSearchRec F;
  {
    TSearchGuard Search{F};
    // Hidden and system files count; directories do not.
    Search.Open = pf::FindFirst(Spec, pf::faReadOnly | pf::faHidden | pf::faSysFile, F) == 0;
    if (Search.Open) {
      do {
        FBytes += F.Size;
        ++FFiles;
      } while (pf::FindNext(F) == 0);
    }
  }
  if (!Recurse) return true;
  const std::string Mask = pf::ExtractFileName(Spec);
  TSearchGuard Search{F};
  Search.Open = pf::FindFirst(Dir + "*", pf::faDirectory | pf::faHidden | pf::faSysFile, F) == 0;
  if (!Search.Open) return true;
  do {
    if (!(F.Attr & pf::faDirectory) || (F.Attr & pf::faSymLink) || F.Name == "." || F.Name == "..") continue;
    if (StopSignalled()) return false;
    if (!AddSizes(Dir + F.Name + pf::PathDelim() + Mask, true)) return false;
  } while (pf::FindNext(F) == 0);
  return true;
}

bool TZTGetFileSizeAction::Validate(frame::IZTActionValidationError& Errors) {
  if (!FFileName.empty()) return true;
  Errors.AddError("File Name", "Filename has not been set");
  return false;
}

std::string TZTGetFileSizeAction::GetFormattedDescription() { return "Get File Size [ " + FFileName + " ]"; }

void TZTGetFileSizeAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  AddPropertyAliases(List, GetActionName(), kTexts);
}

void TZTGetFileSizeAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  AddPropertyHelp(List, kTexts);
}

}  // namespace zt::package
