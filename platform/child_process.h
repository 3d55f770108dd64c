// Programs the host starts for process actions: one child process with its
// output streams on pipes, in a process group of its own so that the whole
// tree it starts can be stopped together.
//
// Thread use: one thread drives a ChildProcess; only Wake may be called from
// another thread while it does.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/win_types.h"

namespace zt::platform {

// Where one standard stream of the program goes.
enum class StreamTarget {
  Inherit,     // the host's own stream
  Pipe,        // a pipe the host reads (Pump)
  Null,        // /dev/null
  SameAsOutput, // the error stream only: wherever the output stream goes
  HostError     // the output stream only: the host's own error stream
};

struct ChildProcessOptions {
  // A path (relative to the current directory), or a bare name looked up in
  // PATH.
  std::string Program;
  std::vector<std::string> Arguments;  // after the program's own name
  std::string WorkingDirectory;        // empty: the current directory
  StreamTarget Output = StreamTarget::Inherit;
  StreamTarget Error = StreamTarget::Inherit;
};

class ChildProcess {
 public:
  enum class Stream { Output, Error };
  enum class Event { Exited, Woken, TimedOut };
  using DataSink = std::function<void(Stream, const char* Data, std::size_t Size)>;

  // Starts the program with standard input from the null device, in a new
  // process group, with default signal handling. 0, or a Windows error:
  // ERROR_FILE_NOT_FOUND (2) no such program, ERROR_PATH_NOT_FOUND (3) a
  // directory on its path is missing, ERROR_ACCESS_DENIED (5) not
  // executable, ERROR_DIRECTORY (267) the working directory does not exist,
  // ERROR_BAD_EXE_FORMAT (193) the system cannot run the file.
  static DWORD Start(const ChildProcessOptions& Options, std::unique_ptr<ChildProcess>& Started);

  // A program still running (and not detached) is killed with its group.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  int Pid() const { return Pid_; }

  // Hands output from the pipes to Sink as it arrives, until the program
  // has ended (Exited), Wake was called (Woken) or MaxWaitMs passed
  // (TimedOut; negative waits without limit). On Exited, what the program
  // left in its pipes has been handed on and the pipes are closed: output
  // of programs it started that outlive it is not waited for. A program
  // that closes its pipes but keeps running is still waited for.
  Event Pump(int MaxWaitMs, const DataSink& Sink);
  // Makes the running (or next) Pump return Woken.
  void Wake();
  // Sends Signal to every process of the program's group. Harmless once the
  // group is empty; the group's id stays reserved until Finish.
  void SignalGroup(int Signal);
  // After Exited: collects the program and returns its exit code, or 128 +
  // the signal number that ended it.
  int Finish();
  // Leaves the program running on its own: nobody waits for it, and it is
  // collected in the background once it ends.
  void Detach();

 private:
  ChildProcess() = default;
  void DrainPipes(const DataSink& Sink);

  int Pid_ = -1;
  int PidFd_ = -1;  // readable once the program ends (-1: polled instead)
  int WakeFds_[2] = {-1, -1};
  int OutFd_ = -1, ErrFd_ = -1;
  bool Exited_ = false, Finished_ = false, Detached_ = false;
  int ExitCode_ = 0;
};

// Kills, with SIGKILL, the groups of every program started by ChildProcess
// that is still running. Async-signal-safe: for a host that must exit at
// once from a signal handler without leaving programs behind.
void KillChildProcessGroups();

}  // namespace zt::platform
