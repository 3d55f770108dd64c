#include "files/Ztfileattrib.h"

#include <cctype>

#include "files/SearchGuard.h"
#include "frame/ZTUtils.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TCustomSetFileAttributesAction, nullptr)
ZT_IMPLEMENT_CLASS(TSetFileAttributesAction, &TSetFileAttributesAction::Publish)

void TSetFileAttributesAction::Publish(frame::TZTPublisher<TSetFileAttributesAction>& P) {
  using A = TSetFileAttributesAction;
  const std::vector<std::string> Settings = {"asNone", "asSet", "asClear"};
  P.WideString("FileSpec", &A::GetFileSpec, &A::SetFileSpec);
  P.Boolean("Recurse", &A::GetRecurse, &A::SetRecurse);
  P.Enumeration("Archive", "TAttributeSetting", Settings, &A::GetArchive, &A::SetArchive);
  P.Enumeration("Hidden", "TAttributeSetting", Settings, &A::GetHidden, &A::SetHidden);
  P.Enumeration("ReadOnly", "TAttributeSetting", Settings, &A::GetReadOnly, &A::SetReadOnly);
  P.Enumeration("SystemFile", "TAttributeSetting", Settings, &A::GetSystemFile, &A::SetSystemFile);
  P.Boolean("LogAllFiles", &A::GetLogAllFiles, &A::SetLogAllFiles);
  P.Boolean("FailIfFileNotFound", &A::GetFailIfFileNotFound, &A::SetFailIfFileNotFound);
}

namespace {

int Apply(int Attributes, TAttributeSetting Setting, int Bit) {
  if (Setting == asSet) return Attributes | Bit;
  if (Setting == asClear) return Attributes & ~Bit;
  return Attributes;
}

bool IsDotEntry(const std::string& Name) { return Name == "." || Name == ".."; }

}  // namespace

bool TCustomSetFileAttributesAction::Execute() {
  frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
  if (FReadOnly == asNone && FArchive == asNone && FSystemFile == asNone && FHidden == asNone) {
    Entry->Details().Add("No attributes were specified to change.");
    SendStatusMessage(Entry);
    return false;
  }
  const std::string Spec = frame::StripQuotes(frame::Trim(ExpandExpression(FFileSpec, true)));
  if (Spec.empty()) {
    Entry->Details().Add("No file spec was specified.");
    SendStatusMessage(Entry);
    return false;
  }

  SendMessage("File spec : " + Spec);
  FFound = false;
  try {
    DoRecursiveAction(*Entry, Spec, FRecurse);
  } catch (const std::exception& E) {
    Entry->Details().Add(std::string("Error processing File Spec : ") + E.what());
    SendStatusMessage(Entry);
    return false;
  }
  SendStatusMessage(Entry);
  if (!FFound) {
    SendMessage("No files were found matching the file spec.");
    return !FFailIfFileNotFound;
  }
  return true;
}

void TCustomSetFileAttributesAction::DoRecursiveAction(frame::IZTActionLogMessage& Entry, const std::string& Spec,
                                                       bool Recurse) {
  const bool Wildcard = Spec.find_first_of("*?") != std::string::npos;
  const std::string Dir = pf::ExtractFilePath(Spec);
  const std::string Mask = pf::ExtractFileName(Spec);
  {
    pf::TSearchRec F;
    TSearchGuard Search{F};
    Search.Open = pf::FindFirst(Spec, pf::faAnyFile, F) == 0;
    if (Search.Open) {
      do {
        if (!(F.Attr & pf::faDirectory)) ProcessFile(Entry, Dir + F.Name, F.Attr);
      } while (Wildcard && pf::FindNext(F) == 0);
    }
  }
  if (!Recurse) return;
  pf::TSearchRec D;
  TSearchGuard Search{D};
  Search.Open = pf::FindFirst(Dir + "*", pf::faDirectory, D) == 0;
  if (!Search.Open) return;
  do {
    if ((D.Attr & pf::faDirectory) && !IsDotEntry(D.Name))
      DoRecursiveAction(Entry, Dir + D.Name + pf::PathDelim() + Mask, Recurse);
  } while (pf::FindNext(D) == 0);
}

void TCustomSetFileAttributesAction::ProcessFile(frame::IZTActionLogMessage& Entry, const std::string& FileName,
                                                 int Attributes) {
  FFound = true;
  int Attr = Attributes;
  Attr = Apply(Attr, FReadOnly, pf::faReadOnly);
  Attr = Apply(Attr, FArchive, pf::faArchive);
  Attr = Apply(Attr, FSystemFile, pf::faSysFile);
  Attr = Apply(Attr, FHidden, pf::faHidden);
  if (!pf::SetFileAttributesA(FileName, static_cast<pf::DWORD>(Attr)))
    throw EFileAttributeException("Error Processing File " + FileName + " : " +
                                  pf::SysErrorMessage(pf::GetLastError()));
  if (FLogAllFiles) Entry.Details().Add("Processed File : " + FileName);
}

bool TCustomSetFileAttributesAction::Validate(frame::IZTActionValidationError& Errors) {
  if (FFileSpec.empty()) {
    Errors.AddError("File Spec", "The file spec has not been set");
    return false;
  }
  return true;
}

std::string TCustomSetFileAttributesAction::GetFormattedDescription() {
  return GetTitle() + " [ " + FFileSpec + " ]";
}

void TCustomSetFileAttributesAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Attributes]");
  List.Add("ReadOnly=Read Only");
  List.Add("SystemFile=System File");
  List.Add("Archive=Archive");
  List.Add("Hidden=Hidden File");
  List.Add("[Behaviour]");
  List.Add("Recurse=Recurse Directories");
  List.Add("LogAllFiles=Log All Files");
}

void TCustomSetFileAttributesAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("ReadOnly=Determines what to do to the Read Only flag");
  List.Add("SystemFile=Determines what to do to the System File flag");
  List.Add("Archive=Determines what to do to the Archive flag");
  List.Add("Hidden=Determines what to do to the Hidden flag");
  List.Add("Recurse=Recurse Sub Directories");
  List.Add("LogAllFiles=Log All Files processed to the output panel.");
  List.Add("FileSpec=The file specification of the files to process. Wildcards (*, ?) may be used");
}

TAttributeSetting AttributeSettingFromText(const std::string& Text) {
  std::string Upper = Text;
  for (char& C : Upper) C = static_cast<char>(std::toupper(static_cast<unsigned char>(C)));
  if (Upper == "SET") return asSet;
  if (Upper == "CLEAR") return asClear;
  return asNone;
}

}  // namespace zt::package
