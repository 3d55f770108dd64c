// The program's stop on POSIX (stop.h): the cancel flag of long operations,
// and the files in the making that an abrupt end cleans up.
//
// Every file operation that creates a file to write, renames it into place,
// removes it, or sets a file aside runs under one lock together with its
// bookkeeping, so a file is either handled by its owner or by
// AbandonPendingFiles, never half by each. AbandonPendingFiles keeps the
// lock for good: an owner that comes later waits for the program's end.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <mutex>
#include <vector>

#include "platform/paths.h"
#include "platform/posix/posix_env.h"
#include "platform/stop.h"

namespace zt::platform {

namespace {

std::atomic<bool> Cancelled{false};

struct PendingFile {
  std::string Path;
  std::string Original;  // empty: a file being written; else the name Path was set aside from
};

std::mutex& Lock() {
  static std::mutex* M = new std::mutex;  // never destroyed: Abandon keeps it locked to the end
  return *M;
}

std::vector<PendingFile>& Files() {
  static auto* F = new std::vector<PendingFile>;
  return *F;
}

void Forget(const std::string& Path) {
  auto& F = Files();
  for (auto It = F.begin(); It != F.end(); ++It)
    if (It->Path == Path) {
      F.erase(It);
      return;
    }
}

// rename(2) that refuses to replace To; the check-then-rename fallback for
// file systems that cannot refuse atomically.
int RenameNoReplace(const std::string& From, const std::string& To) {
  if (renameat2(AT_FDCWD, From.c_str(), AT_FDCWD, To.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  struct stat St;
  if (lstat(To.c_str(), &St) == 0) return EEXIST;
  return rename(From.c_str(), To.c_str()) == 0 ? 0 : errno;
}

}  // namespace

void CancelLongOperations() { Cancelled.store(true, std::memory_order_relaxed); }
void ResumeLongOperations() { Cancelled.store(false, std::memory_order_relaxed); }
bool LongOperationsCancelled() { return Cancelled.load(std::memory_order_relaxed); }

void AbandonPendingFiles() {
  CancelLongOperations();
  Lock().lock();  // for good
  for (const PendingFile& F : Files()) {
    if (F.Original.empty()) {
      unlink(F.Path.c_str());
    } else if (RenameNoReplace(F.Path, F.Original) == EEXIST) {
      unlink(F.Path.c_str());  // a finished move took the name: the old file was to go
    }
  }
  Files().clear();
}

namespace posix {

std::string TempNameBeside(const std::string& Target) {
  // A hidden name that keeps the target's, so a crash leaves a recognisable file.
  static std::atomic<unsigned> Counter{0};
  char Suffix[32];
  std::snprintf(Suffix, sizeof Suffix, "%x-%x", static_cast<unsigned>(getpid()), Counter.fetch_add(1));
  return ExtractFilePath(Target) + "." + ExtractFileName(Target).substr(0, 200) + ".zt-" + Suffix;
}

int CreatePendingFile(const std::string& Path, int Flags, mode_t Mode) {
  std::lock_guard<std::mutex> Guard(Lock());
  int Fd = open(Path.c_str(), Flags | O_CREAT | O_EXCL | O_CLOEXEC, Mode);
  if (Fd >= 0) Files().push_back({Path, {}});
  return Fd;
}

int CreatePendingTemporary(std::string& Template, int SuffixLength) {
  std::lock_guard<std::mutex> Guard(Lock());
  int Fd = mkostemps(Template.data(), SuffixLength, O_CLOEXEC);
  if (Fd >= 0) Files().push_back({Template, {}});
  return Fd;
}

int RenamePendingFile(const std::string& From, const std::string& To, bool NoReplace) {
  std::lock_guard<std::mutex> Guard(Lock());
  int Error = NoReplace ? RenameNoReplace(From, To) : rename(From.c_str(), To.c_str()) == 0 ? 0 : errno;
  if (Error == 0) Forget(From);
  return Error;
}

void KeepPendingFile(const std::string& Path) {
  std::lock_guard<std::mutex> Guard(Lock());
  Forget(Path);
}

void RemovePendingFile(const std::string& Path) {
  std::lock_guard<std::mutex> Guard(Lock());
  unlink(Path.c_str());
  Forget(Path);
}

int SetFileAsidePending(const std::string& Path, std::string& Aside) {
  std::lock_guard<std::mutex> Guard(Lock());
  int Error = EEXIST;
  for (int Attempt = 0; Attempt < 100 && Error == EEXIST; ++Attempt) {
    Aside = TempNameBeside(Path);
    Error = RenameNoReplace(Path, Aside);
  }
  if (Error == 0) Files().push_back({Aside, Path});
  return Error;
}

int PutBackPendingFile(const std::string& Aside, const std::string& Original) {
  std::lock_guard<std::mutex> Guard(Lock());
  int Error = RenameNoReplace(Aside, Original);
  Forget(Aside);  // put back, or (its name taken) left as a hidden file of its own
  return Error;
}

}  // namespace posix
}  // namespace zt::platform
