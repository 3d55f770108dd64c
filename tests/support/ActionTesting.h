// Helpers shared by the unit tests of actions: the validation errors an
// action reports, and the names a directory search visits.
#pragma once

#include <string>
#include <vector>

#include "frame/ZTAction.h"
#include "platform/files.h"

namespace zt::testing {

// Records Validate's errors as "<property title>: <message>" lines.
struct ValidationErrors : frame::IZTActionValidationError {
  std::vector<std::string> Errors;
  void AddError(const std::string& Title, const std::string& Message) override {
    Errors.push_back(Title + ": " + Message);
  }
};

// Names FindFirst/FindNext give for Spec under the attribute mask Mask, in
// the order the file system gives them (tests must not assume another order).
inline std::vector<std::string> FoundNames(const std::string& Spec, int Mask) {
  std::vector<std::string> R;
  platform::TSearchRec F;
  if (platform::FindFirst(Spec, Mask, F) != 0) return R;
  do R.push_back(F.Name);
  while (platform::FindNext(F) == 0);
  platform::FindClose(F);
  return R;
}

}  // namespace zt::testing
