// Reads a project file (YAML, or JSON read the same way) into a Project:
// creates each action through its registered class and applies its
// properties in file order through their setters.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "host/project/project.h"
#include "host/project/registry_of_actions.h"

namespace zt::host {

struct LoadError {
  int Line = 0;  // 1-based; 0 when the error is about the whole file
  std::string Text;
};

// "file:line: text" ("file: text" without a line).
std::string ErrorLine(const std::string& File, const LoadError& E);

// The project cannot be loaded. The loader goes on after an error where it
// can, so one ProjectError holds every error found, in line order.
class ProjectError : public std::runtime_error {
 public:
  ProjectError(const std::string& File, std::vector<LoadError> Errors);
  const std::string& File() const { return File_; }
  const std::vector<LoadError>& Errors() const { return Errors_; }

 private:
  std::string File_;
  std::vector<LoadError> Errors_;
};

// Path may be relative: Project::FileName keeps it as given, Project::File
// is made absolute. A folder, an unreadable file and a file without an
// "actions" list are errors.
Project LoadProject(const std::string& Path, const ActionRegistry& Registry);
// Same, from text; FileName is used in messages only.
Project LoadProjectText(const std::string& Text, const std::string& FileName, const ActionRegistry& Registry);

// The lines of enabled actions (whose parents are enabled too) of types that
// are registered but not built yet: "<display name> is not available yet".
std::vector<LoadError> UnavailableActions(const Project& P);

}  // namespace zt::host
