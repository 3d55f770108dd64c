// FileConsumeMapped on POSIX. The file is mapped and handed over in pieces,
// each brought into memory first (MADV_POPULATE_READ), so the checksum runs
// over the page cache itself rather than over a copy of it. A page that
// another program truncates away between the populate and the read raises
// SIGBUS; the handler below turns that into a jump back here, for this
// thread's mapping only, and the caller's reads take over from the piece
// that was cut short.
#include <setjmp.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <mutex>

#include "platform/files.h"
#include "platform/posix/posix_env.h"
#include "platform/stop.h"

namespace zt::platform {

namespace {

// A piece: large enough that the calls per piece do not count, small enough
// that a stop is seen within a few milliseconds.
constexpr std::size_t kPiece = 4 << 20;

struct TMappedRange {
  const unsigned char* Begin = nullptr;
  const unsigned char* End = nullptr;
  sigjmp_buf Back;
};
thread_local TMappedRange* Reading = nullptr;  // this thread's mapping while Consume reads it

struct sigaction PreviousBusHandler;

void OnBusError(int Signal, siginfo_t* Info, void* Context) {
  TMappedRange* R = Reading;
  const auto* At = static_cast<const unsigned char*>(Info->si_addr);
  if (R && At >= R->Begin && At < R->End) siglongjmp(R->Back, 1);
  // Not ours: whoever handled it before does, or the default ends the program.
  if (PreviousBusHandler.sa_flags & SA_SIGINFO) return PreviousBusHandler.sa_sigaction(Signal, Info, Context);
  sigaction(SIGBUS, &PreviousBusHandler, nullptr);
}

void InstallBusHandler() {
  static std::once_flag Once;
  std::call_once(Once, [] {
    struct sigaction A = {};
    A.sa_sigaction = OnBusError;
    A.sa_flags = SA_SIGINFO;
    sigemptyset(&A.sa_mask);
    sigaction(SIGBUS, &A, &PreviousBusHandler);
  });
}

}  // namespace

bool FileConsumeMapped(THandle Handle, const std::function<void(const unsigned char*, std::size_t)>& Consume) {
  const int Fd = static_cast<int>(Handle);
  struct stat St;
  if (!posix::PlatformEnvInstalled() || fstat(Fd, &St) != 0 || !S_ISREG(St.st_mode)) return true;
  const off_t Start = lseek(Fd, 0, SEEK_CUR);
  if (Start < 0 || St.st_size - Start < posix::kMapFrom) return true;
  // A mapping starts on a page; the bytes before Start in that page are skipped.
  const off_t Base = Start - Start % sysconf(_SC_PAGESIZE);
  const std::size_t Length = static_cast<std::size_t>(St.st_size - Base);
  void* Map = mmap(nullptr, Length, PROT_READ, MAP_SHARED, Fd, Base);
  if (Map == MAP_FAILED) return true;
  InstallBusHandler();
  TMappedRange Range;
  Range.Begin = static_cast<const unsigned char*>(Map);
  Range.End = Range.Begin + Length;
  // However the reading ends, an exception from Consume included, the
  // mapping goes and the handler stops pointing here.
  struct TUnmapOnExit {
    void* Map;
    std::size_t Length;
    ~TUnmapOnExit() {
      Reading = nullptr;
      munmap(Map, Length);
    }
  } Unmap{Map, Length};
  volatile std::size_t Done = static_cast<std::size_t>(Start - Base);  // bytes of the mapping handed over
  volatile bool Stopped = false;
  if (sigsetjmp(Range.Back, 1) == 0) {
    Reading = &Range;
    while (Done < Length) {
      if (LongOperationsCancelled()) {
        Stopped = true;
        break;
      }
      const std::size_t Offset = Done, Size = std::min(kPiece, Length - Offset);
      // EFAULT: the piece is no longer all there; the reads take over.
      if (madvise(static_cast<char*>(Map) + Offset, Size, MADV_POPULATE_READ) != 0 && errno == EFAULT) break;
      Consume(Range.Begin + Offset, Size);
      Done = Offset + Size;
    }
  }
  lseek(Fd, Base + static_cast<off_t>(Done), SEEK_SET);
  if (Stopped) return SetLastError(ERROR_OPERATION_ABORTED), false;
  return true;
}

}  // namespace zt::platform
