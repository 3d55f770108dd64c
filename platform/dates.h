// Delphi date-times (TDateTime: days since 1899-12-30, local time) and the DOS
// packed file date (two-second resolution) the file services use; instants
// as Win32 file times (TFileTime, 100 ns since 1601 UTC); and Delphi's
// FormatDateTime, the one routine behind every date text of the package.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

#include "platform/win_types.h"

namespace zt::platform {

using TDateTime = double;

TDateTime Now();  // current local date and time
// Year 1-9999, Month 1-12, Day valid for the month; Hour 0-23, Min and Sec
// 0-59, MSec 0-999. The Try forms return false on anything else; the plain
// forms return 0 for it (Delphi raises; nothing here throws).
bool TryEncodeDate(int Year, int Month, int Day, TDateTime& Out);
bool TryEncodeTime(int Hour, int Min, int Sec, int MSec, TDateTime& Out);
TDateTime EncodeDate(int Year, int Month, int Day);
TDateTime EncodeTime(int Hour, int Min, int Sec, int MSec);
void DecodeDate(TDateTime D, int& Year, int& Month, int& Day);
void DecodeTime(TDateTime D, int& Hour, int& Min, int& Sec, int& MSec);

// DOS packed local date and time <-> TDateTime. DateTimeToFileDate rounds
// seconds down to even and gives 0 outside 1980-2107; FileDateToDateTime of
// an invalid stamp gives 0.
int DateTimeToFileDate(TDateTime D);
TDateTime FileDateToDateTime(int FileDate);

// Local TDateTime <-> POSIX time (seconds since the epoch, UTC).
TDateTime UnixToDateTime(std::time_t T);
std::time_t DateTimeToUnix(TDateTime D);

// ISO 8601 "YYYY-MM-DDTHH:MM:SS" (local) <-> TDateTime. Parsing also takes
// a date alone, a blank instead of "T", minutes without seconds and
// fractions of a second; false on anything else.
bool TryParseIsoDateTime(const std::string& Text, TDateTime& Out);
std::string FormatIsoDateTime(TDateTime D);

// ---- Instants ----
TFileTime GetSystemTimeAsFileTime();  // now, to the clock's resolution
TFileTime UnixToFileTime(std::int64_t Seconds, std::int32_t Nanoseconds = 0);
std::int64_t FileTimeToUnix(TFileTime T);  // whole seconds, rounded down
// An instant as the wall-clock time of UTC (pure arithmetic) or of the
// local time zone, by the rules of that date (POSIX localtime_r; Windows
// SystemTimeToTzSpecificLocalTime), milliseconds kept; and back. A local
// time that a summer-time change skips or repeats is resolved as the C
// library's mktime resolves it.
TDateTime FileTimeToDateTime(TFileTime T);
TFileTime DateTimeToFileTime(TDateTime D);
TDateTime FileTimeToLocalDateTime(TFileTime T);
TFileTime LocalDateTimeToFileTime(TDateTime D);
TDateTime NowUTC();  // the current date and time of UTC

// Delphi's FormatDateTime with English names and fixed separators, whatever
// the machine's locale. Codes (letter case ignored): d dd ddd dddd (day,
// Sun, Sunday), ddddd (mm/dd/yyyy), dddddd (dddd, mmmm d, yyyy), m mm mmm
// mmmm (month; minutes right after h or hh), yy yyyy, h hh (12-hour when an
// am/pm code follows before the next h), n nn, s ss, z zzz, t (hh:nn), tt
// (hh:nn:ss), c (ddddd tt, no time at exactly midnight), am/pm a/p ampm (in
// the code's own letter case), text in '...' or "..." as written; every
// other character is copied.
std::string FormatDateTime(const std::string& Format, TDateTime D);

}  // namespace zt::platform
