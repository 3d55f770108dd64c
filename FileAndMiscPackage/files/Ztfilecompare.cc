#include "files/Ztfilecompare.h"

#include "Ztpropertytexts.h"
#include "files/FileComparison.h"
#include "files/FileIdentity.h"
#include "frame/ZTUtils.h"
#include "platform/errors.h"
#include "platform/files.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TZTFileCompareAction, &TZTFileCompareAction::Publish)

namespace {

constexpr TPropertyText kTexts[] = {
    {"FileName", "File Name", "the first file"},
    {"CompareToFile", "Compare to File", "the second file"},
    {"CompareMode", nullptr, "text: CR LF, LF and CR equal; a missing final line end ignored"},
    {"ZTVariable", "Variable", "True when equal (Boolean)"},
    {"FailIfDifferent", nullptr, "fail when the files differ"},
};

}  // namespace

void TZTFileCompareAction::Publish(frame::TZTPublisher<TZTFileCompareAction>& P) {
  using A = TZTFileCompareAction;
  P.String("FileName", &A::GetFileName, &A::SetFileName);
  P.String("CompareToFile", &A::GetCompareToFile, &A::SetCompareToFile);
  P.Enumeration("CompareMode", "TZTCompareMode", {"cmBinary", "cmText"}, &A::GetCompareMode, &A::SetCompareMode);
  P.String("ZTVariable", &A::GetZTVariable, &A::SetZTVariable);
  P.Boolean("FailIfDifferent", &A::GetFailIfDifferent, &A::SetFailIfDifferent);
}

bool TZTFileCompareAction::Execute() {
  std::string First, Second;
  if (!TryExpandExpression("File Name", FFileName, true, First)) return false;
  if (!TryExpandExpression("Compare to File", FCompareToFile, true, Second)) return false;
  First = frame::Trim(First);
  Second = frame::Trim(Second);
  if (First.empty() || Second.empty()) {
    SendMessage("Error: No source file specified.");
    return false;
  }
  for (const std::string* Path : {&First, &Second})
    if (!pf::FileExists(*Path)) {
      SendMessage("ERROR - File missing: " + *Path);
      return false;
    }
  pf::FileInfo IdFirst, IdSecond;
  const bool Known = GetIdentity(First, IdFirst) && GetIdentity(Second, IdSecond);
  bool Equal;
  std::string Reason;
  if (Known && SameIdentity(IdFirst, IdSecond)) {
    Equal = true;  // one file under two names: nothing to read
  } else if (FCompareMode == cmBinary && Known && IdFirst.Size != IdSecond.Size) {
    Equal = false;
    Reason = "Sizes differ : " + std::to_string(IdFirst.Size) + " and " + std::to_string(IdSecond.Size) + " bytes";
  } else {
    TFileDifference D;
    if (!CompareFiles(First, Second, FCompareMode == cmText, D)) {
      SendMessage("Error comparing files : " + pf::SysErrorMessage(pf::GetLastError()));
      return false;
    }
    Equal = D.Equal;
    Reason = FCompareMode == cmText ? "First difference at line " + std::to_string(D.Line)
                                    : "First difference at byte " + std::to_string(D.Byte);
  }
  if (Equal) {
    SendMessage("Files are identical : " + First + " = " + Second);
  } else {
    SendMessage("Files differ : " + First + " <> " + Second);
    SendMessage(Reason);
  }
  if (!FZTVariable.empty()) SetVariable(FZTVariable, frame::TZTVariant(Equal));
  return Equal || !FFailIfDifferent;
}

bool TZTFileCompareAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Ok = true;
  if (FFileName.empty()) {
    Errors.AddError("File Name", "Filename has not been set");
    Ok = false;
  }
  if (FCompareToFile.empty()) {
    Errors.AddError("Compare to File", "The file to compare to has not been set");
    Ok = false;
  }
  return Ok;
}

std::string TZTFileCompareAction::GetFormattedDescription() {
  return "File Compare [ " + FFileName + " = " + FCompareToFile + " ]";
}

void TZTFileCompareAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  AddPropertyAliases(List, GetActionName(), kTexts);
}

void TZTFileCompareAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  AddPropertyHelp(List, kTexts);
}

}  // namespace zt::package
