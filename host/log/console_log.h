// The readable build log on the console: each action's heading, its
// messages and detail lines indented beneath, its result when it did not
// simply succeed, a progress bar cut to the terminal's width (only on a
// terminal), and a summary at the end. A failed build ends with the line
// that points at the failed action: "file:line: [id] title: <its last line>".
// Quiet mode prints an action's lines only when it fails (with the lines of
// the actions around it, such as a loop's pass), and the summary.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "host/log/action_trail.h"
#include "host/log/build_log.h"

namespace zt::host {

struct ConsoleOptions {
  bool IsTerminal = false;  // progress bars, and the width to cut them to
  bool Color = false;       // ANSI colours for results and the summary
  bool Quiet = false;
};

// --color=auto|always|never and the environment (NO_COLOR, TERM=dumb) for a
// console that is (or is not) a terminal; Mode is one of those three words.
bool UseColor(const std::string& Mode, bool IsTerminal);

// "850 ms", "1.4 s", "2 min 5 s".
std::string DurationText(std::int64_t Ms);

class ConsoleLog : public LogSink {
 public:
  // Out stays owned by the caller.
  ConsoleLog(std::FILE* Out, ConsoleOptions Options) : Out_(Out), O_(Options) {}

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
  void Variables(const VariableList&) override {}
  void BuildEnd(BuildResult Result, std::int64_t DurationMs, const std::string& FailedId) override;

 private:
  void Line(const std::string& Id, int Extra, const std::string& Text, const char* Color = nullptr);
  void Write(const std::string& Text);
  void EventWritten();
  std::string Painted(const std::string& Text, const char* Color) const;
  void ClearProgress();
  int Columns() const;

  std::FILE* Out_;
  ConsoleOptions O_;
  std::string File_;
  ActionTrail Trail_;
  bool ProgressShown_ = false;
  // Quiet mode: the running actions' lines, and for each running action where
  // its lines start in Pending_ and where its current pass line starts.
  struct Marks {
    std::size_t Start, Pass;
  };
  std::string Pending_;
  std::vector<Marks> PendingMarks_;
  int Actions_ = 0, Failed_ = 0, Ignored_ = 0, Skipped_ = 0;
};

}  // namespace zt::host
