// "Ini File Iterator": runs its child actions once for every section of an
// INI file, or once for every key of one section. It sets its own
// variables (section name, or key name and value) and has no loop variable.
#pragma once

#include <string>

#include "frame/ZTIterator.h"
#include "frame/ZTStrings.h"

namespace zt::package {

enum TIniIteratorMode { iiSections, iiValues };

class TIniFileIterator : public frame::TZTBaseIterator {
  ZT_DECLARE_CLASS(TIniFileIterator, frame::TZTBaseIterator)

 public:
  TIniFileIterator() { SetNoLoopVariable(true); }
  static std::string GetActionName() { return "Ini File Iterator"; }
  static void Publish(frame::TZTPublisher<TIniFileIterator>& P);

  frame::TZTVariant GetCurrentValue() override;
  bool BeforeFirstIteration() override;
  void ResetBuildStatus() override;

  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetHiddenProperties(frame::TStrings& List) override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 3330; }
  std::string GetQuickHelpFilename() override { return "Plugins\\IniFileIterator.html"; }

  const std::string& GetIniFilename() const { return FIniFilename; }
  void SetIniFilename(const std::string& Value) { FIniFilename = Value; }
  TIniIteratorMode GetIteratorMode() const { return FIteratorMode; }
  void SetIteratorMode(TIniIteratorMode Value) { FIteratorMode = Value; }
  const std::string& GetSectionsVar() const { return FSectionsVar; }
  void SetSectionsVar(const std::string& Value) { FSectionsVar = Value; }
  const std::string& GetSectionName() const { return FSectionName; }
  void SetSectionName(const std::string& Value) { FSectionName = Value; }
  const std::string& GetNameVariable() const { return FNameVariable; }
  void SetNameVariable(const std::string& Value) { FNameVariable = Value; }
  const std::string& GetValueVariable() const { return FValueVariable; }
  void SetValueVariable(const std::string& Value) { FValueVariable = Value; }
  int GetItemCount() const { return FItems.Count(); }
  int GetItemIndex() const { return GetCurrentIteration() - 1; }

 private:
  // Section names, or the section's name=value lines; false when the
  // section name cannot be expanded. A missing file or section gives none.
  bool FillList(const std::string& IniFile);

  std::string FIniFilename;
  TIniIteratorMode FIteratorMode = iiSections;
  std::string FSectionsVar, FSectionName, FNameVariable, FValueVariable;
  frame::TStrings FItems;
};

}  // namespace zt::package
