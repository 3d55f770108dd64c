// Checks of a parsed YAML document that the YAML library lets pass: a key
// written twice in one mapping, an alias of a node that contains it, nesting
// deeper than kMaxYamlDepth, and aliases that repeat other aliases until the
// document grows past kMaxYamlNodes nodes.
#pragma once

#include <yaml-cpp/yaml.h>

#include <string>
#include <vector>

namespace zt::host {

constexpr int kMaxYamlDepth = 200;
constexpr long kMaxYamlNodes = 1000000;

struct YamlProblem {
  int Line = 0;  // 1-based
  std::string Text;
};

// Every duplicate key, and at most one of the other problems. Sets *Fatal
// when one of those was found: the document must not be walked further.
std::vector<YamlProblem> CheckYaml(const YAML::Node& Root, bool* Fatal);

// The 1-based line where Node starts, 0 when it has no position.
int LineOf(const YAML::Node& Node);

}  // namespace zt::host
