#include "Ztservices.h"

#include <stdexcept>

namespace zt::package {
namespace {

frame::TZTServices Services_;

template <class T>
T& Require(T* Service, const char* Name) {
  if (!Service) throw std::logic_error(std::string(Name) + " has not been set by the host");
  return *Service;
}

}  // namespace

void SetServices(const frame::TZTServices* Services) { Services_ = Services ? *Services : frame::TZTServices{}; }

bool HasServices() {
  return Services_.ActionServices && Services_.ScriptingServices && Services_.OptionsServices;
}

frame::IZTActionServices& ZTActionServices() { return Require(Services_.ActionServices, "ZTActionServices"); }
frame::IZTScriptingServices& ZTScriptingServices() {
  return Require(Services_.ScriptingServices, "ZTScriptingServices");
}
frame::IZTOptionsServices& ZTOptionsServices() { return Require(Services_.OptionsServices, "ZTOptionsServices"); }

}  // namespace zt::package
