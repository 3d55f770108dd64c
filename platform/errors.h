// The Windows last-error code and its English message text.
#pragma once

#include <string>

#include "platform/win_types.h"

namespace zt::platform {

DWORD GetLastError();                 // per thread
void SetLastError(DWORD ErrorCode);   // per thread

// Windows' English system text for Code with trailing blanks, line breaks and
// full stops removed, as Delphi's SysErrorMessage returns it
// (5 -> "Access is denied"). Unknown codes get a generic text naming the code.
std::string SysErrorMessage(DWORD Code);

// Maps a POSIX errno value to the Windows error code Wine gives it.
DWORD ErrnoToWindowsError(int Errno);

}  // namespace zt::platform
