// Loads the action package (a shared library) and lets it register its
// action types with the host's registry.
#pragma once

#include <stdexcept>
#include <string>

#include "host/project/registry_of_actions.h"

namespace zt::host {

class PackageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// FileAndMiscPackage.so in the folder of the running executable.
std::string DefaultPackagePath();

// Opens Path, checks its API version, hands it Registry as its services and
// calls ZTRegister(Designing) once. The library stays loaded for the rest of
// the process: the registered class descriptions live in it. Registry must
// live as long as the process too. Throws PackageError.
void LoadPackage(const std::string& Path, ActionRegistry& Registry, bool Designing);

}  // namespace zt::host
