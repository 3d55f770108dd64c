// scripts_bench host N   runs a one-line script N times through zt's script
//                        host, as an action's per-match script runs: the
//                        parameter Value is set, the script adds one to it,
//                        the host reads it back.
// scripts_bench lua N    the same through Lua's bare C API (set a global,
//                        call the compiled chunk, read the global).
// Both print the mean microseconds per call.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <lua.hpp>

#include "host/log/build_log.h"
#include "host/project/project_loader.h"
#include "host/run/runner.h"

namespace {

using Clock = std::chrono::steady_clock;

const char* const kScript = "Value = Value + 1";

// An action whose run calls its script OnMatch Calls times.
class TBenchAction : public zt::frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TBenchAction, zt::frame::TCustomZTAction)

 public:
  TBenchAction() { AddScript("OnMatch"); }
  static std::string GetActionName() { return "Bench"; }
  void InitialiseScriptParams(const std::string& Name, zt::frame::TZTScriptParams& Params) override {
    if (Name == "OnMatch") Params = {{"Action", {}, false}, {"Value", 0, true}};
  }
  bool Execute() override {
    zt::frame::TZTScriptParams Params;
    InitialiseScriptParams("OnMatch", Params);
    auto Start = Clock::now();
    for (long I = 0; I < Calls; ++I) {
      Params[1].Value = static_cast<std::int64_t>(I);
      if (!ExecuteScript("OnMatch", Params) || Params[1].Value.AsInteger() != I + 1) return false;
    }
    Seconds = std::chrono::duration<double>(Clock::now() - Start).count();
    return true;
  }
  long Calls = 0;
  double Seconds = 0;
};
ZT_IMPLEMENT_CLASS(TBenchAction, nullptr)

double ThroughHost(long N) {
  zt::host::ActionRegistry Registry;
  Registry.RegisterAction("Bench", "Misc", TBenchAction::ClassType(), "");
  std::string Yaml = std::string("actions:\n  - action: Bench\n    scripts:\n      OnMatch: \"") + kScript + "\"\n";
  zt::host::Project P = zt::host::LoadProjectText(Yaml, "bench.yml", Registry);
  auto& A = static_cast<TBenchAction&>(*P.Actions[0].Action);
  A.Calls = N;
  zt::host::BuildLog Silent;
  zt::host::Runner R(P, Silent);
  if (R.Run() != zt::host::BuildResult::Success) std::exit(1);
  return A.Seconds;
}

double ThroughLua(long N) {
  lua_State* L = luaL_newstate();
  luaL_openlibs(L);
  if (luaL_loadstring(L, kScript) != LUA_OK) std::exit(1);
  int Chunk = luaL_ref(L, LUA_REGISTRYINDEX);
  auto Start = Clock::now();
  for (long I = 0; I < N; ++I) {
    lua_pushinteger(L, I);
    lua_setglobal(L, "Value");
    lua_rawgeti(L, LUA_REGISTRYINDEX, Chunk);
    if (lua_pcall(L, 0, 0, 0) != LUA_OK) std::exit(1);
    lua_getglobal(L, "Value");
    if (lua_tointeger(L, -1) != I + 1) std::exit(1);
    lua_pop(L, 1);
  }
  double Seconds = std::chrono::duration<double>(Clock::now() - Start).count();
  lua_close(L);
  return Seconds;
}

}  // namespace

int main(int Argc, char** Argv) {
  std::string Mode = Argc > 1 ? Argv[1] : "";
  long N = Argc > 2 ? std::atol(Argv[2]) : 0;
  if ((Mode != "host" && Mode != "lua") || N <= 0) {
    std::fprintf(stderr, "usage: scripts_bench host|lua N\n");
    return 2;
  }
  double Seconds = Mode == "host" ? ThroughHost(N) : ThroughLua(N);
  std::printf("%.3f\n", Seconds * 1e6 / N);
  return 0;
}
