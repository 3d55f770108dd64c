#include "host/log/action_trail.h"

namespace zt::host {

void ActionTrail::Start(const std::string& Id, const std::string& Title, int Line) {
  Facts_[Id] = {Title, Line, ""};
}

void ActionTrail::Message(const std::string& Id, const std::string& Text) {
  if (!Text.empty()) Facts_[Id].LastLine = Text;
}

void ActionTrail::Status(const std::string& Id, const std::string& Text,
                         const std::vector<std::string>& Details) {
  for (auto It = Details.rbegin(); It != Details.rend(); ++It)
    if (!It->empty()) return Message(Id, *It);
  Message(Id, Text);
}

void ActionTrail::End(const std::string& Id, bool Failed) {
  if (!Failed) Facts_.erase(Id);
}

const ActionTrail::Facts& ActionTrail::Of(const std::string& Id) const {
  static const Facts kNone;
  auto It = Facts_.find(Id);
  return It == Facts_.end() ? kNone : It->second;
}

std::string ActionTrail::Heading(const std::string& Id) const { return "[" + Id + "] " + Of(Id).Title; }

std::string ActionTrail::Reason(const std::string& Id) const {
  const std::string& Last = Of(Id).LastLine;
  return Last.empty() ? "failed" : Last;
}

}  // namespace zt::host
