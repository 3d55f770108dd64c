#include "platform/dates.h"

#include <gtest/gtest.h>

#include "platform/files.h"
#include "support/Files.h"
#include "tests/support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::TempDir;

TDateTime At(int Y, int Mo, int D, int H, int Mi, int S) {
  return EncodeDate(Y, Mo, D) + EncodeTime(H, Mi, S, 0);
}

TEST(Dates, EncodesDaysSinceDelphiEpoch) {
  EXPECT_EQ(EncodeDate(1899, 12, 30), 0);
  EXPECT_EQ(EncodeDate(2024, 3, 5), 45356);
  EXPECT_DOUBLE_EQ(EncodeTime(12, 0, 0, 0), 0.5);
  TDateTime Out;
  EXPECT_FALSE(TryEncodeDate(2023, 2, 29, Out));
  EXPECT_TRUE(TryEncodeDate(2024, 2, 29, Out));
  EXPECT_FALSE(TryEncodeTime(24, 0, 0, 0, Out));
  EXPECT_EQ(EncodeDate(2024, 13, 1), 0);
}

TEST(Dates, DecodesIncludingTimesBeforeTheEpoch) {
  int Y, Mo, D, H, Mi, S, Ms;
  DecodeDate(At(2024, 3, 5, 10, 15, 30), Y, Mo, D);
  DecodeTime(At(2024, 3, 5, 10, 15, 30), H, Mi, S, Ms);
  EXPECT_EQ((std::vector<int>{Y, Mo, D, H, Mi, S, Ms}), (std::vector<int>{2024, 3, 5, 10, 15, 30, 0}));
  DecodeDate(-1.25, Y, Mo, D);
  DecodeTime(-1.25, H, Mi, S, Ms);
  EXPECT_EQ((std::vector<int>{Y, Mo, D, H}), (std::vector<int>{1899, 12, 29, 6}));
}

TEST(Dates, FileDateKeepsTwoSecondResolutionRoundingDown) {
  int Packed = DateTimeToFileDate(At(2024, 3, 5, 10, 15, 33));
  EXPECT_EQ(Packed, static_cast<int>((((2024 - 1980) << 9 | 3 << 5 | 5) << 16) | (10 << 11 | 15 << 5 | 16)));
  EXPECT_DOUBLE_EQ(FileDateToDateTime(Packed), At(2024, 3, 5, 10, 15, 32));
  EXPECT_EQ(DateTimeToFileDate(At(1979, 12, 31, 0, 0, 0)), 0);
  EXPECT_EQ(FileDateToDateTime(-1), 0);
  EXPECT_EQ(FileDateToDateTime(0), 0);
}

TEST(Dates, UnixTimeRoundTripsThroughLocalTime) {
  const std::time_t T = 1709633730;  // some second in March 2024
  EXPECT_EQ(DateTimeToUnix(UnixToDateTime(T)), T);
  EXPECT_NEAR(Now(), UnixToDateTime(std::time(nullptr)), 2.0 / 86400);
}

TEST(Dates, IsoTextRoundTrips) {
  TDateTime D;
  ASSERT_TRUE(TryParseIsoDateTime("2024-03-05T10:15:00", D));
  EXPECT_EQ(FormatIsoDateTime(D), "2024-03-05T10:15:00");
  ASSERT_TRUE(TryParseIsoDateTime("2024-03-05", D));
  EXPECT_EQ(D, EncodeDate(2024, 3, 5));
  ASSERT_TRUE(TryParseIsoDateTime("2024-03-05 10:15", D));
  EXPECT_EQ(FormatIsoDateTime(D), "2024-03-05T10:15:00");
  for (const char* Bad :
       {"", "2024-3-5", "2024-02-30", "2024-03-05T25:00:00", "2024-03-05T10:15:00Z", "yesterday"})
    EXPECT_FALSE(TryParseIsoDateTime(Bad, D)) << Bad;
}

TEST(Dates, FileSetDateRoundTripsThroughPathAndHandle) {
  TempDir T;
  zt::testing::WriteText(T / "f.txt", "x");
  const int Age = DateTimeToFileDate(At(2021, 6, 7, 8, 9, 11));
  EXPECT_EQ(FileSetDate(T / "f.txt", Age), 0);
  EXPECT_EQ(FileAge(T / "f.txt"), Age);
  EXPECT_DOUBLE_EQ(FileDateToDateTime(FileAge(T / "f.txt")), At(2021, 6, 7, 8, 9, 10));
  THandle H = FileOpen(T / "f.txt", fmOpenWrite | fmShareDenyNone);
  ASSERT_NE(H, INVALID_HANDLE_VALUE);
  const int Later = DateTimeToFileDate(At(2022, 1, 2, 3, 4, 6));
  EXPECT_EQ(FileSetDate(H, Later), 0);
  EXPECT_EQ(FileGetDate(H), Later);
  FileClose(H);
  EXPECT_EQ(FileAge(T / "f.txt"), Later);
  EXPECT_EQ(FileAge(T / "none.txt"), -1);
  EXPECT_EQ(FileSetDate(T / "none.txt", Later), static_cast<int>(ERROR_FILE_NOT_FOUND));
}

}  // namespace
}  // namespace zt::platform
