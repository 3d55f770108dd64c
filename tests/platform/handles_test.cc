// File handles: reading, writing and seeking, and the opens that are refused
// (attributes, missing paths, another handle's sharing mode) with the file kept.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/files.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::TempDir;

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
  FileClose(FileCreate(T / "f.bin"));  // truncates
  EXPECT_EQ(T.Read("f.bin"), "");
}

enum Open { kRead, kWrite, kReadWrite, kDenyWriters, kCreate };

THandle OpenAs(Open How, const std::string& Path) {
  const int Modes[] = {fmOpenRead | fmShareDenyNone, fmOpenWrite, fmOpenReadWrite,
                       fmOpenRead | fmShareDenyWrite};
  return How == kCreate ? FileCreate(Path) : FileOpen(Path, Modes[How]);
}

TEST(FileHandles, RefusedOpensSayWhyAndKeepTheFile) {
  enum Holder { kNobody, kPosixWriter, kDenyingReader };
  // clang-format off
  const struct {
    DWORD Attributes;
    Holder By;  // another handle open on f.txt
    Open How;
    std::string Name;
    DWORD Error;  // ERROR_SUCCESS for an open that succeeds
  } Cases[] = {
      {FILE_ATTRIBUTE_READONLY, kNobody, kWrite, "f.txt", ERROR_ACCESS_DENIED},
      {FILE_ATTRIBUTE_READONLY, kNobody, kReadWrite, "f.txt", ERROR_ACCESS_DENIED},
      {FILE_ATTRIBUTE_READONLY, kNobody, kCreate, "f.txt", ERROR_ACCESS_DENIED},
      {FILE_ATTRIBUTE_READONLY, kNobody, kRead, "f.txt", ERROR_SUCCESS},
      {FILE_ATTRIBUTE_HIDDEN, kNobody, kCreate, "f.txt", ERROR_ACCESS_DENIED},
      {FILE_ATTRIBUTE_NORMAL, kNobody, kRead, "none", ERROR_FILE_NOT_FOUND},
      {FILE_ATTRIBUTE_NORMAL, kNobody, kRead, "nodir/none", ERROR_PATH_NOT_FOUND},
      {FILE_ATTRIBUTE_NORMAL, kNobody, kRead, "", ERROR_ACCESS_DENIED},  // the folder itself
      // Denying writers is refused while another program writes; readers that allow writers are not.
      {FILE_ATTRIBUTE_NORMAL, kPosixWriter, kDenyWriters, "f.txt", ERROR_SHARING_VIOLATION},
      {FILE_ATTRIBUTE_NORMAL, kPosixWriter, kRead, "f.txt", ERROR_SUCCESS},
      {FILE_ATTRIBUTE_NORMAL, kNobody, kDenyWriters, "f.txt", ERROR_SUCCESS},
      {FILE_ATTRIBUTE_NORMAL, kDenyingReader, kWrite, "f.txt", ERROR_SHARING_VIOLATION},
      {FILE_ATTRIBUTE_NORMAL, kDenyingReader, kCreate, "f.txt", ERROR_SHARING_VIOLATION},
      {FILE_ATTRIBUTE_NORMAL, kDenyingReader, kRead, "f.txt", ERROR_SUCCESS},
  };
  // clang-format on
  for (const auto& C : Cases) {
    SCOPED_TRACE(std::to_string(&C - Cases) + " " + C.Name);
    TempDir T;
    const std::string File = T.Write("f.txt", "keep");
    ASSERT_TRUE(SetFileAttributesA(File, C.Attributes));
    const int Writer = C.By == kPosixWriter ? open(File.c_str(), O_WRONLY) : -1;
    const THandle Reader = C.By == kDenyingReader ? OpenAs(kDenyWriters, File) : INVALID_HANDLE_VALUE;
    const THandle H = OpenAs(C.How, C.Name.empty() ? T.Path() : T / C.Name);
    EXPECT_EQ(H != INVALID_HANDLE_VALUE, C.Error == ERROR_SUCCESS);
    if (H == INVALID_HANDLE_VALUE) {
      EXPECT_EQ(GetLastError(), C.Error);
    } else {
      FileClose(H);
    }
    if (Writer >= 0) close(Writer);
    if (Reader != INVALID_HANDLE_VALUE) FileClose(Reader);
    EXPECT_EQ(T.Read("f.txt"), "keep");
  }
  // Nor are a read-only file's times changed.
  TempDir T;
  const std::string File = T.Write("ro.txt", "keep");
  ASSERT_TRUE(SetFileAttributesA(File, FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(FileSetDate(File, FileAge(File)), static_cast<int>(ERROR_ACCESS_DENIED));
}

}  // namespace
}  // namespace zt::platform
