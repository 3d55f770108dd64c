// Registration services that record every call as one line, in call order,
// so tests can assert the exact registration sequence.
#pragma once

#include <string>
#include <vector>

#include "frame/ZTServices.h"

namespace zt::testing {

class RecordingServices : public frame::IZTActionServices,
                          public frame::IZTScriptingServices,
                          public frame::IZTOptionsServices {
 public:
  std::vector<std::string> Calls;
  std::vector<const frame::TZTActionClass*> ActionClasses;  // of the action calls, in order

  frame::TZTServices Services() { return {this, this, this}; }

  void RegisterAction(const std::string& DisplayName, const std::string& Category,
                      const frame::TZTActionClass& ActionClass, const std::string& IconName) override {
    Calls.push_back("action " + DisplayName + " | " + Category + " | " + ActionClass.ClassName + " | " + IconName);
    ActionClasses.push_back(&ActionClass);
  }
  void RegisterActionPages(const frame::TZTActionClass& ActionClass,
                           const std::vector<frame::TZTPageClass>& Pages) override {
    Calls.push_back("pages " + ActionClass.ClassName + ":" + Join(Pages));
  }
  void RegisterPropertyEditor(const std::string& PropertyType, const frame::TZTActionClass& ActionClass,
                              const std::string& PropertyName, frame::TZTEditorClass Editor) override {
    Calls.push_back("editor " + PropertyType + " " + ActionClass.ClassName + "." + PropertyName + " " + Editor);
  }
  void RegisterConstant(const std::string& Name, const frame::TZTVariant& Value) override {
    Calls.push_back("constant " + Name + "=" + Value.AsString());
  }
  void RegisterMethod(const frame::TZTActionClass& ActionClass, const std::string& MethodName,
                      const std::string& MethodType) override {
    Calls.push_back("method " + ActionClass.ClassName + "." + MethodName + " " + MethodType);
  }
  void RegisterOptions(const frame::TZTOptionsClass& OptionsClass, const std::string& IconName) override {
    Calls.push_back("options " + OptionsClass.ClassName + " | " + IconName);
  }
  void RegisterOptionsPages(const frame::TZTOptionsClass& OptionsClass,
                            const std::vector<frame::TZTPageClass>& Pages) override {
    Calls.push_back("options-pages " + OptionsClass.ClassName + ":" + Join(Pages));
  }

  // Recorded calls whose line starts with Prefix, in order.
  std::vector<std::string> Only(const std::string& Prefix) const {
    std::vector<std::string> R;
    for (const auto& C : Calls)
      if (C.rfind(Prefix, 0) == 0) R.push_back(C);
    return R;
  }

 private:
  static std::string Join(const std::vector<frame::TZTPageClass>& Pages) {
    std::string R;
    for (auto* P : Pages) R += std::string(" ") + P;
    return R;
  }
};

}  // namespace zt::testing
