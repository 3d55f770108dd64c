// A small in-memory IZTActionHost for unit tests of actions: variables in a
// map, %NAME% expansion over them, and every log call recorded so tests can
// assert exact lines. End-to-end tests use the real host through `zt`.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <strings.h>

#include "frame/ZTAction.h"
#include "frame/ZTStringBuilder.h"

namespace zt::testing {

struct FakeLogMessage : frame::IZTActionLogMessage {
  frame::TStrings Lines;
  std::string Text;
  frame::TStrings& Details() override { return Lines; }
  std::string GetText() const override { return Text; }
  void SetText(const std::string& T) override { Text = T; }
};

struct CaseLess {
  bool operator()(const std::string& A, const std::string& B) const { return strcasecmp(A.c_str(), B.c_str()) < 0; }
};

class FakeHost : public frame::IZTActionHost {
 public:
  std::map<std::string, frame::TZTVariant, CaseLess> Variables;
  std::vector<std::string> Messages;                          // SendMessage lines
  std::vector<std::vector<std::string>> StatusEntries;        // published entries' details
  std::vector<std::pair<std::string, int>> Progress;          // SendProgress calls
  std::vector<std::string> HostLines;                         // lines the host itself wrote
  std::map<std::string, std::string> Scripts;                 // name -> text
  bool Stop = false;

  std::string ExpandExpression(frame::TZTAction&, const std::string& Text, bool) override {
    std::string R;
    for (std::size_t I = 0; I < Text.size(); ++I) {
      if (Text[I] != '%') { R += Text[I]; continue; }
      std::size_t J = Text.find('%', I + 1);
      if (J == std::string::npos) { R += Text.substr(I); break; }
      if (J == I + 1) { R += '%'; I = J; continue; }
      std::string Name = Text.substr(I + 1, J - I - 1);
      auto It = Variables.find(Name);
      if (It == Variables.end()) throw frame::EZTExpandError("Variable \"" + Name + "\" is not defined");
      R += It->second.AsString();
      I = J;
    }
    return R;
  }
  bool TryExpandExpression(frame::TZTAction& A, const std::string& Title, const std::string& Text, bool IsName,
                           std::string& Result) override {
    try {
      Result = ExpandExpression(A, Text, IsName);
      return true;
    } catch (const frame::EZTExpandError& E) {
      HostLines.push_back(Title + ": " + E.what());
      return false;
    }
  }
  void SetVariable(const std::string& N, const frame::TZTVariant& V) override { Variables[N] = V; }
  frame::TZTVariant GetVariableValue(const std::string& N) override {
    auto It = Variables.find(N);
    return It == Variables.end() ? frame::TZTVariant() : It->second;
  }
  bool IsVariableDefined(const std::string& N) override { return Variables.count(N) != 0; }
  void AddNewVariable(const std::string& N, const frame::TZTVariant& V) override { Variables[N] = V; }
  void GetVariablesList(frame::TStrings& L, bool) override {
    for (auto& [K, V] : Variables) L.Add(K);
  }
  void SendMessage(frame::TZTAction&, const std::string& T) override { Messages.push_back(T); }
  void SendProgress(frame::TZTAction&, const std::string& T, int P) override { Progress.emplace_back(T, P); }
  frame::IZTActionLogMessagePtr CreateStatusMessage(frame::TZTAction&) override {
    return std::make_shared<FakeLogMessage>();
  }
  void SendStatusMessage(frame::TZTAction&, const frame::IZTActionLogMessagePtr& M) override {
    StatusEntries.push_back(M->Details().Lines());
  }
  bool StopSignalled() override { return Stop; }
  std::string GetScriptByName(frame::TZTAction&, const std::string& N) override {
    auto It = Scripts.find(N);
    return It == Scripts.end() ? std::string() : It->second;
  }
  bool ExecuteScript(frame::TZTAction&, const std::string&, frame::TZTScriptParams&) override { return true; }
  frame::IZTProjectObjectAPI* GetProjectObjectAPI() override { return nullptr; }
  std::shared_ptr<frame::IZTStringBuilder> CreateStringBuilder() override {
    return std::make_shared<frame::TZTStringBuilder>();
  }

  // All detail lines of all published entries, in order.
  std::vector<std::string> AllDetails() const {
    std::vector<std::string> R;
    for (auto& E : StatusEntries) R.insert(R.end(), E.begin(), E.end());
    return R;
  }
};

}  // namespace zt::testing
