#include "checksums/FileBlocks.h"

#include <atomic>
#include <memory>
#include <semaphore>
#include <thread>

#include "platform/errors.h"

namespace zt::package {
namespace {

// A small first block serves small files from the allocator's cache; only a
// file that fills it gets the large buffers: large enough that the number of
// reads does not matter, small enough that the bytes a read copies are still
// in the processor's cache when the checksum runs over them. Page alignment
// lets the kernel copy at full speed.
constexpr int FirstBlockSize = 64 * 1024;
constexpr int BlockSize = 256 * 1024;
constexpr std::align_val_t BlockAlignment{4096};
// Past this many bytes a second thread reads ahead while the checksum runs
// over the block before: the kernel's copy and the checksum then take about
// as long as the copy alone. Below it a thread costs more than it saves.
constexpr long long ReadAheadAfter = 1024 * 1024;
constexpr int ReadAheadBlocks = 4;

struct TAlignedDelete {
  void operator()(unsigned char* P) const { ::operator delete[](P, BlockAlignment); }
};
using TBlock = std::unique_ptr<unsigned char[], TAlignedDelete>;

TBlock NewBlock(int Size) { return TBlock(new (BlockAlignment) unsigned char[Size]); }

using TConsume = std::function<void(const unsigned char* Data, std::size_t Len)>;

// Reads the rest of the file on its own thread into a ring of blocks, which
// the caller's thread hands to Consume in order. A failed read is reported
// after the blocks before it, with the reading thread's error code.
class TReadAhead {
 public:
  explicit TReadAhead(platform::THandle Handle) : Handle_(Handle) {
    for (TSlot& S : Slots_) S.Data = NewBlock(BlockSize);
    Reader_ = std::thread([this] { ReadAll(); });
  }
  ~TReadAhead() {
    // After the end the reader is gone; after a throwing Consume it may wait
    // for a free block: one more lets it see the stop.
    Stop_.store(true, std::memory_order_relaxed);
    Free_.release();
    Reader_.join();
  }
  TReadAhead(const TReadAhead&) = delete;
  TReadAhead& operator=(const TReadAhead&) = delete;

  bool ConsumeAll(const TConsume& Consume) {
    for (int Next = 0;; Next = (Next + 1) % ReadAheadBlocks) {
      Filled_.acquire();
      const TSlot& S = Slots_[Next];
      if (S.Len <= 0) {
        if (S.Len < 0) platform::SetLastError(S.Error);
        return S.Len == 0;
      }
      Consume(S.Data.get(), static_cast<std::size_t>(S.Len));
      Free_.release();
    }
  }

 private:
  struct TSlot {
    TBlock Data;
    int Len = 0;  // bytes read; 0 at the end, -1 for a failed read
    platform::DWORD Error = 0;
  };

  void ReadAll() {
    for (int Next = 0;; Next = (Next + 1) % ReadAheadBlocks) {
      Free_.acquire();
      if (Stop_.load(std::memory_order_relaxed)) return;
      TSlot& S = Slots_[Next];
      S.Len = platform::FileRead(Handle_, S.Data.get(), BlockSize);
      if (S.Len < 0) S.Error = platform::GetLastError();
      Filled_.release();
      if (S.Len <= 0) return;
    }
  }

  platform::THandle Handle_;
  TSlot Slots_[ReadAheadBlocks];
  std::counting_semaphore<ReadAheadBlocks + 1> Free_{ReadAheadBlocks};
  std::counting_semaphore<ReadAheadBlocks> Filled_{0};
  std::atomic<bool> Stop_{false};
  std::thread Reader_;  // last: starts once the ring is ready
};

}  // namespace

bool ReadFileInBlocks(platform::THandle Handle, const TConsume& Consume) {
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
  Buffer = NewBlock(BlockSize);
  for (long long Done = Read; Done < ReadAheadAfter; Done += Read) {
    Read = platform::FileRead(Handle, Buffer.get(), BlockSize);
    if (Read < 0) return false;
    if (Read == 0) return true;
    Consume(Buffer.get(), static_cast<std::size_t>(Read));
  }
  Buffer.reset();
  TReadAhead Ahead(Handle);
  return Ahead.ConsumeAll(Consume);
}

}  // namespace zt::package
