// "Save Variables to INI" and "Load Variables from INI": carry a list of
// build variables across builds in one section of an INI file (the
// variables file), loading each back as a text, a Boolean or an integer.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

// The file, section and variable names both actions share.
class TZTVariablesSaveLoadAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTVariablesSaveLoadAction, frame::TCustomZTAction)

 public:
  static void Publish(frame::TZTPublisher<TZTVariablesSaveLoadAction>& P);

  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetQuickHelpFilename() override { return "Plugins\\VariablesSaveLoad.html"; }

  const std::string& GetINIFile() const { return FINIFile; }
  void SetINIFile(const std::string& Value) { FINIFile = Value; }
  // The list's text, one name per line.
  std::string GetVariables() const { return FVariables.Text(); }
  void SetVariables(const std::string& Value) { FVariables.SetText(Value); }
  const std::string& GetSectionName() const { return FSectionName; }
  void SetSectionName(const std::string& Value) { FSectionName = Value; }

 protected:
  // Expands INIFile and SectionName; false after the host has logged why.
  bool ExpandFileAndSection(std::string& Path, std::string& Section);

  std::string FINIFile;
  frame::TStrings FVariables;
  std::string FSectionName = "ZTVariables";
};

class TZTVariablesSaveAction : public TZTVariablesSaveLoadAction {
  ZT_DECLARE_CLASS(TZTVariablesSaveAction, TZTVariablesSaveLoadAction)

 public:
  static std::string GetActionName() { return "Save Variables to INI"; }
  static void Publish(frame::TZTPublisher<TZTVariablesSaveAction>& P);

  bool Execute() override;
  int GetHelpTopicID() override { return 3170; }

  bool GetEraseSection() const { return FEraseSection; }
  void SetEraseSection(bool Value) { FEraseSection = Value; }

 private:
  bool FEraseSection = true;
};

class TZTVariablesLoadAction : public TZTVariablesSaveLoadAction {
  ZT_DECLARE_CLASS(TZTVariablesLoadAction, TZTVariablesSaveLoadAction)

 public:
  static std::string GetActionName() { return "Load Variables from INI"; }
  static void Publish(frame::TZTPublisher<TZTVariablesLoadAction>& P);

  bool Execute() override;
  int GetHelpTopicID() override { return 3180; }

  bool GetFailIfVariableNotDefined() const { return FFailIfVariableNotDefined; }
  void SetFailIfVariableNotDefined(bool Value) { FFailIfVariableNotDefined = Value; }
  bool GetFailIfVariableNotInIniFile() const { return FFailIfVariableNotInIniFile; }
  void SetFailIfVariableNotInIniFile(bool Value) { FFailIfVariableNotInIniFile = Value; }
  // "STRING", "BOOLEAN" or "INTEGER" per line, by the index of Variables.
  std::string GetVariableTypes() const { return FVariableTypes.Text(); }
  void SetVariableTypes(const std::string& Value) { FVariableTypes.SetText(Value); }
  bool GetCreateVarInINIifNotExists() const { return FCreateVarInINIifNotExists; }
  void SetCreateVarInINIifNotExists(bool Value) { FCreateVarInINIifNotExists = Value; }
  bool GetIgnoreFileNotFound() const { return FIgnoreFileNotFound; }
  void SetIgnoreFileNotFound(bool Value) { FIgnoreFileNotFound = Value; }

 private:
  // Loads the I-th listed variable; false when the action must fail.
  bool LoadVariable(int I, const std::string& Path, const std::string& Section);

  bool FFailIfVariableNotDefined = true;
  bool FFailIfVariableNotInIniFile = true;
  frame::TStrings FVariableTypes;
  bool FCreateVarInINIifNotExists = false;
  bool FIgnoreFileNotFound = false;
};

}  // namespace zt::package
