// The build log: the events of one build, fanned out to every sink (the
// console, the JSON Lines file). Events may come from any thread; each is
// handed to the sinks whole, one at a time. Build-end is the last event:
// whatever comes after it is dropped (a build ended by a second Ctrl+C may
// still be running on its thread).
//
// Progress that only counts on is coalesced: an action's progress event with
// the same percent as its last one and the same text but for its numbers
// ("Found 41 matches" after "Found 40 matches") is held back, and the one
// held last is written before the next event of any other kind. A search
// reports every match, and a million matches must not be a million lines.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "frame/ZTVariant.h"

namespace zt::host {

enum class ActionResult { Success, Failure, Ignored, Skipped };
enum class BuildResult { Success, Failure, Stopped };

const char* ResultName(ActionResult R);  // "success", "failure", "ignored", "skipped"
const char* ResultName(BuildResult R);   // "success", "failure", "stopped"

using VariableList = std::vector<std::pair<std::string, frame::TZTVariant>>;

// One destination of the log. Id is the action's path in the tree ("2.1");
// an empty Id is the build itself. File is the project file as the user
// gave it, Line where the action's mapping starts in it.
class LogSink {
 public:
  virtual ~LogSink() = default;
  virtual void BuildStart(const std::string& Project, const std::string& File) = 0;
  virtual void ActionStart(const std::string& Id, const std::string& Title, const std::string& Class,
                           const std::string& Description, int Line) = 0;
  virtual void Message(const std::string& Id, const std::string& Text, bool FromHost) = 0;
  virtual void Status(const std::string& Id, const std::string& Text,
                      const std::vector<std::string>& Details) = 0;
  virtual void Progress(const std::string& Id, const std::string& Text, int Percent) = 0;
  // A loop's pass Index (1-based) of Count starts; Value is the loop
  // variable's value, none for a loop without one.
  virtual void Iteration(const std::string& Id, int Index, int Count,
                         const std::optional<std::string>& Value) = 0;
  virtual void ActionEnd(const std::string& Id, ActionResult Result, std::int64_t DurationMs, int Status) = 0;
  virtual void Variables(const VariableList& Values) = 0;
  // FailedId: the action that failed the build (the first to fail), "" when none did.
  virtual void BuildEnd(BuildResult Result, std::int64_t DurationMs, const std::string& FailedId) = 0;
};

class BuildLog : public LogSink {
 public:
  void AddSink(std::unique_ptr<LogSink> Sink) { Sinks_.push_back(std::move(Sink)); }

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
  template <class Fn>
  void Each(Fn&& F, bool Last = false) {
    std::lock_guard<std::mutex> Lock(Mutex_);
    if (Ended_) return;
    SendHeldProgress();
    for (auto& S : Sinks_) F(*S);
    Ended_ = Last;
  }
  void SendHeldProgress();  // with Mutex_ held

  std::mutex Mutex_;
  std::vector<std::unique_ptr<LogSink>> Sinks_;
  bool Ended_ = false;  // build-end was written
  struct {
    std::string Id, Text;
    int Percent = -1;  // -1: no progress written yet
    bool Held = false;
  } Progress_;
};

}  // namespace zt::host
