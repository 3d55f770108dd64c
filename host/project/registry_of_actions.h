// The host's registration services: everything the package registers at
// start-up, recorded as data (the palette, editors, pages, script methods,
// constants and options objects).
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "frame/ZTServices.h"

namespace zt::host {

struct RegisteredAction {
  std::string DisplayName;
  std::string Category;
  std::string Icon;
  const frame::TZTActionClass* Class = nullptr;  // owned by the package, lives as long as the process
};

struct RegisteredEditor {
  std::string ClassName;     // the class it was registered for (maybe a base class)
  std::string PropertyType;
  std::string PropertyName;  // "" = every property of PropertyType
  std::string Editor;
};

struct RegisteredPages {
  std::string ClassName;
  std::vector<std::string> Pages;  // tab order
};

struct RegisteredMethod {
  std::string ClassName, MethodName, MethodType;
};

struct RegisteredOptions {
  std::string ClassName, Icon;
  std::vector<std::string> Pages;
  std::vector<frame::TZTOptionProperty> Properties;
  const frame::TZTOptionProperty* Find(const std::string& Name) const;  // any letter case
};

class ActionRegistry : public frame::IZTActionServices,
                       public frame::IZTScriptingServices,
                       public frame::IZTOptionsServices {
 public:
  void RegisterAction(const std::string& DisplayName, const std::string& Category,
                      const frame::TZTActionClass& ActionClass, const std::string& IconName) override;
  void RegisterActionPages(const frame::TZTActionClass& ActionClass,
                           const std::vector<frame::TZTPageClass>& Pages) override;
  void RegisterPropertyEditor(const std::string& PropertyType, const frame::TZTActionClass& ActionClass,
                              const std::string& PropertyName, frame::TZTEditorClass Editor) override;
  void RegisterConstant(const std::string& Name, const frame::TZTVariant& Value) override;
  void RegisterMethod(const frame::TZTActionClass& ActionClass, const std::string& MethodName,
                      const std::string& MethodType) override;
  void RegisterOptions(const frame::TZTOptionsClass& OptionsClass, const std::string& IconName) override;
  void RegisterOptionsPages(const frame::TZTOptionsClass& OptionsClass,
                            const std::vector<frame::TZTPageClass>& Pages) override;

  // The action type named by its class name or display name (letter case
  // ignored), or null.
  const RegisteredAction* Find(const std::string& Name) const;
  // "; did you mean \"X\"?" for a misspelt type name: a type that runs
  // when one fits, else any registered type; "" when none fits.
  std::string DidYouMean(const std::string& Word) const;

  // Editors registered for Type's class or one of its ancestors, in order.
  std::vector<RegisteredEditor> EditorsOf(const RegisteredAction& Type) const;
  // Pages of Type's class in tab order (the last registration wins).
  std::vector<std::string> PagesOf(const RegisteredAction& Type) const;

  const std::vector<RegisteredAction>& Actions() const { return Actions_; }
  const std::vector<RegisteredEditor>& Editors() const { return Editors_; }
  const std::vector<RegisteredPages>& Pages() const { return Pages_; }
  const std::vector<RegisteredMethod>& Methods() const { return Methods_; }
  const std::vector<std::pair<std::string, frame::TZTVariant>>& Constants() const { return Constants_; }
  const std::vector<RegisteredOptions>& Options() const { return Options_; }
  const RegisteredOptions* FindOptions(const std::string& ClassName) const;  // any letter case

 private:
  std::vector<RegisteredAction> Actions_;
  std::vector<RegisteredEditor> Editors_;
  std::vector<RegisteredPages> Pages_;
  std::vector<RegisteredMethod> Methods_;
  std::vector<std::pair<std::string, frame::TZTVariant>> Constants_;
  std::vector<RegisteredOptions> Options_;
};

}  // namespace zt::host
