// Values crossing between Lua and the host. Variables and script parameters
// cross as their types (text, integer, number, Boolean); published
// properties cross through the property system, read as the property's kind
// and written as a project file would write them.
//
// Every function here runs inside a protected Lua call: a Lua error unwinds
// it as a C++ exception (the host links Lua built as C++); the host's own
// failures are ScriptError.
#pragma once

#include "host/project/yaml_document.h"

#include <lua.hpp>
#include <stdexcept>

#include "frame/ZTProperties.h"
#include "frame/ZTVariant.h"

namespace zt::host {

// A script did something the host refuses; what() is the text for the user.
class ScriptError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Empty as nil, then Boolean, integer, number, text.
void PushVariant(lua_State* L, const frame::TZTVariant& Value);

// The value at Index: nil as empty, Boolean, integer, text; a float as a
// number, or as Lua's text of it when FloatAsText. Throws ScriptError
// "<What> must be a text, number or Boolean, not a <type>" for anything else.
frame::TZTVariant ToVariant(lua_State* L, int Index, bool FloatAsText, const char* What);

// A property's value as a script reads it: texts, Booleans, integers and
// numbers as themselves; enumerations by value name; date-times in ISO 8601;
// sets and string lists as a list (table) of names or lines.
void PushProperty(lua_State* L, const frame::TZTPropInfo& Prop, const frame::TZTVariant& Value);

// The value at Index as a project file writes it: nil as nothing, a table as
// a list, anything else as its text ("true", "12", "tmOne").
YamlDocument PropertyNode(lua_State* L, int Index);

}  // namespace zt::host
