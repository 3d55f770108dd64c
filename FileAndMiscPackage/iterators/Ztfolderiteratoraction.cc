#include "iterators/Ztfolderiteratoraction.h"

#include <exception>

#include "frame/ZTUtils.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TFolderIterator, &TFolderIterator::Publish)

void TFolderIterator::Publish(frame::TZTPublisher<TFolderIterator>& P) {
  using A = TFolderIterator;
  P.WideString("VariableName", &A::GetVariableName, &A::SetVariableName);
  P.WideString("StartingFolder", &A::GetStartingFolder, &A::SetStartingFolder);
  P.Boolean("Recurse", &A::GetRecurse, &A::SetRecurse);
  P.Boolean("IncludeFolderPath", &A::GetIncludeFolderPath, &A::SetIncludeFolderPath);
  P.Boolean("IncludeHiddenSystem", &A::GetIncludeHiddenSystem, &A::SetIncludeHiddenSystem);
}

void TFolderIterator::SetRecurse(bool Value) {
  FRecurse = Value;
  if (Value) FIncludeFolderPath = true;
}

void TFolderIterator::SetIncludeFolderPath(bool Value) {
  FIncludeFolderPath = Value;
  if (!Value) FRecurse = false;
}

bool TFolderIterator::StopSignalled() {
  const bool Stop = inherited::StopSignalled();
  if (Stop) FStop = true;
  return Stop;
}

bool TFolderIterator::BeforeFirstIteration() {
  FStop = false;
  std::string Folder;
  if (!TryExpandExpression("Starting Folder", FStartingFolder, true, Folder)) return false;
  Folder = frame::Trim(Folder);
  // An empty folder would mean the root of the file system.
  if (Folder.empty()) {
    SendMessage("A starting folder has not been set");
    return false;
  }
  SendMessage("Searching for Folders...");
  try {
    FFolders.Clear();
    SearchFolders(Folder);
    SendMessage("Found " + std::to_string(FFolders.Count()) + " Folders");
    SendMessage(FFolders.Text());
    SetIterationCount(FFolders.Count());
  } catch (const frame::EIteratorException&) {
    throw;  // the stop message
  } catch (const std::exception& E) {
    throw frame::EIteratorException(std::string("Error while searching for folders : ") + E.what());
  }
  return true;
}

void TFolderIterator::SearchFolders(const std::string& Folder) {
  // 63: every kind of entry; 16 leaves hidden and system folders out.
  const int Attr = FIncludeHiddenSystem ? 63 : pf::faDirectory;
  const std::string Dir = pf::IncludeTrailingPathDelimiter(Folder);
  pf::TSearchRec F;
  if (pf::FindFirst(Dir + "*.*", Attr, F) != 0) return;
  do {
    if (!(F.Attr & pf::faDirectory) || F.Name == "." || F.Name == "..") continue;
    StopSignalled();
    if (FStop) throw frame::EIteratorException("Stopping folder search.");  // F closes itself
    FFolders.Add(FIncludeFolderPath ? Dir + F.Name : F.Name);
    if (FRecurse) SearchFolders(Dir + F.Name + pf::PathDelim());
  } while (pf::FindNext(F) == 0);
  pf::FindClose(F);
}

frame::TZTVariant TFolderIterator::GetCurrentValue() { return FFolders[GetCurrentIteration() - 1]; }

void TFolderIterator::AfterLastIteration() {
  inherited::AfterLastIteration();
  FFolders.Clear();
}

void TFolderIterator::ResetBuildStatus() {
  inherited::ResetBuildStatus();
  Reset();
}

bool TFolderIterator::Validate(frame::IZTActionValidationError& Errors) {
  if (FStartingFolder.empty()) {
    Errors.AddError("Starting Folder", "A starting folder has not been set");
    return false;
  }
  return true;
}

std::string TFolderIterator::GetFormattedDescription() {
  return GetActionName() + " [ " + FStartingFolder + " ]";
}

void TFolderIterator::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Folders]");
  List.Add("VariableName=Variable Name");
  List.Add("StartingFolder=Starting Folder");
  List.Add("IncludeFolderPath=Include Folder Path");
  List.Add("IncludeHiddenSystem=Include Hidden and System Folders");
}

void TFolderIterator::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("VariableName=The variable that receives the current folder");
  List.Add("StartingFolder=The folder whose sub-folders are iterated (not itself)");
  List.Add("Recurse=Also iterate the sub-folders of every sub-folder (the variable then holds full paths)");
  List.Add("IncludeFolderPath=The variable holds the full path (True) or the folder name only (False)");
  List.Add("IncludeHiddenSystem=Also iterate hidden and system folders");
}

}  // namespace zt::package
