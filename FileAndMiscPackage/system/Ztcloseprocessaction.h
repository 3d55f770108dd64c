// "Close Process": asks the process with a given ID to end by posting a
// message to its main window and, with a time-out, terminates it when it
// does not end in time.
#pragma once

#include <cstdint>
#include <string>

#include "frame/ZTAction.h"
#include "platform/processes.h"

namespace zt::package {

class TZTCloseProcessAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTCloseProcessAction, frame::TCustomZTAction)

 public:
  static constexpr std::int32_t kInvalidProcessID = 99999999;

  static std::string GetActionName() { return "Close Process"; }
  static void Publish(frame::TZTPublisher<TZTCloseProcessAction>& P);
  bool Execute() override;
  std::string GetFormattedDescription() override;
  int GetHelpTopicID() override { return 5550; }
  std::string GetQuickHelpFilename() override { return "Plugins\\CloseProcess.html"; }

  const std::string& GetProcessID() const { return FProcessID; }
  void SetProcessID(const std::string& Value) { FProcessID = Value; }
  // The ID the last run parsed.
  std::int32_t GetProcessIDInt() const { return FProcessIDInt; }
  bool GetTimeout() const { return FTimeout; }
  void SetTimeout(bool Value) { FTimeout = Value; }
  std::int32_t GetTimeoutLimit() const { return FTimeoutLimit; }
  void SetTimeoutLimit(std::int32_t Value) { FTimeoutLimit = Value; }
  bool GetSendWMClose() const { return FSendWMClose; }
  void SetSendWMClose(bool Value) { FSendWMClose = Value; }

 private:
  // EnumWindows callback: keeps the first visible, unowned window of the process.
  static platform::BOOL FindMainWindow(platform::HWND Window, platform::LPARAM Self);

  std::string FProcessID;
  std::int32_t FProcessIDInt = 0;
  bool FTimeout = false;
  std::int32_t FTimeoutLimit = 3;
  bool FSendWMClose = false;
  platform::HWND FWindowHandle = 0;
};

}  // namespace zt::package
