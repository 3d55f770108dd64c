#include "files/Ztconcatfiles.h"

#include <algorithm>

#include "Ztpropertytexts.h"
#include "files/FileIdentity.h"
#include "files/SearchGuard.h"
#include "frame/ZTUtils.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TConcatAction, &TConcatAction::Publish)

namespace {

constexpr char kUtf8Bom[] = "\xEF\xBB\xBF";

constexpr TPropertyText kTexts[] = {
    {"SourceFiles", "Source Files", "one file specification per line"},
    {"TargetFile", "Target File", "the file written"},
    {"AppendToTarget", "Append to Target", "keep the target's content first"},
    {"Separator", nullptr, "written between parts (a YAML \"\\n\" gives a line break)"},
    {"SkipByteOrderMarks", nullptr, "drop a UTF-8 mark at the start of every part but the first"},
    {"FailIfMissing", nullptr, "a line matching no file fails before anything is written"},
    {"Force", "Force Directories", "create the target's directory"},
};

// The names of the files Spec matches (normal, read-only and hidden), in
// byte order: directories list in hash order, and a bundle must be the same
// bytes on every machine.
std::vector<std::string> SortedMatches(const std::string& Spec) {
  std::vector<std::string> Names;
  pf::TSearchRec F;
  TSearchGuard Search{F};
  Search.Open = pf::FindFirst(Spec, pf::faReadOnly | pf::faHidden, F) == 0;
  if (Search.Open) {
    do Names.push_back(F.Name);
    while (pf::FindNext(F) == 0);
  }
  std::sort(Names.begin(), Names.end());
  return Names;
}

// Moves Handle past a UTF-8 byte-order mark at its start, if it has one.
void SkipByteOrderMark(pf::THandle Handle) {
  char Head[3];
  if (pf::FileRead(Handle, Head, 3) != 3 || std::string_view(Head, 3) != kUtf8Bom) pf::FileSeek(Handle, 0, 0);
}

}  // namespace

void TConcatAction::Publish(frame::TZTPublisher<TConcatAction>& P) {
  using A = TConcatAction;
  P.StringList("SourceFiles", &A::GetSourceFiles, &A::SetSourceFiles);
  P.String("TargetFile", &A::GetTargetFile, &A::SetTargetFile);
  P.Boolean("AppendToTarget", &A::GetAppendToTarget, &A::SetAppendToTarget);
  P.String("Separator", &A::GetSeparator, &A::SetSeparator);
  P.Boolean("SkipByteOrderMarks", &A::GetSkipByteOrderMarks, &A::SetSkipByteOrderMarks);
  P.Boolean("FailIfMissing", &A::GetFailIfMissing, &A::SetFailIfMissing);
  P.Boolean("Force", &A::GetForce, &A::SetForce);
}

bool TConcatAction::Execute() {
  FFilesAffected = 0;
  std::string Target;
  if (!TryExpandExpression("Target File", FTargetFile, true, Target)) return false;
  Target = frame::Trim(Target);
  if (Target.empty()) {
    SendMessage("Error: No target file specified.");
    return false;
  }
  if (std::all_of(FSourceFiles.Lines().begin(), FSourceFiles.Lines().end(),
                  [](const std::string& L) { return frame::Trim(L).empty(); })) {
    SendMessage("Error: No source file specified.");
    return false;
  }
  frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
  frame::TStrings& Details = Entry->Details();
  Details.Add("Concatenating files : " + Target);
  std::vector<std::string> Files;
  const bool Result = CollectSources(Target, Files, Details) && WriteTarget(Target, Files, Details);
  if (Result) FFilesAffected = static_cast<int>(Files.size());
  Details.Add(std::to_string(FFilesAffected) + " Files Concatenated.");
  SendStatusMessage(Entry);
  return Result;
}

bool TConcatAction::CollectSources(const std::string& Target, std::vector<std::string>& Files,
                                   frame::TStrings& Details) {
  pf::FileInfo TargetId;
  const bool TargetExists = GetIdentity(Target, TargetId);
  bool Ok = true;
  for (int I = 0; I < FSourceFiles.Count(); ++I) {
    const std::string& Line = FSourceFiles[I];
    if (frame::Trim(Line).empty()) continue;
    std::string Spec;
    if (!TryExpandExpression("Source File " + std::to_string(I + 1), Line, true, Spec)) return false;
    Spec = frame::Trim(Spec);
    const std::vector<std::string> Names = Spec.empty() ? std::vector<std::string>{} : SortedMatches(Spec);
    if (Names.empty()) {
      Details.Add(" --> No file matches : " + (Spec.empty() ? Line : Spec));
      if (FFailIfMissing) Ok = false;
      continue;
    }
    const std::string Dir = pf::ExtractFilePath(Spec);
    for (const std::string& Name : Names) {
      pf::FileInfo Id;
      if (TargetExists && GetIdentity(Dir + Name, Id) && SameIdentity(Id, TargetId)) {
        Details.Add(" --> The target file is also a source file : " + Dir + Name);
        Ok = false;
      }
      Files.push_back(Dir + Name);
    }
  }
  return Ok;
}

bool TConcatAction::WriteTarget(const std::string& Target, const std::vector<std::string>& Files,
                                frame::TStrings& Details) {
  auto WriteError = [&] {
    const pf::DWORD Error = pf::GetLastError();
    Details.Add(" --> Error Writing File : " + Target);
    Details.Add(" --> " + pf::SysErrorMessage(Error));
    return false;
  };
  std::string Separator;
  if (!TryExpandExpression("Separator", FSeparator, false, Separator)) return false;
  const std::string Dir = pf::ExtractFileDir(Target);
  if (FForce && !Dir.empty() && !pf::DirectoryExists(Dir) && !pf::ForceDirectories(Dir)) return WriteError();

  pf::TFileReplacement Out;  // abandoned (removed) unless committed
  if (!Out.Begin(Target)) return WriteError();
  // Copies one part; a failed copy is the reader's fault unless the disk is full.
  auto AddPart = [&](const std::string& Path, bool SkipMark) {
    const pf::THandle In = pf::FileOpen(Path, pf::fmOpenRead | pf::fmShareDenyNone);
    bool Ok = In != pf::INVALID_HANDLE_VALUE;
    if (Ok) {
      if (SkipMark) SkipByteOrderMark(In);
      Ok = Out.Append(In);
      const pf::DWORD Error = pf::GetLastError();
      pf::FileClose(In);
      pf::SetLastError(Error);
    }
    if (Ok) return true;
    const pf::DWORD Error = pf::GetLastError();
    if (Error == pf::ERROR_OPERATION_ABORTED) {
      Details.Add("Stopping...");
    } else if (Error == pf::ERROR_DISK_FULL || Error == pf::ERROR_HANDLE_DISK_FULL) {
      WriteError();
    } else {
      Details.Add(" --> Error Reading File : " + Path);
      Details.Add(" --> " + pf::SysErrorMessage(Error));
    }
    return false;
  };

  bool Something = false;  // a part, or the old content, is already written
  if (FAppendToTarget && pf::FileSizeOf(Target) > 0) {
    if (!AddPart(Target, false)) return false;
    Something = true;
  }
  for (const std::string& File : Files) {
    if (StopSignalled()) {
      Details.Add("Stopping...");
      return false;
    }
    Details.Add("Adding : " + File);
    if (Something && !Out.Write(Separator.data(), Separator.size())) return WriteError();
    if (!AddPart(File, FSkipByteOrderMarks && Something)) return false;
    Something = true;
  }
  return Out.Commit() || WriteError();
}

bool TConcatAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Ok = true;
  if (FSourceFiles.Count() == 0) {
    Errors.AddError("Source Files", "No source files have been set");
    Ok = false;
  }
  if (FTargetFile.empty()) {
    Errors.AddError("Target File", "The target file has not been set");
    Ok = false;
  }
  return Ok;
}

std::string TConcatAction::GetFormattedDescription() { return "Concatenate Files [ " + FTargetFile + " ]"; }

void TConcatAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  AddPropertyAliases(List, GetActionName(), kTexts);
}

void TConcatAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  AddPropertyHelp(List, kTexts);
}

}  // namespace zt::package
