// Reads a project file (YAML, or JSON read the same way) into a Project:
// creates each action through its registered class and applies its
// properties in file order through their setters.
#pragma once

#include <stdexcept>
#include <string>

#include "host/project/project.h"
#include "host/project/registry_of_actions.h"

namespace zt::host {

// The project cannot be loaded; what() is one line "file:line: what is wrong".
class ProjectError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Path may be relative; Project::File is made absolute.
Project LoadProject(const std::string& Path, const ActionRegistry& Registry);
// Same, from text; FileName is used in messages only.
Project LoadProjectText(const std::string& Text, const std::string& FileName, const ActionRegistry& Registry);

}  // namespace zt::host
