// CI annotations: GitHub Actions workflow commands that mark the project
// file's line in a CI run. The failed action gets an `::error`, every failure
// that was ignored a `::warning`, each with the action's last line as message.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "host/log/action_trail.h"
#include "host/log/build_log.h"

namespace zt::host {

// "::error file=F,line=L,title=T::Message" (Kind "error" or "warning"), with
// the escapes GitHub requires; no line= when Line is 0, no title= when empty.
std::string GitHubCommand(const char* Kind, const std::string& File, int Line, const std::string& Title,
                          const std::string& Message);

class GitHubAnnotations : public LogSink {
 public:
  // Out stays owned by the caller.
  explicit GitHubAnnotations(std::FILE* Out) : Out_(Out) {}

  void BuildStart(const std::string&, const std::string& File) override { File_ = File; }
  void ActionStart(const std::string& Id, const std::string& Title, const std::string&, const std::string&,
                   int Line) override {
    Trail_.Start(Id, Title, Line);
  }
  void Message(const std::string& Id, const std::string& Text, bool) override { Trail_.Message(Id, Text); }
  void Status(const std::string& Id, const std::string& Text,
              const std::vector<std::string>& Details) override {
    Trail_.Status(Id, Text, Details);
  }
  void Progress(const std::string&, const std::string&, int) override {}
  void Iteration(const std::string&, int, int, const std::optional<std::string>&) override {}
  void ActionEnd(const std::string& Id, ActionResult Result, std::int64_t, int) override;
  void Variables(const VariableList&) override {}
  void BuildEnd(BuildResult Result, std::int64_t, const std::string& FailedId) override;

 private:
  void Annotate(const char* Kind, const std::string& Id);

  std::FILE* Out_;
  std::string File_;
  ActionTrail Trail_;
};

}  // namespace zt::host
