// Delphi date-times (TDateTime: days since 1899-12-30, local time) and the DOS
// packed file date (two-second resolution) the file services use.
#pragma once

#include <ctime>
#include <string>

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

}  // namespace zt::platform
