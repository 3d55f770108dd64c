// The registration services the package calls from ZTRegister. The host sets
// the three service pointers before it calls ZTRegister and keeps them alive
// for the package's lifetime.
#pragma once

#include <string>
#include <vector>

#include "frame/ZTAction.h"
#include "frame/ZTVariant.h"

namespace zt::frame {

// Design-time classes (editors, pages) are graphical; here they are known by
// class name only, and the host records them as data.
using TZTEditorClass = const char*;
using TZTPageClass = const char*;

class IZTActionServices {
 public:
  virtual ~IZTActionServices() = default;
  virtual void RegisterAction(const std::string& DisplayName, const std::string& Category,
                              const TZTActionClass& ActionClass, const std::string& IconName) = 0;
  // Pages in tab order.
  virtual void RegisterActionPages(const TZTActionClass& ActionClass, const std::vector<TZTPageClass>& Pages) = 0;
  // PropertyType is a published type name as TZTPropInfo::TypeName gives it
  // ("WideString", "string", "TAttributeSetting"). PropertyName empty: every
  // property of PropertyType on the class.
  virtual void RegisterPropertyEditor(const std::string& PropertyType, const TZTActionClass& ActionClass,
                                      const std::string& PropertyName, TZTEditorClass Editor) = 0;
};

class IZTScriptingServices {
 public:
  virtual ~IZTScriptingServices() = default;
  virtual void RegisterConstant(const std::string& Name, const TZTVariant& Value) = 0;
  // MethodType names the method's signature ("_Reset").
  virtual void RegisterMethod(const TZTActionClass& ActionClass, const std::string& MethodName,
                              const std::string& MethodType) = 0;
};

// One setting of an options object: its name, its default (its type is the
// default's: Boolean, integer or text), and for an enumeration the names of
// its values (the default is then one of them).
struct TZTOptionProperty {
  std::string Name;
  TZTVariant Default;
  std::vector<std::string> EnumNames;
};

// A host-wide options object (the robocopy options). A project sets its
// properties under `options:`; actions read them with
// IZTActionHost::GetOptionValue.
struct TZTOptionsClass {
  std::string ClassName;
  std::vector<TZTOptionProperty> Properties;  // in declaration order
};

class IZTOptionsServices {
 public:
  virtual ~IZTOptionsServices() = default;
  virtual void RegisterOptions(const TZTOptionsClass& OptionsClass, const std::string& IconName) = 0;
  virtual void RegisterOptionsPages(const TZTOptionsClass& OptionsClass, const std::vector<TZTPageClass>& Pages) = 0;
};

// Set by the host before ZTRegister.
struct TZTServices {
  IZTActionServices* ActionServices = nullptr;
  IZTScriptingServices* ScriptingServices = nullptr;
  IZTOptionsServices* OptionsServices = nullptr;
};

}  // namespace zt::frame

// The package's exported entry points (C linkage, looked up with dlsym).
extern "C" {
// Returns ZT_HOST_API_VERSION of the headers the package was built with.
int ZTPackageApiVersion();
// Hands the package the host's services; called before ZTRegister.
void ZTSetServices(const zt::frame::TZTServices* Services);
void ZTRegister(bool Designing);
}
