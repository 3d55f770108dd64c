// "File Iterator": runs its child actions once for every file that a file
// specification (with optional recursion) or a project file set yields.
#pragma once

#include <string>

#include "frame/ZTIterator.h"
#include "frame/ZTStrings.h"

namespace zt::package {

class TCustomFileIterator : public frame::TZTBaseIterator {
  ZT_DECLARE_CLASS(TCustomFileIterator, frame::TZTBaseIterator)

 public:
  static std::string GetActionName() { return "File Iterator"; }

  frame::TZTVariant GetCurrentValue() override;
  bool BeforeFirstIteration() override;
  void AfterEachIteration() override;
  void AfterLastIteration() override;
  void ResetBuildStatus() override;

  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetHiddenProperties(frame::TStrings& List) override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 950; }
  std::string GetQuickHelpFilename() override { return "Plugins\\FileIterator.html"; }

  const std::string& GetVariableName() const { return GetZTVariable(); }
  void SetVariableName(const std::string& Value) { SetZTVariable(Value); }
  const std::string& GetFileSpec() const { return FFileSpec; }
  void SetFileSpec(const std::string& Value);
  bool GetRecurse() const { return FRecurse; }
  void SetRecurse(bool Value);  // true also sets IncludeFilePath
  bool GetIncludeFilePath() const { return FIncludeFilePath; }
  void SetIncludeFilePath(bool Value);  // false also clears Recurse
  int GetFileCount() const { return FFileList.Count(); }
  int GetFileIndex() const { return GetCurrentIteration() - 1; }
  bool GetFindAnyFile() const { return FFindAnyFile; }
  void SetFindAnyFile(bool Value) { FFindAnyFile = Value; }
  bool GetUseFileSet() const { return FUseFileSet; }
  void SetUseFileSet(bool Value) { FUseFileSet = Value; }
  const std::string& GetFileSetName() const { return FFileSetName; }
  void SetFileSetName(const std::string& Value) { FFileSetName = Value; }
  bool GetFileSetRefreshBefore() const { return FFileSetRefreshBefore; }
  void SetFileSetRefreshBefore(bool Value) { FFileSetRefreshBefore = Value; }
  bool GetFileSetRefreshAfterEach() const { return FFileSetRefreshAfterEach; }
  void SetFileSetRefreshAfterEach(bool Value) { FFileSetRefreshAfterEach = Value; }

 protected:
  // Appends the matches of Spec (wildcards in its last component only),
  // then those of its sub-directories when Recurse is set.
  void SearchFiles(const std::string& Spec);
  // Reads the project file set into the list; after a pass (Refreshing)
  // merges it into the part of the list not yet visited.
  void ReadFileSet(bool Refreshing);
  void MergeFileSet(const std::string& FilesText);
  void LogList();

  std::string FFileSpec;
  bool FRecurse = false;
  frame::TStrings FFileList;
  bool FIncludeFilePath = true;
  bool FFindAnyFile = false;
  bool FFileSetRefreshAfterEach = false;
  bool FFileSetRefreshBefore = true;
  bool FUseFileSet = false;
  std::string FFileSetName;
};

class TFileIterator : public TCustomFileIterator {
  ZT_DECLARE_CLASS(TFileIterator, TCustomFileIterator)

 public:
  static void Publish(frame::TZTPublisher<TFileIterator>& P);
};

}  // namespace zt::package
