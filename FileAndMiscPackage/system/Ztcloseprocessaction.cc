#include "system/Ztcloseprocessaction.h"

#include "platform/inifile.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TZTCloseProcessAction, &TZTCloseProcessAction::Publish)

void TZTCloseProcessAction::Publish(frame::TZTPublisher<TZTCloseProcessAction>& P) {
  using A = TZTCloseProcessAction;
  P.String("ProcessID", &A::GetProcessID, &A::SetProcessID);
  P.Integer("ProcessIDInt", &A::GetProcessIDInt).Stored = false;
  P.Boolean("Timeout", &A::GetTimeout, &A::SetTimeout);
  P.Integer("TimeoutLimit", &A::GetTimeoutLimit, &A::SetTimeoutLimit);
  P.Boolean("SendWMClose", &A::GetSendWMClose, &A::SetSendWMClose);
}

pf::BOOL TZTCloseProcessAction::FindMainWindow(pf::HWND Window, pf::LPARAM Self) {
  auto& A = *reinterpret_cast<TZTCloseProcessAction*>(Self);
  if (pf::GetWindow(Window, pf::GW_OWNER) != 0 || !pf::IsWindowVisible(Window)) return 1;
  pf::DWORD ProcessId = 0;
  pf::GetWindowThreadProcessId(Window, &ProcessId);
  if (static_cast<std::int32_t>(ProcessId) != A.FProcessIDInt) return 1;
  A.FWindowHandle = Window;
  return 0;
}

bool TZTCloseProcessAction::Execute() {
  FWindowHandle = 0;
  std::string Text;
  if (!TryExpandExpression("ProcessID", FProcessID, true, Text)) return false;
  FProcessIDInt = pf::StrToIntDef(Text, kInvalidProcessID);
  if (FProcessIDInt == kInvalidProcessID) {
    SendMessage("Invalid Process ID : " + std::to_string(kInvalidProcessID));
    return false;
  }
  SendMessage("Closing Process with ID " + std::to_string(FProcessIDInt));
  pf::EnumWindows(&FindMainWindow, reinterpret_cast<pf::LPARAM>(this));
  if (FWindowHandle == 0) {
    SendMessage("A window handle for the desired process ID could not be found.");
    return false;
  }
  const pf::HANDLE Process = pf::OpenProcess(pf::PROCESS_TERMINATE | pf::PROCESS_QUERY_INFORMATION, 0,
                                             static_cast<pf::DWORD>(FProcessIDInt));
  if (FSendWMClose) {
    SendMessage("Sending main window a WM_CLOSE message");
    pf::PostMessageA(FWindowHandle, pf::WM_CLOSE, 0, 0);
  } else {
    SendMessage("Sending main window a WM_QUIT message");
    pf::PostMessageA(FWindowHandle, pf::WM_QUIT, 0, 0);
  }
  if (FTimeout) {
    // Polled every 100 ms; a process seen ending at the last poll is not terminated.
    int Count = 0;
    bool Ended = false;
    do {
      pf::Sleep(100);
      ++Count;
      pf::DWORD Code = 0;
      Ended = !pf::GetExitCodeProcess(Process, &Code) || Code != pf::STILL_ACTIVE;
    } while (!Ended && Count <= FTimeoutLimit * 10);
    if (!Ended) {
      SendMessage("Timed out waiting for process to close. Terminating process.");
      pf::TerminateProcess(Process, 0);
    }
  }
  if (Process) pf::CloseHandle(Process);
  return true;
}

std::string TZTCloseProcessAction::GetFormattedDescription() {
  return (FSendWMClose ? "Close Process [ " : "Quit Process [ ") + FProcessID + " ]";
}

}  // namespace zt::package
