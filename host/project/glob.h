// Glob patterns of project file sets, matched against paths relative to the
// file set's base directory, with '/' between the components.
//
//   *    any run of characters within one component (also none)
//   ?    exactly one character within one component
//   **   as a whole component: any number of components, none included
//
// Every other character stands for itself; letter case counts. A pattern
// without "**" therefore matches at one depth only ("*.h" matches "a.h" but
// not "inc/a.h"; "**/*.h" matches both).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zt::host {

class Glob {
 public:
  explicit Glob(std::string_view Pattern);

  // True when Path (relative, '/'-separated, no leading '/') matches.
  bool Matches(std::string_view Path) const;
  // True when every path below directory Dir matches, so a walk need not
  // enter Dir (the pattern ends in "/**" and Dir matches what is before it).
  bool MatchesEverythingBelow(std::string_view Dir) const;

  const std::string& Pattern() const { return Pattern_; }

 private:
  std::string Pattern_;
  std::vector<std::string> Parts_;  // components of the pattern
};

// Wildcard match of one path component (* and ?; no '/').
bool MatchComponent(std::string_view Pattern, std::string_view Name);

}  // namespace zt::host
