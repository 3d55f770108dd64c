#include "host/project/registry_of_actions.h"

#include <strings.h>

#include "host/project/did_you_mean.h"

namespace zt::host {

namespace {

std::vector<std::string> ToStrings(const std::vector<frame::TZTPageClass>& Classes) {
  std::vector<std::string> R;
  for (const char* C : Classes) R.emplace_back(C ? C : "");
  return R;
}

}  // namespace

void ActionRegistry::RegisterAction(const std::string& DisplayName, const std::string& Category,
                                    const frame::TZTActionClass& ActionClass, const std::string& IconName) {
  Actions_.push_back({DisplayName, Category, IconName, &ActionClass});
}

void ActionRegistry::RegisterActionPages(const frame::TZTActionClass& ActionClass,
                                         const std::vector<frame::TZTPageClass>& Pages) {
  Pages_.push_back({ActionClass.ClassName, ToStrings(Pages)});
}

void ActionRegistry::RegisterPropertyEditor(const std::string& PropertyType, const frame::TZTActionClass& ActionClass,
                                            const std::string& PropertyName, frame::TZTEditorClass Editor) {
  Editors_.push_back({ActionClass.ClassName, PropertyType, PropertyName, Editor ? Editor : ""});
}

void ActionRegistry::RegisterConstant(const std::string& Name, const frame::TZTVariant& Value) {
  Constants_.emplace_back(Name, Value);
}

void ActionRegistry::RegisterMethod(const frame::TZTActionClass& ActionClass, const std::string& MethodName,
                                    const std::string& MethodType) {
  Methods_.push_back({ActionClass.ClassName, MethodName, MethodType});
}

void ActionRegistry::RegisterOptions(const frame::TZTOptionsClass& OptionsClass, const std::string& IconName) {
  Options_.push_back({OptionsClass.ClassName, IconName, {}, OptionsClass.Properties});
}

const frame::TZTOptionProperty* RegisteredOptions::Find(const std::string& Name) const {
  for (const auto& P : Properties)
    if (strcasecmp(P.Name.c_str(), Name.c_str()) == 0) return &P;
  return nullptr;
}

const RegisteredOptions* ActionRegistry::FindOptions(const std::string& ClassName) const {
  for (const auto& O : Options_)
    if (strcasecmp(O.ClassName.c_str(), ClassName.c_str()) == 0) return &O;
  return nullptr;
}

void ActionRegistry::RegisterOptionsPages(const frame::TZTOptionsClass& OptionsClass,
                                          const std::vector<frame::TZTPageClass>& Pages) {
  for (auto& O : Options_)
    if (O.ClassName == OptionsClass.ClassName) {
      O.Pages = ToStrings(Pages);
      return;
    }
  Options_.push_back({OptionsClass.ClassName, "", ToStrings(Pages), OptionsClass.Properties});
}

const RegisteredAction* ActionRegistry::Find(const std::string& Name) const {
  for (const auto& A : Actions_)
    if (strcasecmp(A.Class->ClassName.c_str(), Name.c_str()) == 0 ||
        strcasecmp(A.DisplayName.c_str(), Name.c_str()) == 0)
      return &A;
  return nullptr;
}

std::string ActionRegistry::DidYouMean(const std::string& Word) const {
  // A name that holds the word is looked for among the types that run first; a
  // misspelling is matched against every type, those that run winning ties.
  std::vector<std::string> Available, All;
  for (bool Runs : {true, false})
    for (const auto& A : Actions_)
      if (A.Class->IsAvailable() == Runs)
        for (const std::string* Name : {&A.DisplayName, &A.Class->ClassName}) {
          All.push_back(*Name);
          if (Runs) Available.push_back(*Name);
        }
  std::string Near = NameHolding(Word, Available);
  return SuggestionText(Near.empty() ? NearestName(Word, All) : Near);
}

std::vector<RegisteredEditor> ActionRegistry::EditorsOf(const RegisteredAction& Type) const {
  std::vector<RegisteredEditor> R;
  for (const auto& E : Editors_)
    for (const frame::TZTActionClass* C = Type.Class; C; C = C->Parent)
      if (C->ClassName == E.ClassName) {
        R.push_back(E);
        break;
      }
  return R;
}

std::vector<std::string> ActionRegistry::PagesOf(const RegisteredAction& Type) const {
  std::vector<std::string> R;
  for (const auto& P : Pages_)
    if (P.ClassName == Type.Class->ClassName) R = P.Pages;
  return R;
}

}  // namespace zt::host
