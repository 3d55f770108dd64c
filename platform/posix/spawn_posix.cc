#include "platform/posix/spawn_posix.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <mutex>

#include "platform/child_process.h"
#include "platform/errors.h"

extern char** environ;

namespace zt::platform::posix {

namespace {

DWORD CheckExecutable(const std::string& Path) {
  struct stat St {};
  if (stat(Path.c_str(), &St) != 0) return errno == ENOTDIR ? ERROR_PATH_NOT_FOUND : ErrnoToWindowsError(errno);
  if (S_ISDIR(St.st_mode) || access(Path.c_str(), X_OK) != 0) return ERROR_ACCESS_DENIED;
  return ERROR_SUCCESS;
}

std::mutex DetachedMutex;
std::vector<pid_t> Detached;

// Running groups, readable from a signal handler.
constexpr int kGroupSlots = 64;
std::atomic<pid_t> Groups[kGroupSlots];

}  // namespace

DWORD ResolveProgram(const std::string& Program, std::string& Path) {
  if (Program.empty()) return ERROR_FILE_NOT_FOUND;
  if (Program.find('/') != std::string::npos) {
    Path = Program;
    if (Path[0] != '/') {
      char Cwd[4096];
      if (getcwd(Cwd, sizeof Cwd)) Path = std::string(Cwd) + "/" + Path;
    }
    return CheckExecutable(Path);
  }
  const char* Env = std::getenv("PATH");
  const std::string Dirs = Env ? Env : "/usr/local/bin:/usr/bin:/bin";
  DWORD Result = ERROR_FILE_NOT_FOUND;
  for (std::size_t B = 0; B <= Dirs.size();) {
    std::size_t E = Dirs.find(':', B);
    if (E == std::string::npos) E = Dirs.size();
    const std::string Dir = E > B ? Dirs.substr(B, E - B) : ".";
    const std::string Candidate = Dir + "/" + Program;
    DWORD R = CheckExecutable(Candidate);
    if (R == ERROR_SUCCESS) {
      Path = Candidate;
      return R;
    }
    if (R == ERROR_ACCESS_DENIED) Result = R;  // found, but cannot run: say so, as a shell does
    B = E + 1;
  }
  return Result;
}

DWORD CheckWorkingDirectory(const std::string& Directory) {
  if (Directory.empty()) return ERROR_SUCCESS;
  struct stat St {};
  return stat(Directory.c_str(), &St) == 0 && S_ISDIR(St.st_mode) ? ERROR_SUCCESS : ERROR_DIRECTORY;
}

DWORD Spawn(const SpawnRequest& Request, pid_t& Pid) {
  ReapDetached();
  posix_spawn_file_actions_t Actions;
  posix_spawnattr_t Attr;
  posix_spawn_file_actions_init(&Actions);
  posix_spawnattr_init(&Attr);

  posix_spawn_file_actions_addopen(&Actions, 0, "/dev/null", O_RDONLY, 0);
  auto Place = [&Actions](int Fd, int Target) {
    if (Fd == kNullFd) posix_spawn_file_actions_addopen(&Actions, Target, "/dev/null", O_WRONLY, 0);
    else if (Fd >= 0) posix_spawn_file_actions_adddup2(&Actions, Fd, Target);
  };
  Place(Request.OutputFd, 1);
  if (Request.ErrorToOutput) posix_spawn_file_actions_adddup2(&Actions, 1, 2);
  else Place(Request.ErrorFd, 2);
  posix_spawn_file_actions_addclosefrom_np(&Actions, 3);
  if (!Request.WorkingDirectory.empty())
    posix_spawn_file_actions_addchdir_np(&Actions, Request.WorkingDirectory.c_str());

  short Flags = POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK;
  if (Request.NewProcessGroup) {
    Flags |= POSIX_SPAWN_SETPGROUP;
    posix_spawnattr_setpgroup(&Attr, 0);
  }
  posix_spawnattr_setflags(&Attr, Flags);
  sigset_t Defaults, Empty;
  sigemptyset(&Defaults);
  for (int Sig : {SIGINT, SIGTERM, SIGPIPE, SIGCHLD}) sigaddset(&Defaults, Sig);
  sigemptyset(&Empty);
  posix_spawnattr_setsigdefault(&Attr, &Defaults);
  posix_spawnattr_setsigmask(&Attr, &Empty);

  std::vector<char*> Argv;
  for (const std::string& A : Request.Argv) Argv.push_back(const_cast<char*>(A.c_str()));
  Argv.push_back(nullptr);
  int Err = posix_spawn(&Pid, Request.Path.c_str(), &Actions, &Attr, Argv.data(), environ);
  if (Err == ENOEXEC) {
    // A script without a "#!" line: run it with the shell, as execvp and every shell do.
    std::string Shell = "/bin/sh";
    Argv[0] = const_cast<char*>(Request.Path.c_str());
    Argv.insert(Argv.begin(), Shell.data());
    Err = posix_spawn(&Pid, Shell.c_str(), &Actions, &Attr, Argv.data(), environ);
  }
  posix_spawn_file_actions_destroy(&Actions);
  posix_spawnattr_destroy(&Attr);
  if (Err == 0) return ERROR_SUCCESS;
  if (Err == ENOEXEC) return ERROR_BAD_EXE_FORMAT;
  if (Err == ENOENT && !Request.WorkingDirectory.empty()) return ERROR_DIRECTORY;  // vanished since the check
  return ErrnoToWindowsError(Err);
}

void AdoptDetached(pid_t Pid) {
  std::lock_guard<std::mutex> Lock(DetachedMutex);
  Detached.push_back(Pid);
}

void ReapDetached() {
  std::lock_guard<std::mutex> Lock(DetachedMutex);
  std::erase_if(Detached, [](pid_t P) { return waitpid(P, nullptr, WNOHANG) != 0; });
}

void RegisterGroup(pid_t Pid) {
  for (auto& Slot : Groups) {
    pid_t Free = 0;
    if (Slot.compare_exchange_strong(Free, Pid)) return;
  }
}

void UnregisterGroup(pid_t Pid) {
  for (auto& Slot : Groups) {
    pid_t Mine = Pid;
    if (Slot.compare_exchange_strong(Mine, 0)) return;
  }
}

int PidFdOpen(pid_t Pid) {
  // Called through syscall(): this C library's <sys/pidfd.h> does not declare it for C++.
  const int Fd = static_cast<int>(syscall(SYS_pidfd_open, Pid, 0));
  if (Fd >= 0) fcntl(Fd, F_SETFD, FD_CLOEXEC);
  return Fd;
}

int ExitCodeOf(int Status) {
  if (WIFEXITED(Status)) return WEXITSTATUS(Status);
  if (WIFSIGNALED(Status)) return 128 + WTERMSIG(Status);
  return Status;
}

}  // namespace zt::platform::posix

namespace zt::platform {

void KillChildProcessGroups() {
  for (auto& Slot : posix::Groups) {
    const pid_t P = Slot.load();
    if (P > 0) kill(-P, SIGKILL);
  }
}

}  // namespace zt::platform
