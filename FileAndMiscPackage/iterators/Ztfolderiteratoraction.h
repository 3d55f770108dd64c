// "Folder Iterator": runs its child actions once for every sub-folder of a
// starting folder (optionally all levels, depth-first).
#pragma once

#include <string>

#include "frame/ZTIterator.h"
#include "frame/ZTStrings.h"

namespace zt::package {

class TFolderIterator : public frame::TZTBaseIterator {
  ZT_DECLARE_CLASS(TFolderIterator, frame::TZTBaseIterator)

 public:
  static std::string GetActionName() { return "Folder Iterator"; }
  static void Publish(frame::TZTPublisher<TFolderIterator>& P);

  frame::TZTVariant GetCurrentValue() override;
  bool BeforeFirstIteration() override;
  void AfterLastIteration() override;
  void ResetBuildStatus() override;
  // The host's stop state; a stop also sets the walk's own stop flag.
  bool StopSignalled();

  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 3210; }
  std::string GetQuickHelpFilename() override { return "Plugins\\FolderIterator.html"; }

  const std::string& GetVariableName() const { return GetZTVariable(); }
  void SetVariableName(const std::string& Value) { SetZTVariable(Value); }
  const std::string& GetStartingFolder() const { return FStartingFolder; }
  void SetStartingFolder(const std::string& Value) { FStartingFolder = Value; }
  bool GetRecurse() const { return FRecurse; }
  void SetRecurse(bool Value);  // true also sets IncludeFolderPath
  bool GetIncludeFolderPath() const { return FIncludeFolderPath; }
  void SetIncludeFolderPath(bool Value);  // false also clears Recurse
  bool GetIncludeHiddenSystem() const { return FIncludeHiddenSystem; }
  void SetIncludeHiddenSystem(bool Value) { FIncludeHiddenSystem = Value; }

 private:
  // Appends the sub-folders of Folder, pre-order; polls the stop state at
  // every folder found.
  void SearchFolders(const std::string& Folder);

  std::string FStartingFolder;
  bool FRecurse = false;
  bool FIncludeFolderPath = true;
  bool FIncludeHiddenSystem = false;
  bool FStop = false;
  frame::TStrings FFolders;
};

}  // namespace zt::package
