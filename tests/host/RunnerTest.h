// A fixture that loads a project of test actions and runs it through the
// real Runner with a JSON log in memory, keeping the parsed events.
#pragma once

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "host/log/json_log.h"
#include "host/project/project_loader.h"
#include "host/run/runner.h"
#include "test_action.h"

namespace zt::host {

using testing::TTestAction;

// Runs a project with a JSON log in memory and keeps the parsed events.
class RunnerTest : public ::testing::Test {
 protected:
  RunnerTest() { zt::testing::RegisterTestAction(Registry); }

  void Load(const std::string& Yaml) { P = LoadProjectText(Yaml, "p.yml", Registry); }
  TTestAction& Action(std::size_t I) { return static_cast<TTestAction&>(*P.Actions.at(I).Action); }

  // During runs on another thread while the build runs.
  BuildResult Run(const VariableList& Overrides = {}, std::function<void(Runner&)> During = nullptr) {
    char* Buf = nullptr;
    size_t Size = 0;
    BuildResult R;
    {
      BuildLog Log;
      Log.AddSink(std::make_unique<JsonLog>(open_memstream(&Buf, &Size)));
      Runner Host(P, Log, Overrides);
      std::thread Other;
      if (During) Other = std::thread([&] { During(Host); });
      R = Host.Run();
      if (Other.joinable()) Other.join();
    }
    std::string Text(Buf, Size);
    free(Buf);
    Events.clear();
    std::size_t Start = 0;
    std::int64_t LastMs = 0;
    // Times change from run to run: check them and leave them out.
    for (std::size_t End; (End = Text.find('\n', Start)) != std::string::npos; Start = End + 1) {
      nlohmann::json E = nlohmann::json::parse(Text.substr(Start, End - Start));
      EXPECT_GE(E["t_ms"].get<std::int64_t>(), LastMs) << E;
      LastMs = E["t_ms"];
      E.erase("t_ms");
      if (E["event"] == "build-start") {
        EXPECT_EQ(E["time"].get<std::string>().size(), 20u);
        E.erase("time");
      }
      if (E["event"] == "action-end" || E["event"] == "build-end") {
        EXPECT_GE(E["duration_ms"].get<int>(), 0);
        E.erase("duration_ms");
      }
      Events.push_back(E);
    }
    return R;
  }

  ActionRegistry Registry;
  Project P;
  std::vector<nlohmann::json> Events;
};

}  // namespace zt::host
