// Registration of the registry actions and the registry constants.
#pragma once

namespace zt::package {

// Called by the package registration after "Get Date/Time". Registers the
// registry constants (always), the three registry actions, and with
// Designing their property editors and pages.
void RegisterActions(bool Designing);

}  // namespace zt::package
