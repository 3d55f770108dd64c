// Values of published properties by their declared type: from a project
// file's YAML node to the value the setter takes, and back to text for help
// and listings.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "host/project/yaml_document.h"

#include "frame/ZTAction.h"
#include "frame/ZTProperties.h"

namespace zt::host {

// The node does not fit the property's type; what() says what was expected.
class BadPropertyValue : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The published property Name among Props (exact name), or throws
// BadPropertyValue `unknown property "Name"; did you mean "X"?` with the
// nearest of Props' names and OtherNames.
const frame::TZTPropInfo& FindProperty(const std::vector<frame::TZTPropInfo>& Props, const std::string& Name,
                                       const std::vector<std::string>& OtherNames = {});

// Throws BadPropertyValue `property "X" is read-only` for a property without
// setter or one the action lists in ReadOnly (its GetReadOnlyProperties).
void CheckWritable(const frame::TZTPropInfo& Prop, const frame::TStrings& ReadOnly);

// Sets Prop of Action through its setter from Node, written as in a project
// file. Throws BadPropertyValue `property "X" expects ...` for a value of the
// wrong type, `property "X": <message>` when the setter refuses it.
void SetPropertyFromYaml(frame::TZTAction& Action, const frame::TZTPropInfo& Prop, const YamlNode& Node);

// Strings: any scalar as text; Booleans; integers; doubles; date-times as
// ISO 8601; enumerations by value name or ordinal; sets as a list of value
// names; string lists as a list or a multi-line text (lines joined with CR LF).
frame::TZTVariant PropertyValueFromYaml(const frame::TZTPropInfo& Prop, const YamlNode& Node);

// The value as a project file would write it: enumerations by name, sets as
// "[a, b]", Booleans true/false, date-times in ISO 8601, string lists as
// "[line, line]".
std::string PropertyValueText(const frame::TZTPropInfo& Prop, const frame::TZTVariant& Value);

// "WideString", "Boolean", "TFileExistsMode (enumeration)" ...
std::string PropertyTypeText(const frame::TZTPropInfo& Prop);

}  // namespace zt::host
