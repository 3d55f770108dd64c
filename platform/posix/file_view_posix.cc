// TFileView on POSIX: a read lease keeps writers out (file_handles_posix.cc),
// so a file held under one is mapped; a truncation could otherwise end the
// process (SIGBUS) on the next access to a page that is gone.
#include <fcntl.h>
#include <sys/mman.h>

#include "platform/posix/posix_env.h"

namespace zt::platform {

bool TFileView::Open(const std::string& Path) {
  Close();
  THandle H = FileOpen(Path, fmOpenRead | fmShareDenyWrite);
  // Another process writing to it: read what is there now, as Windows cannot.
  if (H == INVALID_HANDLE_VALUE && GetLastError() == ERROR_SHARING_VIOLATION)
    H = FileOpen(Path, fmOpenRead | fmShareDenyNone);
  if (H == INVALID_HANDLE_VALUE) return false;
  const std::int64_t Size = FileSeek(H, 0, 2);
  FileSeek(H, 0, 0);
  const int Fd = static_cast<int>(H);
  if (Size >= posix::kMapFrom && posix::PlatformEnvInstalled() && fcntl(Fd, F_GETLEASE) == F_RDLCK) {
    void* P = mmap(nullptr, static_cast<std::size_t>(Size), PROT_READ, MAP_PRIVATE | MAP_POPULATE, Fd, 0);
    if (P != MAP_FAILED) {
      Handle_ = H;
      Mapping_ = P;
      MappedSize_ = static_cast<std::size_t>(Size);
      Text_ = std::string_view(static_cast<const char*>(P), MappedSize_);
      return true;
    }
  }
  const bool Ok = ReadWholeFile(H, Copy_);
  const DWORD Error = GetLastError();
  FileClose(H);
  if (!Ok) {
    SetLastError(Error);
    return false;
  }
  Text_ = Copy_;
  return true;
}

void TFileView::Close() {
  if (Mapping_) munmap(Mapping_, MappedSize_);
  if (Handle_ != INVALID_HANDLE_VALUE) FileClose(Handle_);
  Mapping_ = nullptr;
  MappedSize_ = 0;
  Handle_ = INVALID_HANDLE_VALUE;
  Copy_.clear();
  Copy_.shrink_to_fit();
  Text_ = {};
}

}  // namespace zt::platform
