// Win32's ShellExecuteExA: hands a file to the program the desktop uses for
// a verb ("open", "print", ...).
//
// On POSIX each verb names a command: the environment variable
// ZT_SHELL_<VERB> (the verb in capitals, e.g. ZT_SHELL_PRINT="lp -d office")
// when it is set, split by shell quoting; otherwise open, edit and explore
// run xdg-open and print runs lp. The file is added as the command's last
// argument. "open" (or no verb) on an executable file runs the file itself
// with lpParameters; documents get no parameters, as on Windows. A verb
// without a command, or a command that is not installed, fails with
// ERROR_NO_ASSOCIATION (1155). The program starts in a process group of its
// own; hidden (SW_HIDE) it writes to the null device, otherwise to this
// program's output streams.
#pragma once

#include "platform/processes.h"
#include "platform/win_types.h"

namespace zt::platform {

constexpr unsigned SEE_MASK_NOCLOSEPROCESS = 0x40;
constexpr unsigned SEE_MASK_INVOKEIDLIST = 0x0C;
constexpr unsigned SEE_MASK_FLAG_DDEWAIT = 0x100;
constexpr unsigned SEE_MASK_FLAG_NO_UI = 0x400;
constexpr int SW_HIDE = 0;

struct SHELLEXECUTEINFOA {
  DWORD cbSize = 0;
  unsigned fMask = 0;
  HWND hwnd = 0;
  const char* lpVerb = nullptr;        // null or empty: "open"
  const char* lpFile = nullptr;
  const char* lpParameters = nullptr;  // for executables only
  const char* lpDirectory = nullptr;   // null or empty: the current directory
  int nShow = 0;
  void* hInstApp = nullptr;
  void* lpIDList = nullptr;
  HANDLE hProcess = nullptr;  // set with SEE_MASK_NOCLOSEPROCESS; close it with CloseHandle
};

// True when the program was started. False with the last error set:
// ERROR_FILE_NOT_FOUND (2) for a missing file, ERROR_DIRECTORY (267) for a
// missing directory, ERROR_NO_ASSOCIATION (1155) as above.
BOOL ShellExecuteExA(SHELLEXECUTEINFOA* Info);

}  // namespace zt::platform
