#include "host/log/console_log.h"

#include <algorithm>
#include <cstring>

namespace zt::host {

namespace {

std::string Indent(const std::string& Id, int Extra) {
  int Depth = static_cast<int>(std::count(Id.begin(), Id.end(), '.'));
  return std::string(2 * Depth + Extra, ' ');
}

}  // namespace

void ConsoleLog::Line(const std::string& Id, int Extra, const std::string& Text) {
  if (Quiet_) {  // appended in place: a program's output can be millions of lines
    Pending_.append(Indent(Id, Extra)).append(Text) += '\n';
    return;
  }
  ClearProgress();
  std::string L = Indent(Id, Extra) + Text + "\n";
  std::fputs(L.c_str(), Out_);
}

void ConsoleLog::ClearProgress() {
  if (!ProgressShown_) return;
  std::fputs("\r\033[K", Out_);
  ProgressShown_ = false;
}

void ConsoleLog::Flush() {
  std::fwrite(Pending_.data(), 1, Pending_.size(), Out_);
  Pending_.clear();
}

void ConsoleLog::BuildStart(const std::string& Project) {
  if (!Quiet_) std::fprintf(Out_, "Building %s\n", Project.c_str());
}

void ConsoleLog::ActionStart(const std::string& Id, const std::string& Title, const std::string&,
                             const std::string& Description) {
  Running_.push_back({Title, Pending_.size()});
  Line(Id, 0, "[" + Id + "] " + (Description.empty() ? Title : Description));
}

void ConsoleLog::Message(const std::string& Id, const std::string& Text, bool FromHost) {
  Line(Id, 4, FromHost ? "zt: " + Text : Text);
}

void ConsoleLog::Status(const std::string& Id, const std::string& Text, const std::vector<std::string>& Details) {
  if (!Text.empty()) Line(Id, 4, Text);
  if (!Quiet_) {
    for (const auto& D : Details) Line(Id, Text.empty() ? 4 : 6, D);
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
  if (!IsTerminal_ || Quiet_) return;
  int Filled = std::clamp(Percent, 0, 100) / 5;
  std::fprintf(Out_, "\r\033[K%s[%s%s] %3d%% %s", Indent(Id, 4).c_str(), std::string(Filled, '#').c_str(),
               std::string(20 - Filled, '.').c_str(), std::clamp(Percent, 0, 100), Text.c_str());
  std::fflush(Out_);
  ProgressShown_ = true;
}

void ConsoleLog::Iteration(const std::string& Id, int Index, int Count,
                           const std::optional<std::string>& Value) {
  std::string Text = "pass " + std::to_string(Index) + " of " + std::to_string(Count);
  if (Value) Text += ": " + *Value;
  Line(Id, 2, Text);
}

void ConsoleLog::ActionEnd(const std::string& Id, ActionResult Result) {
  ++Actions_;
  const std::string Title = Running_.empty() ? "" : Running_.back().Title;
  switch (Result) {
    case ActionResult::Success:
      break;
    case ActionResult::Failure:
      ++Failed_;
      FailedTitle_ = "[" + Id + "] " + Title;
      Line(Id, 4, "FAILED");
      break;
    case ActionResult::Ignored:
      ++Ignored_;
      Line(Id, 4, "failed (ignored)");
      break;
    case ActionResult::Skipped:
      ++Skipped_;
      Line(Id, 4, "skipped");
      break;
  }
  if (Quiet_ && (Result == ActionResult::Failure || Result == ActionResult::Ignored)) {
    Flush();
  } else if (!Running_.empty()) {
    Pending_.resize(std::min(Pending_.size(), Running_.back().PendingMark));  // this action's lines
  }
  if (!Running_.empty()) Running_.pop_back();
  if (Running_.empty()) Pending_.shrink_to_fit();  // a program's output may have been large
  std::fflush(Out_);
}

void ConsoleLog::BuildEnd(BuildResult Result, std::int64_t DurationMs) {
  ClearProgress();
  std::string Counts = std::to_string(Actions_) + (Actions_ == 1 ? " action" : " actions");
  if (Ignored_ || Skipped_)
    Counts += " (" + std::to_string(Ignored_) + " ignored, " + std::to_string(Skipped_) + " skipped)";
  std::string Head = Result == BuildResult::Success   ? "Build succeeded"
                     : Result == BuildResult::Stopped ? "Build stopped"
                                                      : "Build FAILED at " + FailedTitle_;
  std::fprintf(Out_, "%s: %s in %lld ms\n", Head.c_str(), Counts.c_str(), static_cast<long long>(DurationMs));
  std::fflush(Out_);
}

}  // namespace zt::host
