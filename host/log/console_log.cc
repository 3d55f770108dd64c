#include "host/log/console_log.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zt::host {

namespace {

const char* const kReset = "\033[0m";
const char* const kRed = "\033[31m";
const char* const kBoldRed = "\033[1;31m";
const char* const kYellow = "\033[33m";
const char* const kGreen = "\033[32m";
const char* const kDimGreen = "\033[2;32m";

// Actions that run longer than this show their duration.
constexpr std::int64_t kShowDurationMs = 1000;

std::string Indent(const std::string& Id, int Extra) {
  int Depth = static_cast<int>(std::count(Id.begin(), Id.end(), '.'));
  return std::string(2 * Depth + Extra, ' ');
}

// "[id] title", and the description when it says more than the title.
std::string Heading(const std::string& Id, const std::string& Title, const std::string& Description) {
  std::string H = "[" + Id + "] ";
  if (Description.empty() || Description == Title) return H + Title;
  if (Description.compare(0, Title.size(), Title) == 0) return H + Description;
  return H + Title + " - " + Description;
}

// Text cut to Columns character cells (UTF-8 continuation bytes take none).
std::string CutToColumns(const std::string& Text, int Columns) {
  int Used = 0;
  for (std::size_t I = 0; I < Text.size(); ++I) {
    bool Starts = (static_cast<unsigned char>(Text[I]) & 0xC0) != 0x80;
    if (Starts && ++Used > Columns) return Text.substr(0, I);
  }
  return Text;
}

}  // namespace

bool UseColor(const std::string& Mode, bool IsTerminal) {
  if (Mode == "always") return true;
  if (Mode == "never" || !IsTerminal) return false;
  const char* NoColor = std::getenv("NO_COLOR");
  const char* Term = std::getenv("TERM");
  return !(NoColor && *NoColor) && !(Term && std::strcmp(Term, "dumb") == 0);
}

std::string DurationText(std::int64_t Ms) {
  if (Ms < 1000) return std::to_string(Ms) + " ms";
  if (Ms < 60000) {
    char Buf[32];
    std::snprintf(Buf, sizeof Buf, "%.1f s", static_cast<double>(Ms) / 1000);
    return Buf;
  }
  return std::to_string(Ms / 60000) + " min " + std::to_string(Ms / 1000 % 60) + " s";
}

std::string ConsoleLog::Painted(const std::string& Text, const char* Color) const {
  return O_.Color && Color ? Color + Text + kReset : Text;
}

void ConsoleLog::Write(const std::string& Text) {
  ClearProgress();
  std::fwrite(Text.data(), 1, Text.size(), Out_);
}

void ConsoleLog::EventWritten() {
  // A log in a file or pipe is whole up to its last event however zt ends
  // (a terminal shows every line at once anyway). Once per event, not per
  // line: a program's captured output can be millions of lines.
  if (!O_.IsTerminal) std::fflush(Out_);
}

void ConsoleLog::Line(const std::string& Id, int Extra, const std::string& Text, const char* Color) {
  // Quiet mode appends in place: a program's output can be millions of lines.
  std::string Buffer;
  std::string& To = O_.Quiet ? Pending_ : Buffer;
  To.append(Indent(Id, Extra));
  if (O_.Color && Color) To.append(Color).append(Text).append(kReset);
  else To.append(Text);
  To += '\n';
  if (!O_.Quiet) Write(Buffer);
}

void ConsoleLog::ClearProgress() {
  if (!ProgressShown_) return;
  std::fputs("\r\033[K", Out_);
  ProgressShown_ = false;
}

int ConsoleLog::Columns() const {
  winsize W{};
  if (ioctl(fileno(Out_), TIOCGWINSZ, &W) == 0 && W.ws_col > 0) return W.ws_col;
  const char* Env = std::getenv("COLUMNS");
  int N = Env ? std::atoi(Env) : 0;
  return N > 0 ? N : 80;
}

void ConsoleLog::BuildStart(const std::string& Project, const std::string& File) {
  File_ = File;
  if (!O_.Quiet) std::fprintf(Out_, "Building %s\n", Project.empty() ? File.c_str() : Project.c_str());
  std::fflush(Out_);
}

void ConsoleLog::ActionStart(const std::string& Id, const std::string& Title, const std::string&,
                             const std::string& Description, int Line) {
  Trail_.Start(Id, Title, Line);
  PendingMarks_.push_back({Pending_.size(), std::string::npos});
  this->Line(Id, 0, Heading(Id, Title, Description));
  EventWritten();
}

void ConsoleLog::Message(const std::string& Id, const std::string& Text, bool FromHost) {
  Trail_.Message(Id, Text);
  Line(Id, 4, FromHost ? "zt: " + Text : Text);
  EventWritten();
}

void ConsoleLog::Status(const std::string& Id, const std::string& Text,
                        const std::vector<std::string>& Details) {
  Trail_.Status(Id, Text, Details);
  if (!Text.empty()) Line(Id, 4, Text);
  if (!O_.Quiet) {
    for (const auto& D : Details) Line(Id, Text.empty() ? 4 : 6, D);
    EventWritten();
    return;
  }
  // Kept in one text, copied in one pass: captured output can be millions of lines.
  const std::string Prefix = Indent(Id, Text.empty() ? 4 : 6);
  std::size_t Size = 0;
  for (const auto& D : Details) Size += Prefix.size() + D.size() + 1;
  std::size_t At = Pending_.size();
  Pending_.resize(At + Size);
  for (const auto& D : Details) {
    std::memcpy(&Pending_[At], Prefix.data(), Prefix.size());
    std::memcpy(&Pending_[At + Prefix.size()], D.data(), D.size());
    At += Prefix.size() + D.size();
    Pending_[At++] = '\n';
  }
}

void ConsoleLog::Progress(const std::string& Id, const std::string& Text, int Percent) {
  if (!O_.IsTerminal || O_.Quiet) return;
  int P = std::clamp(Percent, 0, 100);
  std::string Bar = Indent(Id, 4) + "[" + std::string(P / 5, '#') + std::string(20 - P / 5, '.') + "] ";
  char Number[8];
  std::snprintf(Number, sizeof Number, "%3d%% ", P);
  // One column short of the width, so the terminal never wraps the line.
  std::string L = CutToColumns(Bar + Number + Text, Columns() - 1);
  std::fprintf(Out_, "\r\033[K%s", L.c_str());
  std::fflush(Out_);
  ProgressShown_ = true;
}

void ConsoleLog::Iteration(const std::string& Id, int Index, int Count,
                           const std::optional<std::string>& Value) {
  std::string Text = "pass " + std::to_string(Index) + " of " + std::to_string(Count);
  if (Value) Text += ": " + *Value;
  if (O_.Quiet && !PendingMarks_.empty()) {
    // Only the pass that fails is worth printing: the earlier passes' lines go.
    std::size_t& Pass = PendingMarks_.back().Pass;
    if (Pass != std::string::npos) Pending_.resize(Pass);
    Pass = Pending_.size();
  }
  Line(Id, 2, Text);
  EventWritten();
}

void ConsoleLog::ActionEnd(const std::string& Id, ActionResult Result, std::int64_t DurationMs, int) {
  ++Actions_;
  Trail_.End(Id, Result == ActionResult::Failure);
  std::string Took = DurationMs > kShowDurationMs ? DurationText(DurationMs) : "";
  switch (Result) {
    case ActionResult::Success:
      if (!Took.empty()) Line(Id, 4, "done in " + Took, kDimGreen);
      break;
    case ActionResult::Failure:
      ++Failed_;
      Line(Id, 4, Took.empty() ? "FAILED" : "FAILED after " + Took, kRed);
      break;
    case ActionResult::Ignored:
      ++Ignored_;
      Line(Id, 4, Took.empty() ? "failed (ignored)" : "failed (ignored) after " + Took, kYellow);
      break;
    case ActionResult::Skipped:
      ++Skipped_;
      Line(Id, 4, "skipped", kYellow);
      break;
  }
  if (O_.Quiet && (Result == ActionResult::Failure || Result == ActionResult::Ignored)) {
    Write(Pending_);
    Pending_.clear();
    // The running loops' lines so far are out; what they write from now on
    // starts the buffer afresh.
    for (Marks& M : PendingMarks_) M = {0, std::string::npos};
  } else if (!PendingMarks_.empty()) {
    Pending_.resize(std::min(Pending_.size(), PendingMarks_.back().Start));  // drop this action's lines
  }
  if (!PendingMarks_.empty()) PendingMarks_.pop_back();
  if (PendingMarks_.empty()) Pending_.shrink_to_fit();  // a program's output may have been large
  std::fflush(Out_);
}

void ConsoleLog::BuildEnd(BuildResult Result, std::int64_t DurationMs, const std::string& FailedId) {
  ClearProgress();
  std::string Counts = std::to_string(Actions_) + (Actions_ == 1 ? " action" : " actions");
  if (Ignored_ || Skipped_)
    Counts += " (" + std::to_string(Ignored_) + " ignored, " + std::to_string(Skipped_) + " skipped)";
  std::string Summary = Result == BuildResult::Success   ? Painted("Build succeeded", kGreen)
                        : Result == BuildResult::Stopped ? Painted("Build stopped", kYellow)
                                                         : Painted("Build FAILED", kBoldRed);
  std::fprintf(Out_, "%s: %s in %s\n", Summary.c_str(), Counts.c_str(), DurationText(DurationMs).c_str());
  if (!FailedId.empty()) {
    // Repeated last, where the eye lands: where the failed action is and why it failed.
    std::string Where = File_ + ":" + std::to_string(Trail_.Of(FailedId).Line) + ": ";
    std::fprintf(Out_, "%s%s\n", Where.c_str(),
                 Painted(Trail_.Heading(FailedId) + ": " + Trail_.Reason(FailedId), kRed).c_str());
  }
  std::fflush(Out_);
}

}  // namespace zt::host
