// Starting programs and collecting them afterwards, shared by the host's
// child processes and the shell services. Internal to platform/posix.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "platform/win_types.h"

namespace zt::platform::posix {

// Finds Program: a path with a '/' as it stands (made absolute against the
// current directory), a bare name in PATH. 0, or 2 (not found), 3 (a
// directory on the way is missing), 5 (a directory, or not executable).
DWORD ResolveProgram(const std::string& Program, std::string& Path);

// 0 when Directory is empty or an existing directory, else ERROR_DIRECTORY.
DWORD CheckWorkingDirectory(const std::string& Directory);

struct SpawnRequest {
  std::string Path;               // resolved (ResolveProgram)
  std::vector<std::string> Argv;  // argv[0] included
  std::string WorkingDirectory;   // empty: the current one
  // Descriptors for the program's standard output and error: -1 keeps the
  // host's own, kNullFd the null device; otherwise dup'ed into place.
  int OutputFd = -1, ErrorFd = -1;
  bool ErrorToOutput = false;  // the error stream goes wherever output goes
  bool NewProcessGroup = true;
};
constexpr int kNullFd = -2;

// posix_spawn with standard input from the null device, no descriptor of
// the host's beyond the three standard ones, and default handling of the
// signals the host catches. 0 or the Windows error of the failed start.
DWORD Spawn(const SpawnRequest& Request, pid_t& Pid);

// Programs nobody waits for: collected without blocking whenever another
// program is started.
void AdoptDetached(pid_t Pid);
void ReapDetached();

// The groups KillChildProcessGroups kills.
void RegisterGroup(pid_t Pid);
void UnregisterGroup(pid_t Pid);

// A descriptor that becomes readable when Pid ends (close on exec), or -1.
int PidFdOpen(pid_t Pid);

// Exit status from waitpid as an exit code: the program's own, or 128 + the
// number of the signal that ended it.
int ExitCodeOf(int Status);

}  // namespace zt::platform::posix
