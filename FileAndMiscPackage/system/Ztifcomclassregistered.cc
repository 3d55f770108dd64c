#include "system/Ztifcomclassregistered.h"

#include <exception>

#include "platform/com.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TZTIfCOMClassRegistered, &TZTIfCOMClassRegistered::Publish)

void TZTIfCOMClassRegistered::Publish(frame::TZTPublisher<TZTIfCOMClassRegistered>& P) {
  P.String("CLSID", &TZTIfCOMClassRegistered::GetCLSID, &TZTIfCOMClassRegistered::SetCLSID);
  P.String("ProgID", &TZTIfCOMClassRegistered::GetProgID, &TZTIfCOMClassRegistered::SetProgID);
  P.Boolean("UseProgID", &TZTIfCOMClassRegistered::GetUseProgID, &TZTIfCOMClassRegistered::SetUseProgID);
  P.Boolean("Invert", &TZTIfCOMClassRegistered::GetInvert, &TZTIfCOMClassRegistered::SetInvert);
  P.Boolean("FailIfNotRegistered", &TZTIfCOMClassRegistered::GetFailIfNotRegistered,
            &TZTIfCOMClassRegistered::SetFailIfNotRegistered);
}

bool TZTIfCOMClassRegistered::Execute() {
  FRegistered = false;
  std::string Text;
  pf::TGUID ClassID;
  if (FUseProgID) {
    if (!TryExpandExpression("Programmatic ID", FProgID, true, Text)) {
      SendMessage("Programmatic ID is invalid.");
      return false;
    }
  } else {
    if (!TryExpandExpression("Class ID (GUID)", FCLSID, true, Text)) {
      SendMessage("Class ID (GUID) is invalid.");
      return false;
    }
    if (Text.empty() || (Text.front() != '{' && Text.back() != '}')) Text = "{" + Text + "}";
    try {
      ClassID = pf::StringToGUID(Text);
    } catch (const std::exception&) {
      SendMessage("Class ID " + Text + " is not a valid GUID.");
      return false;
    }
  }
  try {
    // The class is looked up by the property as written; the expanded text
    // only names it in the log. Projects rely on this; keep it.
    if (FUseProgID) ClassID = pf::ProgIDToClassID(FProgID);
    FRegistered = pf::CreateComObject(ClassID);
  } catch (const std::exception&) {
    FRegistered = false;
  }
  SendMessage("COM Class " + Text + (FRegistered ? " is registered." : " is not registered."));
  if (FFailIfNotRegistered) return TestResult();
  if (!TestResult()) SetActionStatus(frame::asConditionNotMet);
  return true;
}

void TZTIfCOMClassRegistered::GetNextActionSource(int State, int& Next) {
  if (State == frame::nsExecuted && !TestResult()) Next = frame::naSkipChildren;
}

}  // namespace zt::package
