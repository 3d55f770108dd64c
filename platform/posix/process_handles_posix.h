// What a process HANDLE points to on POSIX. Internal to platform/posix.
#pragma once

#include <sys/types.h>

namespace zt::platform::posix {

struct ProcessObject {
  pid_t Pid = -1;
  int PidFd = -1;         // readable once the process has ended
  bool IsChild = false;   // started by this program: its exit code can be collected
  bool Collected = false;
  int ExitCode = 0;
};

// A handle for Pid, or null when the process does not exist.
ProcessObject* NewProcessObject(pid_t Pid, bool IsChild);

}  // namespace zt::platform::posix
