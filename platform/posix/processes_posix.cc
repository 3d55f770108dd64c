// Win32 process handles and process "windows" on POSIX. A handle holds a
// pidfd, so waiting and asking whether the process still runs work for any
// process, not only for this program's children.
#include <dirent.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include "platform/errors.h"
#include "platform/posix/process_handles_posix.h"
#include "platform/posix/spawn_posix.h"
#include "platform/processes.h"

namespace zt::platform {

namespace posix {

ProcessObject* NewProcessObject(pid_t Pid, bool IsChild) {
  const int Fd = PidFdOpen(Pid);
  if (Fd < 0) return nullptr;
  return new ProcessObject{Pid, Fd, IsChild};
}

namespace {

bool HasEnded(const ProcessObject& P) {
  pollfd Fd{P.PidFd, POLLIN, 0};
  return poll(&Fd, 1, 0) > 0;
}

// Collects a child once it has ended; true when its exit code is known.
bool Collect(ProcessObject& P) {
  if (P.Collected) return true;
  if (!P.IsChild) return false;
  int Status = 0;
  if (waitpid(P.Pid, &Status, WNOHANG) != P.Pid) return false;
  P.Collected = true;
  P.ExitCode = ExitCodeOf(Status);
  return true;
}

// A process that has ended but has not been collected is "Z" in its stat line.
bool IsRunning(pid_t Pid) {
  char Path[64];
  std::snprintf(Path, sizeof Path, "/proc/%d/stat", static_cast<int>(Pid));
  std::FILE* F = std::fopen(Path, "r");
  if (!F) return false;
  char Line[512] = {};
  const bool Read = std::fgets(Line, sizeof Line, F) != nullptr;
  std::fclose(F);
  const char* Close = Read ? std::strrchr(Line, ')') : nullptr;  // the name may hold blanks and ')'
  return Close && Close[1] == ' ' && Close[2] != 'Z' && Close[2] != 'X';
}

}  // namespace

}  // namespace posix

using posix::ProcessObject;

HANDLE OpenProcess(DWORD, BOOL, DWORD ProcessId) {
  const pid_t Pid = static_cast<pid_t>(ProcessId);
  siginfo_t Info{};
  // Only a child of this program can be waited for with waitid.
  const bool IsChild = Pid > 0 && waitid(P_PID, static_cast<id_t>(Pid), &Info, WEXITED | WNOHANG | WNOWAIT) == 0;
  ProcessObject* P = Pid > 0 ? posix::NewProcessObject(Pid, IsChild) : nullptr;
  if (!P) SetLastError(ERROR_INVALID_PARAMETER);
  return P;
}

BOOL GetExitCodeProcess(HANDLE Process, DWORD* ExitCode) {
  auto* P = static_cast<ProcessObject*>(Process);
  if (!P || !ExitCode) {
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
  }
  if (posix::Collect(*P)) {
    *ExitCode = static_cast<DWORD>(P->ExitCode);
    return 1;
  }
  if (!posix::HasEnded(*P)) {
    *ExitCode = STILL_ACTIVE;
    return 1;
  }
  // Ended: a child is collected above at once; another program's code is its parent's to read.
  if (P->IsChild && posix::Collect(*P)) {
    *ExitCode = static_cast<DWORD>(P->ExitCode);
    return 1;
  }
  SetLastError(ERROR_ACCESS_DENIED);
  return 0;
}

BOOL TerminateProcess(HANDLE Process, UINT) {
  auto* P = static_cast<ProcessObject*>(Process);
  if (!P || P->Collected || kill(P->Pid, SIGKILL) != 0) {
    SetLastError(ERROR_ACCESS_DENIED);
    return 0;
  }
  return 1;
}

DWORD WaitForSingleObject(HANDLE Process, DWORD Milliseconds) {
  auto* P = static_cast<ProcessObject*>(Process);
  if (!P) {
    SetLastError(ERROR_INVALID_HANDLE);
    return WAIT_FAILED;
  }
  if (P->Collected) return WAIT_OBJECT_0;
  pollfd Fd{P->PidFd, POLLIN, 0};
  const int Timeout = Milliseconds == INFINITE ? -1 : static_cast<int>(std::min<DWORD>(Milliseconds, 0x7FFFFFFF));
  int R;
  while ((R = poll(&Fd, 1, Timeout)) < 0 && errno == EINTR) {
  }
  if (R == 0) return WAIT_TIMEOUT;
  if (R < 0) {
    SetLastError(ErrnoToWindowsError(errno));
    return WAIT_FAILED;
  }
  posix::Collect(*P);
  return WAIT_OBJECT_0;
}

BOOL CloseHandle(HANDLE Process) {
  auto* P = static_cast<ProcessObject*>(Process);
  if (!P) {
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
  }
  // A child nobody collected yet is collected in the background.
  if (P->IsChild && !posix::Collect(*P)) posix::AdoptDetached(P->Pid);
  close(P->PidFd);
  delete P;
  return 1;
}

void Sleep(DWORD Milliseconds) {
  timespec T{static_cast<time_t>(Milliseconds / 1000), static_cast<long>(Milliseconds % 1000) * 1000000L};
  while (nanosleep(&T, &T) != 0 && errno == EINTR) {
  }
}

BOOL EnumWindows(WNDENUMPROC Callback, LPARAM Data) {
  std::vector<HWND> Pids;
  if (DIR* D = opendir("/proc")) {
    while (dirent* E = readdir(D)) {
      char* End = nullptr;
      const long Pid = std::strtol(E->d_name, &End, 10);
      if (Pid > 0 && End && *End == '\0') Pids.push_back(Pid);
    }
    closedir(D);
  }
  std::sort(Pids.begin(), Pids.end());
  for (HWND W : Pids)
    if (posix::IsRunning(static_cast<pid_t>(W)) && !Callback(W, Data)) break;
  return 1;
}

HWND GetWindow(HWND, UINT) { return 0; }

BOOL IsWindowVisible(HWND Window) { return Window > 0 && posix::IsRunning(static_cast<pid_t>(Window)); }

DWORD GetWindowThreadProcessId(HWND Window, DWORD* ProcessId) {
  if (ProcessId) *ProcessId = static_cast<DWORD>(Window);
  return static_cast<DWORD>(Window);
}

BOOL PostMessageA(HWND Window, UINT Message, WPARAM, LPARAM) {
  const int Signal = Message == WM_CLOSE ? SIGTERM : Message == WM_QUIT ? SIGINT : 0;
  if (Signal == 0) {
    SetLastError(ERROR_NOT_SUPPORTED);
    return 0;
  }
  if (Window <= 0 || !posix::IsRunning(static_cast<pid_t>(Window))) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return 0;
  }
  if (kill(static_cast<pid_t>(Window), Signal) != 0) {
    SetLastError(errno == EPERM ? ERROR_ACCESS_DENIED : ERROR_INVALID_WINDOW_HANDLE);
    return 0;
  }
  return 1;
}

}  // namespace zt::platform
