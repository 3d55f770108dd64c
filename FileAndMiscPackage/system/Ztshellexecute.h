// "Shell Execute": hands a file to the shell with a verb (print, open, ...)
// and may wait up to a minute for the program the shell started.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

class TZTShellExecute : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTShellExecute, frame::TCustomZTAction)

 public:
  static constexpr unsigned kWaitMilliseconds = 60000;

  static std::string GetActionName() { return "Shell Execute"; }
  static void Publish(frame::TZTPublisher<TZTShellExecute>& P);
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  std::string GetQuickHelpFilename() override { return "Plugins\\ShellExecute.html"; }

  const std::string& GetFileSpec() const { return FFileSpec; }
  // Refuses a text with wildcards (std::invalid_argument; nothing stored).
  void SetFileSpec(const std::string& Value);
  const std::string& GetAction() const { return FAction; }
  void SetAction(const std::string& Value) { FAction = Value; }
  const std::string& GetParameters() const { return FParameters; }
  void SetParameters(const std::string& Value) { FParameters = Value; }
  const std::string& GetWorkingDir() const { return FWorkingDir; }
  void SetWorkingDir(const std::string& Value) { FWorkingDir = Value; }
  bool GetWaitForCompletion() const { return FWaitForCompletion; }
  void SetWaitForCompletion(bool Value) { FWaitForCompletion = Value; }

 private:
  std::string FFileSpec;
  std::string FAction = "print";
  std::string FParameters;
  std::string FWorkingDir;
  bool FWaitForCompletion = false;
};

}  // namespace zt::package
