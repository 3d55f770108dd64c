// "Execute Program" runs a program with a parameter text; "Run DOS Command"
// hands one command line to the command interpreter (DOSCMD). Both judge the
// exit code by a comparison; the host's process base starts, waits, captures
// the output and applies the time-out.
#pragma once

#include <cstdint>
#include <string>

#include "frame/ZTExecute.h"

namespace zt::package {

enum TZTRunReturnCodeComparator {
  rcLessThan,
  rcLessThanEqualTo,
  rcEqualTo,
  rcNotEqual,
  rcGreaterThanEqualTo,
  rcGreaterThan,
};

// True when ExitCode compares to Value as Comparator says (signed 32-bit).
bool ReturnCodeMatches(TZTRunReturnCodeComparator Comparator, std::int32_t ExitCode, std::int32_t Value);

class TCustomRunProgramAction : public frame::TZTExecuteAbstractAction {
  ZT_DECLARE_CLASS(TCustomRunProgramAction, frame::TZTExecuteAbstractAction)

 public:
  static constexpr std::int32_t kNoReturnCode = 2147483647;

  TCustomRunProgramAction();

  static std::string GetActionName() { return "Execute Program"; }
  bool GetCommandLine(frame::ICommandLineBuilder& Builder) override;
  void BeforeExecute(frame::ICommandLineBuilder& Builder) override;
  std::string GetExecutable() override;
  std::string GetStartingDir(const std::string& Default) override;
  std::string GetCommandLineParams() override;
  bool GetShowCommandLine() override { return true; }
  bool InterpretResult(int ExitCode) override;
  // The result line of InterpretResult says all there is to say.
  void OnFailure(int) override {}

  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  void GetHiddenProperties(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 511; }
  std::string GetQuickHelpFilename() override { return "Plugins\\RunProgram.html"; }

  const std::string& GetProgramName() const { return FProgramName; }
  void SetProgramName(const std::string& Value) { FProgramName = Value; }
  const std::string& GetParams() const { return FParams; }
  virtual void SetParams(const std::string& Value) { FParams = Value; }
  const std::string& GetStartInDir() const { return FStartInDir; }
  void SetStartInDir(const std::string& Value) { FStartInDir = Value; }
  // Legacy: reads CaptureOutput; a write is kept apart and changes nothing.
  bool GetLogOutput() const { return GetCaptureOutput(); }
  void SetLogOutput(bool Value) { FLogOutput = Value ? -1 : 0; }
  // Legacy minimum success code: success when the exit code is at most it.
  std::int32_t GetSuccessRC() const { return FReturnCodeToCheck; }
  void SetSuccessRC(std::int32_t Value);
  std::int32_t GetReturnCode() const { return FReturnCode; }
  bool GetEnableLiveCapture() const { return FEnableLiveCapture; }
  void SetEnableLiveCapture(bool Value) { FEnableLiveCapture = Value; }
  bool GetEnableReturnCodeCheck() const { return FEnableReturnCodeCheck; }
  void SetEnableReturnCodeCheck(bool Value) { FEnableReturnCodeCheck = Value; }
  std::int32_t GetReturnCodeToCheck() const { return FReturnCodeToCheck; }
  void SetReturnCodeToCheck(std::int32_t Value) { FReturnCodeToCheck = Value; }
  TZTRunReturnCodeComparator GetReturnCodeComparator() const { return FReturnCodeComparator; }
  void SetReturnCodeComparator(TZTRunReturnCodeComparator Value) { FReturnCodeComparator = Value; }

 protected:
  std::string FProgramName;
  std::string FParams;
  std::string FStartInDir;
  std::int16_t FLogOutput = 0;  // written by old projects, read by nothing
  std::int32_t FReturnCode = kNoReturnCode;
  bool FEnableLiveCapture = true;
  bool FEnableReturnCodeCheck = true;
  std::int32_t FReturnCodeToCheck = 0;
  TZTRunReturnCodeComparator FReturnCodeComparator = rcEqualTo;
};

// The registered "Execute Program".
class TRunProgramAction : public TCustomRunProgramAction {
  ZT_DECLARE_CLASS(TRunProgramAction, TCustomRunProgramAction)

 public:
  static void Publish(frame::TZTPublisher<TRunProgramAction>& P);
};

// The command interpreter with its switch ("/c"; "-c" for a POSIX shell) and
// the command text.
class TCustomRunDosCMDAction : public TCustomRunProgramAction {
  ZT_DECLARE_CLASS(TCustomRunDosCMDAction, TCustomRunProgramAction)

 public:
  static std::string GetActionName() { return "Run DOS Command"; }
  bool GetCommandLine(frame::ICommandLineBuilder& Builder) override;
  std::string GetExecutable() override;
  // The parameter text; a lone existing ".bat" file name is quoted.
  std::string GetCommandLineParams() override;
  bool GetShowCommandLine() override { return false; }

  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  void GetHiddenProperties(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 512; }
  std::string GetQuickHelpFilename() override { return "Plugins\\RunDosCommand.html"; }

  // A second name for Params.
  const std::string& GetCommand() const { return FParams; }
  void SetCommand(const std::string& Value) {
    if (Value != FParams) SetParams(Value);
  }
};

// The registered "Run DOS Command".
class TRunDosCMDAction : public TCustomRunDosCMDAction {
  ZT_DECLARE_CLASS(TRunDosCMDAction, TCustomRunDosCMDAction)

 public:
  static void Publish(frame::TZTPublisher<TRunDosCMDAction>& P);
};

}  // namespace zt::package
