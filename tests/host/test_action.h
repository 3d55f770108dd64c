// A small action type for the host's unit tests: one property of every kind,
// a coupled pair of setters, read-only properties both ways, and an Execute
// that throws or runs its OnRun script.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frame/ZTAction.h"
#include "host/project/registry_of_actions.h"

namespace zt::testing {

enum TTestMode { tmOne, tmTwo, tmThree };

class TTestAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TTestAction, frame::TCustomZTAction)

 public:
  TTestAction() { AddScript("OnRun"); }
  static std::string GetActionName() { return "Test Action"; }
  static void Publish(frame::TZTPublisher<TTestAction>& P);

  bool Execute() override;
  void GetReadOnlyProperties(frame::TStrings& L) override { L.Add("Shown"); }
  // OnRun: Action, Index (integer), Text (text, in-out), Flag (Boolean,
  // in-out), Ratio (number, in-out), Extra (nothing, in-out).
  void InitialiseScriptParams(const std::string& ScriptName, frame::TZTScriptParams& Params) override;
  // The script method "Rewind" (registered by RegisterTestAction).
  bool ExecuteScriptMethod(const std::string& MethodName) override;

  const std::string& GetText() const { return Text_; }
  void SetText(const std::string& V) { Text_ = V; }
  bool GetFlag() const { return Flag_; }
  void SetFlag(bool V) { Flag_ = V; }
  int GetCount() const { return Count_; }
  void SetCount(int V) { Count_ = V; }
  TTestMode GetMode() const { return Mode_; }
  void SetMode(TTestMode V) { Mode_ = V; }
  std::int64_t GetOptions() const { return Options_; }
  void SetOptions(std::int64_t V) { Options_ = V; }
  const std::string& GetLines() const { return Lines_; }
  void SetLines(const std::string& V) { Lines_ = V; }
  double GetWhen() const { return When_; }
  void SetWhen(double V) { When_ = V; }
  // Coupled: a path sets the folder to its directory part.
  const std::string& GetPath() const { return Path_; }
  void SetPath(const std::string& V) {
    Path_ = V;
    Folder_ = V.substr(0, V.rfind('/') == std::string::npos ? 0 : V.rfind('/'));
  }
  const std::string& GetFolder() const { return Folder_; }
  void SetFolder(const std::string& V) { Folder_ = V; }
  int GetResultCount() const { return 7; }
  int GetShown() const { return Shown_; }
  void SetShown(int V) { Shown_ = V; }

  // What Execute does, set by tests: "ok", "throw", and "script": runs OnRun Count times (Index 1,
  // 2, ...; Text = the Text property) and keeps the parameters after each run in ScriptRuns.
  std::string Behaviour = "ok";
  std::vector<frame::TZTScriptParams> ScriptRuns;
  int Rewound = 0;

 private:
  std::string Text_ = "text", Lines_, Path_, Folder_;
  bool Flag_ = true;
  int Count_ = 3, Shown_ = 0;
  TTestMode Mode_ = tmTwo;
  std::int64_t Options_ = 0;
  double When_ = 0;
};

// A test action that may hold child actions, as loops do.
class TTestGroup : public TTestAction {
  ZT_DECLARE_CLASS(TTestGroup, TTestAction)

 public:
  static std::string GetActionName() { return "Test Group"; }
  bool GetIsFlowControlAction() override { return true; }
};

// Registers TTestAction as "Test Action" and TTestGroup as "Test Group" in
// Registry, with the script method "Rewind" and the constant "tcAnswer" = 42.
void RegisterTestAction(host::ActionRegistry& Registry);

}  // namespace zt::testing
