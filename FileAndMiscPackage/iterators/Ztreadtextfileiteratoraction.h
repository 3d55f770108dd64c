// "File Contents Iterator": runs its child actions once for every line of a
// text file.
#pragma once

#include <string>

#include "frame/ZTIterator.h"
#include "frame/ZTStrings.h"

namespace zt::package {

class TReadTextFileIterator : public frame::TZTBaseIterator {
  ZT_DECLARE_CLASS(TReadTextFileIterator, frame::TZTBaseIterator)

 public:
  static std::string GetActionName() { return "File Contents Iterator"; }
  static void Publish(frame::TZTPublisher<TReadTextFileIterator>& P);

  frame::TZTVariant GetCurrentValue() override;
  bool BeforeFirstIteration() override;
  void ResetBuildStatus() override;

  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetHiddenProperties(frame::TStrings& List) override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 3270; }
  std::string GetQuickHelpFilename() override { return "Plugins\\ReadFileIterator.html"; }

  const std::string& GetVariableName() const { return GetZTVariable(); }
  void SetVariableName(const std::string& Value) { SetZTVariable(Value); }
  const std::string& GetTextFileName() const { return FTextFileName; }
  void SetTextFileName(const std::string& Value) { FTextFileName = Value; }
  int GetLineCount() const { return FLines.Count(); }
  int GetLineIndex() const { return GetCurrentIteration() - 1; }

 private:
  std::string FTextFileName;
  frame::TStrings FLines;  // kept after the last pass, cleared at the next start
};

}  // namespace zt::package
