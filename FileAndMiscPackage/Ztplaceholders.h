// Action types that are registered but not built yet.
//
// Each ZT_PLACEHOLDER line below declares a stand-in under the type's real
// class name and display name. It publishes no property, its class reports
// IsAvailable() == false, and running it fails with the single log line
// "<display name> is not available yet". To ship a real action: delete its
// line here and include the action's header in Ztfilereg.cc (registry
// actions: Ztregistryreg.cc). Nothing else changes.
#pragma once

#include <string>

#include "frame/ZTAction.h"
#include "frame/ZTServices.h"

namespace zt::package {

// What every stand-in does.
class TZTPlaceholderAction : public frame::TCustomZTAction {
 public:
  bool Execute() override;
};

template <class Cls>
frame::TZTActionClass MakePlaceholderClass(const char* Name, const frame::TZTActionClass& Parent, bool Abstract) {
  frame::TZTActionClass C = frame::MakeActionClass<Cls>(Name, &Parent, nullptr);
  C.Available = false;
  if (Abstract) C.Create = nullptr;
  return C;
}

// A stand-in class Cls derived from Base (a registered type when Abstract is
// false).
#define ZT_PLACEHOLDER_CLASS(Cls, Base, Abstract, DisplayName)                                              \
  class Cls : public Base {                                                                                 \
   public:                                                                                                  \
    using inherited = Base;                                                                                 \
    static std::string GetActionName() { return DisplayName; }                                              \
    static const ::zt::frame::TZTActionClass& ClassType() {                                                 \
      static const ::zt::frame::TZTActionClass C = MakePlaceholderClass<Cls>(#Cls, Base::ClassType(), Abstract); \
      return C;                                                                                             \
    }                                                                                                       \
    const ::zt::frame::TZTActionClass& GetClass() const override { return ClassType(); }                   \
  };

#define ZT_PLACEHOLDER(Cls, DisplayName) ZT_PLACEHOLDER_CLASS(Cls, TZTPlaceholderAction, false, DisplayName)

// --- Stand-ins, in registration order (none at present) ---

}  // namespace zt::package
