// The registry store's file on POSIX: where it is, the snapshot readers
// share, and the locked read-modify-write of every change.
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <unistd.h>

#include <mutex>

#include "platform/files.h"
#include "platform/paths.h"
#include "platform/posix/posix_env.h"
#include "platform/registry_file.h"
#include "platform/system_paths.h"

namespace zt::platform {

namespace {

// The last document read and the text it was read from. A file's times
// and inode cannot tell two versions apart (inodes are reused and times are
// coarse), so the text is compared: reading is cheap, parsing is not.
struct Snapshot {
  std::string FileName, Text;
  std::shared_ptr<const TRegistryDocument> Doc;
};
std::mutex SnapshotMutex;
Snapshot Last;

// The document in Path; a missing file (or folder) is an empty registry.
std::shared_ptr<const TRegistryDocument> Load(const std::string& Path) {
  std::string Text;
  if (!ReadWholeFile(Path, Text)) {
    DWORD Error = GetLastError();
    if (Error == ERROR_FILE_NOT_FOUND || Error == ERROR_PATH_NOT_FOUND)
      return std::make_shared<const TRegistryDocument>();
    throw ERegistryStoreError(Path + ": cannot read the registry store: " + SysErrorMessage(Error));
  }
  {
    std::lock_guard<std::mutex> Lock(SnapshotMutex);
    if (Last.Doc && Last.FileName == Path && Last.Text == Text) return Last.Doc;
  }
  auto Doc = std::make_shared<const TRegistryDocument>(TRegistryDocument::Parse(Text, Path));
  std::lock_guard<std::mutex> Lock(SnapshotMutex);
  Last = {Path, std::move(Text), Doc};
  return Doc;
}

std::string DefaultDataHome() {
  const char* Xdg = getenv("XDG_DATA_HOME");
  if (Xdg && Xdg[0] == '/') return Xdg;  // a relative one is to be ignored
  const std::string Home = GetHomeDirectory();
  return (Home.empty() ? std::string("/") : Home) + "/.local/share";
}

// The store's advisory lock, held while the object lives.
class StoreLock {
 public:
  explicit StoreLock(const std::string& Path) {
    Fd_ = open((Path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (Fd_ < 0) {
      Error_ = posix::PathError(errno, Path + ".lock");
      return;
    }
    while (flock(Fd_, LOCK_EX) != 0)
      if (errno != EINTR) {
        Error_ = ErrnoToWindowsError(errno);
        return;
      }
  }
  ~StoreLock() {
    if (Fd_ >= 0) close(Fd_);  // releases the lock
  }
  StoreLock(const StoreLock&) = delete;
  StoreLock& operator=(const StoreLock&) = delete;
  DWORD Error() const { return Error_; }

 private:
  int Fd_ = -1;
  DWORD Error_ = ERROR_SUCCESS;
};

}  // namespace

std::string RegistryFileName() {
  const char* Env = getenv("ZT_REGISTRY");
  if (Env && *Env) return Env;
  return DefaultDataHome() + "/zt/registry.json";
}

std::shared_ptr<const TRegistryDocument> ReadRegistry() { return Load(RegistryFileName()); }

DWORD UpdateRegistry(const TRegistryEdit& Edit) {
  const std::string Path = RegistryFileName();
  const char* Env = getenv("ZT_REGISTRY");
  if (!(Env && *Env)) ForceDirectories(ExtractFileDir(Path));  // only the default's folders are made
  StoreLock Lock(Path);
  if (Lock.Error()) return Lock.Error();
  TRegistryDocument Doc = *Load(Path);
  bool Changed = false;
  if (DWORD Error = Edit(Doc, Changed)) return Error;
  if (!Changed) return ERROR_SUCCESS;
  std::string Text = Doc.Serialize();
  if (!WriteFileAtomically(Path, Text)) return GetLastError();
  std::lock_guard<std::mutex> Guard(SnapshotMutex);
  Last = {Path, std::move(Text), std::make_shared<const TRegistryDocument>(std::move(Doc))};
  return ERROR_SUCCESS;
}

}  // namespace zt::platform
