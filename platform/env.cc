// The installed Env. The platform's own lives in posix/ or windows/.
#include "platform/env.h"

#include <atomic>

namespace zt::platform {

namespace {
std::atomic<Env*> Installed{nullptr};
}  // namespace

Env* Env::Default() {
  Env* E = Installed.load(std::memory_order_acquire);
  return E ? E : Platform();
}

Env* Env::SetDefault(Env* Replacement) {
  Env* Previous = Installed.exchange(Replacement, std::memory_order_acq_rel);
  return Previous ? Previous : Platform();
}

}  // namespace zt::platform
