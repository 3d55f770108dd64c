// Win32 process and window services, as the package's system actions call
// them: open a process by its ID, read its exit code, wait for it, end it,
// and post a message to its main window.
//
// On POSIX a process "window" is the process itself: every running process
// has exactly one visible, unowned top-level window whose handle is its
// process ID, which exists until the process ends (a process that has ended
// but has not been collected by its parent has none). Posting WM_CLOSE
// sends SIGTERM, WM_QUIT sends SIGINT; TerminateProcess sends SIGKILL.
// Thread use: any thread; the last-error code is per thread.
#pragma once

#include <cstdint>

#include "platform/win_types.h"

namespace zt::platform {

using HANDLE = void*;  // a process handle: null when there is none
using HWND = std::intptr_t;
using UINT = unsigned int;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;

constexpr DWORD STILL_ACTIVE = 259;
constexpr DWORD WAIT_OBJECT_0 = 0;
constexpr DWORD WAIT_TIMEOUT = 258;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;
constexpr DWORD INFINITE = 0xFFFFFFFF;
constexpr DWORD PROCESS_TERMINATE = 0x0001;
constexpr DWORD PROCESS_QUERY_INFORMATION = 0x0400;
constexpr UINT WM_CLOSE = 0x0010;
constexpr UINT WM_QUIT = 0x0012;
constexpr UINT GW_OWNER = 4;

// A handle to the process ProcessId; null with ERROR_INVALID_PARAMETER (87)
// when there is no such process. Access and Inherit are accepted as given.
HANDLE OpenProcess(DWORD Access, BOOL Inherit, DWORD ProcessId);
// STILL_ACTIVE (259) while the process runs. Once it has ended: its exit
// code (128 + the signal number when a signal ended it) for a process this
// program started; for any other process the code cannot be read and the
// call fails with ERROR_ACCESS_DENIED.
BOOL GetExitCodeProcess(HANDLE Process, DWORD* ExitCode);
// Ends the process at once (SIGKILL; the exit code it then reports is 137,
// not ExitCode).
BOOL TerminateProcess(HANDLE Process, UINT ExitCode);
// WAIT_OBJECT_0 once the process has ended, WAIT_TIMEOUT after Milliseconds
// (INFINITE: no limit), WAIT_FAILED for a bad handle.
DWORD WaitForSingleObject(HANDLE Process, DWORD Milliseconds);
BOOL CloseHandle(HANDLE Process);
void Sleep(DWORD Milliseconds);

// Top-level windows: one per running process (see above), in process-ID
// order. The enumeration stops when Callback returns false.
using WNDENUMPROC = BOOL (*)(HWND Window, LPARAM Data);
BOOL EnumWindows(WNDENUMPROC Callback, LPARAM Data);
HWND GetWindow(HWND Window, UINT Command);  // GW_OWNER: 0, no window has an owner
BOOL IsWindowVisible(HWND Window);          // true while the process runs
// The process ID; the thread ID returned is the same number.
DWORD GetWindowThreadProcessId(HWND Window, DWORD* ProcessId);
// WM_CLOSE and WM_QUIT only (others: ERROR_NOT_SUPPORTED); a process that
// has gone gives ERROR_INVALID_WINDOW_HANDLE (1400).
BOOL PostMessageA(HWND Window, UINT Message, WPARAM WParam, LPARAM LParam);

}  // namespace zt::platform
