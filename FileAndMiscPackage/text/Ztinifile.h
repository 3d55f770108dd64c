// "Read Ini File" and "Write Ini File": one value of one key of one section
// of an INI file, read into a build variable or written from an expanded
// text, as a string, a Boolean or a 32-bit integer.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

enum TIniValueType { vtString, vtBool, vtInteger };

// The file, section and key both actions work on.
class TCustomIniFileAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TCustomIniFileAction, frame::TCustomZTAction)

 public:
  TCustomIniFileAction();

  bool Validate(frame::IZTActionValidationError& Errors) override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;

  const std::string& GetIniFile() const { return FIniFile; }
  void SetIniFile(const std::string& Value) { FIniFile = Value; }
  const std::string& GetSection() const { return FSection; }
  void SetSection(const std::string& Value) { FSection = Value; }
  const std::string& GetValueName() const { return FValueName; }
  void SetValueName(const std::string& Value) { FValueName = Value; }
  TIniValueType GetValueType() const { return FValueType; }
  void SetValueType(TIniValueType Value) { FValueType = Value; }

 protected:
  // Sends one log entry made of Lines; the failing steps of Execute end here.
  bool Report(std::initializer_list<std::string> Lines);

  std::string FIniFile;
  std::string FSection;
  std::string FValueName;
  TIniValueType FValueType;
};

class TCustomReadIniFileAction : public TCustomIniFileAction {
  ZT_DECLARE_CLASS(TCustomReadIniFileAction, TCustomIniFileAction)

 public:
  static std::string GetActionName() { return "Read Ini File"; }
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 930; }
  std::string GetQuickHelpFilename() override { return "Plugins\\ReadIniFile.html"; }

  const std::string& GetVariableName() const { return FVariableName; }
  void SetVariableName(const std::string& Value) { FVariableName = Value; }
  const std::string& GetDefaultValue() const { return FDefaultValue; }
  void SetDefaultValue(const std::string& Value) { FDefaultValue = Value; }

 protected:
  std::string FVariableName;
  std::string FDefaultValue;
};

class TCustomWriteIniFileAction : public TCustomIniFileAction {
  ZT_DECLARE_CLASS(TCustomWriteIniFileAction, TCustomIniFileAction)

 public:
  TCustomWriteIniFileAction();
  static std::string GetActionName() { return "Write Ini File"; }
  bool Execute() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 940; }
  std::string GetQuickHelpFilename() override { return "Plugins\\WriteIniFile.html"; }

  const std::string& GetNewValue() const { return FNewValue; }
  void SetNewValue(const std::string& Value) { FNewValue = Value; }
  bool GetAllowCreate() const { return FAllowCreate; }
  void SetAllowCreate(bool Value) { FAllowCreate = Value; }

 protected:
  std::string FNewValue;
  bool FAllowCreate;
};

// The published classes: IniFile, Section, ValueName, VariableName,
// DefaultValue, ValueType.
class TReadIniFileAction : public TCustomReadIniFileAction {
  ZT_DECLARE_CLASS(TReadIniFileAction, TCustomReadIniFileAction)

 public:
  static void Publish(frame::TZTPublisher<TReadIniFileAction>& P);
};

// IniFile, Section, ValueName, NewValue, AllowCreate, ValueType.
class TWriteIniFileAction : public TCustomWriteIniFileAction {
  ZT_DECLARE_CLASS(TWriteIniFileAction, TCustomWriteIniFileAction)

 public:
  static void Publish(frame::TZTPublisher<TWriteIniFileAction>& P);
};

// Design-time editors, registered by class name in Ztfilereg.
// TIniFileNameEdit: the file dialog for IniFile.
struct TIniFileNameEdit {
  static constexpr const char* ClassName = "TIniFileNameEdit";
  static constexpr const char* DefaultExt = "*.ini";
  static constexpr const char* Filter = "Configuration files(*.ini)|*.ini";
  static constexpr const char* DialogTitle = "Select Ini File";
};
// TIniVariableEditor: VariableName picked from the project's variables.
struct TIniVariableEditor {
  static constexpr const char* ClassName = "TIniVariableEditor";
  // The drop-down list of values.
  static void GetValues(frame::TCustomZTAction& Action, frame::TStrings& Values) {
    Action.GetVariablesList(Values, /*IncludePredefined=*/false);
  }
};

}  // namespace zt::package
