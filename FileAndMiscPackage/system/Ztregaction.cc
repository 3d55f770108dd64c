#include "system/Ztregaction.h"

#include <exception>

#include "platform/conversions.h"
#include "platform/errors.h"
#include "platform/registry_data.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TCustomRegAction, &TCustomRegAction::Publish)
ZT_IMPLEMENT_CLASS(TReadRegValueAction, &TReadRegValueAction::Publish)
ZT_IMPLEMENT_CLASS(TSetRegValueAction, &TSetRegValueAction::Publish)
ZT_IMPLEMENT_CLASS(TDeleteRegValueAction, &TDeleteRegValueAction::Publish)

// ---- TZTRegistry ----

pf::DWORD TZTRegistry::ReadDWord(const std::string& Name) {
  std::string Data;
  if (GetData(Name, Data) != pf::rdInteger) ReadError(Name);
  return pf::RegDwordValue(Data);
}

void TZTRegistry::WriteDWord(const std::string& Name, pf::DWORD Value) {
  PutData(Name, pf::RegDwordData(Value), pf::REG_DWORD);
}

// ---- TCustomRegAction ----

TCustomRegAction::TCustomRegAction()
    : FRegRoot(static_cast<std::uint32_t>(pf::HKEY_LOCAL_MACHINE)),
      FRegValType(rtString),
      FAllowCreateKey(false) {}

void TCustomRegAction::Publish(frame::TZTPublisher<TCustomRegAction>& P) {
  frame::TZTPropInfo& Root =
      P.Integer("RegRoot", &TCustomRegAction::GetRegRoot, &TCustomRegAction::SetRegRoot);
  Root.TypeName = "HKEY";
  Root.ValueNames = TRegRootPropertyEditor::Names();
  P.String("RegKey", &TCustomRegAction::GetRegKey, &TCustomRegAction::SetRegKey);
  P.Enumeration("RegValType", "TRegValueType", {"rtInteger", "rtString", "rtDWord", "rtBoolean"},
                &TCustomRegAction::GetRegValType, &TCustomRegAction::SetRegValType);
  P.String("RegValueName", &TCustomRegAction::GetRegValueName, &TCustomRegAction::SetRegValueName);
}

bool TCustomRegAction::Validate(frame::IZTActionValidationError& Errors) {
  if (!FRegKey.empty()) return true;
  Errors.AddError("Registry Key", "Registry Key has not been set");
  return false;
}

void TCustomRegAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Registry]");
  List.Add("RegRoot=Root");
  List.Add("RegKey=Key Name");
  List.Add("RegValueName=Value Name");
  List.Add("RegValType=Value Type");
  List.Add("AllowCreateKey=AllowCreate");
}

void TCustomRegAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("RegRoot=The root value in the registry");
  List.Add("RegKey=Registry Key containing the value");
  List.Add("RegValue=Registry Value to read");
  List.Add("RegValType=The Value Type, ie integer or string");
  List.Add("AllowCreateKey=Allow the Registry Key to be Created if it does not already Exist");
}

bool TCustomRegAction::Report(const std::string& Text) {
  frame::IZTActionLogMessagePtr Msg = CreateStatusMessage();
  Msg->SetText(Text);
  SendStatusMessage(Msg);
  return false;
}

bool TCustomRegAction::Execute() {
  std::string Key, ValueName;
  try {
    Key = ExpandExpression(FRegKey);
    ValueName = ExpandExpression(FRegValueName);
  } catch (const std::exception& E) {
    return Report(std::string("Error Expanding String property : ") + E.what());
  }
  TZTRegistry Registry(GetRegAccess());
  Registry.SetRootKey(FRegRoot);
  if (Registry.OpenKey(Key, FAllowCreateKey)) return InternalDoRegAction(Registry, ValueName);
  return Report("Key does not exist : " + FRegKey);
}

// ---- TReadRegValueAction ----

void TReadRegValueAction::Publish(frame::TZTPublisher<TReadRegValueAction>& P) {
  P.String("ZTVariable", &TReadRegValueAction::GetZTVariable, &TReadRegValueAction::SetZTVariable);
}

void TReadRegValueAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("ZTVariable=Variable");
}

void TReadRegValueAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("ZTVariable=Variable to set");
}

bool TReadRegValueAction::InternalDoRegAction(TZTRegistry& Registry, const std::string& ValueName) {
  if (!IsVariableDefined(FZTVariable)) {
    AddNewVariable(FZTVariable, frame::TZTVariant(""));
    SendMessage("Variable : " + FZTVariable + " is not defined");
    return false;
  }
  try {
    frame::TZTVariant Value;
    std::string Text;
    switch (FRegValType) {
      case rtInteger: {
        int I = Registry.ReadInteger(ValueName);
        Value = I;
        Text = std::to_string(I);
        break;
      }
      case rtString:
        Text = Registry.ReadString(ValueName);
        Value = Text;
        break;
      case rtDWord: {
        pf::DWORD D = Registry.ReadDWord(ValueName);
        Value = D;
        Text = std::to_string(D);
        break;
      }
      case rtBoolean: {
        bool B = Registry.ReadBool(ValueName);
        Value = B;
        Text = B ? "True" : "False";
        break;
      }
      default:
        SendMessage("Invalid value type");
        return false;
    }
    SetVariable(FZTVariable, Value);
    SendMessage("Read Value : " + Text);
    return true;
  } catch (const std::exception& E) {
    SendMessage(E.what());
    return false;
  }
}

// ---- TSetRegValueAction ----

void TSetRegValueAction::Publish(frame::TZTPublisher<TSetRegValueAction>& P) {
  P.String("RegValue", &TSetRegValueAction::GetRegValue, &TSetRegValueAction::SetRegValue);
  P.Boolean("AllowCreateKey", &TSetRegValueAction::GetAllowCreateKey, &TSetRegValueAction::SetAllowCreateKey);
}

void TSetRegValueAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("RegValue=Value");
}

void TSetRegValueAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("RegValue=The new value");
}

bool TSetRegValueAction::InternalDoRegAction(TZTRegistry& Registry, const std::string& ValueName) {
  std::string Value;
  int IntValue = 0;
  pf::DWORD DWordValue = 0;
  bool BoolValue = false;
  try {
    Value = ExpandExpression(FRegValue);
    switch (FRegValType) {
      case rtInteger:
        IntValue = pf::StrToInt(Value);
        break;
      case rtDWord:
        DWordValue = static_cast<pf::DWORD>(pf::StrToInt64(Value));
        break;  // its low 32 bits
      case rtBoolean:
        BoolValue = pf::StrToBool(Value);
        break;
      case rtString:
        break;
    }
  } catch (const std::exception& E) {
    SendMessage(std::string("Error expanding Value : ") + E.what());
    return false;
  }
  switch (FRegValType) {
    case rtInteger:
      Registry.WriteInteger(ValueName, IntValue);
      break;
    case rtString:
      Registry.WriteString(ValueName, Value);
      break;
    case rtDWord:
      Registry.WriteDWord(ValueName, DWordValue);
      break;
    case rtBoolean:
      Registry.WriteBool(ValueName, BoolValue);
      break;
  }
  SendMessage("Set Value " + ValueName + " to : " + Value);
  return true;
}

// ---- TDeleteRegValueAction ----

void TDeleteRegValueAction::Publish(frame::TZTPublisher<TDeleteRegValueAction>& P) {
  P.Boolean("DeleteKey", &TDeleteRegValueAction::GetDeleteKey, &TDeleteRegValueAction::SetDeleteKey);
}

bool TDeleteRegValueAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Result = inherited::Validate(Errors);
  if (FRegValueName.empty() && !FDeleteKey) {
    Errors.AddError("Registry Value", "Registry Value name has not been set");
    Result = false;
  }
  return Result;
}

std::string TDeleteRegValueAction::GetFormattedDescription() {
  if (FDeleteKey) return "Delete Registry Key [ " + FRegKey + " ]";
  return "Delete Registry Value [ " + FRegKey + " ] [ " + FRegValueName + " ]";
}

bool TDeleteRegValueAction::InternalDoRegAction(TZTRegistry& Registry, const std::string& ValueName) {
  if (!FDeleteKey) {
    frame::IZTActionLogMessagePtr Msg = CreateStatusMessage();
    bool Result = false;
    if (!Registry.ValueExists(ValueName)) {
      Msg->SetText("Error Deleting Value " + ValueName + " - Value does not exist");
    } else if (Registry.DeleteValue(ValueName)) {
      Msg->SetText("Deleted Value " + ValueName);
      Result = true;
    } else {
      Msg->SetText("Error Deleting Value " + ValueName + " : " + pf::SysErrorMessage(pf::GetLastError()));
    }
    SendStatusMessage(Msg);
    return Result;
  }
  SendMessage("Deleting key " + Registry.CurrentPath() + "...");
  if (Registry.HasSubKeys()) {
    SendMessage("This key contains subkeys. Cannot delete.");
    return false;
  }
  const std::string Path = Registry.CurrentPath();
  Registry.CloseKey();
  if (Registry.DeleteKey(Path)) {
    SendMessage("Key deleted");
    return true;
  }
  pf::DWORD Error = pf::GetLastError();
  SendMessage(Error ? "Failed to delete key. " + pf::SysErrorMessage(Error)
                    : std::string("Failed to delete key. An unknown error occured."));
  return false;
}

// ---- TRegRootPropertyEditor ----

const std::vector<std::pair<std::string, std::int64_t>>& TRegRootPropertyEditor::Names() {
  static const std::vector<std::pair<std::string, std::int64_t>> R = {{"HKEY_CLASSES_ROOT", 0x80000000},
                                                                      {"HKEY_CURRENT_USER", 0x80000001},
                                                                      {"HKEY_LOCAL_MACHINE", 0x80000002},
                                                                      {"HKEY_USERS", 0x80000003},
                                                                      {"HKEY_CURRENT_CONFIG", 0x80000005}};
  return R;
}

}  // namespace zt::package
