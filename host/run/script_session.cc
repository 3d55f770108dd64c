#include "host/run/script_session.h"

#include <cstring>
#include <lua.hpp>

#include "host/project/property_values.h"
#include "host/run/script_values.h"

namespace zt::host {

namespace {

// VM instructions between two looks at the stop state.
constexpr int kStopPollInstructions = 1000;

// Lua calls C functions across its own frames: a host failure (a C++
// exception) becomes a Lua error at the calling script's line here, never
// escapes into Lua. Lua's own errors are not std::exception and pass through.
template <int (*Fn)(lua_State*)>
int Guarded(lua_State* L) {
  try {
    return Fn(L);
  } catch (const std::exception& E) {
    luaL_where(L, 1);
    lua_pushstring(L, E.what());
  }
  lua_concat(L, 2);
  return lua_error(L);
}

// Lua's leading position "<chunk>:<line>: " in Message: the line (0 when
// there is none), the chunk's name and the position's length.
int PositionOf(const std::string& Message, std::string& Chunk, std::size_t& Length) {
  std::size_t Colon = Message.find(':');
  if (Colon == std::string::npos) return 0;
  std::size_t End = Colon + 1;
  int Line = 0;
  while (End < Message.size() && Message[End] >= '0' && Message[End] <= '9' && Line < 100000000)
    Line = Line * 10 + (Message[End++] - '0');
  if (End == Colon + 1 || Message.compare(End, 2, ": ") != 0) return 0;
  Chunk = Message.substr(0, Colon);
  Length = End + 2;
  return Line;
}

std::string ChunkName(const ScriptSource& Script) { return "=" + Script.Name; }

int LoadChunk(lua_State* L, const ScriptSource& Script) {
  // Text only: a precompiled chunk in a project file is refused, not trusted.
  return luaL_loadbufferx(L, Script.Source.data(), Script.Source.size(), ChunkName(Script).c_str(), "t");
}

}  // namespace

// One Run: what the protected call needs.
struct ScriptSession::Call {
  const ScriptSource* Script;
  frame::TZTScriptParams* Params;
};

// The C functions Lua calls; members, so they reach the session's state.
struct ScriptSession::Api {
  static ScriptSession& Self(lua_State* L) { return **static_cast<ScriptSession**>(lua_getextraspace(L)); }
  static const std::string& TypeName(lua_State* L) { return Self(L).Scope_.Type->DisplayName; }

  static int Setup(lua_State* L) {
    ScriptSession& S = Self(L);
    luaL_openlibs(L);
    const luaL_Reg Functions[] = {{"Log", Guarded<Log>},
                                  {"print", Guarded<Print>},
                                  {"GetVariable", Guarded<GetVariable>},
                                  {"SetVariable", Guarded<SetVariable>},
                                  {"Expand", Guarded<Expand>},
                                  {nullptr, nullptr}};
    lua_pushglobaltable(L);
    luaL_setfuncs(L, Functions, 0);
    if (S.Scope_.Constants)
      for (const auto& [Name, Value] : *S.Scope_.Constants) {
        PushVariant(L, Value);
        lua_setfield(L, -2, Name.c_str());
      }
    lua_newuserdatauv(L, 0, 0);
    const luaL_Reg Meta[] = {{"__index", Guarded<Index>},
                             {"__newindex", Guarded<NewIndex>},
                             {"__tostring", Guarded<ToString>},
                             {nullptr, nullptr}};
    luaL_newmetatable(L, "Action");
    luaL_setfuncs(L, Meta, 0);
    lua_setmetatable(L, -2);
    S.ActionRef_ = luaL_ref(L, LUA_REGISTRYINDEX);
    return 0;
  }

  // Parameters in, the script, in-out parameters back.
  static int RunCall(lua_State* L) {
    ScriptSession& S = Self(L);
    Call& C = *static_cast<Call*>(lua_touserdata(L, 1));
    int Chunk = S.ChunkOf(*C.Script);
    lua_pushglobaltable(L);
    const int Globals = lua_gettop(L);
    for (const auto& P : *C.Params) {
      lua_pushlstring(L, P.Name.data(), P.Name.size());
      if (P.Name == "Action")
        lua_rawgeti(L, LUA_REGISTRYINDEX, S.ActionRef_);
      else
        PushVariant(L, P.Value);
      lua_rawset(L, Globals);
    }
    lua_rawgeti(L, LUA_REGISTRYINDEX, Chunk);
    lua_call(L, 0, 0);
    for (auto& P : *C.Params) {
      if (!P.InOut) continue;
      lua_pushlstring(L, P.Name.data(), P.Name.size());
      lua_rawget(L, Globals);
      P.Value = ToVariant(L, -1, /*FloatAsText=*/false, ("parameter \"" + P.Name + "\"").c_str());
      lua_pop(L, 1);
    }
    return 0;
  }

  // The message handler: one line with the project file and line.
  static int ErrorLine(lua_State* L) {
    ScriptSession& S = Self(L);
    std::string Message = lua_type(L, 1) == LUA_TSTRING || lua_type(L, 1) == LUA_TNUMBER
                              ? lua_tostring(L, 1)
                              : std::string("(error object is a ") + luaL_typename(L, 1) + " value)";
    std::string Chunk;
    std::size_t Length = 0;
    int Line = PositionOf(Message, Chunk, Length);
    Line = Line ? S.FileLine(Chunk.c_str(), Line) : 0;
    if (Line) Message.erase(0, Length);
    // No position of ours in the text (error("x", 0), the stop): the
    // innermost line of one of the action's scripts still running.
    lua_Debug Ar;
    for (int Level = 0; !Line && lua_getstack(L, Level, &Ar); ++Level) {
      lua_getinfo(L, "Sl", &Ar);
      if (Ar.source[0] == '=' && Ar.currentline > 0) Line = S.FileLine(Ar.source + 1, Ar.currentline);
    }
    if (!Line && S.Current_) Line = S.Current_->Line;
    std::string Out = S.Scope_.File + ":" + std::to_string(Line) + ": " + Message;
    lua_pushlstring(L, Out.data(), Out.size());
    return 1;
  }

  static void StopHook(lua_State* L, lua_Debug*) {
    if (!Self(L).Scope_.Host->StopSignalled()) return;
    lua_pushliteral(L, "the build was stopped");
    lua_error(L);
  }

  static std::string KeyOf(lua_State* L) {
    if (lua_type(L, 2) != LUA_TSTRING) throw ScriptError(TypeName(L) + ": property names are texts");
    return lua_tostring(L, 2);
  }

  static const frame::TZTPropInfo& Property(lua_State* L, const std::string& Key) {
    ScriptSession& S = Self(L);
    try {
      return FindProperty(S.Properties(), Key, S.Scope_.Methods);
    } catch (const BadPropertyValue& E) {
      throw ScriptError(TypeName(L) + ": " + E.what());
    }
  }

  static int Index(lua_State* L) {
    ScriptSession& S = Self(L);
    std::string Key = KeyOf(L);
    for (const auto& M : S.Scope_.Methods)
      if (M == Key) {
        lua_pushvalue(L, 2);
        lua_pushcclosure(L, Guarded<CallMethod>, 1);
        return 1;
      }
    const frame::TZTPropInfo& P = Property(L, Key);
    PushProperty(L, P, P.Get(*S.Scope_.Action));
    return 1;
  }

  static int NewIndex(lua_State* L) {
    ScriptSession& S = Self(L);
    std::string Key = KeyOf(L);
    const frame::TZTPropInfo& P = Property(L, Key);
    try {
      CheckWritable(P, S.ReadOnly_);
      const YamlDocument Value = [&] {
        try {
          return PropertyNode(L, 3);
        } catch (const ScriptError& E) {
          throw BadPropertyValue("property \"" + Key + "\" " + E.what());
        }
      }();
      SetPropertyFromYaml(*S.Scope_.Action, P, Value.Root());
    } catch (const BadPropertyValue& E) {
      throw ScriptError(TypeName(L) + ": " + E.what());
    }
    return 0;
  }

  static int ToString(lua_State* L) {
    lua_pushstring(L, ("Action " + Self(L).Scope_.Action->GetTitle()).c_str());
    return 1;
  }

  // Action:Name() or Action.Name(): the script method in the upvalue.
  static int CallMethod(lua_State* L) {
    std::string Name = lua_tostring(L, lua_upvalueindex(1));
    if (!Self(L).Scope_.Action->ExecuteScriptMethod(Name))
      throw ScriptError(TypeName(L) + ": method \"" + Name + "\" is not available");
    return 0;
  }

  static void Send(lua_State* L, const std::string& Text) {
    ScriptSession& S = Self(L);
    S.Scope_.Host->SendMessage(*S.Scope_.Action, Text);
  }

  static int Log(lua_State* L) {
    luaL_checkany(L, 1);
    std::size_t Len = 0;
    const char* Text = luaL_tolstring(L, 1, &Len);
    Send(L, std::string(Text, Len));
    return 0;
  }

  // As Lua's print: the arguments' texts separated by tabs, as one line.
  static int Print(lua_State* L) {
    std::string Line;
    for (int I = 1, N = lua_gettop(L); I <= N; ++I) {
      std::size_t Len = 0;
      const char* Text = luaL_tolstring(L, I, &Len);
      if (I > 1) Line += '\t';
      Line.append(Text, Len);
      lua_pop(L, 1);
    }
    Send(L, Line);
    return 0;
  }

  static int GetVariable(lua_State* L) {
    frame::IZTActionHost& Host = *Self(L).Scope_.Host;
    std::string Name = luaL_checkstring(L, 1);
    if (Host.IsVariableDefined(Name))
      PushVariant(L, Host.GetVariableValue(Name));
    else
      lua_pushnil(L);
    return 1;
  }

  static int SetVariable(lua_State* L) {
    std::string Name = luaL_checkstring(L, 1);
    if (lua_isnoneornil(L, 2))
      throw ScriptError("SetVariable: the value must be a text, number or Boolean, not nil");
    Self(L).Scope_.Host->SetVariable(Name, ToVariant(L, 2, /*FloatAsText=*/true, "SetVariable: the value"));
    return 0;
  }

  static int Expand(lua_State* L) {
    ScriptSession& S = Self(L);
    PushVariant(L,
                S.Scope_.Host->ExpandExpression(*S.Scope_.Action, luaL_checkstring(L, 1), /*IsName=*/true));
    return 1;
  }
};

ScriptSession::ScriptSession(ScriptScope Scope) : Scope_(std::move(Scope)) {
  L_ = luaL_newstate();
  if (!L_) {
    SetupError_ = Scope_.File + ":0: not enough memory for a Lua state";
    return;
  }
  *static_cast<ScriptSession**>(lua_getextraspace(L_)) = this;
  lua_sethook(L_, &Api::StopHook, LUA_MASKCOUNT, kStopPollInstructions);
  lua_pushcfunction(L_, Guarded<Api::Setup>);
  if (lua_pcall(L_, 0, 0, 0) != LUA_OK) {
    SetupError_ = Scope_.File + ":0: " + (lua_tostring(L_, -1) ? lua_tostring(L_, -1) : "cannot set up Lua");
    lua_close(L_);
    L_ = nullptr;
  }
}

ScriptSession::~ScriptSession() {
  if (L_) lua_close(L_);
}

bool ScriptSession::Run(const ScriptSource& Script, frame::TZTScriptParams& Params, std::string& Error) {
  if (!L_) {
    Error = SetupError_;
    return false;
  }
  Call C{&Script, &Params};
  const ScriptSource* Outer = Current_;
  Current_ = &Script;
  const int Base = lua_gettop(L_);
  lua_pushcfunction(L_, Guarded<Api::ErrorLine>);
  lua_pushcfunction(L_, Guarded<Api::RunCall>);
  lua_pushlightuserdata(L_, &C);
  const int Status = lua_pcall(L_, 1, 0, Base + 1);
  if (Status != LUA_OK) {
    const char* Text = lua_tostring(L_, -1);
    Error = Text ? Text : "unknown error";
    // Errors that skip the handler (out of memory) still name the file and line.
    if (Error.compare(0, Scope_.File.size() + 1, Scope_.File + ":") != 0)
      Error = Scope_.File + ":" + std::to_string(Script.Line) + ": " + Error;
  }
  lua_settop(L_, Base);
  Current_ = Outer;
  return Status == LUA_OK;
}

int ScriptSession::ChunkOf(const ScriptSource& Script) {
  for (const auto& [Name, Ref] : Chunks_)
    if (Name == Script.Name) return Ref;
  if (LoadChunk(L_, Script) != LUA_OK) lua_error(L_);
  Chunks_.emplace_back(Script.Name, luaL_ref(L_, LUA_REGISTRYINDEX));
  return Chunks_.back().second;
}

const std::vector<frame::TZTPropInfo>& ScriptSession::Properties() {
  if (!PropsRead_) {
    Props_ = Scope_.Type->Class->Properties();
    Scope_.Action->GetReadOnlyProperties(ReadOnly_);
    PropsRead_ = true;
  }
  return Props_;
}

int ScriptSession::FileLine(const char* Name, int ChunkLine) const {
  if (Scope_.Scripts)
    for (const auto& S : *Scope_.Scripts)
      if (S.Name == Name) return S.Line + ChunkLine - 1;
  return 0;
}

std::string CompileScript(const std::string& File, const ScriptSource& Script) {
  lua_State* L = luaL_newstate();
  if (!L) return File + ":" + std::to_string(Script.Line) + ": not enough memory for a Lua state";
  std::string Error;
  if (LoadChunk(L, Script) != LUA_OK) {
    Error = lua_tostring(L, -1);
    std::string Chunk;
    std::size_t Length = 0;
    int Line = PositionOf(Error, Chunk, Length);
    if (Line) Error.erase(0, Length);
    Error = File + ":" + std::to_string(Line ? Script.Line + Line - 1 : Script.Line) + ": " + Error;
  }
  lua_close(L);
  return Error;
}

}  // namespace zt::host
