// zt registry import / export / get: the registry store from the command
// line, in the text format of Windows' registry editor (reg_file.h).
// Exit codes: 0 done, 1 failed (no such key or value, a store that cannot
// be read or written), 2 bad input (the command line or the .reg file).
#pragma once

#include <CLI/CLI.hpp>
#include <ostream>
#include <string>

namespace zt::host {

struct RegistryOptions {
  std::string Store;  // --registry
  std::string File;   // import: the .reg file; export: where to write ("" or "-": standard output)
  std::string Key;    // export, get
  std::string Name;   // get: one value
  bool HasName = false;
};

// Adds "registry" and its sub-commands to App, filling O; returns the
// command, so the caller can ask whether it was given.
CLI::App* AddRegistryCommand(CLI::App& App, RegistryOptions& O);
int RegistryCommand(CLI::App& Command, const RegistryOptions& O, std::ostream& Out, std::ostream& Err);

// Points the platform layer at the store for the rest of the process: the
// file Option names (--registry) when given, else $ZT_REGISTRY; a relative
// path is taken from the current folder, before any change of folder.
void UseRegistryStore(const std::string& Option);

}  // namespace zt::host
