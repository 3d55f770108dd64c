#include "system/Ztdatetimeaction.h"

#include <cstdint>

#include "frame/ZTUtils.h"
#include "platform/dates.h"
#include "platform/errors.h"
#include "platform/files.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TDateTimeAction, &TDateTimeAction::Publish)

namespace {

constexpr std::int64_t kTicksPerMinute = 60 * 10'000'000LL;  // file-time units (100 ns)

// Days, hours and minutes as file-time units; false when that overflows.
bool OffsetTicks(int Days, int Hours, int Minutes, std::int64_t& Ticks) {
  std::int64_t DayMinutes, HourMinutes;
  return !__builtin_mul_overflow(static_cast<std::int64_t>(Days), 1440, &DayMinutes) &&
         !__builtin_mul_overflow(static_cast<std::int64_t>(Hours), 60, &HourMinutes) &&
         !__builtin_add_overflow(DayMinutes, HourMinutes, &Ticks) && !__builtin_add_overflow(Ticks, Minutes, &Ticks) &&
         !__builtin_mul_overflow(Ticks, kTicksPerMinute, &Ticks);
}

// A wall-clock time, as file-time units, that a date text can show.
bool InDateRange(std::int64_t Wall) {
  static const std::int64_t First = pf::DateTimeToFileTime(pf::EncodeDate(1, 1, 1));
  static const std::int64_t Last = pf::DateTimeToFileTime(pf::EncodeDate(9999, 12, 31)) + 1440 * kTicksPerMinute;
  return Wall >= First && Wall < Last;
}

}  // namespace

void TDateTimeAction::Publish(frame::TZTPublisher<TDateTimeAction>& P) {
  using A = TDateTimeAction;
  P.String("ZTVariable", &A::GetZTVariable, &A::SetZTVariable);
  P.String("Format", &A::GetFormat, &A::SetFormat);
  P.Enumeration("DateSource", "TZTDateSource", {"dsNow", "dsBuildStart", "dsFileDate"}, &A::GetDateSource,
                &A::SetDateSource);
  P.String("FileName", &A::GetFileName, &A::SetFileName);
  P.Boolean("UseUTC", &A::GetUseUTC, &A::SetUseUTC);
  P.Integer("OffsetDays", &A::GetOffsetDays, &A::SetOffsetDays);
  P.Integer("OffsetHours", &A::GetOffsetHours, &A::SetOffsetHours);
  P.Integer("OffsetMinutes", &A::GetOffsetMinutes, &A::SetOffsetMinutes);
  P.String("UnixTimeVariable", &A::GetUnixTimeVariable, &A::SetUnixTimeVariable);
}

bool TDateTimeAction::TakeInstant(std::int64_t& Instant) {
  if (FDateSource == TZTDateSource::dsBuildStart) {
    // The host sets it when the build starts: "2024-03-05T10:15:30Z".
    const std::string Text =
        IsVariableDefined("ZT_BUILD_START") ? GetVariableValue("ZT_BUILD_START").AsString() : std::string();
    pf::TDateTime Start;
    if (Text.size() < 2 || Text.back() != 'Z' || !pf::TryParseIsoDateTime(Text.substr(0, Text.size() - 1), Start)) {
      SendMessage("Error: ZT_BUILD_START is not a date : " + Text);
      return false;
    }
    Instant = pf::DateTimeToFileTime(Start);
    return true;
  }
  if (FDateSource == TZTDateSource::dsFileDate) {
    std::string Path;
    if (!TryExpandExpression("File Name", FFileName, true, Path)) return false;
    Path = frame::Trim(Path);
    if (Path.empty()) {
      SendMessage("Error: No source file specified.");
      return false;
    }
    pf::WIN32_FILE_ATTRIBUTE_DATA Data;
    if (!pf::GetFileAttributesExA(Path, Data)) {
      const pf::DWORD Error = pf::GetLastError();
      if (Error == pf::ERROR_FILE_NOT_FOUND || Error == pf::ERROR_PATH_NOT_FOUND) {
        SendMessage("ERROR - File missing: " + Path);
      } else {
        SendMessage("Unable to read the date of : " + Path);
        SendMessage(" --> " + pf::SysErrorMessage(Error));
      }
      return false;
    }
    Instant = Data.ftLastWriteTime;
    return true;
  }
  Instant = pf::GetSystemTimeAsFileTime();
  return true;
}

bool TDateTimeAction::Execute() {
  std::string Format;
  if (!TryExpandExpression("Format", FFormat, false, Format)) return false;
  std::int64_t Instant;
  if (!TakeInstant(Instant)) return false;

  // Offsets move the wall-clock time (Delphi's IncDay, IncHour, IncMinute):
  // one day on from 12:00 is 12:00 the next day, over a summer-time change too.
  const std::int64_t Wall = FUseUTC ? Instant : pf::DateTimeToFileTime(pf::FileTimeToLocalDateTime(Instant));
  std::int64_t Offset, Shifted;
  if (!OffsetTicks(FOffsetDays, FOffsetHours, FOffsetMinutes, Offset) ||
      __builtin_add_overflow(Wall, Offset, &Shifted) || !InDateRange(Shifted)) {
    SendMessage("Error: The date is outside the years 1 to 9999");
    return false;
  }
  const pf::TDateTime Shown = pf::FileTimeToDateTime(Shifted);
  const std::string Text = pf::FormatDateTime(Format, Shown);
  if (!FZTVariable.empty()) SetVariable(FZTVariable, frame::TZTVariant(Text));
  if (!FUnixTimeVariable.empty()) {
    // Without offsets the instant itself: a local time that a summer-time
    // change repeats names two instants.
    const std::int64_t Same =
        Offset == 0 ? Instant : FUseUTC ? Shifted : pf::LocalDateTimeToFileTime(Shown);
    SetVariable(FUnixTimeVariable, frame::TZTVariant(pf::FileTimeToUnix(Same)));
  }
  SendMessage("Date/Time : " + Text);
  return true;
}

bool TDateTimeAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Valid = true;
  if (FZTVariable.empty() && FUnixTimeVariable.empty()) {
    Errors.AddError("Variable", "The variable has not been set");
    Valid = false;
  }
  if (FDateSource == TZTDateSource::dsFileDate && FFileName.empty()) {
    Errors.AddError("File Name", "Filename has not been set");
    Valid = false;
  }
  return Valid;
}

void TDateTimeAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Get Date/Time]");
  List.Add("ZTVariable=Variable");
  List.Add("Format=Format");
  List.Add("DateSource=Date Source");
  List.Add("FileName=File Name");
  List.Add("UseUTC=Universal Time (UTC)");
  List.Add("OffsetDays=Offset Days");
  List.Add("OffsetHours=Offset Hours");
  List.Add("OffsetMinutes=Offset Minutes");
  List.Add("UnixTimeVariable=Unix Time Variable");
}

void TDateTimeAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("ZTVariable=the formatted text");
  List.Add("Format=date and time codes (yyyy-mm-dd hh:nn:ss, see the user guide); empty = \"c\"");
  List.Add("DateSource=the clock; the build's start (ZT_BUILD_START: one value per run, reproducible); a file's "
           "last write");
  List.Add("FileName=for dsFileDate");
  List.Add("OffsetDays=added to the wall-clock value");
  List.Add("OffsetHours=added to the wall-clock value");
  List.Add("OffsetMinutes=added to the wall-clock value");
  List.Add("UnixTimeVariable=seconds since 1970 UTC of the same instant (integer)");
}

}  // namespace zt::package
