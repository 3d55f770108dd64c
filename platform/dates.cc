// Delphi date arithmetic (days since 1899-12-30; for negative values the
// time of day is the absolute fraction) and the DOS packed file date.
#include "platform/dates.h"

#include <cmath>
#include <cstdint>
#include <cstdio>

namespace zt::platform {

namespace {

constexpr std::int64_t MSecsPerDay = 86400000;
constexpr int UnixEpochDay = 25569;                             // 1970-01-01 as a TDateTime
constexpr std::int64_t UnitsPerSecond = 10000000;               // file-time units (100 ns)
constexpr std::int64_t UnixEpochFileTime = 116444736000000000;  // 1970-01-01 as a file time

std::int64_t FloorDiv(std::int64_t A, std::int64_t B) {
  std::int64_t Q = A / B;
  return (A % B != 0 && ((A < 0) != (B < 0))) ? Q - 1 : Q;
}

bool IsLeapYear(int Y) { return Y % 4 == 0 && (Y % 100 != 0 || Y % 400 == 0); }

int DaysInMonth(int Y, int M) {
  static const int Days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return M == 2 && IsLeapYear(Y) ? 29 : Days[M - 1];
}

// Days since 1970-01-01 of a proleptic Gregorian date (H. Hinnant's algorithm).
std::int64_t DaysFromCivil(std::int64_t Y, unsigned M, unsigned D) {
  Y -= M <= 2;
  const std::int64_t Era = (Y >= 0 ? Y : Y - 399) / 400;
  const unsigned Yoe = static_cast<unsigned>(Y - Era * 400);
  const unsigned Doy = (153 * (M > 2 ? M - 3 : M + 9) + 2) / 5 + D - 1;
  const unsigned Doe = Yoe * 365 + Yoe / 4 - Yoe / 100 + Doy;
  return Era * 146097 + static_cast<std::int64_t>(Doe) - 719468;
}

void CivilFromDays(std::int64_t Z, int& Y, int& M, int& D) {
  Z += 719468;
  const std::int64_t Era = (Z >= 0 ? Z : Z - 146096) / 146097;
  const unsigned Doe = static_cast<unsigned>(Z - Era * 146097);
  const unsigned Yoe = (Doe - Doe / 1460 + Doe / 36524 - Doe / 146096) / 365;
  const unsigned Doy = Doe - (365 * Yoe + Yoe / 4 - Yoe / 100);
  const unsigned Mp = (5 * Doy + 2) / 153;
  D = static_cast<int>(Doy - (153 * Mp + 2) / 5 + 1);
  M = static_cast<int>(Mp < 10 ? Mp + 3 : Mp - 9);
  Y = static_cast<int>(static_cast<std::int64_t>(Yoe) + Era * 400 + (M <= 2));
}

// Splits D into whole days and milliseconds of the day, carrying a rounded
// full day into the date.
void Split(TDateTime D, std::int64_t& Days, std::int64_t& MSecs) {
  if (!std::isfinite(D) || std::fabs(D) > 3.0e6) D = 0;  // beyond year 9999: treat as the epoch
  Days = static_cast<std::int64_t>(std::trunc(D));
  MSecs = std::llround(std::fabs(D - static_cast<double>(Days)) * MSecsPerDay);
  if (MSecs >= MSecsPerDay) {
    MSecs -= MSecsPerDay;
    ++Days;
  }
}

}  // namespace

bool TryEncodeDate(int Year, int Month, int Day, TDateTime& Out) {
  if (Year < 1 || Year > 9999 || Month < 1 || Month > 12 || Day < 1 || Day > DaysInMonth(Year, Month))
    return false;
  Out = static_cast<TDateTime>(DaysFromCivil(Year, Month, Day) + UnixEpochDay);
  return true;
}

bool TryEncodeTime(int Hour, int Min, int Sec, int MSec, TDateTime& Out) {
  if (Hour < 0 || Hour > 23 || Min < 0 || Min > 59 || Sec < 0 || Sec > 59 || MSec < 0 || MSec > 999)
    return false;
  Out = static_cast<TDateTime>(((Hour * 60 + Min) * 60 + Sec) * 1000 + MSec) / MSecsPerDay;
  return true;
}

TDateTime EncodeDate(int Year, int Month, int Day) {
  TDateTime D = 0;
  return TryEncodeDate(Year, Month, Day, D) ? D : 0;
}

TDateTime EncodeTime(int Hour, int Min, int Sec, int MSec) {
  TDateTime T = 0;
  return TryEncodeTime(Hour, Min, Sec, MSec, T) ? T : 0;
}

void DecodeDate(TDateTime D, int& Year, int& Month, int& Day) {
  std::int64_t Days, MSecs;
  Split(D, Days, MSecs);
  CivilFromDays(Days - UnixEpochDay, Year, Month, Day);
}

void DecodeTime(TDateTime D, int& Hour, int& Min, int& Sec, int& MSec) {
  std::int64_t Days, MSecs;
  Split(D, Days, MSecs);
  MSec = static_cast<int>(MSecs % 1000);
  Sec = static_cast<int>(MSecs / 1000 % 60);
  Min = static_cast<int>(MSecs / 60000 % 60);
  Hour = static_cast<int>(MSecs / 3600000);
}

int DateTimeToFileDate(TDateTime D) {
  int Year, Month, Day, Hour, Min, Sec, MSec;
  DecodeDate(D, Year, Month, Day);
  if (Year < 1980 || Year > 2107) return 0;
  DecodeTime(D, Hour, Min, Sec, MSec);
  std::uint32_t Time = static_cast<std::uint32_t>((Sec >> 1) | (Min << 5) | (Hour << 11));
  std::uint32_t Date = static_cast<std::uint32_t>(Day | (Month << 5) | ((Year - 1980) << 9));
  return static_cast<int>((Date << 16) | Time);
}

TDateTime FileDateToDateTime(int FileDate) {
  std::uint32_t Packed = static_cast<std::uint32_t>(FileDate);
  std::uint32_t Date = Packed >> 16, Time = Packed & 0xFFFF;
  TDateTime D = 0, T = 0;
  if (!TryEncodeDate(static_cast<int>((Date >> 9) + 1980), static_cast<int>((Date >> 5) & 15),
                     static_cast<int>(Date & 31), D) ||
      !TryEncodeTime(static_cast<int>(Time >> 11), static_cast<int>((Time >> 5) & 63),
                     static_cast<int>((Time & 31) * 2), 0, T))
    return 0;
  return D + T;
}

bool TryParseIsoDateTime(const std::string& Text, TDateTime& Out) {
  int Y = 0, Mo = 0, D = 0, H = 0, Mi = 0, S = 0, Ms = 0, Used = 0;
  if (std::sscanf(Text.c_str(), "%4d-%2d-%2d%n", &Y, &Mo, &D, &Used) != 3 || Used != 10) return false;
  size_t Pos = static_cast<size_t>(Used);
  if (Pos < Text.size()) {
    if (Text[Pos] != 'T' && Text[Pos] != ' ') return false;
    int N = 0;
    const char* Rest = Text.c_str() + Pos + 1;
    if (std::sscanf(Rest, "%2d:%2d%n", &H, &Mi, &N) != 2 || N != 5) return false;
    Rest += N;
    if (*Rest == ':') {
      if (std::sscanf(Rest, ":%2d%n", &S, &N) != 1 || N != 3) return false;
      Rest += N;
      if (*Rest == '.') {
        int Digits = 0;
        for (++Rest; *Rest >= '0' && *Rest <= '9'; ++Rest, ++Digits)
          if (Digits < 3) Ms = Ms * 10 + (*Rest - '0');
        if (Digits == 0) return false;
        for (; Digits < 3; ++Digits) Ms *= 10;
      }
    }
    if (*Rest != '\0') return false;
  }
  TDateTime Date = 0, Time = 0;
  if (!TryEncodeDate(Y, Mo, D, Date) || !TryEncodeTime(H, Mi, S, Ms, Time)) return false;
  Out = Date + Time;
  return true;
}

std::string FormatIsoDateTime(TDateTime D) {
  int Y, Mo, Dd, H, Mi, S, Ms;
  DecodeDate(D, Y, Mo, Dd);
  DecodeTime(D, H, Mi, S, Ms);
  char Buffer[32];
  std::snprintf(Buffer, sizeof Buffer, "%04d-%02d-%02dT%02d:%02d:%02d", Y, Mo, Dd, H, Mi, S);
  return Buffer;
}

TFileTime UnixToFileTime(std::int64_t Seconds, std::int32_t Nanoseconds) {
  // Saturates instead of overflowing: a file may claim any time at all.
  TFileTime T;
  if (__builtin_mul_overflow(Seconds, UnitsPerSecond, &T) ||
      __builtin_add_overflow(T, UnixEpochFileTime, &T) || __builtin_add_overflow(T, Nanoseconds / 100, &T))
    return Seconds < 0 ? INT64_MIN : INT64_MAX;
  return T;
}

std::int64_t FileTimeToUnix(TFileTime T) {
  std::int64_t Units;
  if (__builtin_sub_overflow(T, UnixEpochFileTime, &Units)) return INT64_MIN / UnitsPerSecond;
  return FloorDiv(Units, UnitsPerSecond);
}

TDateTime FileTimeToDateTime(TFileTime T) {
  std::int64_t Units;
  if (__builtin_sub_overflow(T, UnixEpochFileTime, &Units)) return 0;
  const std::int64_t MSecs = FloorDiv(Units, UnitsPerSecond / 1000);
  const std::int64_t Days = FloorDiv(MSecs, MSecsPerDay) + UnixEpochDay;
  const double Fraction = static_cast<double>(MSecs - (Days - UnixEpochDay) * MSecsPerDay) / MSecsPerDay;
  // Before 1899-12-30 the time of day counts away from zero, as in Delphi.
  return static_cast<double>(Days) + (Days < 0 ? -Fraction : Fraction);
}

TFileTime DateTimeToFileTime(TDateTime D) {
  std::int64_t Days, MSecs;
  Split(D, Days, MSecs);
  return ((Days - UnixEpochDay) * MSecsPerDay + MSecs) * (UnitsPerSecond / 1000) + UnixEpochFileTime;
}

TDateTime NowUTC() { return FileTimeToDateTime(GetSystemTimeAsFileTime()); }

}  // namespace zt::platform
