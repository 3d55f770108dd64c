#include "text/Zttextfilestreams.h"

#include "platform/errors.h"

namespace zt::package {

std::string FileStreamMessage(const std::string& What, const std::string& Path) {
  return What + " \"" + Path + "\". " + platform::SysErrorMessage(platform::GetLastError());
}

platform::THandle OpenFileStream(const std::string& Path, int Mode) {
  platform::THandle H = platform::FileOpen(Path, Mode);
  if (H == platform::INVALID_HANDLE_VALUE)
    throw EZTFileStreamError(FileStreamMessage("Cannot open file", Path));
  return H;
}

std::string ReadFileStream(platform::THandle Handle, const std::string& Path) {
  std::string Bytes;
  if (!platform::ReadWholeFile(Handle, Bytes))
    throw EZTFileStreamError(FileStreamMessage("Cannot read file", Path));
  return Bytes;
}

void SaveFileStream(const std::string& Path, const std::string& Bytes) {
  if (!platform::WriteFileAtomically(Path, Bytes))
    throw EZTFileStreamError(FileStreamMessage("Cannot create file", Path));
}

}  // namespace zt::package
