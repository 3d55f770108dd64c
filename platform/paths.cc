// Delphi's path helpers, shared by every platform (the delimiter itself is
// the platform's: posix/paths_posix.cc, windows/paths_windows.cc).
#include "platform/paths.h"

namespace zt::platform {

namespace {

// Index just after the last delimiter (0 when there is none).
size_t NameStart(const std::string& S) {
  for (size_t I = S.size(); I > 0; --I)
    if (IsPathDelimiter(S[I - 1])) return I;
  return 0;
}

}  // namespace

std::string ExtractFilePath(const std::string& FileName) { return FileName.substr(0, NameStart(FileName)); }

std::string ExtractFileDir(const std::string& FileName) {
  size_t Start = NameStart(FileName);
  // Delphi drops the last delimiter unless it is the root or follows another.
  if (Start > 1 && !IsPathDelimiter(FileName[Start - 2])) --Start;
  return FileName.substr(0, Start);
}

std::string ExtractFileName(const std::string& FileName) { return FileName.substr(NameStart(FileName)); }

std::string ExtractFileExt(const std::string& FileName) {
  size_t Start = NameStart(FileName);
  size_t Dot = FileName.rfind('.');
  if (Dot == std::string::npos || Dot < Start) return "";
  return FileName.substr(Dot);
}

std::string ChangeFileExt(const std::string& FileName, const std::string& Extension) {
  size_t Start = NameStart(FileName);
  size_t Dot = FileName.rfind('.');
  if (Dot == std::string::npos || Dot < Start) return FileName + Extension;
  return FileName.substr(0, Dot) + Extension;
}

std::string IncludeTrailingPathDelimiter(const std::string& S) {
  if (!S.empty() && IsPathDelimiter(S.back())) return S;
  return S + PathDelim();
}

std::string ExcludeTrailingPathDelimiter(const std::string& S) {
  if (!S.empty() && IsPathDelimiter(S.back())) return S.substr(0, S.size() - 1);
  return S;
}

}  // namespace zt::platform
