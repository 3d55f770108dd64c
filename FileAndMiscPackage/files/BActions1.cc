#include "files/BActions1.h"

#include "frame/ZTFileSet.h"
#include "frame/ZTUtils.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TFileOrDirectoryAction, &TFileOrDirectoryAction::Publish)
ZT_IMPLEMENT_CLASS(TFileExistsAction, &TFileExistsAction::Publish)
ZT_IMPLEMENT_CLASS(TCreateDirectoryAction, &TCreateDirectoryAction::Publish)

namespace {

// Delphi's Values[Name] := Value on a Name=Value list: replaces the line of
// Name when there is one, else appends.
void SetValue(frame::TStrings& List, const std::string& Name, const std::string& Value) {
  const std::string Prefix = Name + "=";
  for (int I = 0; I < List.Count(); ++I)
    if (List[I].compare(0, Prefix.size(), Prefix) == 0) {
      List[I] = Prefix + Value;
      return;
    }
  List.Add(Prefix + Value);
}

}  // namespace

void TFileOrDirectoryAction::Publish(frame::TZTPublisher<TFileOrDirectoryAction>& P) {
  P.WideString("FileOrDirectory", &TFileOrDirectoryAction::GetFileOrDirectory,
               &TFileOrDirectoryAction::SetFileOrDirectory);
}

// ---- Check if File Exists ----

void TFileExistsAction::Publish(frame::TZTPublisher<TFileExistsAction>& P) {
  using A = TFileExistsAction;
  P.String("FileSet", &A::GetFileSet, &A::SetFileSet);
  // Old projects write it; it lands in ExistsMode, so a saved project never does.
  P.Boolean("FailIfExists", &A::GetFailIfExists, &A::SetFailIfExists).Stored = false;
  P.Enumeration("ExistsMode", "TFileExistsMode", {"feFailIfExists", "feFailIfMissing", "feIgnore"},
                &A::GetExistsMode, &A::SetExistsMode);
  P.String("Variable", &A::GetVariable, &A::SetVariable);
  P.Boolean("UseFileSpec", &A::GetUseFileSpec, &A::SetUseFileSpec);
}

bool TFileExistsAction::Execute() {
  const bool Found = FUseFileSpec ? FileSpecExists() : FileSetExists();
  // The variable gets the raw answer, before the mode turns it into a result.
  if (!FVariable.empty()) frame::TCustomZTAction::SetVariable(FVariable, Found);
  switch (FExistsMode) {
    case feFailIfExists: return !Found;
    case feFailIfMissing: return Found;
    case feIgnore: return true;
  }
  return true;
}

bool TFileExistsAction::FileSpecExists() {
  std::string Mask;
  if (!TryExpandExpression("FileMask", FFileOrDirectory, false, Mask)) {
    SendMessage("Could not expand file mask");
    return false;
  }
  // A trailing delimiter asks for a directory; the package's own "\" counts too.
  const bool WantDir = !Mask.empty() && (pf::IsPathDelimiter(Mask.back()) || Mask.back() == '\\');
  if (WantDir) Mask.pop_back();

  bool Found = false;
  pf::TSearchRec F;
  const bool Open = pf::FindFirst(Mask, pf::faAnyFile, F) == 0;
  if (Open) {
    do {
      if (!WantDir || (F.Attr & pf::faDirectory)) Found = true;
    } while (pf::FindNext(F) == 0);
  }
  if (WantDir)
    SendMessage(Found ? "Found a match for the directory" : "No match found for the directory");
  else
    SendMessage(Found ? "Found a match for the File Spec" : "No match found for File Spec");
  if (Open) pf::FindClose(F);
  return Found;
}

bool TFileExistsAction::FileSetExists() {
  if (FFileSet.empty()) return false;
  frame::IZTFileSet* Set = frame::FindFileSet(GetProjectObjectAPI(), FFileSet);
  if (!Set) {
    SendMessage("Could not find FileSet: " + FFileSet);
    return false;
  }
  frame::TStrings Files;
  Files.SetText(Set->GetFilesText("\r\n"));
  bool Found = false;
  for (const std::string& File : Files.Lines())
    if (pf::FileExists(File)) Found = true;
  SendMessage(Found ? "Found files from File Set" : "Found no files from File Set");
  return Found;
}

bool TFileExistsAction::Validate(frame::IZTActionValidationError& Errors) {
  if (FUseFileSpec && FFileOrDirectory.empty()) {
    Errors.AddError("File Spec", "A File Spec must be provided");
    return false;
  }
  if (FUseFileSpec || !FFileSet.empty()) return true;
  Errors.AddError("File Set", "A File Set must be provided");
  return false;
}

std::string TFileExistsAction::GetFormattedDescription() {
  if (FUseFileSpec) return "Check if [ " + FFileOrDirectory + " ] Exists";
  return "Check if Files in [ " + FFileSet + " ] Exist";
}

void TFileExistsAction::GetHiddenProperties(frame::TStrings& List) {
  inherited::GetHiddenProperties(List);
  List.Add("FailIfExists");
}

void TFileExistsAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("FileOrDirectory=File or Directory");
}

void TFileExistsAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("FileOrDirectory=The File or Directory to check for, wildcards may not be used!");
}

// ---- Create Directory ----

void TCreateDirectoryAction::Publish(frame::TZTPublisher<TCreateDirectoryAction>& P) {
  P.Boolean("Force", &TCreateDirectoryAction::GetForce, &TCreateDirectoryAction::SetForce);
}

bool TCreateDirectoryAction::Execute() {
  std::string Dir;
  try {
    bool Result = true;
    Dir = frame::Trim(ExpandExpression(FFileOrDirectory, true));
    if (Dir.empty()) return true;
    if (!pf::DirectoryExists(Dir)) Result = FForce ? pf::ForceDirectories(Dir) : pf::CreateDirectory(Dir);
    frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
    Entry->Details().Add((Result ? "Created directory : " : "Unable to Create directory : ") + Dir);
    SendStatusMessage(Entry);
    return Result;
  } catch (const std::exception& E) {
    frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
    Entry->Details().Add("Unable to Create directory : " + Dir);
    Entry->Details().Add(E.what());
    SendStatusMessage(Entry);
    return false;
  }
}

bool TCreateDirectoryAction::Validate(frame::IZTActionValidationError& Errors) {
  if (FFileOrDirectory.empty()) {
    Errors.AddError("Directory", "The directory to create has not been set");
    return false;
  }
  return true;
}

std::string TCreateDirectoryAction::GetFormattedDescription() {
  return "Create Directory [ " + FFileOrDirectory + " ]";
}

void TCreateDirectoryAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  SetValue(List, "FileOrDirectory", "Directory");
}

void TCreateDirectoryAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("FileOrDirectory=The Directory to Create.");
}

}  // namespace zt::package
