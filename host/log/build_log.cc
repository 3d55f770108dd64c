#include "host/log/build_log.h"

namespace zt::host {

namespace {

// True when A and B differ at most in the digits of their numbers.
bool SameButForNumbers(const std::string& A, const std::string& B) {
  auto IsDigit = [](char C) { return C >= '0' && C <= '9'; };
  std::size_t I = 0, J = 0;
  while (I < A.size() && J < B.size()) {
    if (IsDigit(A[I]) && IsDigit(B[J])) {
      while (I < A.size() && IsDigit(A[I])) ++I;
      while (J < B.size() && IsDigit(B[J])) ++J;
    } else if (A[I++] != B[J++]) {
      return false;
    }
  }
  return I == A.size() && J == B.size();
}

}  // namespace

const char* ResultName(ActionResult R) {
  switch (R) {
    case ActionResult::Success:
      return "success";
    case ActionResult::Failure:
      return "failure";
    case ActionResult::Ignored:
      return "ignored";
    case ActionResult::Skipped:
      return "skipped";
  }
  return "";
}

const char* ResultName(BuildResult R) {
  switch (R) {
    case BuildResult::Success:
      return "success";
    case BuildResult::Failure:
      return "failure";
    case BuildResult::Stopped:
      return "stopped";
  }
  return "";
}

void BuildLog::BuildStart(const std::string& Project, const std::string& File) {
  Each([&](LogSink& S) { S.BuildStart(Project, File); });
}
void BuildLog::ActionStart(const std::string& Id, const std::string& Title, const std::string& Class,
                           const std::string& Description, int Line) {
  Each([&](LogSink& S) { S.ActionStart(Id, Title, Class, Description, Line); });
}
void BuildLog::Message(const std::string& Id, const std::string& Text, bool FromHost) {
  Each([&](LogSink& S) { S.Message(Id, Text, FromHost); });
}
void BuildLog::Status(const std::string& Id, const std::string& Text,
                      const std::vector<std::string>& Details) {
  Each([&](LogSink& S) { S.Status(Id, Text, Details); });
}
void BuildLog::Progress(const std::string& Id, const std::string& Text, int Percent) {
  std::lock_guard<std::mutex> Lock(Mutex_);
  if (Ended_) return;
  const bool CountsOn = Percent == Progress_.Percent && Id == Progress_.Id && SameButForNumbers(Text, Progress_.Text);
  Progress_.Text = Text;
  if (CountsOn) {
    Progress_.Held = true;
    return;
  }
  Progress_.Id = Id;
  Progress_.Percent = Percent;
  Progress_.Held = false;
  for (auto& S : Sinks_) S->Progress(Id, Text, Percent);
}

void BuildLog::SendHeldProgress() {
  if (!Progress_.Held) return;
  Progress_.Held = false;
  for (auto& S : Sinks_) S->Progress(Progress_.Id, Progress_.Text, Progress_.Percent);
}
void BuildLog::Iteration(const std::string& Id, int Index, int Count,
                         const std::optional<std::string>& Value) {
  Each([&](LogSink& S) { S.Iteration(Id, Index, Count, Value); });
}
void BuildLog::ActionEnd(const std::string& Id, ActionResult Result, std::int64_t DurationMs, int Status) {
  Each([&](LogSink& S) { S.ActionEnd(Id, Result, DurationMs, Status); });
}
void BuildLog::Variables(const VariableList& Values) {
  Each([&](LogSink& S) { S.Variables(Values); });
}
void BuildLog::BuildEnd(BuildResult Result, std::int64_t DurationMs, const std::string& FailedId) {
  Each([&](LogSink& S) { S.BuildEnd(Result, DurationMs, FailedId); }, /*Last=*/true);
}

}  // namespace zt::host
