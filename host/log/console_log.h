// The readable build log on the console: action titles, their messages and
// detail lines indented beneath, a progress bar only on a terminal, and one
// summary line at the end. Quiet mode prints an action's lines only when it
// fails (with the lines of the actions around it, such as a loop's pass),
// and the summary.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "host/log/build_log.h"

namespace zt::host {

class ConsoleLog : public LogSink {
 public:
  // Out stays owned by the caller. IsTerminal enables the progress bar.
  ConsoleLog(std::FILE* Out, bool IsTerminal, bool Quiet) : Out_(Out), IsTerminal_(IsTerminal), Quiet_(Quiet) {}

  void BuildStart(const std::string& Project) override;
  void ActionStart(const std::string& Id, const std::string& Title, const std::string& Class,
                   const std::string& Description) override;
  void Message(const std::string& Id, const std::string& Text, bool FromHost) override;
  void Status(const std::string& Id, const std::string& Text, const std::vector<std::string>& Details) override;
  void Progress(const std::string& Id, const std::string& Text, int Percent) override;
  void Iteration(const std::string& Id, int Index, int Count,
                 const std::optional<std::string>& Value) override;
  void ActionEnd(const std::string& Id, ActionResult Result) override;
  void Variables(const VariableList&) override {}
  void BuildEnd(BuildResult Result, std::int64_t DurationMs) override;

 private:
  void Line(const std::string& Id, int Extra, const std::string& Text);
  void ClearProgress();
  void Flush();

  std::FILE* Out_;
  bool IsTerminal_;
  bool Quiet_;
  bool ProgressShown_ = false;
  // Actions nest (children of loops): one entry per running action.
  struct Running {
    std::string Title;
    std::size_t PendingMark;  // quiet mode: Pending_'s size when it started
  };
  std::vector<Running> Running_;
  std::string Pending_;  // quiet mode: the running actions' lines
  int Actions_ = 0, Failed_ = 0, Ignored_ = 0, Skipped_ = 0;
  std::string FailedTitle_;
};

}  // namespace zt::host
