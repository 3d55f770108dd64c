#include "files/FileComparison.h"

#include <algorithm>
#include <cstring>

#include "platform/errors.h"
#include "platform/files.h"

namespace zt::package {

namespace pf = zt::platform;

namespace {

// Large enough for the kernel's read-ahead, small enough for the cache.
constexpr int kBlock = 256 * 1024;

// One file as a sequence of blocks, line ends normalised to LF in text mode.
class TBlockReader {
 public:
  TBlockReader(pf::THandle Handle, bool Text) : Handle_(Handle), Text_(Text) {}

  // The next block into Out (empty at the end); false on a read error.
  bool Next(std::string& Out) {
    Out.clear();
    while (Out.empty() && !Ended_) {
      std::string& Into = Text_ ? Raw_ : Out;
      Into.resize(kBlock);
      int Got = 0;
      while (Got < kBlock) {
        const int N = pf::FileRead(Handle_, Into.data() + Got, kBlock - Got);
        if (N < 0) return false;
        if (N == 0) break;
        Got += N;
      }
      Into.resize(static_cast<std::size_t>(Got));
      if (Got == 0) {
        Ended_ = true;
        // A last line without its line end ends as if it had one.
        if (Text_ && Last_ != '\n' && Last_ != 0) Out = "\n";
        return true;
      }
      if (Text_) Normalise(Out);
    }
    return true;
  }

 private:
  void Normalise(std::string& Out) {
    Out.reserve(Raw_.size());
    for (const char C : Raw_) {
      if (C == '\n' && PreviousCr_) {
        PreviousCr_ = false;
        continue;  // the LF of a CR LF already ended the line
      }
      PreviousCr_ = C == '\r';
      Out += PreviousCr_ ? '\n' : C;
    }
    if (!Out.empty()) Last_ = Out.back();
  }

  pf::THandle Handle_;
  bool Text_;
  bool Ended_ = false;
  bool PreviousCr_ = false;
  char Last_ = 0;  // the last character given out; 0 before any
  std::string Raw_;
};

class THandleGuard {
 public:
  explicit THandleGuard(pf::THandle H) : H_(H) {}
  ~THandleGuard() {
    if (H_ != pf::INVALID_HANDLE_VALUE) {
      const pf::DWORD Error = pf::GetLastError();
      pf::FileClose(H_);
      pf::SetLastError(Error);
    }
  }
  pf::THandle Get() const { return H_; }

 private:
  pf::THandle H_;
};

}  // namespace

bool CompareFiles(const std::string& A, const std::string& B, bool Text, TFileDifference& Result) {
  Result = {};
  THandleGuard HA(pf::FileOpen(A, pf::fmOpenRead | pf::fmShareDenyNone));
  if (HA.Get() == pf::INVALID_HANDLE_VALUE) return false;
  THandleGuard HB(pf::FileOpen(B, pf::fmOpenRead | pf::fmShareDenyNone));
  if (HB.Get() == pf::INVALID_HANDLE_VALUE) return false;
  TBlockReader RA(HA.Get(), Text), RB(HB.Get(), Text);
  std::string BufA, BufB;
  std::size_t PosA = 0, PosB = 0;
  std::int64_t Offset = 0, Lines = 0;  // of the equal part so far
  for (;;) {
    if (PosA == BufA.size()) {
      if (!RA.Next(BufA)) return false;
      PosA = 0;
    }
    if (PosB == BufB.size()) {
      if (!RB.Next(BufB)) return false;
      PosB = 0;
    }
    const std::size_t LeftA = BufA.size() - PosA, LeftB = BufB.size() - PosB;
    const std::size_t N = std::min(LeftA, LeftB);
    const char* PA = BufA.data() + PosA;
    const char* PB = BufB.data() + PosB;
    std::size_t Same = N;
    if (std::memcmp(PA, PB, N) != 0) Same = static_cast<std::size_t>(std::mismatch(PA, PA + N, PB).first - PA);
    if (Text) Lines += std::count(PA, PA + Same, '\n');
    Offset += static_cast<std::int64_t>(Same);
    if (Same < N || N == 0) {
      Result.Equal = Same == N && LeftA == LeftB;  // N == 0: one or both ended
      if (!Result.Equal) {
        Result.Byte = Offset + 1;
        Result.Line = Lines + 1;
      }
      return true;
    }
    PosA += N;
    PosB += N;
  }
}

}  // namespace zt::package
