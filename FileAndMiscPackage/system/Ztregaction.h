// "Read Registry Value", "Set Registry Value" and "Delete Registry Value":
// one value (or, for deleting, one key) of the registry. The common base
// expands the key and value name, opens the key and hands it to the
// action's own operation.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "frame/ZTAction.h"
#include "platform/tregistry.h"

namespace zt::package {

enum TRegValueType { rtInteger, rtString, rtDWord, rtBoolean };

// The registry wrapper with 32-bit unsigned values.
class TZTRegistry : public platform::TRegistry {
 public:
  using platform::TRegistry::TRegistry;
  // A REG_DWORD value; another type raises "Invalid data type for 'Name'".
  platform::DWORD ReadDWord(const std::string& Name);
  void WriteDWord(const std::string& Name, platform::DWORD Value);
};

class TCustomRegAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TCustomRegAction, frame::TCustomZTAction)

 public:
  TCustomRegAction();
  static void Publish(frame::TZTPublisher<TCustomRegAction>& P);

  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 1260; }

  std::uint32_t GetRegRoot() const { return FRegRoot; }
  void SetRegRoot(std::uint32_t Value) { FRegRoot = Value; }
  const std::string& GetRegKey() const { return FRegKey; }
  void SetRegKey(const std::string& Value) { FRegKey = Value; }
  TRegValueType GetRegValType() const { return FRegValType; }
  void SetRegValType(TRegValueType Value) { FRegValType = Value; }
  const std::string& GetRegValueName() const { return FRegValueName; }
  void SetRegValueName(const std::string& Value) { FRegValueName = Value; }

 protected:
  // The access the key is opened with.
  virtual platform::DWORD GetRegAccess() = 0;
  // The action's work on the opened key; its result is the action's.
  virtual bool InternalDoRegAction(TZTRegistry& Registry, const std::string& ValueName) = 0;

  std::uint32_t FRegRoot;
  std::string FRegKey;
  TRegValueType FRegValType;
  std::string FRegValueName;
  bool FAllowCreateKey;  // published by the set action only

 private:
  // Sends one log entry whose own text is Text; the failing steps of Execute end here.
  bool Report(const std::string& Text);
};

// Copies a value into the variable named by ZTVariable.
class TReadRegValueAction : public TCustomRegAction {
  ZT_DECLARE_CLASS(TReadRegValueAction, TCustomRegAction)

 public:
  static std::string GetActionName() { return "Read Registry Value"; }
  static void Publish(frame::TZTPublisher<TReadRegValueAction>& P);
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  std::string GetQuickHelpFilename() override { return "Plugins\\ReadRegValue.html"; }

  const std::string& GetZTVariable() const { return FZTVariable; }
  void SetZTVariable(const std::string& Value) { FZTVariable = Value; }

 protected:
  platform::DWORD GetRegAccess() override { return platform::KEY_READ; }
  bool InternalDoRegAction(TZTRegistry& Registry, const std::string& ValueName) override;

 private:
  std::string FZTVariable;
};

// Writes RegValue, converted to the value type; may create the key.
class TSetRegValueAction : public TCustomRegAction {
  ZT_DECLARE_CLASS(TSetRegValueAction, TCustomRegAction)

 public:
  static std::string GetActionName() { return "Set Registry Value"; }
  static void Publish(frame::TZTPublisher<TSetRegValueAction>& P);
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  std::string GetQuickHelpFilename() override { return "Plugins\\SetRegValue.html"; }

  const std::string& GetRegValue() const { return FRegValue; }
  void SetRegValue(const std::string& Value) { FRegValue = Value; }
  bool GetAllowCreateKey() const { return FAllowCreateKey; }
  void SetAllowCreateKey(bool Value) { FAllowCreateKey = Value; }

 protected:
  platform::DWORD GetRegAccess() override { return platform::KEY_ALL_ACCESS; }
  bool InternalDoRegAction(TZTRegistry& Registry, const std::string& ValueName) override;

 private:
  std::string FRegValue;
};

// Deletes a value, or with DeleteKey the opened key (when it has no sub-keys).
class TDeleteRegValueAction : public TCustomRegAction {
  ZT_DECLARE_CLASS(TDeleteRegValueAction, TCustomRegAction)

 public:
  static std::string GetActionName() { return "Delete Registry Value"; }
  static void Publish(frame::TZTPublisher<TDeleteRegValueAction>& P);
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  std::string GetQuickHelpFilename() override { return "Plugins\\DeleteRegValue.html"; }

  bool GetDeleteKey() const { return FDeleteKey; }
  void SetDeleteKey(bool Value) { FDeleteKey = Value; }

 protected:
  platform::DWORD GetRegAccess() override { return platform::KEY_ALL_ACCESS; }
  bool InternalDoRegAction(TZTRegistry& Registry, const std::string& ValueName) override;

 private:
  bool FDeleteKey = false;
};

// Design time: RegRoot shown and typed as a root key's name. Its names
// (compared case-sensitively; other handles show as numbers) are those a
// project file may write for RegRoot.
struct TRegRootPropertyEditor {
  static constexpr const char* ClassName = "TRegRootPropertyEditor";
  // The names of the drop-down, in its order, with their handles.
  static const std::vector<std::pair<std::string, std::int64_t>>& Names();
};

}  // namespace zt::package
