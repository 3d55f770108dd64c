// Child processes on POSIX: posix_spawn into a new process group, output on
// non-blocking pipes, the end of the program seen through a pidfd, and a
// wake-up pipe so another thread can interrupt a wait.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

#include "platform/child_process.h"
#include "platform/errors.h"
#include "platform/posix/spawn_posix.h"

namespace zt::platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kPipeSize = 1 << 20;  // fewer wake-ups for chatty programs
constexpr std::size_t kReadSize = 256 * 1024;

void CloseFd(int& Fd) {
  if (Fd >= 0) close(Fd);
  Fd = -1;
}

// A pipe whose read end is non-blocking; both ends close on exec.
bool MakePipe(int Fds[2], int Size = kPipeSize) {
  if (pipe2(Fds, O_CLOEXEC) != 0) return false;
  fcntl(Fds[0], F_SETFL, O_NONBLOCK);
  if (Size > 0) fcntl(Fds[0], F_SETPIPE_SZ, Size);
  return true;
}

// Reads what Fd holds now, at most a few reads' worth, so that a program
// that never stops writing still lets the caller see its time-out and stop
// requests. False once the writers have all gone (or on error).
bool ReadAvailable(int Fd, ChildProcess::Stream S, const ChildProcess::DataSink& Sink, int MaxReads = 4) {
  static thread_local std::string Buffer(kReadSize, '\0');
  for (int Reads = 0; Reads < MaxReads; ++Reads) {
    const ssize_t N = read(Fd, Buffer.data(), Buffer.size());
    if (N > 0) {
      Sink(S, Buffer.data(), static_cast<std::size_t>(N));
      if (static_cast<std::size_t>(N) < Buffer.size()) return true;
    } else if (N < 0 && errno == EINTR) {
      continue;
    } else {
      return N < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
    }
  }
  return true;
}

}  // namespace

DWORD ChildProcess::Start(const ChildProcessOptions& Options, std::unique_ptr<ChildProcess>& Started) {
  posix::SpawnRequest Request;
  if (DWORD E = posix::ResolveProgram(Options.Program, Request.Path)) return E;
  if (DWORD E = posix::CheckWorkingDirectory(Options.WorkingDirectory)) return E;
  Request.WorkingDirectory = Options.WorkingDirectory;
  Request.Argv.push_back(Options.Program);
  Request.Argv.insert(Request.Argv.end(), Options.Arguments.begin(), Options.Arguments.end());

  std::unique_ptr<ChildProcess> C(new ChildProcess);
  int Out[2] = {-1, -1}, Err[2] = {-1, -1};
  bool PipesMade = true;
  auto Target = [&PipesMade](StreamTarget T, int Fds[2]) -> int {
    if (T == StreamTarget::Null) return posix::kNullFd;
    if (T == StreamTarget::HostError) return STDERR_FILENO;
    if (T != StreamTarget::Pipe) return -1;
    PipesMade = PipesMade && MakePipe(Fds);
    return Fds[1];
  };
  Request.OutputFd = Target(Options.Output, Out);
  Request.ErrorToOutput = Options.Error == StreamTarget::SameAsOutput;
  if (!Request.ErrorToOutput) Request.ErrorFd = Target(Options.Error, Err);
  PipesMade = PipesMade && MakePipe(C->WakeFds_, 0);
  const DWORD PipeError = PipesMade ? ERROR_SUCCESS : ErrnoToWindowsError(errno);
  fcntl(C->WakeFds_[1], F_SETFL, O_NONBLOCK);

  pid_t Pid = -1;
  const DWORD E = PipeError ? PipeError : posix::Spawn(Request, Pid);
  CloseFd(Out[1]);
  CloseFd(Err[1]);
  if (E != ERROR_SUCCESS) {
    CloseFd(Out[0]);
    CloseFd(Err[0]);
    return E;
  }
  C->Pid_ = Pid;
  C->OutFd_ = Out[0];
  C->ErrFd_ = Err[0];
  C->PidFd_ = posix::PidFdOpen(Pid);
  posix::RegisterGroup(Pid);
  Started = std::move(C);
  return ERROR_SUCCESS;
}

ChildProcess::~ChildProcess() {
  if (Pid_ > 0 && !Finished_) {
    if (Detached_) {
      posix::AdoptDetached(Pid_);
    } else {
      kill(-Pid_, SIGKILL);
      waitpid(Pid_, nullptr, 0);
      posix::UnregisterGroup(Pid_);
    }
  }
  CloseFd(OutFd_);
  CloseFd(ErrFd_);
  CloseFd(PidFd_);
  CloseFd(WakeFds_[0]);
  CloseFd(WakeFds_[1]);
}

ChildProcess::Event ChildProcess::Pump(int MaxWaitMs, const DataSink& Sink) {
  if (Exited_) return Event::Exited;
  const auto Deadline = Clock::now() + std::chrono::milliseconds(MaxWaitMs < 0 ? 0 : MaxWaitMs);
  for (;;) {
    pollfd Fds[4];
    int N = 0;
    const int WakeAt = N;
    Fds[N++] = {WakeFds_[0], POLLIN, 0};
    const int OutAt = OutFd_ >= 0 ? N : -1;
    if (OutFd_ >= 0) Fds[N++] = {OutFd_, POLLIN, 0};
    const int ErrAt = ErrFd_ >= 0 ? N : -1;
    if (ErrFd_ >= 0) Fds[N++] = {ErrFd_, POLLIN, 0};
    const int PidAt = PidFd_ >= 0 ? N : -1;
    if (PidFd_ >= 0) Fds[N++] = {PidFd_, POLLIN, 0};

    int Timeout = -1;
    if (MaxWaitMs >= 0) {
      const auto Left = std::chrono::duration_cast<std::chrono::milliseconds>(Deadline - Clock::now()).count();
      Timeout = Left > 0 ? static_cast<int>(Left) : 0;
    }
    if (PidFd_ < 0 && (Timeout < 0 || Timeout > 10)) Timeout = 10;  // no pidfd: look for the end every 10 ms
    if (poll(Fds, N, Timeout) < 0) {
      if (errno != EINTR) usleep(10000);  // out of resources for a moment: look again shortly
      continue;
    }

    if (Fds[WakeAt].revents) {
      char Drain[64];
      while (read(WakeFds_[0], Drain, sizeof Drain) > 0) {
      }
      return Event::Woken;
    }
    if (OutAt >= 0 && Fds[OutAt].revents && !ReadAvailable(OutFd_, Stream::Output, Sink)) CloseFd(OutFd_);
    if (ErrAt >= 0 && Fds[ErrAt].revents && !ReadAvailable(ErrFd_, Stream::Error, Sink)) CloseFd(ErrFd_);
    if (PidAt < 0 || Fds[PidAt].revents) {
      siginfo_t Info{};
      if (waitid(P_PID, static_cast<id_t>(Pid_), &Info, WEXITED | WNOHANG | WNOWAIT) == 0 && Info.si_pid == Pid_) {
        Exited_ = true;
        DrainPipes(Sink);
        return Event::Exited;
      }
    }
    if (MaxWaitMs >= 0 && Clock::now() >= Deadline) return Event::TimedOut;
  }
}

void ChildProcess::DrainPipes(const DataSink& Sink) {
  // What the program wrote is in the pipe, which holds one pipe's worth;
  // reading no more keeps a child that writes on and on from holding us here.
  constexpr int kPipeReads = kPipeSize / static_cast<int>(kReadSize) + 1;
  if (OutFd_ >= 0) ReadAvailable(OutFd_, Stream::Output, Sink, kPipeReads);
  if (ErrFd_ >= 0) ReadAvailable(ErrFd_, Stream::Error, Sink, kPipeReads);
  CloseFd(OutFd_);
  CloseFd(ErrFd_);
}

void ChildProcess::Wake() {
  const char Byte = 'w';
  [[maybe_unused]] ssize_t N = write(WakeFds_[1], &Byte, 1);
}

void ChildProcess::SignalGroup(int Signal) {
  if (Pid_ > 0 && !Finished_) kill(-Pid_, Signal);
}

int ChildProcess::Finish() {
  if (Finished_ || Pid_ <= 0) return ExitCode_;
  int Status = 0;
  while (waitpid(Pid_, &Status, 0) < 0 && errno == EINTR) {
  }
  Finished_ = true;
  ExitCode_ = posix::ExitCodeOf(Status);
  posix::UnregisterGroup(Pid_);
  return ExitCode_;
}

void ChildProcess::Detach() {
  Detached_ = true;
  posix::UnregisterGroup(Pid_);
}

}  // namespace zt::platform
