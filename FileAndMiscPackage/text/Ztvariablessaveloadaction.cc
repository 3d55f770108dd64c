#include "text/Ztvariablessaveloadaction.h"

#include <exception>
#include <stdexcept>
#include <utility>
#include <vector>

#include "frame/ZTUtils.h"
#include "platform/conversions.h"
#include "platform/files.h"
#include "platform/inifile.h"

namespace zt::package {
namespace {

std::string UpperCase(std::string S) {
  for (char& C : S)
    if (C >= 'a' && C <= 'z') C = static_cast<char>(C - 'a' + 'A');
  return S;
}

// StrToBool on Text, else on Fallback, else false.
bool BooleanOf(const std::string& Text, const std::string& Fallback) {
  for (const std::string* S : {&Text, &Fallback}) {
    try {
      return platform::StrToBool(*S);
    } catch (const platform::EConvertError&) {
    }
  }
  return false;
}

}  // namespace

ZT_IMPLEMENT_CLASS(TZTVariablesSaveLoadAction, &TZTVariablesSaveLoadAction::Publish)
ZT_IMPLEMENT_CLASS(TZTVariablesSaveAction, &TZTVariablesSaveAction::Publish)
ZT_IMPLEMENT_CLASS(TZTVariablesLoadAction, &TZTVariablesLoadAction::Publish)

// ---- TZTVariablesSaveLoadAction ----

void TZTVariablesSaveLoadAction::Publish(frame::TZTPublisher<TZTVariablesSaveLoadAction>& P) {
  using A = TZTVariablesSaveLoadAction;
  P.String("INIFile", &A::GetINIFile, &A::SetINIFile);
  P.StringList("Variables", &A::GetVariables, &A::SetVariables);
  P.String("SectionName", &A::GetSectionName, &A::SetSectionName);
}

bool TZTVariablesSaveLoadAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Result = true;
  if (FINIFile.empty()) Errors.AddError("IniFile", "IniFile has not been set"), Result = false;
  if (FSectionName.empty()) Errors.AddError("SectionName", "SectionName has not been set"), Result = false;
  return Result;
}

bool TZTVariablesSaveLoadAction::ExpandFileAndSection(std::string& Path, std::string& Section) {
  if (!TryExpandExpression("IniFile", FINIFile, true, Path)) return false;
  if (!TryExpandExpression("SectionName", FSectionName, true, Section)) return false;
  Path = frame::Trim(Path);
  Section = frame::Trim(Section);
  return true;
}

// ---- TZTVariablesSaveAction ----

void TZTVariablesSaveAction::Publish(frame::TZTPublisher<TZTVariablesSaveAction>& P) {
  P.Boolean("EraseSection", &TZTVariablesSaveAction::GetEraseSection,
            &TZTVariablesSaveAction::SetEraseSection);
}

bool TZTVariablesSaveAction::Execute() {
  std::string Path, Section;
  if (!ExpandFileAndSection(Path, Section)) return false;
  // The values are found first and written in one update of the file; a
  // failure keeps the keys before it, as writing them one by one would.
  std::vector<std::pair<std::string, std::string>> Values;
  std::string Failed;
  for (const std::string& Name : FVariables.Lines()) {
    try {
      // A name that is no variable could not be read back: an error, as an undefined reference is.
      if (!IsVariableDefined(Name)) throw std::invalid_argument(Name);
      Values.emplace_back(Name, ExpandExpression("%" + Name + "%"));
    } catch (const std::exception&) {
      Failed = Name;
      break;
    }
  }
  try {
    platform::TIniFile(Path).WriteSectionValues(Section, Values, FEraseSection);
  } catch (const std::exception& E) {
    SendMessage(std::string("Error Opening Ini File : ") + E.what());
    return false;
  }
  if (Values.size() < FVariables.Lines().size()) {
    SendMessage("Error expanding variable: " + Failed);
    return false;
  }
  SendMessage("Variables saved to " + Path);
  return true;
}

// ---- TZTVariablesLoadAction ----

void TZTVariablesLoadAction::Publish(frame::TZTPublisher<TZTVariablesLoadAction>& P) {
  using A = TZTVariablesLoadAction;
  P.Boolean("FailIfVariableNotDefined", &A::GetFailIfVariableNotDefined, &A::SetFailIfVariableNotDefined);
  P.Boolean("FailIfVariableNotInIniFile", &A::GetFailIfVariableNotInIniFile,
            &A::SetFailIfVariableNotInIniFile);
  P.StringList("VariableTypes", &A::GetVariableTypes, &A::SetVariableTypes);
  P.Boolean("CreateVarInINIifNotExists", &A::GetCreateVarInINIifNotExists, &A::SetCreateVarInINIifNotExists);
  P.Boolean("IgnoreFileNotFound", &A::GetIgnoreFileNotFound, &A::SetIgnoreFileNotFound);
}

bool TZTVariablesLoadAction::Execute() {
  std::string Path, Section;
  if (!ExpandFileAndSection(Path, Section)) return false;
  if (!platform::FileExists(Path)) {
    SendMessage("File " + Path + " does not exist.");
    if (!FIgnoreFileNotFound) return false;  // otherwise every key is missing
  }
  try {
    for (int I = 0; I < FVariables.Count(); ++I)
      if (!LoadVariable(I, Path, Section)) return false;  // the variables loaded so far keep their values
  } catch (const platform::EIniFileException& E) {
    SendMessage(std::string("Error Opening Ini File : ") + E.what());
    return false;
  }
  SendMessage("Variables loaded from " + Path);
  return true;
}

bool TZTVariablesLoadAction::LoadVariable(int I, const std::string& Path, const std::string& Section) {
  const std::string& Name = FVariables[I];
  if (!IsVariableDefined(Name)) {
    SendMessage("Variable not defined: " + Name);
    return !FFailIfVariableNotDefined;
  }
  platform::TIniFile Ini(Path);
  const std::string Current = GetVariableValue(Name).AsString();
  if (!Ini.ValueExists(Section, Name)) {
    if (FFailIfVariableNotInIniFile) {
      SendMessage("Variable not found in INI: " + Name);
      return false;
    }
    if (FCreateVarInINIifNotExists) {
      Ini.WriteString(Section, Name, Current);
      SendMessage("Variable not found in INI, created: " + Name);
    } else {
      SendMessage("Variable not found in INI: " + Name);
    }
    return true;
  }
  // Values are taken as the file has them: a "%" in one is never expanded here.
  try {
    const std::string Type = UpperCase(FVariableTypes[I]);  // raises when the list is shorter
    if (Type == "STRING") {
      SetVariable(Name, frame::TZTVariant(Ini.ReadString(Section, Name, Current)));
    } else if (Type == "BOOLEAN") {
      SetVariable(Name, frame::TZTVariant(BooleanOf(Ini.ReadString(Section, Name, Current), Current)));
    } else if (Type == "INTEGER") {
      SetVariable(Name, frame::TZTVariant(Ini.ReadInteger(Section, Name, platform::StrToIntDef(Current, 0))));
    } else {
      SendMessage("Invalid value for variable type: " + FVariableTypes[I]);
      return false;
    }
  } catch (const std::exception&) {
    SendMessage("Error setting variable " + Name);
    return false;
  }
  return true;
}

}  // namespace zt::package
