#include "platform/errors.h"

#include <errno.h>
#include <gtest/gtest.h>

#include <thread>

namespace zt::platform {
namespace {

TEST(Errors, MessagesAreWindowsTextsWithoutTheFullStop) {
  EXPECT_EQ(SysErrorMessage(0), "The operation completed successfully");
  EXPECT_EQ(SysErrorMessage(2), "The system cannot find the file specified");
  EXPECT_EQ(SysErrorMessage(3), "The system cannot find the path specified");
  EXPECT_EQ(SysErrorMessage(5), "Access is denied");
  EXPECT_EQ(SysErrorMessage(32),
            "The process cannot access the file because it is being used by another process");
  EXPECT_EQ(SysErrorMessage(50), "The request is not supported");
  EXPECT_EQ(SysErrorMessage(80), "The file exists");
  EXPECT_EQ(SysErrorMessage(87), "The parameter is incorrect");
  EXPECT_EQ(SysErrorMessage(112), "There is not enough space on the disk");
  EXPECT_EQ(SysErrorMessage(123), "The filename, directory name, or volume label syntax is incorrect");
  EXPECT_EQ(SysErrorMessage(145), "The directory is not empty");
  EXPECT_EQ(SysErrorMessage(183), "Cannot create a file when that file already exists");
  EXPECT_EQ(SysErrorMessage(206), "The filename or extension is too long");
  EXPECT_EQ(SysErrorMessage(1155), "No application is associated with the specified file for this operation");
  EXPECT_EQ(SysErrorMessage(1223), "The operation was canceled by the user");
  EXPECT_EQ(SysErrorMessage(1235), "The request was aborted");
}

TEST(Errors, UnknownCodeGetsGenericTextNamingIt) {
  EXPECT_EQ(SysErrorMessage(0xDEAD), "Unknown error (0xdead)");
}

TEST(Errors, ErrnoMapsAsWineMapsIt) {
  EXPECT_EQ(ErrnoToWindowsError(ENOENT), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(ErrnoToWindowsError(ENOTDIR), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(ErrnoToWindowsError(EACCES), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ErrnoToWindowsError(EPERM), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ErrnoToWindowsError(EROFS), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ErrnoToWindowsError(EEXIST), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(ErrnoToWindowsError(ENOSPC), ERROR_DISK_FULL);
  EXPECT_EQ(ErrnoToWindowsError(EBUSY), ERROR_BUSY);
  EXPECT_EQ(ErrnoToWindowsError(ENAMETOOLONG), ERROR_FILENAME_EXCED_RANGE);
  EXPECT_EQ(ErrnoToWindowsError(ENOTEMPTY), ERROR_DIR_NOT_EMPTY);
  EXPECT_EQ(ErrnoToWindowsError(EXDEV), ERROR_NOT_SAME_DEVICE);
  EXPECT_EQ(ErrnoToWindowsError(EINVAL), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(ErrnoToWindowsError(EMFILE), ERROR_TOO_MANY_OPEN_FILES);
  EXPECT_EQ(ErrnoToWindowsError(EBADF), ERROR_INVALID_HANDLE);
  EXPECT_EQ(ErrnoToWindowsError(ENOMEM), ERROR_NOT_ENOUGH_MEMORY);
  EXPECT_EQ(ErrnoToWindowsError(EAGAIN), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(ErrnoToWindowsError(EIO), ERROR_NOT_READY);
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
