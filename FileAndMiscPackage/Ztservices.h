// The host's registration services as the package sees them: set once by
// the exported ZTSetServices, before ZTRegister.
#pragma once

#include "frame/ZTServices.h"

namespace zt::package {

// Keeps the host's services (pointers stay the host's). Null clears them.
void SetServices(const frame::TZTServices* Services);
// True once all three services are set.
bool HasServices();

// Each raises std::logic_error when the host has not set the service.
frame::IZTActionServices& ZTActionServices();
frame::IZTScriptingServices& ZTScriptingServices();
frame::IZTOptionsServices& ZTOptionsServices();

}  // namespace zt::package
