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

bool Env::PathExists(const std::string& Path, bool& IsDirectory) {
  FileInfo Info;
  if (Default()->QueryFileInfo(Path, Info) != ERROR_SUCCESS) return false;
  IsDirectory = (Info.Attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return true;
}

Env* Env::SetDefault(Env* Replacement) {
  Env* Previous = Installed.exchange(Replacement, std::memory_order_acq_rel);
  return Previous ? Previous : Platform();
}

}  // namespace zt::platform
