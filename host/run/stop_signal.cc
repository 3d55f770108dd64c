#include "host/run/stop_signal.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>

#include "platform/child_process.h"

namespace zt::host {

namespace {

int PipeFds[2] = {-1, -1};
std::atomic<int> SignalsSeen{0};
struct sigaction OldInt, OldTerm;

void OnSignal(int) {
  if (SignalsSeen.fetch_add(1) > 0) {  // the user insists
    platform::KillChildProcessGroups();
    _exit(130);
  }
  char Byte = 's';
  [[maybe_unused]] ssize_t N = write(PipeFds[1], &Byte, 1);
}

}  // namespace

StopSignal::StopSignal(std::function<void()> OnStop) : OnStop_(std::move(OnStop)) {
  if (pipe(PipeFds) != 0) return;
  SignalsSeen = 0;
  struct sigaction Sa {};
  Sa.sa_handler = OnSignal;
  sigemptyset(&Sa.sa_mask);
  Sa.sa_flags = SA_RESTART;
  sigaction(SIGINT, &Sa, &OldInt);
  sigaction(SIGTERM, &Sa, &OldTerm);
  Watcher_ = std::thread([this] {
    char Byte;
    while (read(PipeFds[0], &Byte, 1) == 1 && Byte == 's') OnStop_();
  });
}

StopSignal::~StopSignal() {
  if (!Watcher_.joinable()) return;
  sigaction(SIGINT, &OldInt, nullptr);
  sigaction(SIGTERM, &OldTerm, nullptr);
  char Quit = 'q';
  [[maybe_unused]] ssize_t N = write(PipeFds[1], &Quit, 1);
  Watcher_.join();
  close(PipeFds[0]);
  close(PipeFds[1]);
  PipeFds[0] = PipeFds[1] = -1;
}

}  // namespace zt::host
