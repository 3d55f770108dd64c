#include "Ztregistryreg.h"

#include <cstdint>

#include "Ztservices.h"
#include "system/Ztregaction.h"

namespace zt::package {

void RegisterActions(bool Designing) {
  frame::IZTScriptingServices& Scripting = ZTScriptingServices();
  Scripting.RegisterConstant("rtInteger", frame::TZTVariant(0));
  Scripting.RegisterConstant("rtString", frame::TZTVariant(1));
  // HKEY_CLASSES_ROOT goes in twice; hosts have always seen it that way.
  Scripting.RegisterConstant("HKEY_CLASSES_ROOT", frame::TZTVariant(std::uint32_t{0x80000000}));
  Scripting.RegisterConstant("HKEY_CLASSES_ROOT", frame::TZTVariant(std::uint32_t{0x80000000}));
  Scripting.RegisterConstant("HKEY_CURRENT_USER", frame::TZTVariant(std::uint32_t{0x80000001}));
  Scripting.RegisterConstant("HKEY_LOCAL_MACHINE", frame::TZTVariant(std::uint32_t{0x80000002}));
  Scripting.RegisterConstant("HKEY_USERS", frame::TZTVariant(std::uint32_t{0x80000003}));
  Scripting.RegisterConstant("HKEY_CURRENT_CONFIG", frame::TZTVariant(std::uint32_t{0x80000005}));

  frame::IZTActionServices& Actions = ZTActionServices();
  Actions.RegisterAction("Read Registry Value", "Registry & Ini", TReadRegValueAction::ClassType(), "ZTREADREG");
  Actions.RegisterAction("Set Registry Value", "Registry & Ini", TSetRegValueAction::ClassType(), "ZTSETREG");
  Actions.RegisterAction("Delete Registry Value", "Registry & Ini", TDeleteRegValueAction::ClassType(), "ZTDELREG");

  if (!Designing) return;
  Actions.RegisterPropertyEditor("string", TReadRegValueAction::ClassType(), "ZTVariable",
                                 "TVariablesListPropertyEditor");
  Actions.RegisterPropertyEditor("HKEY", TCustomRegAction::ClassType(), "RegRoot", TRegRootPropertyEditor::ClassName);
  Actions.RegisterActionPages(TReadRegValueAction::ClassType(), {"TReadRegistryFrame"});
  Actions.RegisterActionPages(TSetRegValueAction::ClassType(), {"TReadRegistryFrame"});
  Actions.RegisterActionPages(TDeleteRegValueAction::ClassType(), {"TReadRegistryFrame"});
}

}  // namespace zt::package
