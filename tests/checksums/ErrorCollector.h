// Records the errors an action's Validate reports.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "frame/ZTAction.h"

namespace zt::testing {

class ErrorCollector : public frame::IZTActionValidationError {
 public:
  void AddError(const std::string& Title, const std::string& Message) override { Errors.emplace_back(Title, Message); }
  std::vector<std::pair<std::string, std::string>> Errors;
};

}  // namespace zt::testing
