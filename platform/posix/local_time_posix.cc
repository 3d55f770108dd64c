// Local time on POSIX: the TZ rules of the C library (localtime_r, mktime).
#include <time.h>

#include "platform/dates.h"

namespace zt::platform {

namespace {

TDateTime FromTm(const struct tm& T, int MSec) {
  return EncodeDate(T.tm_year + 1900, T.tm_mon + 1, T.tm_mday) +
         EncodeTime(T.tm_hour, T.tm_min, T.tm_sec, MSec);
}

}  // namespace

TDateTime Now() {
  struct timespec Ts;
  clock_gettime(CLOCK_REALTIME, &Ts);
  struct tm T;
  localtime_r(&Ts.tv_sec, &T);
  return FromTm(T, static_cast<int>(Ts.tv_nsec / 1000000));
}

TDateTime UnixToDateTime(std::time_t Seconds) {
  struct tm T;
  if (!localtime_r(&Seconds, &T)) return 0;
  return FromTm(T, 0);
}

std::time_t DateTimeToUnix(TDateTime D) {
  struct tm T = {};
  int MSec;
  DecodeDate(D, T.tm_year, T.tm_mon, T.tm_mday);
  DecodeTime(D, T.tm_hour, T.tm_min, T.tm_sec, MSec);
  T.tm_year -= 1900;
  T.tm_mon -= 1;
  T.tm_isdst = -1;  // let the C library decide whether summer time applies
  return mktime(&T);
}

TFileTime GetSystemTimeAsFileTime() {
  struct timespec Ts;
  clock_gettime(CLOCK_REALTIME, &Ts);
  return UnixToFileTime(Ts.tv_sec, static_cast<std::int32_t>(Ts.tv_nsec));
}

TDateTime FileTimeToLocalDateTime(TFileTime T) {
  const std::time_t Seconds = static_cast<std::time_t>(FileTimeToUnix(T));
  const TFileTime Whole = UnixToFileTime(Seconds);
  struct tm Tm;
  if (!localtime_r(&Seconds, &Tm)) return 0;
  const TDateTime Date = EncodeDate(Tm.tm_year + 1900, Tm.tm_mon + 1, Tm.tm_mday);
  const TDateTime Time = EncodeTime(Tm.tm_hour, Tm.tm_min, Tm.tm_sec, static_cast<int>((T - Whole) / 10000));
  return Date < 0 ? Date - Time : Date + Time;
}

TFileTime LocalDateTimeToFileTime(TDateTime D) {
  int MSec;
  struct tm T = {};
  DecodeDate(D, T.tm_year, T.tm_mon, T.tm_mday);
  DecodeTime(D, T.tm_hour, T.tm_min, T.tm_sec, MSec);
  T.tm_year -= 1900;
  T.tm_mon -= 1;
  T.tm_isdst = -1;
  return UnixToFileTime(mktime(&T), MSec * 1000000);
}

}  // namespace zt::platform
