// The build variables: project variables (case-insensitive names, typed
// values, in order of definition), the host's predefined variables, and the
// process environment, looked up in that order.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "frame/ZTVariant.h"
#include "platform/win_types.h"

namespace zt::host {

using frame::TZTVariant;

class Variables {
 public:
  // Predefined variables: DOSCMD, ZT_PROJECT_DIR, ZT_PROJECT_FILE, ZT_VERSION
  // (and ZT_BUILD_START, which the run sets when the build starts).
  // ProjectFile is the project's absolute path ("" when there is none).
  explicit Variables(const std::string& ProjectFile = "");

  // Defines or replaces a predefined variable.
  void SetPredefined(const std::string& Name, const TZTVariant& Value);

  // Defines or replaces a project variable; an existing one keeps the
  // spelling of its first definition.
  void Set(const std::string& Name, const TZTVariant& Value);
  // The project variable Name, if defined.
  const TZTVariant* FindProject(const std::string& Name) const;
  // Project variable, then predefined, then environment (exact name, as text).
  std::optional<TZTVariant> Lookup(const std::string& Name) const;
  bool IsDefined(const std::string& Name) const;

  // Project variables in order of definition.
  const std::vector<std::pair<std::string, TZTVariant>>& Project() const { return Project_; }
  const std::vector<std::pair<std::string, TZTVariant>>& Predefined() const { return Predefined_; }

 private:
  std::vector<std::pair<std::string, TZTVariant>> Project_;
  std::unordered_map<std::string, std::size_t> Index_;  // lower-case name -> position in Project_
  std::vector<std::pair<std::string, TZTVariant>> Predefined_;
};

// A value as the project file or --var writes it: plain true/false (any
// case) is a Boolean, a decimal integer is an
// integer (as it prints: no leading zero, no '+'), anything else (0456, 1.0,
// 1e3) text.
TZTVariant TypedValueOf(const std::string& Text);

// Variable names: letters, digits, '_', '.' and '-'; at least one.
bool IsVariableNameChar(char C);
bool IsVariableName(const std::string& Name);

std::string LowerCase(std::string S);

// ZT_BUILD_START for a build that starts at Now: ISO 8601 UTC
// ("2024-03-05T10:15:00Z"), or the time SOURCE_DATE_EPOCH gives when it is
// set (whole seconds since 1970 UTC, the reproducible-builds convention), so
// every run of a build stamps the same date. nullopt when SourceDateEpoch is
// set but is no such number (a leading "+" or a fraction included).
std::optional<std::string> BuildStartText(platform::TFileTime Now, const char* SourceDateEpoch);

}  // namespace zt::host
