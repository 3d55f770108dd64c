// Registry files in the text format of Windows' registry editor (".reg"):
// read into the changes they describe, and written from a key of the
// registry store. docs/user-guide.md ("The registry from the command line")
// lists the rules.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/registry_store.h"

namespace zt::host {

// A file that is not a registry file; what() is "<file>:<line>: <what>".
class BadRegFile : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// One change a registry file makes, in file order.
struct RegFileChange {
  platform::HKEY Root = 0;
  std::vector<std::string> Path;  // below Root
  bool DeleteKey = false;         // "[-KEY]": the key with everything below it
  bool HasValue = false;          // a value line under "[KEY]" (else the key line itself)
  bool DeleteValue = false;       // "NAME"=-
  platform::TRegValue Value;      // data in the layout of platform/registry_data.h
};

// Reads a registry file ("Windows Registry Editor Version 5.00" or
// "REGEDIT4"; UTF-16 with its byte-order mark, or UTF-8). Throws BadRegFile.
std::vector<RegFileChange> ReadRegFile(const std::string& Bytes, const std::string& FileName);
// Applies the changes to Doc in order; true when something changed.
bool ApplyRegFile(const std::vector<RegFileChange>& Changes, platform::TRegistryDocument& Doc);

// The key at Path (its root's name first) with everything below it, as
// "Windows Registry Editor Version 5.00" text: UTF-8, CR LF line ends.
std::string WriteRegFile(const platform::TRegKeyNode& Key, const std::string& Path);

}  // namespace zt::host
