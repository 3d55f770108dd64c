#include "iterators/Ztfileiterator.h"

#include <exception>
#include <unordered_set>
#include <vector>

#include "frame/ZTFileSet.h"
#include "frame/ZTUtils.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TCustomFileIterator, nullptr)
ZT_IMPLEMENT_CLASS(TFileIterator, &TFileIterator::Publish)

void TFileIterator::Publish(frame::TZTPublisher<TFileIterator>& P) {
  using A = TFileIterator;
  P.String("VariableName", &A::GetVariableName, &A::SetVariableName);
  P.WideString("FileSpec", &A::GetFileSpec, &A::SetFileSpec);
  P.Boolean("Recurse", &A::GetRecurse, &A::SetRecurse);
  P.Boolean("IncludeFilePath", &A::GetIncludeFilePath, &A::SetIncludeFilePath);
  P.Integer("FileCount", &A::GetFileCount);
  P.Integer("FileIndex", &A::GetFileIndex);
  P.Boolean("FindAnyFile", &A::GetFindAnyFile, &A::SetFindAnyFile);
  P.Boolean("UseFileSet", &A::GetUseFileSet, &A::SetUseFileSet);
  P.String("FileSetName", &A::GetFileSetName, &A::SetFileSetName);
  P.Boolean("FileSetRefreshBefore", &A::GetFileSetRefreshBefore, &A::SetFileSetRefreshBefore);
  P.Boolean("FileSetRefreshAfterEach", &A::GetFileSetRefreshAfterEach, &A::SetFileSetRefreshAfterEach);
}

void TCustomFileIterator::SetFileSpec(const std::string& Value) {
  if (Value != FFileSpec) FFileSpec = Value;
}

void TCustomFileIterator::SetRecurse(bool Value) {
  FRecurse = Value;
  if (Value) FIncludeFilePath = true;
}

void TCustomFileIterator::SetIncludeFilePath(bool Value) {
  FIncludeFilePath = Value;
  if (!Value) FRecurse = false;
}

bool TCustomFileIterator::BeforeFirstIteration() {
  std::string Spec;
  try {
    Spec = frame::Trim(ExpandExpression(FFileSpec, true));
  } catch (const std::exception& E) {
    throw frame::EIteratorException(std::string("Error Setting File Spec : ") + E.what());
  }
  if (!FUseFileSet) {
    SendMessage("Searching for Files...");
    try {
      FFileList.Clear();
      SearchFiles(Spec);
      SendMessage("Found " + std::to_string(FFileList.Count()) + " Files.");
      LogList();
      SetIterationCount(FFileList.Count());
    } catch (const std::exception& E) {
      throw frame::EIteratorException(std::string("Error while searching for files : ") + E.what());
    }
  } else {
    SendMessage("Retrieving fileset...");
    try {
      ReadFileSet(false);
      SendMessage("File Set contents (" + std::to_string(FFileList.Count()) + " files) :");
      LogList();
      SetIterationCount(FFileList.Count());
    } catch (const frame::EIteratorException&) {
      throw;
    } catch (const std::exception& E) {
      throw frame::EIteratorException(std::string("Error while evaluating fileset : ") + E.what());
    }
  }
  return true;
}

void TCustomFileIterator::SearchFiles(const std::string& Spec) {
  // 47: read-only, hidden, system, volume and archive; 0 finds only normal,
  // read-only and archive files. Directories never match either mask.
  const int Attr = FFindAnyFile ? 47 : 0;
  const std::string Dir = pf::ExtractFilePath(Spec);
  const std::string Pattern = pf::ExtractFileName(Spec);
  pf::TSearchRec F;
  if (!FRecurse) {
    if (pf::FindFirst(Spec, Attr, F) != 0) return;
    do {
      FFileList.Add(FIncludeFilePath ? Dir + F.Name : F.Name);
    } while (pf::FindNext(F) == 0);
    pf::FindClose(F);
    return;
  }
  // One listing of "*.*" with the directory bit added gives what the two
  // searches give (the pattern's files, then the sub-directories, each in
  // directory order): the mask treats files alike in both, and every entry
  // is described once instead of twice.
  std::vector<std::string> SubDirs;
  if (pf::FindFirst(Dir + "*.*", Attr | pf::faDirectory, F) == 0) {
    do {
      if (!(F.Attr & pf::faDirectory)) {
        if (pf::MatchesWildcard(F.Name, Pattern)) FFileList.Add(FIncludeFilePath ? Dir + F.Name : F.Name);
      } else if (F.Name != "." && F.Name != "..") {
        SubDirs.push_back(F.Name);
      }
    } while (pf::FindNext(F) == 0);
    pf::FindClose(F);
  }
  for (std::string& Sub : SubDirs) SearchFiles(Sub.insert(0, Dir).append(1, pf::PathDelim()).append(Pattern));
}

void TCustomFileIterator::ReadFileSet(bool Refreshing) {
  frame::IZTFileSet* Set = frame::FindFileSet(GetProjectObjectAPI(), FFileSetName);
  if (!Set) throw frame::EIteratorException("File set \"" + FFileSetName + "\" not found.");
  if (Refreshing ? FFileSetRefreshAfterEach : FFileSetRefreshBefore) {
    SendMessage("Refreshing fileset...");
    Set->Refresh(*this);
  }
  const std::string Text = Set->GetFilesText("\r\n");
  if (Refreshing) return MergeFileSet(Text);
  FFileList.SetText(Text);
  if (!FIncludeFilePath)
    for (int I = FFileList.Count() - 1; I >= 0; --I) FFileList[I] = pf::ExtractFileName(FFileList[I]);
}

void TCustomFileIterator::MergeFileSet(const std::string& FilesText) {
  frame::TStrings Fresh;
  Fresh.SetText(FilesText);
  // Letter case is ignored; the sets keep the look-ups linear in the list.
  std::unordered_set<std::string> InSet, Listed;
  for (const std::string& File : Fresh.Lines()) InSet.insert(frame::LowerCase(File));

  // Only entries after the current one may go.
  frame::TStrings Kept;
  int Removed = 0;
  for (int I = 0; I < FFileList.Count(); ++I) {
    std::string Key = frame::LowerCase(FFileList[I]);
    if (I >= GetCurrentIteration() && !InSet.count(Key)) {
      ++Removed;
      continue;
    }
    Kept.Add(FFileList[I]);
    Listed.insert(std::move(Key));
  }
  if (Removed > 0) SendMessage(std::to_string(Removed) + " file(s) no longer appear in the fileset.");

  int Added = 0;
  for (const std::string& File : Fresh.Lines())
    if (Listed.insert(frame::LowerCase(File)).second) {
      Kept.Add(File);
      ++Added;
    }
  if (Added > 0) SendMessage(std::to_string(Added) + " new file(s) found in the fileset.");
  FFileList = std::move(Kept);
  SetIterationCount(FFileList.Count());
}

void TCustomFileIterator::LogList() { SendMessage(FFileList.Text()); }

frame::TZTVariant TCustomFileIterator::GetCurrentValue() {
  return frame::StripQuotes(FFileList[GetCurrentIteration() - 1]);
}

void TCustomFileIterator::AfterEachIteration() {
  inherited::AfterEachIteration();
  if (FFileSetRefreshAfterEach) ReadFileSet(true);
}

void TCustomFileIterator::AfterLastIteration() {
  inherited::AfterLastIteration();
  if (FFileSetRefreshAfterEach) {
    SendMessage("Final file list which was iterated (after all intermediate updates):");
    LogList();
    SendMessage("(" + std::to_string(FFileList.Count()) + " files.)");
  }
  FFileList.Clear();
}

void TCustomFileIterator::ResetBuildStatus() {
  inherited::ResetBuildStatus();
  Reset();
}

bool TCustomFileIterator::Validate(frame::IZTActionValidationError& Errors) {
  bool Result = true;
  if (!FUseFileSet && FFileSpec.empty()) {
    Errors.AddError("File Spec", "File Spec has not been set");
    Result = false;
  }
  if (FUseFileSet && FFileSetName.empty()) {
    Errors.AddError("FileSet", "FileSet name has not been set");
    Result = false;
  }
  return Result;
}

std::string TCustomFileIterator::GetFormattedDescription() {
  return GetActionName() + " [ " + (FUseFileSet ? FFileSetName : FFileSpec) + " ]";
}

void TCustomFileIterator::GetHiddenProperties(frame::TStrings& List) {
  inherited::GetHiddenProperties(List);
  List.Add("FileIndex");
  List.Add("FileCount");
}

void TCustomFileIterator::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Files]");
  List.Add("VariableName=Variable Name");
  List.Add("FileSpec=File Spec");
  List.Add("IncludeFilePath=Include File Path");
  List.Add("FindAnyFile=Find Any File");
  List.Add("UseFileSet=Use File Set");
  List.Add("FileSetName=FileSet");
  List.Add("FileSetRefreshBefore=Refresh File Set Before");
  List.Add("FileSetRefreshAfterEach=Refresh File Set After Each");
}

void TCustomFileIterator::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("VariableName=The variable that receives the current file");
  List.Add("FileSpec=File Specification, can include wilde cards (* or ?)");
  List.Add("Recurse=Also search all sub-directories (the variable then holds full paths)");
  List.Add("IncludeFilePath=The variable holds the full path (True) or the file name only (False)");
  List.Add("FindAnyFile=Also find hidden and system files");
  List.Add("UseFileSet=Take the files from a project file set instead of the File Spec");
  List.Add("FileSetName=The project file set to iterate");
  List.Add("FileSetRefreshBefore=Re-evaluate the file set before the first pass");
  List.Add("FileSetRefreshAfterEach=Re-evaluate the file set after every pass");
}

}  // namespace zt::package
