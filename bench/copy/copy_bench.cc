// Copies through the portable layer the way the copy action does:
//   copy_bench file SOURCE TARGET     one CopyFileExA with a progress routine
//   copy_bench tree SOURCE TARGET     FindFirst/FindNext recursion, a
//                                     directory per level, CopyFileExA per file
// Prints the number of files copied; exit code 1 on the first failure.
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/files.h"

using namespace zt::platform;

namespace {

DWORD Progress(std::int64_t Total, std::int64_t Done, std::int64_t, std::int64_t, DWORD, DWORD, void* Data) {
  *static_cast<std::int64_t*>(Data) = Total ? Done * 100 / Total : 0;
  return PROGRESS_CONTINUE;
}

bool CopyOne(const std::string& From, const std::string& To) {
  std::int64_t Percent = 0;
  BOOL Cancel = 0;
  if (CopyFileExA(From, To, Progress, &Percent, &Cancel, 0)) return true;
  std::fprintf(stderr, "copy %s -> %s: %s\n", From.c_str(), To.c_str(),
               SysErrorMessage(GetLastError()).c_str());
  return false;
}

bool CopyTree(const std::string& From, const std::string& To, long& Count) {
  if (!DirectoryExists(To) && !CreateDirectory(To)) {
    std::fprintf(stderr, "mkdir %s: %s\n", To.c_str(), SysErrorMessage(GetLastError()).c_str());
    return false;
  }
  TSearchRec F;
  int Result = FindFirst(From + "/*", faAnyFile, F);
  bool Ok = true;
  for (; Ok && Result == 0; Result = FindNext(F)) {
    if (F.Attr & faDirectory) {
      if (F.Name != "." && F.Name != "..") Ok = CopyTree(From + "/" + F.Name, To + "/" + F.Name, Count);
    } else if ((Ok = CopyOne(From + "/" + F.Name, To + "/" + F.Name))) {
      ++Count;
    }
  }
  FindClose(F);
  return Ok;
}

}  // namespace

int main(int Argc, char** Argv) {
  if (Argc != 4 || (std::strcmp(Argv[1], "file") != 0 && std::strcmp(Argv[1], "tree") != 0)) {
    std::fprintf(stderr, "usage: copy_bench file|tree SOURCE TARGET\n");
    return 2;
  }
  long Count = 0;
  bool Ok = std::strcmp(Argv[1], "file") == 0 ? (Count = 1, CopyOne(Argv[2], Argv[3]))
                                              : CopyTree(Argv[2], Argv[3], Count);
  std::printf("%ld\n", Count);
  return Ok ? 0 : 1;
}
