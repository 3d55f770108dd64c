// Processes in tests: whether one still runs, the ID a program wrote to a
// file, and programs the test starts itself (and must collect).
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace zt::testing {

// True while Pid runs: a process that has ended but was not collected yet
// ("Z" in /proc) does not count.
inline bool ProcessRunning(pid_t Pid) {
  std::ifstream In("/proc/" + std::to_string(Pid) + "/stat");
  std::string Stat;
  if (Pid <= 0 || !std::getline(In, Stat)) return false;
  const auto Close = Stat.rfind(')');
  return Close != std::string::npos && Close + 2 < Stat.size() && Stat[Close + 2] != 'Z' && Stat[Close + 2] != 'X';
}

// The number in the file at Path (a program wrote its ID there), 0 if none.
inline pid_t ReadPid(const std::string& Path) {
  std::ifstream In(Path);
  long Pid = 0;
  In >> Pid;
  return static_cast<pid_t>(Pid);
}

// Polls Condition every 10 ms for up to Seconds.
template <class Fn>
bool WaitUntil(Fn Condition, double Seconds = 5) {
  const auto End = std::chrono::steady_clock::now() + std::chrono::duration<double>(Seconds);
  while (!Condition()) {
    if (std::chrono::steady_clock::now() > End) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

// A program the test starts and collects; killed when the object goes.
class TestProcess {
 public:
  explicit TestProcess(std::vector<std::string> Argv) {
    Pid_ = fork();
    if (Pid_ == 0) {
      std::vector<char*> Args;
      for (auto& A : Argv) Args.push_back(A.data());
      Args.push_back(nullptr);
      execv(Args[0], Args.data());
      _exit(127);
    }
  }
  ~TestProcess() {
    if (Pid_ > 0 && !Collected_) {  // never kill(-1) or kill(0)
      kill(Pid_, SIGKILL);
      Wait();
    }
  }
  TestProcess(const TestProcess&) = delete;
  TestProcess& operator=(const TestProcess&) = delete;

  pid_t Pid() const { return Pid_; }
  // Collects the program; its wait status.
  int Wait() {
    if (Pid_ > 0 && !Collected_) waitpid(Pid_, &Status_, 0);
    Collected_ = true;
    return Status_;
  }

 private:
  pid_t Pid_ = -1;
  int Status_ = 0;
  bool Collected_ = false;
};

}  // namespace zt::testing
