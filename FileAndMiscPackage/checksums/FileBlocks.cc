#include "checksums/FileBlocks.h"

#include <memory>

namespace zt::package {
namespace {

// A small first block serves small files from the allocator's cache; only a
// file that fills it gets the large buffer, sized so the checksum rather
// than the number of reads sets the speed.
constexpr int FirstBlockSize = 64 * 1024;
constexpr int BlockSize = 1024 * 1024;

}  // namespace

bool ReadFileInBlocks(platform::THandle Handle,
                      const std::function<void(const unsigned char* Data, std::size_t Len)>& Consume) {
  std::unique_ptr<unsigned char[]> Buffer(new unsigned char[FirstBlockSize]);
  int Read = platform::FileRead(Handle, Buffer.get(), FirstBlockSize);
  if (Read < 0) return false;
  if (Read == 0) return true;
  Consume(Buffer.get(), static_cast<std::size_t>(Read));
  if (Read < FirstBlockSize) {
    // Short read: usually the end, but a read may return less than asked.
    Read = platform::FileRead(Handle, Buffer.get(), FirstBlockSize);
    if (Read < 0) return false;
    if (Read == 0) return true;
    Consume(Buffer.get(), static_cast<std::size_t>(Read));
  }
  Buffer.reset(new unsigned char[BlockSize]);
  for (;;) {
    Read = platform::FileRead(Handle, Buffer.get(), BlockSize);
    if (Read < 0) return false;
    if (Read == 0) return true;
    Consume(Buffer.get(), static_cast<std::size_t>(Read));
  }
}

}  // namespace zt::package
