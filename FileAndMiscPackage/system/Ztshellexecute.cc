#include "system/Ztshellexecute.h"

#include <stdexcept>

#include "platform/errors.h"
#include "platform/files.h"
#include "platform/processes.h"
#include "platform/shell_execute.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TZTShellExecute, &TZTShellExecute::Publish)

void TZTShellExecute::Publish(frame::TZTPublisher<TZTShellExecute>& P) {
  using A = TZTShellExecute;
  P.String("FileSpec", &A::GetFileSpec, &A::SetFileSpec);
  P.String("Action", &A::GetAction, &A::SetAction);
  P.String("Parameters", &A::GetParameters, &A::SetParameters);
  P.String("WorkingDir", &A::GetWorkingDir, &A::SetWorkingDir);
  P.Boolean("WaitForCompletion", &A::GetWaitForCompletion, &A::SetWaitForCompletion);
}

void TZTShellExecute::SetFileSpec(const std::string& Value) {
  if (Value.find_first_of("*?") != std::string::npos)
    throw std::invalid_argument(
        "Wildcards are not allowed.  Use with the FileIterator action to perform action on multiple files.");
  FFileSpec = Value;
}

bool TZTShellExecute::Execute() {
  const std::string File = ExpandExpression(FFileSpec, true);
  const std::string Parameters = ExpandExpression(FParameters, true);
  const std::string Directory = ExpandExpression(FWorkingDir, true);
  if (!pf::FileExists(File)) {
    SendMessage("File does not exist: " + FFileSpec);
    return false;
  }
  pf::SHELLEXECUTEINFOA Info;
  Info.cbSize = 60;
  Info.fMask = pf::SEE_MASK_FLAG_NO_UI | pf::SEE_MASK_FLAG_DDEWAIT | pf::SEE_MASK_NOCLOSEPROCESS |
               pf::SEE_MASK_INVOKEIDLIST;
  Info.lpVerb = FAction.c_str();
  Info.lpFile = File.c_str();
  Info.lpParameters = Parameters.c_str();
  Info.lpDirectory = Directory.c_str();
  Info.nShow = pf::SW_HIDE;
  if (!pf::ShellExecuteExA(&Info)) {
    SendMessage("ShellExecute Failed with error: " + pf::SysErrorMessage(pf::GetLastError()));
    return false;
  }
  bool Result = true;
  if (FWaitForCompletion && Info.hProcess) {
    // Waited for in short steps, so that a stop of the build ends the wait (and the program).
    pf::DWORD Wait = pf::WAIT_TIMEOUT;
    for (unsigned Waited = 0; Wait == pf::WAIT_TIMEOUT && Waited < kWaitMilliseconds && !StopSignalled(); Waited += 100)
      Wait = pf::WaitForSingleObject(Info.hProcess, 100);
    if (Wait == pf::WAIT_TIMEOUT && StopSignalled()) {
      pf::TerminateProcess(Info.hProcess, 0);
      Result = false;
    } else if (Wait == pf::WAIT_TIMEOUT) {
      SendMessage("Timed Out waiting to " + FAction + " " + File);
      Result = false;
    }
  }
  if (Info.hProcess) pf::CloseHandle(Info.hProcess);
  return Result;
}

bool TZTShellExecute::Validate(frame::IZTActionValidationError& Errors) {
  if (FFileSpec.empty()) {
    Errors.AddError("Filename", "A filename has not been specified");
    return false;
  }
  return true;
}

std::string TZTShellExecute::GetFormattedDescription() { return GetTitle() + " [ " + FFileSpec + " ]"; }

}  // namespace zt::package
