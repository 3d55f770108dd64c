// Reading a whole file in large fixed-size blocks, for the checksum
// routines: memory use stays constant whatever the file's size, and a large
// file costs few system calls.
#pragma once

#include <cstddef>
#include <functional>

#include "platform/files.h"

namespace zt::package {

// Reads Handle from its current position to the end and hands every block
// read, in order, to Consume. False when a read fails (the last error is
// set); the blocks read before the failure have been consumed. The rest of
// a large file is handed over where it lies in the page cache
// (platform::FileConsumeMapped): Consume commits its result only as it
// returns, for a block another program truncates away ends it early.
bool ReadFileInBlocks(platform::THandle Handle,
                      const std::function<void(const unsigned char* Data, std::size_t Len)>& Consume);

// Closes a handle from FileOpen when it goes out of scope.
class TFileHandleGuard {
 public:
  explicit TFileHandleGuard(platform::THandle Handle) : Handle_(Handle) {}
  ~TFileHandleGuard() {
    if (Handle_ != platform::INVALID_HANDLE_VALUE) platform::FileClose(Handle_);
  }
  TFileHandleGuard(const TFileHandleGuard&) = delete;
  TFileHandleGuard& operator=(const TFileHandleGuard&) = delete;

 private:
  platform::THandle Handle_;
};

}  // namespace zt::package
