#include "iterators/Ztinifileiteratoraction.h"

#include <exception>
#include <stdexcept>

#include "frame/ZTUtils.h"
#include "platform/inifile.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TIniFileIterator, &TIniFileIterator::Publish)

void TIniFileIterator::Publish(frame::TZTPublisher<TIniFileIterator>& P) {
  using A = TIniFileIterator;
  P.String("IniFilename", &A::GetIniFilename, &A::SetIniFilename);
  P.Enumeration("IteratorMode", "TIniIteratorMode", {"iiSections", "iiValues"}, &A::GetIteratorMode,
                &A::SetIteratorMode);
  P.String("SectionsVar", &A::GetSectionsVar, &A::SetSectionsVar);
  P.String("SectionName", &A::GetSectionName, &A::SetSectionName);
  P.String("NameVariable", &A::GetNameVariable, &A::SetNameVariable);
  P.String("ValueVariable", &A::GetValueVariable, &A::SetValueVariable);
  P.Integer("ItemCount", &A::GetItemCount);
  P.Integer("ItemIndex", &A::GetItemIndex);
  P.String("ZTVariable", &A::GetZTVariable, &A::SetZTVariable).Stored = false;
}

bool TIniFileIterator::BeforeFirstIteration() {
  if (FIteratorMode == iiSections && FSectionsVar.empty())
    throw std::runtime_error("Sections Variable not set");
  if (FIteratorMode == iiValues && FNameVariable.empty() && FValueVariable.empty())
    throw std::runtime_error("Name and Value variables not set");
  std::string IniFile;
  if (!TryExpandExpression("Ini File", FIniFilename, true, IniFile)) return false;
  SendMessage("Searching for items...");
  FItems.Clear();
  try {
    if (!FillList(frame::Trim(IniFile))) throw std::runtime_error("Failed to populate list from Ini file.");
    SendMessage("Found " + std::to_string(FItems.Count()) + " Items");
    SetIterationCount(FItems.Count());
  } catch (const std::exception& E) {
    throw frame::EIteratorException(std::string("Error while searching for items : ") + E.what());
  }
  return true;
}

bool TIniFileIterator::FillList(const std::string& IniFile) {
  const pf::TIniFile Ini(IniFile);
  if (FIteratorMode == iiSections) {
    for (std::string& Section : Ini.ReadSections()) FItems.Add(std::move(Section));
    return true;
  }
  std::string Section;
  if (!TryExpandExpression("Section Name", FSectionName, true, Section)) return false;
  for (std::string& Line : Ini.ReadSectionValues(frame::Trim(Section))) FItems.Add(std::move(Line));
  return true;
}

frame::TZTVariant TIniFileIterator::GetCurrentValue() {
  try {
    const std::string& Item = FItems[GetCurrentIteration() - 1];
    if (FIteratorMode == iiSections) {
      SetVariable(FSectionsVar, Item);
    } else {
      const std::size_t Eq = Item.find('=');
      if (!FNameVariable.empty()) SetVariable(FNameVariable, Item.substr(0, Eq));
      if (!FValueVariable.empty())
        SetVariable(FValueVariable, Eq == std::string::npos ? "" : Item.substr(Eq + 1));
    }
  } catch (const std::exception& E) {
    throw std::runtime_error(std::string("Error Setting Variable: ") + E.what());
  }
  return {};
}

void TIniFileIterator::ResetBuildStatus() {
  inherited::ResetBuildStatus();
  Reset();
}

bool TIniFileIterator::Validate(frame::IZTActionValidationError& Errors) {
  bool Result = true;
  if (FIniFilename.empty()) {
    Errors.AddError("Inifile", "An INI file has not been set");
    Result = false;
  }
  if (FIteratorMode == iiSections && FSectionsVar.empty()) {
    Errors.AddError("Sections Variable", "The Sections Variable has not been set");
    Result = false;
  }
  if (FIteratorMode == iiValues && FNameVariable.empty() && FValueVariable.empty()) {
    Errors.AddError("Variable", "Both Name variable and Values variable has not been set");
    Result = false;
  }
  return Result;
}

std::string TIniFileIterator::GetFormattedDescription() {
  if (FIteratorMode == iiSections) return GetActionName() + " [ " + FIniFilename + " ]";
  return GetActionName() + " [ " + FIniFilename + " : " + FSectionName + " ]";
}

void TIniFileIterator::GetHiddenProperties(frame::TStrings& List) {
  inherited::GetHiddenProperties(List);
  List.Add("ItemCount");
  List.Add("ItemIndex");
  List.Add("ZTVariable");
}

void TIniFileIterator::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Ini File]");
  List.Add("IniFilename=Inifile");
  List.Add("IteratorMode=Iterate");
  List.Add("SectionsVar=Sections Variable");
  List.Add("SectionName=Section Name");
  List.Add("NameVariable=Name Variable");
  List.Add("ValueVariable=Value Variable");
}

void TIniFileIterator::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("IniFilename=The INI file to read");
  List.Add("IteratorMode=iiSections: one pass per section; iiValues: one pass per key of Section Name");
  List.Add("SectionsVar=The variable that receives the current section name");
  List.Add("SectionName=The section whose keys are iterated");
  List.Add("NameVariable=The variable that receives the current key's name");
  List.Add("ValueVariable=The variable that receives the current key's value");
}

}  // namespace zt::package
