#include "host/log/annotations.h"

namespace zt::host {

namespace {

// Workflow-command escapes: '%', CR and LF everywhere; ':' and ',' in properties too.
std::string Escaped(const std::string& Text, bool Property) {
  std::string R;
  for (char C : Text) {
    if (C == '%')
      R += "%25";
    else if (C == '\r')
      R += "%0D";
    else if (C == '\n')
      R += "%0A";
    else if (Property && C == ':')
      R += "%3A";
    else if (Property && C == ',')
      R += "%2C";
    else
      R += C;
  }
  return R;
}

}  // namespace

std::string GitHubCommand(const char* Kind, const std::string& File, int Line, const std::string& Title,
                          const std::string& Message) {
  std::string R = std::string("::") + Kind + " file=" + Escaped(File, true);
  if (Line > 0) R += ",line=" + std::to_string(Line);
  if (!Title.empty()) R += ",title=" + Escaped(Title, true);
  return R + "::" + Escaped(Message, false);
}

void GitHubAnnotations::Annotate(const char* Kind, const std::string& Id) {
  std::string L =
      GitHubCommand(Kind, File_, Trail_.Of(Id).Line, Trail_.Heading(Id), Trail_.Reason(Id)) + "\n";
  std::fputs(L.c_str(), Out_);
  std::fflush(Out_);
}

void GitHubAnnotations::ActionEnd(const std::string& Id, ActionResult Result, std::int64_t, int) {
  if (Result == ActionResult::Ignored) Annotate("warning", Id);
  Trail_.End(Id, Result == ActionResult::Failure);
}

void GitHubAnnotations::BuildEnd(BuildResult, std::int64_t, const std::string& FailedId) {
  if (!FailedId.empty()) Annotate("error", FailedId);
}

}  // namespace zt::host
