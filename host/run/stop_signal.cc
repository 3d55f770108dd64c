#include "host/run/stop_signal.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <chrono>

#include "platform/child_process.h"

namespace zt::host {

namespace {

int PipeFds[2] = {-1, -1};
std::atomic<int> SignalsSeen{0};
struct sigaction OldInt, OldTerm;

// How long the way out may take before the process ends regardless (a log
// written to a pipe nobody reads could block it).
constexpr auto kExitPatience = std::chrono::seconds(1);

void OnSignal(int) {
  const int Seen = SignalsSeen.fetch_add(1);
  if (Seen > 0) platform::KillChildProcessGroups();  // the user insists: programs the build started go now
  if (Seen >= 2) _exit(130);
  char Byte = Seen == 0 ? 's' : 'x';
  [[maybe_unused]] ssize_t N = write(PipeFds[1], &Byte, 1);
}

}  // namespace

StopSignal::StopSignal(std::function<void()> OnStop, std::function<void()> OnExit)
    : OnStop_(std::move(OnStop)), OnExit_(std::move(OnExit)) {
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
    while (read(PipeFds[0], &Byte, 1) == 1 && Byte != 'q') {
      if (Byte == 's') {
        OnStop_();
        continue;
      }
      std::thread([] {
        std::this_thread::sleep_for(kExitPatience);
        _exit(130);
      }).detach();
      if (OnExit_) OnExit_();
      _exit(130);
    }
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
