// "Text Replace (Deprecated)": replaces every occurrence of a plain text in
// the files of one specification, as old projects use it ("Text Find /
// Replace" does more). Bytes in, bytes out: line ends stay as they are.
#pragma once

#include <string>

#include "frame/ZTAction.h"
#include "frame/ZTRegExpr.h"

namespace zt::package {

class TTextReplaceAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TTextReplaceAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Text Replace (Deprecated)"; }
  static void Publish(frame::TZTPublisher<TTextReplaceAction>& P);
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 3320; }
  std::string GetQuickHelpFilename() override { return "Plugins\\TextReplace.html"; }
  int GetFilesAffected() override { return FFilesChanged; }

  const std::string& GetFileSpec() const { return FFileSpec; }
  void SetFileSpec(const std::string& Value) { FFileSpec = Value; }
  const std::string& GetSearchText() const { return FSearchText; }
  void SetSearchText(const std::string& Value) { FSearchText = Value; }
  const std::string& GetReplaceText() const { return FReplaceText; }
  void SetReplaceText(const std::string& Value) { FReplaceText = Value; }
  bool GetCaseSensitive() const { return FCaseSensitive; }
  void SetCaseSensitive(bool Value) { FCaseSensitive = Value; }
  bool GetFailIfNotFound() const { return FFailIfNotFound; }
  void SetFailIfNotFound(bool Value) { FFailIfNotFound = Value; }

 private:
  // Replaces every match in the file Path (rewritten only when one is
  // found); false with the last error set, or ErrorText, on a failure.
  bool ReplaceInFile(const std::string& Path, frame::TRegExpr& Search, const std::string& Replacement,
                     std::int64_t& Count, std::string& ErrorText);

  std::string FFileSpec;
  std::string FSearchText;
  std::string FReplaceText;
  bool FCaseSensitive = true;
  bool FFailIfNotFound = false;
  int FFilesChanged = 0;
};

}  // namespace zt::package
