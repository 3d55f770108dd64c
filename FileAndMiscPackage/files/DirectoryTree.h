// Whole directory trees for the directory actions: removing one (links go as
// links, never entered), copying one, and the identity checks that keep a
// careless path away from the root, the home directory and the tree itself.
#pragma once

#include <functional>
#include <string>

#include "files/FileIdentity.h"
#include "frame/ZTStrings.h"
#include "platform/env.h"

namespace zt::package {

// True when Path is Dir or lies below it, however Path is spelt: its
// parents are followed through "..", so links on the way count where they
// lead.
bool IsSameOrInside(const std::string& Path, const platform::FileInfo& Dir);
// A root of the file system, or the user's home directory or one that holds
// it: what no build step deletes, whatever its variables expanded to.
bool IsProtectedDirectory(const std::string& Dir);

// One walk over a tree; counts what it did and keeps its first failure.
// Thread use: one object per walk.
class TDirectoryTree {
 public:
  // Stop is asked between items; true ends the walk as a failure.
  explicit TDirectoryTree(std::function<bool()> Stop) : Stop_(std::move(Stop)) {}

  // Deletes Dir's contents (unless WithContents is false), then Dir. A
  // symbolic link is removed as a link, never entered. ClearReadOnly:
  // read-only files and directories lose the bit first (never through a
  // link). Stops at the first failure.
  bool Delete(const std::string& Dir, bool ClearReadOnly, bool WithContents = true);
  // Copies the tree Src to the new directory Dst, files with CopyFileExA,
  // attributes and last-write times kept (directories' last). Links are
  // followed, as the copy service follows them.
  bool Copy(const std::string& Src, const std::string& Dst);

  int Files() const { return Files_; }
  int Dirs() const { return Dirs_; }
  bool Stopped() const { return Stopped_; }
  // The failure's lines: "Stopping...", or " --> Error <verb> <object> : "
  // + path and " --> " + the system's message.
  void AddFailure(frame::TStrings& Details) const;

 private:
  bool DeleteDirectory(const std::string& Dir, platform::DWORD Attr, bool ClearReadOnly, bool WithContents);
  bool DeleteContents(const std::string& Dir, bool ClearReadOnly);
  bool Fail(const char* What, const std::string& Path);
  bool CheckStop();

  std::function<bool()> Stop_;
  int Files_ = 0, Dirs_ = 0;
  bool Stopped_ = false;
  std::string FailedWhat_, FailedPath_;
  platform::DWORD FailedError_ = 0;
};

}  // namespace zt::package
