// The shell's verbs on POSIX: each verb is a command (configurable through
// ZT_SHELL_<VERB>) that gets the file as its last argument.
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/command_line.h"
#include "platform/errors.h"
#include "platform/posix/process_handles_posix.h"
#include "platform/posix/spawn_posix.h"
#include "platform/shell_execute.h"

namespace zt::platform {

namespace {

std::string Lower(std::string S) {
  for (char& C : S) C = static_cast<char>(std::tolower(static_cast<unsigned char>(C)));
  return S;
}

// The command of Verb: the environment's, else the desktop's default.
std::vector<std::string> VerbCommand(const std::string& Verb) {
  std::string Name = "ZT_SHELL_";
  for (char C : Verb) Name += static_cast<char>(std::toupper(static_cast<unsigned char>(C)));
  if (const char* Own = std::getenv(Name.c_str())) return SplitCommandLine(Own);
  if (Verb == "open" || Verb == "edit" || Verb == "explore") return {"xdg-open"};
  if (Verb == "print") return {"lp"};
  return {};
}

bool IsExecutableFile(const std::string& Path) {
  struct stat St {};
  return stat(Path.c_str(), &St) == 0 && S_ISREG(St.st_mode) && access(Path.c_str(), X_OK) == 0;
}

BOOL Fail(DWORD Error) {
  SetLastError(Error);
  return 0;
}

}  // namespace

BOOL ShellExecuteExA(SHELLEXECUTEINFOA* Info) {
  if (!Info || !Info->lpFile) return Fail(ERROR_INVALID_PARAMETER);
  const std::string File = Info->lpFile;
  const std::string Verb = Lower(Info->lpVerb && *Info->lpVerb ? Info->lpVerb : "open");
  struct stat St {};
  if (stat(File.c_str(), &St) != 0) return Fail(ERROR_FILE_NOT_FOUND);

  posix::SpawnRequest Request;
  if (Verb == "open" && IsExecutableFile(File)) {
    Request.Argv.push_back(File.find('/') == std::string::npos ? "./" + File : File);  // a path, never a PATH search
    if (Info->lpParameters)
      for (std::string& A : SplitCommandLine(Info->lpParameters)) Request.Argv.push_back(std::move(A));
  } else {
    Request.Argv = VerbCommand(Verb);
    if (Request.Argv.empty()) return Fail(ERROR_NO_ASSOCIATION);
    Request.Argv.push_back(File);
  }
  if (posix::ResolveProgram(Request.Argv[0], Request.Path) != ERROR_SUCCESS) {
    // The file itself was to run: say why it could not; a missing handler has no association.
    if (Verb == "open" && IsExecutableFile(File)) return Fail(ERROR_ACCESS_DENIED);
    return Fail(ERROR_NO_ASSOCIATION);
  }
  if (Info->lpDirectory && *Info->lpDirectory) {
    if (posix::CheckWorkingDirectory(Info->lpDirectory) != ERROR_SUCCESS) return Fail(ERROR_DIRECTORY);
    Request.WorkingDirectory = Info->lpDirectory;
  }
  if (Info->nShow == SW_HIDE) Request.OutputFd = Request.ErrorFd = posix::kNullFd;

  pid_t Pid = -1;
  if (DWORD E = posix::Spawn(Request, Pid)) return Fail(E);
  Info->hProcess = nullptr;
  if (Info->fMask & SEE_MASK_NOCLOSEPROCESS) Info->hProcess = posix::NewProcessObject(Pid, /*IsChild=*/true);
  if (!Info->hProcess) posix::AdoptDetached(Pid);
  Info->hInstApp = reinterpret_cast<void*>(33);  // greater than 32: success
  return 1;
}

}  // namespace zt::platform
