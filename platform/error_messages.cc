// Windows' English system texts, so build logs read the same on every
// platform. Stored as Delphi's SysErrorMessage returns them: without the
// trailing full stop and line break.
#include <cstdio>

#include "platform/errors.h"

namespace zt::platform {

namespace {

struct Message {
  DWORD Code;
  const char* Text;
};

constexpr Message Messages[] = {
    {ERROR_SUCCESS, "The operation completed successfully"},
    {ERROR_INVALID_FUNCTION, "Incorrect function"},
    {ERROR_FILE_NOT_FOUND, "The system cannot find the file specified"},
    {ERROR_PATH_NOT_FOUND, "The system cannot find the path specified"},
    {ERROR_TOO_MANY_OPEN_FILES, "The system cannot open the file"},
    {ERROR_ACCESS_DENIED, "Access is denied"},
    {ERROR_INVALID_HANDLE, "The handle is invalid"},
    {ERROR_NOT_ENOUGH_MEMORY, "Not enough memory resources are available to process this command"},
    {ERROR_INVALID_DATA, "The data is invalid"},
    {ERROR_OUTOFMEMORY, "Not enough memory resources are available to complete this operation"},
    {ERROR_NOT_SAME_DEVICE, "The system cannot move the file to a different disk drive"},
    {ERROR_NO_MORE_FILES, "There are no more files"},
    {ERROR_WRITE_PROTECT, "The media is write protected"},
    {ERROR_NOT_READY, "The device is not ready"},
    {ERROR_SEEK, "The drive cannot locate a specific area or track on the disk"},
    {ERROR_WRITE_FAULT, "The system cannot write to the specified device"},
    {ERROR_READ_FAULT, "The system cannot read from the specified device"},
    {ERROR_GEN_FAILURE, "A device attached to the system is not functioning"},
    {ERROR_SHARING_VIOLATION,
     "The process cannot access the file because it is being used by another process"},
    {ERROR_LOCK_VIOLATION,
     "The process cannot access the file because another process has locked a portion of the file"},
    {ERROR_HANDLE_EOF, "Reached the end of the file"},
    {ERROR_HANDLE_DISK_FULL, "The disk is full"},
    {ERROR_NOT_SUPPORTED, "The request is not supported"},
    {ERROR_FILE_EXISTS, "The file exists"},
    {ERROR_INVALID_PARAMETER, "The parameter is incorrect"},
    {ERROR_BROKEN_PIPE, "The pipe has been ended"},
    {ERROR_DISK_FULL, "There is not enough space on the disk"},
    {ERROR_INSUFFICIENT_BUFFER, "The data area passed to a system call is too small"},
    {ERROR_INVALID_NAME, "The filename, directory name, or volume label syntax is incorrect"},
    {ERROR_NEGATIVE_SEEK, "An attempt was made to move the file pointer before the beginning of the file"},
    {ERROR_DIR_NOT_EMPTY, "The directory is not empty"},
    {ERROR_BUSY, "The requested resource is in use"},
    {ERROR_BAD_EXE_FORMAT, "%1 is not a valid Win32 application"},
    {ERROR_ALREADY_EXISTS, "Cannot create a file when that file already exists"},
    {ERROR_FILENAME_EXCED_RANGE, "The filename or extension is too long"},
    {ERROR_DIRECTORY, "The directory name is invalid"},
    {ERROR_NOT_OWNER, "Attempt to release mutex not owned by caller"},
    {ERROR_OPERATION_ABORTED,
     "The I/O operation has been aborted because of either a thread exit or an application request"},
    {ERROR_NO_ASSOCIATION, "No application is associated with the specified file for this operation"},
    {ERROR_CANCELLED, "The operation was canceled by the user"},
    {ERROR_REQUEST_ABORTED, "The request was aborted"},
    {ERROR_INVALID_WINDOW_HANDLE, "Invalid window handle"},
    {ERROR_PRIVILEGE_NOT_HELD, "A required privilege is not held by the client"},
    {ERROR_CANT_RESOLVE_FILENAME, "The name of the file cannot be resolved by the system"},
    {ERROR_MORE_DATA, "More data is available"},
    {ERROR_NO_MORE_ITEMS, "No more data is available"},
    {ERROR_BADDB, "The configuration registry database is corrupt"},
    {ERROR_BADKEY, "The configuration registry key is invalid"},
    {ERROR_KEY_DELETED, "Illegal operation attempted on a registry key that has been marked for deletion"},
};

}  // namespace

std::string SysErrorMessage(DWORD Code) {
  for (const Message& M : Messages)
    if (M.Code == Code) return M.Text;
  char Buffer[48];
  std::snprintf(Buffer, sizeof Buffer, "Unknown error (0x%x)", static_cast<unsigned>(Code));
  return Buffer;
}

}  // namespace zt::platform
