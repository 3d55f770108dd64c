#include <gtest/gtest.h>

#include "platform/dates.h"

namespace zt::platform {
namespace {

TDateTime At(int Y, int Mo, int D, int H, int Mi, int S, int Ms = 0) {
  return EncodeDate(Y, Mo, D) + EncodeTime(H, Mi, S, Ms);
}

struct FormatCase {
  const char* Format;
  TDateTime When;
  const char* Expected;
};

// Tuesday, 5 March 2024, 09:07:03.045 unless a case says otherwise.
const TDateTime Morning = At(2024, 3, 5, 9, 7, 3, 45);

class FormatDateTimeTest : public ::testing::TestWithParam<FormatCase> {};

TEST_P(FormatDateTimeTest, WritesWhatTheCodesSay) {
  EXPECT_EQ(FormatDateTime(GetParam().Format, GetParam().When), GetParam().Expected) << GetParam().Format;
}

INSTANTIATE_TEST_SUITE_P(
    Codes, FormatDateTimeTest,
    ::testing::Values(
        FormatCase{"d dd ddd dddd", Morning, "5 05 Tue Tuesday"}, FormatCase{"ddddd", Morning, "03/05/2024"},
        FormatCase{"dddddd", Morning, "Tuesday, March 5, 2024"},
        FormatCase{"m mm mmm mmmm", Morning, "3 03 Mar March"},
        FormatCase{"y yy yyyy", Morning, "24 24 2024"},
        FormatCase{"h hh n nn s ss z zzz", Morning, "9 09 7 07 3 03 45 045"},
        FormatCase{"YYYY-MM-DD HH:NN", Morning, "2024-03-05 09:07"},
        // m right after h means minutes, also across a separator; after s it is the month again.
        FormatCase{"hh:mm", Morning, "09:07"}, FormatCase{"hh:mm:ss mm", Morning, "09:07:03 03"},
        FormatCase{"hh'h'mm", Morning, "09h07"}, FormatCase{"t|tt", Morning, "09:07|09:07:03"},
        FormatCase{"c", Morning, "03/05/2024 09:07:03"},
        FormatCase{"c", At(2024, 3, 5, 0, 0, 0), "03/05/2024"},
        FormatCase{"", Morning, "03/05/2024 09:07:03"},
        // The twelve-hour clock, in the code's letter case.
        FormatCase{"h:nn am/pm", At(2024, 3, 5, 21, 7, 0), "9:07 pm"},
        FormatCase{"hh AM/PM", At(2024, 3, 5, 0, 30, 0), "12 AM"},
        FormatCase{"hh AM/PM", At(2024, 3, 5, 12, 0, 0), "12 PM"},
        FormatCase{"h a/p|h A/P", Morning, "9 a|9 A"},
        FormatCase{"h ampm|h AMPM", At(2024, 3, 5, 13, 0, 0), "1 pm|1 PM"},
        // Only an am/pm code after the hour (before another h) makes it twelve-hour.
        FormatCase{"am/pm hh", At(2024, 3, 5, 21, 0, 0), "pm 21"},
        FormatCase{"hh 'am/pm'", At(2024, 3, 5, 21, 0, 0), "21 am/pm"},
        // Quoted text, unknown letters and other characters stay as written.
        FormatCase{"'yyyy' \"d\"d", Morning, "yyyy d5"}, FormatCase{"'open", Morning, "open"},
        FormatCase{"x q e g ! 5 \xc3\xa9", Morning, "x q e g ! 5 \xc3\xa9"}, FormatCase{"a", Morning, "a"},
        FormatCase{"dd/mm/yyyy", At(1, 1, 1, 0, 0, 0), "01/01/0001"}));

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
}

TEST(Instants, LocalTimeFollowsTheRulesOfThatDate) {
  const char* Old = std::getenv("TZ");
  const std::string Saved = Old ? Old : "";
  setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);  // Central Europe, without tzdata
  tzset();
  // Winter (UTC+1) and summer (UTC+2) in one zone.
  EXPECT_EQ(FormatDateTime("hh:nn", FileTimeToLocalDateTime(UnixToFileTime(1704103200))),
            "11:00");  // 2024-01-01 10:00Z
  EXPECT_EQ(FormatDateTime("hh:nn", FileTimeToLocalDateTime(UnixToFileTime(1719828000))),
            "12:00");  // 2024-07-01 10:00Z
  EXPECT_EQ(LocalDateTimeToFileTime(FileTimeToLocalDateTime(UnixToFileTime(1719828000, 5000000))),
            UnixToFileTime(1719828000, 5000000));
  if (Old)
    setenv("TZ", Saved.c_str(), 1);
  else
    unsetenv("TZ");
  tzset();
}

}  // namespace
}  // namespace zt::platform
