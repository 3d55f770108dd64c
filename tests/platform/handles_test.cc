#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/files.h"
#include "support/Files.h"
#include "tests/support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::ReadText;
using zt::testing::TempDir;
using zt::testing::WriteText;

TEST(FileHandles, ReadWriteSeekAndCreate) {
  TempDir T;
  THandle H = FileCreate(T / "f.bin");
  ASSERT_NE(H, INVALID_HANDLE_VALUE);
  EXPECT_EQ(FileWrite(H, "hello world", 11), 11);
  EXPECT_EQ(FileSeek(H, 6, 0), 6);
  char Buffer[16] = {};
  EXPECT_EQ(FileRead(H, Buffer, sizeof Buffer), 5);
  EXPECT_STREQ(Buffer, "world");
  EXPECT_EQ(FileSeek(H, 0, 2), 11);
  EXPECT_EQ(FileSeek(H, -20, 1), -1);
  EXPECT_EQ(GetLastError(), ERROR_NEGATIVE_SEEK);
  FileClose(H);
  H = FileCreate(T / "f.bin");  // truncates
  FileClose(H);
  EXPECT_EQ(ReadText(T / "f.bin"), "");
}

TEST(FileHandles, OpenForWritingOrCreatingOverReadOnlyFileIsDenied) {
  TempDir T;
  WriteText(T / "ro.txt", "keep");
  ASSERT_TRUE(SetFileAttributesA(T / "ro.txt", FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(FileOpen(T / "ro.txt", fmOpenWrite | fmShareDenyNone), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(FileOpen(T / "ro.txt", fmOpenReadWrite), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(FileCreate(T / "ro.txt"), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(FileSetDate(T / "ro.txt", FileAge(T / "ro.txt")), static_cast<int>(ERROR_ACCESS_DENIED));
  EXPECT_EQ(ReadText(T / "ro.txt"), "keep");
  THandle H = FileOpen(T / "ro.txt", fmOpenRead);
  EXPECT_NE(H, INVALID_HANDLE_VALUE);
  FileClose(H);
}

TEST(FileHandles, CreatingOverHiddenFileIsDenied) {
  TempDir T;
  WriteText(T / "h.txt", "keep");
  ASSERT_TRUE(SetFileAttributesA(T / "h.txt", FILE_ATTRIBUTE_HIDDEN));
  EXPECT_EQ(FileCreate(T / "h.txt"), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ReadText(T / "h.txt"), "keep");
}

TEST(FileHandles, MissingFileFolderAndDirectory) {
  TempDir T;
  EXPECT_EQ(FileOpen(T / "none", fmOpenRead), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(FileOpen(T / "nodir/none", fmOpenRead), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(FileOpen(T.Path(), fmOpenRead), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

TEST(FileHandles, DenyWritersIsRefusedWhileAnotherHandleWrites) {
  TempDir T;
  WriteText(T / "f.txt", "data");
  int Writer = open((T / "f.txt").c_str(), O_WRONLY);
  ASSERT_GE(Writer, 0);
  EXPECT_EQ(FileOpen(T / "f.txt", fmOpenRead | fmShareDenyWrite), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
  // Readers that allow writers are not affected.
  THandle Shared = FileOpen(T / "f.txt", fmOpenRead | fmShareDenyNone);
  EXPECT_NE(Shared, INVALID_HANDLE_VALUE);
  FileClose(Shared);
  close(Writer);
  THandle H = FileOpen(T / "f.txt", fmOpenRead | fmShareDenyWrite);
  ASSERT_NE(H, INVALID_HANDLE_VALUE);
  char Buffer[8] = {};
  EXPECT_EQ(FileRead(H, Buffer, sizeof Buffer), 4);
  FileClose(H);
}

TEST(FileHandles, WritersAreRefusedWhileADenyWritersHandleIsOpen) {
  TempDir T;
  WriteText(T / "f.txt", "data");
  THandle Reader = FileOpen(T / "f.txt", fmOpenRead | fmShareDenyWrite);
  ASSERT_NE(Reader, INVALID_HANDLE_VALUE);
  EXPECT_EQ(FileOpen(T / "f.txt", fmOpenWrite), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(FileCreate(T / "f.txt"), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
  FileClose(Reader);
  EXPECT_EQ(ReadText(T / "f.txt"), "data");
  THandle Writer = FileOpen(T / "f.txt", fmOpenWrite);
  EXPECT_NE(Writer, INVALID_HANDLE_VALUE);
  FileClose(Writer);
}

}  // namespace
}  // namespace zt::platform
