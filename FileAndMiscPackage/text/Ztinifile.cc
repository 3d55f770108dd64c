#include "text/Ztinifile.h"

#include <exception>

#include "frame/ZTUtils.h"
#include "platform/files.h"
#include "platform/inifile.h"
#include "platform/paths.h"

namespace zt::package {
namespace {

// Fall-backs of the integer conversions; a text that converts to exactly
// this number is refused as well.
constexpr int kDefaultNotInteger = -99098700;
constexpr int kNewValueNotInteger = -990234;

const char* BoolText(bool B) { return B ? "True" : "False"; }

}  // namespace

ZT_IMPLEMENT_CLASS(TCustomIniFileAction, nullptr)
ZT_IMPLEMENT_CLASS(TCustomReadIniFileAction, nullptr)
ZT_IMPLEMENT_CLASS(TCustomWriteIniFileAction, nullptr)
ZT_IMPLEMENT_CLASS(TReadIniFileAction, &TReadIniFileAction::Publish)
ZT_IMPLEMENT_CLASS(TWriteIniFileAction, &TWriteIniFileAction::Publish)

// ---- TCustomIniFileAction ----

TCustomIniFileAction::TCustomIniFileAction() : FValueType(vtString) {}

bool TCustomIniFileAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Result = true;
  if (FIniFile.empty()) Errors.AddError("Ini File", "Ini file has not been set"), Result = false;
  if (FSection.empty()) Errors.AddError("Section", "The section has not been set"), Result = false;
  if (FValueName.empty()) Errors.AddError("Value Name", "The value name has not been set"), Result = false;
  return Result;
}

void TCustomIniFileAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Ini File]");
  List.Add("IniFile=Ini File");
  List.Add("Section=Section");
  List.Add("ValueName=Value Name");
  List.Add("ValueType=Value Type");
}

void TCustomIniFileAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("IniFile=The fully qualified path to the ini file.");
  List.Add("Section=The ini file section to read or write");
  List.Add("ValueName=The name of the value to read/write");
  List.Add("ValueType=The type of the value to read/write");
}

bool TCustomIniFileAction::Report(std::initializer_list<std::string> Lines) {
  frame::IZTActionLogMessagePtr Msg = CreateStatusMessage();
  for (const std::string& Line : Lines) Msg->Details().Add(Line);
  SendStatusMessage(Msg);
  return false;
}

// ---- TCustomReadIniFileAction ----

bool TCustomReadIniFileAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Result = inherited::Validate(Errors);
  if (FVariableName.empty()) Errors.AddError("Variable", "The variable name has not been set"), Result = false;
  return Result;
}

void TCustomReadIniFileAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Ini File]");
  List.Add("VariableName=Variable Name");
  List.Add("DefaultValue=Default Value");
}

void TCustomReadIniFileAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("VariableName=Name of the Variable which will store the ini file value");
  List.Add("DefaultValue=The default value to apply if the value is not present in the ini file.");
}

bool TCustomReadIniFileAction::Execute() {
  std::string Path, Name, Section, Default;
  try {
    Path = frame::Trim(ExpandExpression(FIniFile));
  } catch (const std::exception& E) {
    return Report({"Unable to Read from Ini File : " + FIniFile, E.what()});
  }
  if (platform::ExtractFilePath(Path).empty()) return Report({"No path to the Ini File specified!"});
  try {
    Name = ExpandExpression(FValueName);
  } catch (const std::exception& E) {
    return Report({"Unable to Read Value from Ini File : " + FValueName, E.what()});
  }
  try {
    Section = frame::Trim(ExpandExpression(FSection));
    if (Section.empty()) throw std::runtime_error("Section Name not specified");
  } catch (const std::exception& E) {
    return Report({"Unable to Read from Section : " + FSection, E.what()});
  }
  try {
    Default = ExpandExpression(FDefaultValue);
  } catch (const std::exception& E) {
    return Report({"Unable to use default Value  : " + FDefaultValue, E.what()});
  }

  bool DefaultBool = false;
  int DefaultInt = 0;
  if (FValueType == vtBool) {
    std::string B = frame::Trim(frame::LowerCase(Default));
    if (B != "true" && B != "false") {
      SendMessage("Default Value is not True or False and the Value Type is Boolean");
      return false;
    }
    DefaultBool = B == "true";
  } else if (FValueType == vtInteger) {
    DefaultInt = platform::StrToIntDef(Default, kDefaultNotInteger);
    if (DefaultInt == kDefaultNotInteger) {
      SendMessage("Default Value : " + Default + " : is not an integer and the Value Type is Integer");
      return false;
    }
  }

  try {
    platform::TIniFile Ini(Path);
    frame::IZTActionLogMessagePtr Msg = CreateStatusMessage();
    Msg->Details().Add("Reading from IniFile: " + Path + " Section : " + Section + " ValueName: " + Name +
                       " Default Value : " + Default);
    switch (FValueType) {
      case vtString: {
        std::string Value = Ini.ReadString(Section, Name, Default);
        Msg->Details().Add("New Value : " + Value);
        SetVariable(FVariableName, frame::TZTVariant(Value));
        break;
      }
      case vtBool: {
        bool Value = Ini.ReadBool(Section, Name, DefaultBool);
        Msg->Details().Add(std::string("New Value : ") + BoolText(Value));
        SetVariable(FVariableName, frame::TZTVariant(Value));
        break;
      }
      case vtInteger: {
        int Value = Ini.ReadInteger(Section, Name, DefaultInt);
        Msg->Details().Add("New Value : " + std::to_string(Value));
        SetVariable(FVariableName, frame::TZTVariant(Value));
        break;
      }
    }
    SendStatusMessage(Msg);
    return true;
  } catch (const std::exception& E) {
    return Report({"Unable to Read from Ini File : " + Path, E.what()});
  }
}

// ---- TCustomWriteIniFileAction ----

TCustomWriteIniFileAction::TCustomWriteIniFileAction() : FAllowCreate(false) {}

void TCustomWriteIniFileAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Ini File]");
  List.Add("NewValue=New Value");
  List.Add("AllowCreate=AllowCreate");
}

void TCustomWriteIniFileAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("NewValue=New Value to write to the ini file. Can include project variables");
  List.Add("AllowCreate=Allow the Ini File to be created if it does not exist.");
}

bool TCustomWriteIniFileAction::Execute() {
  std::string Path, Value, Name, Section;
  try {
    Path = frame::Trim(ExpandExpression(FIniFile));
  } catch (const std::exception& E) {
    return Report({"Unable to Write to Ini File : " + FIniFile, E.what()});
  }
  if (platform::ExtractFilePath(Path).empty()) return Report({"No path to the Ini File specified!"});
  try {
    Value = ExpandExpression(FNewValue);
  } catch (const std::exception& E) {
    return Report({"Unable to Write Value to Ini File : " + FNewValue, E.what()});
  }
  try {
    Name = ExpandExpression(FValueName);
  } catch (const std::exception& E) {
    return Report({"Unable to Write Value to Ini File : " + FValueName, E.what()});
  }
  try {
    Section = frame::Trim(ExpandExpression(FSection));
    if (Section.empty()) throw std::runtime_error("Section Name not specified");
  } catch (const std::exception& E) {
    return Report({"Unable to Write to Section : " + FSection, E.what()});
  }
  bool Exists = platform::FileExists(Path);
  if (!Exists && !FAllowCreate) return Report({"Unable to Write to Ini File : " + Path, "File does not Exist!"});
  if (Exists && (platform::GetFileAttributesA(Path) & platform::FILE_ATTRIBUTE_READONLY)) {
    SendMessage("File : " + Path + " is marked as Read Only!");
    return false;
  }

  try {
    platform::TIniFile Ini(Path);
    frame::IZTActionLogMessagePtr Msg = CreateStatusMessage();
    auto Line = [&](const std::string& Shown) {
      return "Writing to IniFile: " + Path + "Section : " + Section + " ValueName: " + Name + " Value: " + Shown;
    };
    switch (FValueType) {
      case vtString:
        Msg->Details().Add(Line(Value));
        Ini.WriteString(Section, Name, Value);
        break;
      case vtBool: {
        bool B = frame::TZTVariant(Value).AsBoolean();  // raises for a text that is no Boolean
        Msg->Details().Add(Line(BoolText(B)));
        Ini.WriteBool(Section, Name, B);
        break;
      }
      case vtInteger: {
        int I = platform::StrToIntDef(Value, kNewValueNotInteger);
        if (I == kNewValueNotInteger) {
          Msg->SetText("New Value is not an integer : " + Value);
          return false;  // the entry is dropped unsent
        }
        Msg->SetText(Line(std::to_string(I)));
        Ini.WriteInteger(Section, Name, I);
        break;
      }
    }
    SendStatusMessage(Msg);
    return true;
  } catch (const std::exception& E) {
    return Report({"Unable to Write to Ini File : " + Path, E.what()});
  }
}

// ---- Published classes ----

void TReadIniFileAction::Publish(frame::TZTPublisher<TReadIniFileAction>& P) {
  P.WideString("IniFile", &TReadIniFileAction::GetIniFile, &TReadIniFileAction::SetIniFile);
  P.WideString("Section", &TReadIniFileAction::GetSection, &TReadIniFileAction::SetSection);
  P.WideString("ValueName", &TReadIniFileAction::GetValueName, &TReadIniFileAction::SetValueName);
  P.WideString("VariableName", &TReadIniFileAction::GetVariableName, &TReadIniFileAction::SetVariableName);
  P.WideString("DefaultValue", &TReadIniFileAction::GetDefaultValue, &TReadIniFileAction::SetDefaultValue);
  P.Enumeration("ValueType", "TIniValueType", {"vtString", "vtBool", "vtInteger"}, &TReadIniFileAction::GetValueType,
                &TReadIniFileAction::SetValueType);
}

void TWriteIniFileAction::Publish(frame::TZTPublisher<TWriteIniFileAction>& P) {
  P.WideString("IniFile", &TWriteIniFileAction::GetIniFile, &TWriteIniFileAction::SetIniFile);
  P.WideString("Section", &TWriteIniFileAction::GetSection, &TWriteIniFileAction::SetSection);
  P.WideString("ValueName", &TWriteIniFileAction::GetValueName, &TWriteIniFileAction::SetValueName);
  P.WideString("NewValue", &TWriteIniFileAction::GetNewValue, &TWriteIniFileAction::SetNewValue);
  P.Boolean("AllowCreate", &TWriteIniFileAction::GetAllowCreate, &TWriteIniFileAction::SetAllowCreate).TypeName =
      "WordBool";
  P.Enumeration("ValueType", "TIniValueType", {"vtString", "vtBool", "vtInteger"}, &TWriteIniFileAction::GetValueType,
                &TWriteIniFileAction::SetValueType);
}

}  // namespace zt::package
