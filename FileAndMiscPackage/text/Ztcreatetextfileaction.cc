#include "text/Ztcreatetextfileaction.h"

#include <exception>

#include "frame/ZTUtils.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "text/Zttextfilestreams.h"

namespace zt::package {

ZT_IMPLEMENT_CLASS(TZTCreateTextFileAction, &TZTCreateTextFileAction::Publish)

void TZTCreateTextFileAction::Publish(frame::TZTPublisher<TZTCreateTextFileAction>& P) {
  using A = TZTCreateTextFileAction;
  P.String("FileContents", &A::GetFileContents, &A::SetFileContents);
  P.Boolean("OverwriteExisting", &A::GetOverwriteExisting, &A::SetOverwriteExisting);
  P.String("NewFileName", &A::GetNewFileName, &A::SetNewFileName);
  P.Boolean("CreateDirectory", &A::GetCreateDirectory, &A::SetCreateDirectory);
}

bool TZTCreateTextFileAction::Validate(frame::IZTActionValidationError& Errors) {
  if (!FNewFileName.empty()) return true;
  Errors.AddError("New File Name", "New filename has not been set");
  return false;
}

std::string TZTCreateTextFileAction::GetFormattedDescription() {
  return "Create Text File [ " + platform::ExtractFileName(FNewFileName) + " ]";
}

void TZTCreateTextFileAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Create Text File]");
  List.Add("FileContents=File Contents");
  List.Add("OverwriteExisting=Overwrite Existing File");
  List.Add("NewFileName=New Filename");
  List.Add("CreateDirectory=Create Directory if required");
}

void TZTCreateTextFileAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("FileContents=This text will be written to the file.  Any variables used will be expanded.");
  List.Add("OverwriteExisting=Overwrite existing file if it already exists");
  List.Add("NewFileName=The location and name of the new file");
  List.Add("CreateDirectory=Automatically create any directories if required");
}

bool TZTCreateTextFileAction::Execute() {
  std::string Path, Contents;
  if (!TryExpandExpression("NewFileName", FNewFileName, true, Path)) return false;
  Path = frame::Trim(Path);
  // A failure to create the directories shows when the file is created.
  const std::string Dir = platform::ExtractFileDir(Path);
  if (FCreateDirectory && !Dir.empty()) platform::ForceDirectories(Dir);
  if (platform::FileExists(Path) && !FOverwriteExisting) {
    SendMessage("ERROR - File already exists: " + Path);
    return false;
  }
  if (!TryExpandExpression("File Contents", FFileContents, false, Contents)) return false;
  try {
    SaveFileStream(Path, Contents);
  } catch (const std::exception& E) {
    SendMessage(std::string("File creation failed: ") + E.what());
    return false;
  }
  SendMessage("File created: " + Path);
  return true;
}

}  // namespace zt::package
