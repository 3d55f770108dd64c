// "If COM Class Registered": a condition on whether an object of a COM
// class can be made (by class identifier or programmatic identifier); its
// child actions run when the test holds and are skipped otherwise, or the
// action fails (FailIfNotRegistered).
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

class TZTIfCOMClassRegistered : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTIfCOMClassRegistered, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "If COM Class Registered"; }
  static void Publish(frame::TZTPublisher<TZTIfCOMClassRegistered>& P);
  bool Execute() override;
  bool GetIsFlowControlAction() override { return true; }
  // After a run whose test came out false, the child actions are skipped.
  void GetNextActionSource(int State, int& Next) override;
  int GetHelpTopicID() override { return 5080; }
  std::string GetQuickHelpFilename() override { return "Plugins\\IfCOMReg.html"; }

  // True when the class is registered and Invert is false, or it is not
  // registered and Invert is true.
  bool TestResult() const { return FRegistered != FInvert; }

  const std::string& GetCLSID() const { return FCLSID; }
  void SetCLSID(const std::string& Value) { FCLSID = Value; }
  const std::string& GetProgID() const { return FProgID; }
  void SetProgID(const std::string& Value) { FProgID = Value; }
  bool GetUseProgID() const { return FUseProgID; }
  void SetUseProgID(bool Value) { FUseProgID = Value; }
  bool GetInvert() const { return FInvert; }
  void SetInvert(bool Value) { FInvert = Value; }
  bool GetFailIfNotRegistered() const { return FFailIfNotRegistered; }
  void SetFailIfNotRegistered(bool Value) { FFailIfNotRegistered = Value; }

 private:
  std::string FCLSID;
  std::string FProgID;
  bool FUseProgID = true;
  bool FInvert = false;
  bool FFailIfNotRegistered = false;
  bool FRegistered = false;  // the last run's finding
};

}  // namespace zt::package
