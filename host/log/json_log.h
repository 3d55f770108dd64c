// The JSON Lines build log: one object per event, written and flushed as it
// happens, so the file is complete up to the last event even after a crash.
#pragma once

#include <cstdio>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "host/log/build_log.h"

namespace zt::host {

class JsonLog : public LogSink {
 public:
  // Takes ownership of Out (closed by the destructor).
  explicit JsonLog(std::FILE* Out) : Out_(Out) {}
  ~JsonLog() override;
  // Opens Path for writing; throws std::runtime_error naming the path.
  static std::unique_ptr<JsonLog> Open(const std::string& Path);

  void BuildStart(const std::string& Project) override;
  void ActionStart(const std::string& Id, const std::string& Title, const std::string& Class,
                   const std::string& Description) override;
  void Message(const std::string& Id, const std::string& Text, bool FromHost) override;
  void Status(const std::string& Id, const std::string& Text, const std::vector<std::string>& Details) override;
  void Progress(const std::string& Id, const std::string& Text, int Percent) override;
  void Iteration(const std::string& Id, int Index, int Count,
                 const std::optional<std::string>& Value) override;
  void ActionEnd(const std::string& Id, ActionResult Result) override;
  void Variables(const VariableList& Values) override;
  void BuildEnd(BuildResult Result, std::int64_t DurationMs) override;

 private:
  void Write(const nlohmann::ordered_json& Event);
  void WriteLine(const std::string& Line);  // one whole event, with its line end
  std::FILE* Out_;
};

// A variable's typed value as JSON: Boolean, number, text, or null when empty.
nlohmann::ordered_json JsonValue(const frame::TZTVariant& V);

}  // namespace zt::host
