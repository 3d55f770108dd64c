// Dates and times as Delphi keeps them: encoding, the codes of FormatDateTime,
// packed file dates, ISO texts, and instants between file time, UTC and Unix
// time. Local time across daylight saving is read through zt (Get Date/Time).
#include "platform/dates.h"

#include <gtest/gtest.h>

#include "platform/files.h"
#include "support/TempDir.h"

namespace zt::platform {
namespace {

using zt::testing::TempDir;

TDateTime At(int Y, int Mo, int D, int H, int Mi, int S, int Ms = 0) {
  return EncodeDate(Y, Mo, D) + EncodeTime(H, Mi, S, Ms);
}

TEST(FormatDateTime, WritesWhatTheCodesSay) {
  const TDateTime Morning = At(2024, 3, 5, 9, 7, 3, 45);  // a Tuesday
  // clang-format off
  const struct {
    const char* Format;
    TDateTime When;
    const char* Expected;
  } Cases[] = {
      {"d dd ddd dddd", Morning, "5 05 Tue Tuesday"},
      {"ddddd", Morning, "03/05/2024"},
      {"dddddd", Morning, "Tuesday, March 5, 2024"},
      {"m mm mmm mmmm", Morning, "3 03 Mar March"},
      {"y yy yyyy", Morning, "24 24 2024"},
      {"h hh n nn s ss z zzz", Morning, "9 09 7 07 3 03 45 045"},
      {"YYYY-MM-DD HH:NN", Morning, "2024-03-05 09:07"},
      // m right after h means minutes, also across a separator; after s it is the month again.
      {"hh:mm:ss mm", Morning, "09:07:03 03"},
      {"hh'h'mm", Morning, "09h07"},
      {"t|tt", Morning, "09:07|09:07:03"},
      {"", Morning, "03/05/2024 09:07:03"},
      // The twelve-hour clock, in the code's letter case.
      {"h:nn am/pm", At(2024, 3, 5, 21, 7, 0), "9:07 pm"},
      {"hh AM/PM", At(2024, 3, 5, 12, 0, 0), "12 PM"},
      {"h a/p|h A/P", Morning, "9 a|9 A"},
      {"h ampm|h AMPM", At(2024, 3, 5, 13, 0, 0), "1 pm|1 PM"},
      // Only an am/pm code after the hour (before another h) makes it twelve-hour.
      {"am/pm hh", At(2024, 3, 5, 21, 0, 0), "pm 21"},
      {"hh 'am/pm'", At(2024, 3, 5, 21, 0, 0), "21 am/pm"},
      // Unclosed quotes, unknown letters and other characters stay as written.
      {"'open", Morning, "open"},
      {"x q e g ! 5 \xc3\xa9", Morning, "x q e g ! 5 \xc3\xa9"},
      {"a", Morning, "a"},
      {"dd/mm/yyyy", At(1, 1, 1, 0, 0, 0), "01/01/0001"},
  };
  // clang-format on
  for (const auto& C : Cases) EXPECT_EQ(FormatDateTime(C.Format, C.When), C.Expected) << C.Format;
}

TEST(Dates, CalendarDaysSinceTheEpochAndPackedFileDates) {
  EXPECT_EQ(EncodeDate(1899, 12, 30), 0);
  EXPECT_EQ(EncodeDate(2024, 3, 5), 45356);
  EXPECT_DOUBLE_EQ(EncodeTime(12, 0, 0, 0), 0.5);
  TDateTime Out;
  EXPECT_FALSE(TryEncodeDate(2023, 2, 29, Out));
  EXPECT_TRUE(TryEncodeDate(2024, 2, 29, Out));
  EXPECT_FALSE(TryEncodeTime(24, 0, 0, 0, Out));
  EXPECT_EQ(EncodeDate(2024, 13, 1), 0);
  int Y, Mo, D, H, Mi, S, Ms;
  DecodeDate(-1.25, Y, Mo, D);  // before the epoch
  DecodeTime(-1.25, H, Mi, S, Ms);
  EXPECT_EQ((std::vector<int>{Y, Mo, D, H, Mi}), (std::vector<int>{1899, 12, 29, 6, 0}));
  // A file date keeps two-second steps, rounding down; none before 1980.
  const int Packed = DateTimeToFileDate(At(2024, 3, 5, 10, 15, 33));
  EXPECT_EQ(Packed, static_cast<int>((((2024 - 1980) << 9 | 3 << 5 | 5) << 16) | (10 << 11 | 15 << 5 | 16)));
  EXPECT_DOUBLE_EQ(FileDateToDateTime(Packed), At(2024, 3, 5, 10, 15, 32));
  EXPECT_EQ(DateTimeToFileDate(At(1979, 12, 31, 0, 0, 0)), 0);
  EXPECT_EQ(FileDateToDateTime(-1), 0);
  EXPECT_EQ(FileDateToDateTime(0), 0);
  TempDir T;
  const std::string F = T.Write("f.txt", "x");
  EXPECT_EQ(FileSetDate(F, Packed), 0);
  EXPECT_EQ(FileAge(F), Packed);
  EXPECT_EQ(FileAge(T / "none.txt"), -1);
  EXPECT_EQ(FileSetDate(T / "none.txt", Packed), static_cast<int>(ERROR_FILE_NOT_FOUND));
}

TEST(Dates, IsoTextRoundTrips) {
  TDateTime D;
  for (const auto& [Text, Back] : {std::pair{"2024-03-05T10:15:00", "2024-03-05T10:15:00"},
                                   {"2024-03-05", "2024-03-05T00:00:00"},
                                   {"2024-03-05 10:15", "2024-03-05T10:15:00"}}) {
    ASSERT_TRUE(TryParseIsoDateTime(Text, D)) << Text;
    EXPECT_EQ(FormatIsoDateTime(D), Back);
  }
  for (const char* Bad :
       {"", "2024-3-5", "2024-02-30", "2024-03-05T25:00:00", "2024-03-05T10:15:00Z", "yesterday"})
    EXPECT_FALSE(TryParseIsoDateTime(Bad, D)) << Bad;
}

TEST(Instants, ConvertBetweenFileTimesUtcAndUnixTime) {
  const TFileTime T = UnixToFileTime(1709633730, 123456789);  // 2024-03-05T10:15:30.123456789Z
  EXPECT_EQ(T, 133541073301234567);
  EXPECT_EQ(FileTimeToUnix(T), 1709633730);
  EXPECT_EQ(FileTimeToUnix(UnixToFileTime(-1, 500000000)), -1);  // rounded down before 1970
  EXPECT_EQ(FormatDateTime("yyyy-mm-dd hh:nn:ss.zzz", FileTimeToDateTime(T)), "2024-03-05 10:15:30.123");
  EXPECT_EQ(DateTimeToFileTime(FileTimeToDateTime(T)), T - 4567);  // milliseconds survive
  EXPECT_EQ(FormatDateTime("yyyy-mm-dd hh:nn", FileTimeToDateTime(UnixToFileTime(-86400LL * 25569 - 3600))),
            "1899-12-29 23:00");
  // Out of range saturates instead of overflowing.
  EXPECT_EQ(UnixToFileTime(INT64_MAX), INT64_MAX);
  EXPECT_NEAR(NowUTC(), FileTimeToDateTime(UnixToFileTime(std::time(nullptr))), 2.0 / 86400);
  EXPECT_EQ(DateTimeToUnix(UnixToDateTime(1709633730)), 1709633730);  // through local time
  EXPECT_NEAR(Now(), UnixToDateTime(std::time(nullptr)), 2.0 / 86400);
}

}  // namespace
}  // namespace zt::platform
