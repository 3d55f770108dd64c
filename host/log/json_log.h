// The JSON Lines build log: one object per event, written and flushed as it
// happens, so the file is complete up to the last event even after a crash.
// Every event carries t_ms, the milliseconds since the build started.
#pragma once

#include <chrono>
#include <cstdio>
#include <optional>
#include <nlohmann/json.hpp>
#include <string>

#include "host/log/build_log.h"

namespace zt::host {

// Version of the event format: changes only when an existing field changes meaning.
constexpr int kJsonLogSchema = 1;

class JsonLog : public LogSink {
 public:
  // Writes to Out; closes it in the destructor when Owned.
  explicit JsonLog(std::FILE* Out, bool Owned = true) : Out_(Out), Owned_(Owned) {}
  ~JsonLog() override;
  // Opens Path for writing ("-": standard output); throws std::runtime_error
  // with one line naming the path and the reason.
  static std::unique_ptr<JsonLog> Open(const std::string& Path);

  // The first write that failed ("No space left on device"), "" when none did.
  // Events after a failed write are dropped.
  const std::string& WriteError() const { return WriteError_; }

  void BuildStart(const std::string& Project, const std::string& File) override;
  void ActionStart(const std::string& Id, const std::string& Title, const std::string& Class,
                   const std::string& Description, int Line) override;
  void Message(const std::string& Id, const std::string& Text, bool FromHost) override;
  void Status(const std::string& Id, const std::string& Text,
              const std::vector<std::string>& Details) override;
  void Progress(const std::string& Id, const std::string& Text, int Percent) override;
  void Iteration(const std::string& Id, int Index, int Count,
                 const std::optional<std::string>& Value) override;
  void ActionEnd(const std::string& Id, ActionResult Result, std::int64_t DurationMs, int Status) override;
  void Variables(const VariableList& Values) override;
  void BuildEnd(BuildResult Result, std::int64_t DurationMs, const std::string& FailedId) override;

 private:
  nlohmann::ordered_json Event(const char* Name, const std::string& Id = "") const;
  void Write(const nlohmann::ordered_json& Event);
  void WriteLine(const std::string& Line);  // one whole event, with its line end

  std::FILE* Out_;
  bool Owned_;
  std::string File_;  // the project file, repeated on every action-start
  std::chrono::steady_clock::time_point Start_ = std::chrono::steady_clock::now();
  std::string WriteError_;
};

// A variable's typed value as JSON: Boolean, number, text, or null when empty.
nlohmann::ordered_json JsonValue(const frame::TZTVariant& V);

}  // namespace zt::host
