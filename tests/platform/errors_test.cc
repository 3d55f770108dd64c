// The Windows error codes the layer reports: the texts users read for them,
// the errno values they come from, and the last error of each thread.
#include "platform/errors.h"

#include <errno.h>
#include <gtest/gtest.h>

#include <thread>

namespace zt::platform {
namespace {

TEST(Errors, MessagesAreWindowsTextsWithoutTheFullStop) {
  // clang-format off
  const std::pair<DWORD, const char*> Texts[] = {
      {0, "The operation completed successfully"},
      {2, "The system cannot find the file specified"},
      {3, "The system cannot find the path specified"},
      {5, "Access is denied"},
      {32, "The process cannot access the file because it is being used by another process"},
      {50, "The request is not supported"},
      {80, "The file exists"},
      {87, "The parameter is incorrect"},
      {112, "There is not enough space on the disk"},
      {123, "The filename, directory name, or volume label syntax is incorrect"},
      {145, "The directory is not empty"},
      {183, "Cannot create a file when that file already exists"},
      {206, "The filename or extension is too long"},
      {1155, "No application is associated with the specified file for this operation"},
      {1223, "The operation was canceled by the user"},
      {1235, "The request was aborted"},
      {0xDEAD, "Unknown error (0xdead)"},
  };
  // clang-format on
  for (const auto& [Code, Text] : Texts) EXPECT_EQ(SysErrorMessage(Code), Text) << Code;
}

TEST(Errors, ErrnoMapsAsWineMapsIt) {
  // clang-format off
  const std::pair<int, DWORD> Map[] = {
      {ENOENT, ERROR_FILE_NOT_FOUND},      {ENOTDIR, ERROR_PATH_NOT_FOUND},  {EACCES, ERROR_ACCESS_DENIED},
      {EPERM, ERROR_ACCESS_DENIED},        {EROFS, ERROR_ACCESS_DENIED},     {EEXIST, ERROR_ALREADY_EXISTS},
      {ENOSPC, ERROR_DISK_FULL},           {EBUSY, ERROR_BUSY},              {ENOTEMPTY, ERROR_DIR_NOT_EMPTY},
      {EXDEV, ERROR_NOT_SAME_DEVICE},      {EINVAL, ERROR_INVALID_PARAMETER}, {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
      {EBADF, ERROR_INVALID_HANDLE},       {ENOMEM, ERROR_NOT_ENOUGH_MEMORY}, {EAGAIN, ERROR_SHARING_VIOLATION},
      {EIO, ERROR_NOT_READY},              {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
  };
  // clang-format on
  for (const auto& [Errno, Code] : Map) EXPECT_EQ(ErrnoToWindowsError(Errno), Code) << Errno;
}

TEST(Errors, LastErrorIsPerThread) {
  SetLastError(ERROR_ACCESS_DENIED);
  DWORD Seen = 1;
  std::thread([&] { Seen = GetLastError(); }).join();
  EXPECT_EQ(Seen, ERROR_SUCCESS);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

}  // namespace
}  // namespace zt::platform
