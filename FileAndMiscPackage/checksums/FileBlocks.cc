#include "checksums/FileBlocks.h"

#include <memory>

namespace zt::package {
namespace {

// A small first block serves small files from the allocator's cache; only a
// file that fills it gets the large buffer: large enough that the number of
// reads does not matter, small enough that the bytes a read copies are still
// in the processor's second-level cache when the checksum runs over them.
// Page alignment lets the kernel copy at full speed.
constexpr int FirstBlockSize = 64 * 1024;
constexpr int BlockSize = 256 * 1024;
constexpr std::align_val_t BlockAlignment{4096};

struct TAlignedDelete {
  void operator()(unsigned char* P) const { ::operator delete[](P, BlockAlignment); }
};
using TBlock = std::unique_ptr<unsigned char[], TAlignedDelete>;

TBlock NewBlock(int Size) { return TBlock(new (BlockAlignment) unsigned char[Size]); }

}  // namespace

bool ReadFileInBlocks(platform::THandle Handle,
                      const std::function<void(const unsigned char* Data, std::size_t Len)>& Consume) {
  TBlock Buffer = NewBlock(FirstBlockSize);
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
  if (!platform::FileConsumeMapped(Handle, Consume)) return false;
  Buffer = NewBlock(BlockSize);
  for (;;) {
    Read = platform::FileRead(Handle, Buffer.get(), BlockSize);
    if (Read < 0) return false;
    if (Read == 0) return true;
    Consume(Buffer.get(), static_cast<std::size_t>(Read));
  }
}

}  // namespace zt::package
