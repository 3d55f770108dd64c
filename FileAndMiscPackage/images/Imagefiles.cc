#include "images/Imagefiles.h"

#include "files/SearchGuard.h"
#include "frame/ZTUtils.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

namespace {

bool IsDotEntry(const std::string& Name) { return Name == "." || Name == ".."; }

void CollectFiles(const std::string& Dir, const std::string& Mask, const std::string& SubDir, bool Recurse,
                  std::vector<TImageFile>& Files) {
  {
    pf::TSearchRec F;
    TSearchGuard Search{F};
    Search.Open = pf::FindFirst(Dir + Mask, pf::faAnyFile, F) == 0;
    if (Search.Open) {
      do
        if (!(F.Attr & pf::faDirectory)) Files.push_back({Dir + F.Name, SubDir});
      while (pf::FindNext(F) == 0);
    }
  }
  if (!Recurse) return;
  pf::TSearchRec D;
  TSearchGuard Search{D};
  Search.Open = pf::FindFirst(Dir + "*", pf::faDirectory, D) == 0;
  if (!Search.Open) return;
  do
    if ((D.Attr & pf::faDirectory) && !IsDotEntry(D.Name))
      CollectFiles(Dir + D.Name + pf::PathDelim(), Mask, SubDir + D.Name + pf::PathDelim(), Recurse, Files);
  while (pf::FindNext(D) == 0);
}

}  // namespace

std::vector<TImageFile> FindImageFiles(const std::string& Spec, bool Recurse) {
  std::vector<TImageFile> Files;
  CollectFiles(pf::ExtractFilePath(Spec), pf::ExtractFileName(Spec), "", Recurse, Files);
  return Files;
}

std::string ImageOutputPath(const TImageFile& File, const std::string& OutputDir, const std::string& Suffix,
                            const std::string& Extension) {
  const std::string Name = pf::ExtractFileName(File.Source);
  const std::string Ext = pf::ExtractFileExt(Name);
  const std::string Base = Name.substr(0, Name.size() - Ext.size());
  const std::string Dir = OutputDir.empty() ? pf::ExtractFilePath(File.Source)
                                            : pf::IncludeTrailingPathDelimiter(OutputDir) + File.SubDir;
  return Dir + Base + Suffix + (Extension.empty() ? Ext : Extension);
}

bool TCustomImageFilesAction::Execute() {
  FFilesAffected = 0;
  std::string Spec, OutputDir, Suffix;
  if (!TryExpandExpression("File Specification", FFileSpec, true, Spec) ||
      !TryExpandExpression("Output Directory", FOutputDirectory, true, OutputDir) ||
      !TryExpandExpression("File Name Suffix", FFileNameSuffix, true, Suffix))
    return false;
  Spec = frame::Trim(Spec);
  if (Spec.empty()) {
    SendMessage("Error: No source file specified.");
    return false;
  }
  OutputDir = frame::Trim(OutputDir);
  Suffix = frame::Trim(Suffix);

  frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
  frame::TStrings& Details = Entry->Details();
  Details.Add(Heading() + Spec);
  bool Result = BeginRun(Details);
  const std::vector<TImageFile> Files = Result ? FindImageFiles(Spec, FRecurse) : std::vector<TImageFile>{};
  if (Result && Files.empty()) {
    Details.Add("No files were found matching the file spec.");
    Result = !FFailIfNoFiles;
  }
  for (const TImageFile& File : Files) {
    if (!Result) break;
    if (StopSignalled()) {
      Details.Add("Stopping...");
      Result = false;
      break;
    }
    const std::string Output = ImageOutputPath(File, OutputDir, Suffix, OutputExtension(File.Source));
    if (pf::FileExists(Output) && !FOverwriteExisting) {
      Details.Add(" --> Output file exists : " + Output);
      Result = false;
      break;
    }
    const std::string Dir = pf::ExtractFileDir(Output);
    if (!Dir.empty() && !pf::DirectoryExists(Dir) && !pf::ForceDirectories(Dir)) {
      const pf::DWORD Error = pf::GetLastError();
      Details.Add(" --> Error Creating Directory : " + Dir);
      Details.Add(" --> " + pf::SysErrorMessage(Error));
      Result = false;
      break;
    }
    int Width = 0, Height = 0;
    Result = ProcessImage(File.Source, Output, Details, Width, Height);
    if (Result) {
      Details.Add(File.Source + " -> " + Output + " (" + std::to_string(Width) + "x" +
                  std::to_string(Height) + ")");
      ++FFilesAffected;
    }
  }
  Details.Add(std::to_string(FFilesAffected) + CountText());
  SendStatusMessage(Entry);
  return Result;
}

bool TCustomImageFilesAction::WriteOutput(const std::string& Output, const void* Data, std::size_t Size,
                                          frame::TStrings& Details) {
  pf::TFileReplacement Out;
  if (Out.Begin(Output) && Out.Write(Data, Size) && Out.Commit()) return true;
  const pf::DWORD Error = pf::GetLastError();
  Details.Add(" --> Error Writing File : " + Output);
  Details.Add(" --> " + pf::SysErrorMessage(Error));
  return false;
}

bool TCustomImageFilesAction::ValidateFileSpec(frame::IZTActionValidationError& Errors) {
  if (!FFileSpec.empty()) return true;
  Errors.AddError("File Specification", "The file spec has not been set");
  return false;
}

}  // namespace zt::package
