#include "iterators/Ztreadtextfileiteratoraction.h"

#include <exception>
#include <stdexcept>

#include "frame/ZTUtils.h"
#include "platform/errors.h"
#include "platform/files.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TReadTextFileIterator, &TReadTextFileIterator::Publish)

void TReadTextFileIterator::Publish(frame::TZTPublisher<TReadTextFileIterator>& P) {
  using A = TReadTextFileIterator;
  P.WideString("VariableName", &A::GetVariableName, &A::SetVariableName).Stored = false;
  P.WideString("TextFileName", &A::GetTextFileName, &A::SetTextFileName);
  P.Integer("LineCount", &A::GetLineCount);
  P.Integer("LineIndex", &A::GetLineIndex);
}

bool TReadTextFileIterator::BeforeFirstIteration() {
  SendMessage("Reading file...");
  FLines.Clear();
  std::string FileName;
  if (!TryExpandExpression("Filename", FTextFileName, true, FileName)) return false;
  FileName = frame::Trim(FileName);
  if (!pf::FileExists(FileName)) {
    SendMessage("File doesn't exist");
    return false;
  }
  try {
    std::string Text;
    if (!pf::ReadWholeFile(FileName, Text))
      throw std::runtime_error("Cannot open file \"" + FileName + "\". " +
                               pf::SysErrorMessage(pf::GetLastError()));
    // A UTF-8 byte-order mark belongs to the encoding, not to the first line.
    if (Text.compare(0, 3, "\xEF\xBB\xBF") == 0) Text.erase(0, 3);
    FLines.SetText(Text);
    SendMessage("File contains " + std::to_string(FLines.Count()) + " lines");
    SetIterationCount(FLines.Count());
  } catch (const std::exception& E) {
    throw frame::EIteratorException(std::string("Error while reading file : ") + E.what());
  }
  return true;
}

frame::TZTVariant TReadTextFileIterator::GetCurrentValue() { return FLines[GetCurrentIteration() - 1]; }

void TReadTextFileIterator::ResetBuildStatus() {
  inherited::ResetBuildStatus();
  Reset();
}

bool TReadTextFileIterator::Validate(frame::IZTActionValidationError& Errors) {
  if (FTextFileName.empty()) {
    Errors.AddError("Filename", "A filename has not been set");
    return false;
  }
  return true;
}

std::string TReadTextFileIterator::GetFormattedDescription() {
  return GetActionName() + " [ " + FTextFileName + " ]";
}

void TReadTextFileIterator::GetHiddenProperties(frame::TStrings& List) {
  inherited::GetHiddenProperties(List);
  List.Add("LineIndex");
  List.Add("LineCount");
  List.Add("VariableName");
}

void TReadTextFileIterator::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[File]");
  List.Add("TextFileName=Filename");
}

void TReadTextFileIterator::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("TextFileName=The text file whose lines are iterated");
}

}  // namespace zt::package
