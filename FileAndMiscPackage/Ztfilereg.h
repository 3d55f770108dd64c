// Registration of every action type of the package, with its script
// methods, options object, property editors and editor pages.
#pragma once

namespace zt::package {

// The body of the exported ZTRegister: registers with the services set by
// SetServices (Ztservices.h). Designing adds the property editors and pages.
void RegisterPackage(bool Designing);

}  // namespace zt::package
