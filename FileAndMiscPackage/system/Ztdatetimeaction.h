// "Get Date/Time": formats the current time, the build's start or a file's
// last-write time into a variable (Delphi's FormatDateTime codes), local or
// universal, shifted by whole days, hours and minutes; optionally also the
// same instant as seconds since 1970.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::package {

enum class TZTDateSource { dsNow, dsBuildStart, dsFileDate };

class TDateTimeAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TDateTimeAction, frame::TCustomZTAction)

 public:
  static std::string GetActionName() { return "Get Date/Time"; }
  static void Publish(frame::TZTPublisher<TDateTimeAction>& P);

  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override { return "Get Date/Time [ " + FFormat + " ]"; }
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 514; }
  std::string GetQuickHelpFilename() override { return "Plugins\\GetDateTime.html"; }

  const std::string& GetZTVariable() const { return FZTVariable; }
  void SetZTVariable(const std::string& Value) { FZTVariable = Value; }
  const std::string& GetFormat() const { return FFormat; }
  void SetFormat(const std::string& Value) { FFormat = Value; }
  TZTDateSource GetDateSource() const { return FDateSource; }
  void SetDateSource(TZTDateSource Value) { FDateSource = Value; }
  const std::string& GetFileName() const { return FFileName; }
  void SetFileName(const std::string& Value) { FFileName = Value; }
  bool GetUseUTC() const { return FUseUTC; }
  void SetUseUTC(bool Value) { FUseUTC = Value; }
  int GetOffsetDays() const { return FOffsetDays; }
  void SetOffsetDays(int Value) { FOffsetDays = Value; }
  int GetOffsetHours() const { return FOffsetHours; }
  void SetOffsetHours(int Value) { FOffsetHours = Value; }
  int GetOffsetMinutes() const { return FOffsetMinutes; }
  void SetOffsetMinutes(int Value) { FOffsetMinutes = Value; }
  const std::string& GetUnixTimeVariable() const { return FUnixTimeVariable; }
  void SetUnixTimeVariable(const std::string& Value) { FUnixTimeVariable = Value; }

 private:
  // The instant the source gives (a Win32 file time); false after a line
  // saying why there is none.
  bool TakeInstant(std::int64_t& Instant);

  std::string FZTVariable;
  std::string FFormat = "yyyy-mm-dd hh:nn:ss";
  TZTDateSource FDateSource = TZTDateSource::dsNow;
  std::string FFileName;
  bool FUseUTC = false;
  int FOffsetDays = 0;
  int FOffsetHours = 0;
  int FOffsetMinutes = 0;
  std::string FUnixTimeVariable;
};

}  // namespace zt::package
