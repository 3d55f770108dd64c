// What the commands share: the package's registry, loading the project with
// every error reported, and the checks before a run (types not built yet,
// actions' own Validate).
#pragma once

#include <ostream>

#include "host/cli/commands.h"
#include "host/project/project.h"
#include "host/project/project_loader.h"
#include "host/project/registry_of_actions.h"

namespace zt::host {

// The registry lives for the whole process: it points into the loaded package.
ActionRegistry& Registry();
// Loads the package into Registry(); false after one line on Err.
bool LoadRegistry(const CommandOptions& O, bool Designing, std::ostream& Err);
// Loads the package and O.Project; false after one line per error on Err
// (and their annotations on Annotate, when O asks for them).
bool LoadProjectFile(const CommandOptions& O, Project& P, std::ostream& Err, std::ostream& Annotate);

// Prints errors as "file:line: text" lines on Out (annotations on Annotate);
// returns how many.
int ReportErrors(const CommandOptions& O, const std::string& File, const std::vector<LoadError>& Errors,
                 std::ostream& Out, std::ostream& Annotate);

// Calls Validate of every action (EnabledOnly: of every action a run would
// start) attached to a host and compiles its scripts, printing "<id> <title>:
// <property title or script name>: <message>" per error on Out; returns how
// many actions have errors.
int ValidateActions(const CommandOptions& O, Project& P, bool EnabledOnly, std::ostream& Out,
                    std::ostream& Annotate);

}  // namespace zt::host
