#include "host/run/runner.h"

#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "RunnerTest.h"
#include "host/log/json_log.h"

namespace zt::host {
namespace {

using nlohmann::json;

TEST_F(RunnerTest, ExceptionFromExecuteFailsTheActionWithAHostLine) {
  Load("actions:\n  - action: Test Action\n");
  Action(0).Behaviour = "throw";
  EXPECT_EQ(Run(), BuildResult::Failure);
  EXPECT_EQ(Events[2], json::parse(R"({"event":"message","id":"1","text":"disk on fire","host":true})"));
  EXPECT_EQ(Events[3], json::parse(R"({"event":"action-end","id":"1","result":"failure"})"));
}

TEST(JsonLogTest, ValuesKeepTheirTypesAndBadUtf8IsReplaced) {
  EXPECT_EQ(JsonValue(true), json(true));
  EXPECT_EQ(JsonValue(std::int64_t{5}), json(5));
  EXPECT_EQ(JsonValue("x"), json("x"));
  EXPECT_EQ(JsonValue(frame::TZTVariant()), json(nullptr));
  char* Buf = nullptr;
  size_t Size = 0;
  {
    JsonLog Log(open_memstream(&Buf, &Size));
    Log.Message("2.1", "caf\xe9", false);
  }
  EXPECT_EQ(std::string(Buf, Size),
            "{\"event\":\"message\",\"id\":\"2.1\",\"t_ms\":0,\"text\":\"caf\xef\xbf\xbd\"}\n");
  free(Buf);
}

TEST(BuildLogTest, ProgressThatOnlyCountsOnIsCoalesced) {
  char* Buf = nullptr;
  size_t Size = 0;
  {
    BuildLog Log;
    Log.AddSink(std::make_unique<JsonLog>(open_memstream(&Buf, &Size)));
    Log.Progress("1", "Found 0 matches", 10);
    Log.Progress("1", "Found 1 matches", 10);
    Log.Progress("1", "Found 2 matches", 10);
    Log.Message("1", "between", false);
    Log.Progress("1", "Found 3 matches", 10);
    Log.Progress("1", "Found 4 matches", 20);
    Log.Progress("1", "Copying 4 files", 20);
    Log.Progress("2", "Copying 4 files", 20);
  }
  std::vector<std::string> Written;
  std::istringstream In(std::string(Buf, Size));
  for (std::string Line; std::getline(In, Line);) {
    json E = json::parse(Line);
    Written.push_back(E["id"].get<std::string>() + " " + E.value("text", "") + " " +
                      (E.contains("percent") ? std::to_string(E["percent"].get<int>()) : ""));
  }
  free(Buf);
  EXPECT_EQ(Written, (std::vector<std::string>{"1 Found 0 matches 10", "1 Found 2 matches 10", "1 between ",
                                               "1 Found 4 matches 20", "1 Copying 4 files 20",
                                               "2 Copying 4 files 20"}));
}

}  // namespace
}  // namespace zt::host
