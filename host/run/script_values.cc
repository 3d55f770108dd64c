#include "host/run/script_values.h"

#include <string>

#include "frame/ZTStrings.h"
#include "host/project/property_values.h"

namespace zt::host {

using frame::TZTPropertyKind;
using frame::TZTVariant;

namespace {

// Lua's own text of a number, as tostring gives it.
std::string NumberText(lua_State* L, int Index) {
  lua_pushvalue(L, Index);
  std::size_t Len = 0;
  const char* S = lua_tolstring(L, -1, &Len);
  std::string R(S, Len);
  lua_pop(L, 1);
  return R;
}

void PushLines(lua_State* L, const std::vector<std::string>& Lines) {
  lua_createtable(L, static_cast<int>(Lines.size()), 0);
  for (std::size_t I = 0; I < Lines.size(); ++I) {
    lua_pushlstring(L, Lines[I].data(), Lines[I].size());
    lua_rawseti(L, -2, static_cast<lua_Integer>(I + 1));
  }
}

std::string ScalarText(lua_State* L, int Index) {
  switch (lua_type(L, Index)) {
    case LUA_TBOOLEAN:
      return lua_toboolean(L, Index) ? "true" : "false";
    case LUA_TNUMBER:
      return NumberText(L, Index);
    case LUA_TSTRING: {
      std::size_t Len = 0;
      const char* S = lua_tolstring(L, Index, &Len);
      return std::string(S, Len);
    }
    default:
      throw ScriptError(std::string("expects a text, number or Boolean, got a ") + luaL_typename(L, Index));
  }
}

}  // namespace

void PushVariant(lua_State* L, const TZTVariant& Value) {
  switch (Value.Kind()) {
    case TZTVariant::TKind::Empty:
      lua_pushnil(L);
      break;
    case TZTVariant::TKind::Boolean:
      lua_pushboolean(L, Value.AsBoolean());
      break;
    case TZTVariant::TKind::Integer:
      lua_pushinteger(L, Value.AsInteger());
      break;
    case TZTVariant::TKind::Double:
      lua_pushnumber(L, Value.AsDouble());
      break;
    case TZTVariant::TKind::String: {
      std::string S = Value.AsString();
      lua_pushlstring(L, S.data(), S.size());
      break;
    }
  }
}

TZTVariant ToVariant(lua_State* L, int Index, bool FloatAsText, const char* What) {
  switch (lua_type(L, Index)) {
    case LUA_TNIL:
      return {};
    case LUA_TBOOLEAN:
      return lua_toboolean(L, Index) != 0;
    case LUA_TNUMBER:
      if (lua_isinteger(L, Index)) return static_cast<std::int64_t>(lua_tointeger(L, Index));
      if (FloatAsText) return NumberText(L, Index);
      return static_cast<double>(lua_tonumber(L, Index));
    case LUA_TSTRING: {
      std::size_t Len = 0;
      const char* S = lua_tolstring(L, Index, &Len);
      return std::string(S, Len);
    }
    default:
      throw ScriptError(std::string(What) + " must be a text, number or Boolean, not a " +
                        luaL_typename(L, Index));
  }
}

void PushProperty(lua_State* L, const frame::TZTPropInfo& Prop, const TZTVariant& Value) {
  switch (Prop.Kind) {
    case TZTPropertyKind::String:
    case TZTPropertyKind::WideString:
      PushVariant(L, Value.AsString());
      break;
    case TZTPropertyKind::Boolean:
      lua_pushboolean(L, Value.AsBoolean());
      break;
    case TZTPropertyKind::Integer:
      lua_pushinteger(L, Value.AsInteger());
      break;
    case TZTPropertyKind::Double:
      lua_pushnumber(L, Value.AsDouble());
      break;
    case TZTPropertyKind::DateTime:
    case TZTPropertyKind::Enumeration:
      PushVariant(L, PropertyValueText(Prop, Value));
      break;
    case TZTPropertyKind::Set: {
      std::vector<std::string> Names;
      std::int64_t Mask = Value.AsInteger();
      for (std::size_t I = 0; I < Prop.EnumNames.size() && I < 63; ++I)
        if (Mask & (std::int64_t{1} << I)) Names.push_back(Prop.EnumNames[I]);
      PushLines(L, Names);
      break;
    }
    case TZTPropertyKind::StringList: {
      frame::TStrings Lines;
      Lines.SetText(Value.AsString());
      PushLines(L, Lines.Lines());
      break;
    }
  }
}

YamlDocument PropertyNode(lua_State* L, int Index) {
  YamlDocument Value;
  if (lua_isnil(L, Index)) return Value;
  if (!lua_istable(L, Index)) {
    Value.SetScalar(ScalarText(L, Index));
    return Value;
  }
  std::vector<std::string> Items;
  lua_Integer N = static_cast<lua_Integer>(lua_rawlen(L, Index));
  for (lua_Integer I = 1; I <= N; ++I) {
    lua_rawgeti(L, Index, I);
    Items.push_back(ScalarText(L, -1));
    lua_pop(L, 1);
  }
  Value.SetList(std::move(Items));
  return Value;
}

}  // namespace zt::host
