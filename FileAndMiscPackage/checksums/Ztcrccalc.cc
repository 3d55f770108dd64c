#include "checksums/Ztcrccalc.h"

#include "checksums/Crc32Engine.h"
#include "checksums/FileBlocks.h"
#include "checksums/InOutError.h"
#include "platform/errors.h"

namespace zt::package {
namespace {

// Eight digits, most significant first: the high 16 bits, then the low.
std::string CRCToText(std::uint32_t Crc) {
  static const char HexDigits[] = "0123456789ABCDEF";
  std::string Text = "$";
  for (int Shift = 28; Shift >= 0; Shift -= 4) Text += HexDigits[(Crc >> Shift) & 0xF];
  return Text;
}

}  // namespace

std::string GetCRC32(const std::string& FileName) {
  const platform::THandle Handle = platform::FileOpen(FileName, platform::fmOpenRead);
  if (Handle == platform::INVALID_HANDLE_VALUE) throw EInOutError(platform::GetLastError());
  TFileHandleGuard Guard(Handle);
  std::uint32_t Crc = 0xFFFFFFFF;
  // A failed read stops the checksum; the value of the bytes read stands,
  // unless the program was stopped: a stop never yields a checksum of part
  // of a file.
  auto Add = [&Crc](const unsigned char* Data, std::size_t Len) { Crc = UpdateCRC32(Crc, Data, Len); };
  if (!ReadFileInBlocks(Handle, Add) && platform::GetLastError() == platform::ERROR_OPERATION_ABORTED)
    throw EInOutError(platform::ERROR_OPERATION_ABORTED);
  return CRCToText(Crc ^ 0xFFFFFFFF);
}

}  // namespace zt::package
