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

}  // namespace zt::platform
