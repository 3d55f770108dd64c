#include "system/Frunprog.h"

#include <exception>

#include "frame/ZTUtils.h"
#include "platform/command_line.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TCustomRunProgramAction, nullptr)
ZT_IMPLEMENT_CLASS(TRunProgramAction, &TRunProgramAction::Publish)
ZT_IMPLEMENT_CLASS(TCustomRunDosCMDAction, nullptr)
ZT_IMPLEMENT_CLASS(TRunDosCMDAction, &TRunDosCMDAction::Publish)

namespace {

// The properties both registered types publish after their first one, in
// declaration order.
template <class A>
void PublishRunProperties(frame::TZTPublisher<A>& P) {
  P.WideString("StartInDir", &A::GetStartInDir, &A::SetStartInDir);
  P.Boolean("LogOutput", &A::GetLogOutput, &A::SetLogOutput);
  P.Boolean("WaitForCompletion", &A::GetWaitForCompletion, &A::SetWaitForCompletion);
  P.Boolean("HideWindow", &A::GetHideWindow, &A::SetHideWindow);
  P.Integer("SuccessRC", &A::GetSuccessRC, &A::SetSuccessRC).Stored = false;
  P.Integer("ReturnCode", &A::GetReturnCode).Stored = false;
  P.Boolean("RedirectStdErr", &A::GetRedirectStdErr, &A::SetRedirectStdErr);
  P.Boolean("EnableLiveCapture", &A::GetEnableLiveCapture, &A::SetEnableLiveCapture);
  P.Boolean("CaptureOutput", &A::GetCaptureOutput, &A::SetCaptureOutput);
  P.Boolean("EnableReturnCodeCheck", &A::GetEnableReturnCodeCheck, &A::SetEnableReturnCodeCheck);
  P.Integer("ReturnCodeToCheck", &A::GetReturnCodeToCheck, &A::SetReturnCodeToCheck);
  P.Enumeration("ReturnCodeComparator", "TZTRunReturnCodeComparator",
                {"rcLessThan", "rcLessThanEqualTo", "rcEqualTo", "rcNotEqual", "rcGreaterThanEqualTo", "rcGreaterThan"},
                &A::GetReturnCodeComparator, &A::SetReturnCodeComparator);
}

}  // namespace

void TRunProgramAction::Publish(frame::TZTPublisher<TRunProgramAction>& P) {
  using A = TRunProgramAction;
  P.WideString("ProgramName", &A::GetProgramName, &A::SetProgramName);
  P.WideString("Params", &A::GetParams, &A::SetParams);
  PublishRunProperties(P);
}

void TRunDosCMDAction::Publish(frame::TZTPublisher<TRunDosCMDAction>& P) {
  using A = TRunDosCMDAction;
  P.WideString("Command", &A::GetCommand, &A::SetCommand);
  P.WideString("Params", &A::GetParams, &A::SetParams);
  PublishRunProperties(P);
}

bool ReturnCodeMatches(TZTRunReturnCodeComparator Comparator, std::int32_t ExitCode, std::int32_t Value) {
  switch (Comparator) {
    case rcLessThan: return ExitCode < Value;
    case rcLessThanEqualTo: return ExitCode <= Value;
    case rcEqualTo: return ExitCode == Value;
    case rcNotEqual: return ExitCode != Value;
    case rcGreaterThanEqualTo: return ExitCode >= Value;
    case rcGreaterThan: return ExitCode > Value;
  }
  return false;
}

TCustomRunProgramAction::TCustomRunProgramAction() {
  SetWaitForCompletion(true);
  SetCaptureOutput(true);
  SetRedirectStdErr(true);
  SetTimeoutLength(0);
  SetEnableTimeout(false);
}

void TCustomRunProgramAction::SetSuccessRC(std::int32_t Value) {
  FReturnCodeToCheck = Value;
  FReturnCodeComparator = rcLessThanEqualTo;
  FEnableReturnCodeCheck = true;
}

std::string TCustomRunProgramAction::GetExecutable() {
  std::string Result;
  if (!TryExpandExpression("Program Name", FProgramName, true, Result)) Result.clear();
  if (!Result.empty() && Result.front() == '"' && Result.back() == '"')
    Result = Result.size() > 1 ? Result.substr(1, Result.size() - 2) : std::string();
  return Result;
}

std::string TCustomRunProgramAction::GetStartingDir(const std::string& Default) {
  std::string Result;
  return TryExpandExpression("Start In Directory", FStartInDir, false, Result) ? Result : Default;
}

std::string TCustomRunProgramAction::GetCommandLineParams() { return frame::Trim(ExpandExpression(FParams, true)); }

bool TCustomRunProgramAction::GetCommandLine(frame::ICommandLineBuilder& Builder) {
  if (!GetWaitForCompletion() && GetCaptureOutput())
    SendMessage("WARNING: To Capture Output you must enable Wait For Completion. No output will be captured.");
  FReturnCode = kNoReturnCode;
  std::string Params;
  try {
    Params = GetCommandLineParams();
    (void)ExpandExpression(FStartInDir, false);  // only an expansion error matters here
  } catch (const std::exception& E) {
    frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
    Entry->Details().Add("Unable to Execute Program  : ");
    Entry->Details().Add(std::string("--> ") + E.what());
    SendStatusMessage(Entry);
    return false;
  }
  Builder.AddArgument(Params, "", frame::akLiteral);
  return true;
}

void TCustomRunProgramAction::BeforeExecute(frame::ICommandLineBuilder& Builder) {
  inherited::BeforeExecute(Builder);
  if (GetShowCommandLine()) {
    SendMessage("Executing : " + GetExecutable());
    SendMessage("With Command Line : " + Builder.GetCommandLineText());
  }
  SetLiveCapture(FEnableLiveCapture);
}

bool TCustomRunProgramAction::InterpretResult(int ExitCode) {
  FReturnCode = ExitCode;
  if (!GetWaitForCompletion()) {
    const bool Started = ExitCode == frame::kExitStillActive;
    SendMessage(Started ? "Program started." : "Program execution failed with error code " + std::to_string(ExitCode));
    return Started;
  }
  bool Success;
  if (FEnableReturnCodeCheck) Success = ReturnCodeMatches(FReturnCodeComparator, ExitCode, FReturnCodeToCheck);
  else Success = !(GetContext() && GetContext()->GetStatus());
  if (!(Success && GetCaptureOutput() && FEnableReturnCodeCheck)) {
    SendMessage("Program returned code  : " + std::to_string(ExitCode));
    if (ExitCode == frame::kExitTerminated && !(GetEnableTimeout() && GetTimedOut())) SendMessage("Terminated by user");
  }
  return Success;
}

bool TCustomRunProgramAction::Validate(frame::IZTActionValidationError& Errors) {
  if (FProgramName.empty()) {
    Errors.AddError("Program", "The program to execute has not been set");
    return false;
  }
  return true;
}

std::string TCustomRunProgramAction::GetFormattedDescription() { return GetTitle() + " [ " + FProgramName + " ]"; }

void TCustomRunProgramAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Program]");
  List.Add("ProgramName=Program File");
  List.Add("Params=Parameters");
  List.Add("StartInDir=Start In Directory");
  List.Add("WaitForCompletion=Wait For Completion");
  List.Add("LogOutput=Capture Output");
  List.Add("EnableLiveCapture=Live Output Capture");
  List.Add("HideWindow=Hide Window");
  List.Add("[Return Code]");
  List.Add("EnableReturnCodeCheck=Check Return Code");
  List.Add("ReturnCodeToCheck=Value");
  List.Add("ReturnCodeComparator=Comparator");
}

void TCustomRunProgramAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("ProgramName=Fully qualified path to the Program File");
  List.Add("Params=Command line Parameters to pass to the program");
  List.Add("StartInDir=Start In Directory");
  List.Add("WaitForCompletion=Wait For program to terminate before continuing build.");
  List.Add("LogOutput=Capture Output and send to action log. (Wait For Completion must be enabled for this option to work.)");
  List.Add("EnableLiveCapture=Enable this option to capture output \"Live\" from the program. (Both Wait For Completion "
           "and Capture Output must be enabled for this option to work.)");
  List.Add("HideWindow=Hide program's Window while running");
  List.Add("EnableReturnCodeCheck=Enable this option to check the return code from the program (Wait For Completion "
           "must be enabled.)");
}

void TCustomRunProgramAction::GetHiddenProperties(frame::TStrings& List) {
  inherited::GetHiddenProperties(List);
  List.Add("ReturnCode");
  List.Add("CaptureOutput");
  List.Add("SuccessRC");
}

bool TCustomRunDosCMDAction::GetCommandLine(frame::ICommandLineBuilder& Builder) {
  Builder.AddArgument(pf::CommandInterpreterSwitch(), "", frame::akLiteral);
  return inherited::GetCommandLine(Builder);
}

std::string TCustomRunDosCMDAction::GetExecutable() { return ExpandExpression("%DOSCMD%", true); }

std::string TCustomRunDosCMDAction::GetCommandLineParams() {
  std::string Text = inherited::GetCommandLineParams();
  if (pf::ExtractFileExt(Text) == ".bat" && Text.find_first_of("\"'") == std::string::npos &&
      (pf::FileExists(Text) || pf::FileExists(FStartInDir + pf::PathDelim() + Text)))
    Text = "\"" + Text + "\"";
  return Text;
}

bool TCustomRunDosCMDAction::Validate(frame::IZTActionValidationError& Errors) {
  if (FParams.empty()) {
    Errors.AddError("DOS Command", "The DOS command has not been set");
    return false;
  }
  return true;
}

std::string TCustomRunDosCMDAction::GetFormattedDescription() { return GetTitle() + " [ " + FParams + " ]"; }

void TCustomRunDosCMDAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Dos Command]");
  List.Add("StartInDir=Start In Directory");
  List.Add("LogOutput=Capture Output");
  List.Add("HideWindow=Hide Window");
  List.Add("Command=DOS Command to run (including parameters)");
  List.Add("WaitForCompletion=Wait For Completion");
  List.Add("SuccessRC=Min Success Code");
  List.Add("EnableLiveCapture=Live Output Capture");
}

void TCustomRunDosCMDAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("Command=DOS Command to execute");
  List.Add("SuccessRC=Minimum return code to be considered a successfull execution");
}

void TCustomRunDosCMDAction::GetHiddenProperties(frame::TStrings& List) {
  inherited::GetHiddenProperties(List);
  List.Add("ProgramName");
  List.Add("Params");
}

}  // namespace zt::package
