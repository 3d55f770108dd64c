// What the log has seen of each action: its title, its line in the project
// file and the last line it wrote (a message, or a status entry's last
// detail line). The console and the CI annotations use it to point at a
// failed action with its reason: "release.yml:42: [4] Clean: <last line>".
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

namespace zt::host {

class ActionTrail {
 public:
  struct Facts {
    std::string Title;
    int Line = 0;
    std::string LastLine;
  };

  void Start(const std::string& Id, const std::string& Title, int Line);
  void Message(const std::string& Id, const std::string& Text);
  void Status(const std::string& Id, const std::string& Text, const std::vector<std::string>& Details);
  // Id has ended. Only a failed action's facts are asked for later (the
  // build's end names it), so the others go: a build of thousands of actions
  // keeps a handful.
  void End(const std::string& Id, bool Failed);
  // The facts of Id; empty ones when Id never started.
  const Facts& Of(const std::string& Id) const;
  // "[id] title"
  std::string Heading(const std::string& Id) const;
  // The last line Id wrote, or "failed" when it wrote none.
  std::string Reason(const std::string& Id) const;

 private:
  std::unordered_map<std::string, Facts> Facts_;  // a loop's children start again under the same id
};

}  // namespace zt::host
