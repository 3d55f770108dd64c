// "Touch File(s)": rewrites the date and/or the time of day of the
// last-write stamp of every plain file a file specification names,
// optionally in all sub-directories too. Stamps keep the file system's
// two-second resolution.
#pragma once

#include <string>

#include "frame/ZTAction.h"
#include "platform/dates.h"

namespace zt::package {

class TCustomTouchFilesAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TCustomTouchFilesAction, frame::TCustomZTAction)

 public:
  TCustomTouchFilesAction();

  static std::string GetActionName() { return "Touch File(s)"; }
  bool Execute() override;
  bool Validate(frame::IZTActionValidationError& Errors) override;
  std::string GetFormattedDescription() override;
  void GetPropertyAlias(frame::TStrings& List) override;
  void GetPropertyHelp(frame::TStrings& List) override;
  void GetHiddenProperties(frame::TStrings& List) override;
  int GetHelpTopicID() override { return 980; }
  std::string GetQuickHelpFilename() override { return "Plugins\\TouchFiles.html"; }

  platform::TDateTime GetDateTime() const { return FDateTime; }
  void SetDateTime(platform::TDateTime Value) { FDateTime = Value; }
  const std::string& GetFileSpec() const { return FFileSpec; }
  void SetFileSpec(const std::string& Value) { FFileSpec = Value; }
  bool GetTouchDate() const { return FTouchDate; }
  void SetTouchDate(bool Value) { FTouchDate = Value; }
  bool GetTouchTime() const { return FTouchTime; }
  void SetTouchTime(bool Value) { FTouchTime = Value; }
  bool GetTouchReadOnly() const { return FTouchReadOnly; }
  void SetTouchReadOnly(bool Value) { FTouchReadOnly = Value; }
  bool GetRecurse() const { return FRecurse; }
  void SetRecurse(bool Value) { FRecurse = Value; }
  bool GetUseNow() const { return FUseNow; }
  void SetUseNow(bool Value) { FUseNow = Value; }
  // Files touched by the last run.
  int GetFileCount() const { return FFileCount; }
  // The handle of the design-time date editor: reads "Edit...", ignores writes.
  std::string GetDateTimeString() const { return "Edit..."; }
  void SetDateTimeString(const std::string&) {}
  // DateTime as text (FormatDateTimeC); writing parses with ParseDateTimeC
  // and raises std::invalid_argument for text it cannot read.
  std::string GetDateTimeAsString() const;
  void SetDateTimeAsString(const std::string& Value);

 protected:
  // Touches the matches of Spec, then, with Recurse, the same pattern in
  // every sub-directory. False when a file could not be touched.
  bool ProcessFiles(const std::string& Spec);
  // False when the file could not be opened for writing. A read-only file
  // without TouchReadOnly is skipped: true, not counted.
  bool TouchFile(const std::string& FileName);

  platform::TDateTime FDateTime;
  std::string FFileSpec;
  bool FTouchDate = true;
  bool FTouchTime = true;
  bool FTouchReadOnly = false;
  bool FRecurse = false;
  bool FUseNow = false;
  int FFileCount = 0;
};

// The registered type: publishes the properties.
class TTouchFilesAction : public TCustomTouchFilesAction {
  ZT_DECLARE_CLASS(TTouchFilesAction, TCustomTouchFilesAction)

 public:
  static void Publish(frame::TZTPublisher<TTouchFilesAction>& P);
};

// The short date-and-time text of DateTimeAsString, one fixed format on
// every machine: "mm/dd/yyyy hh:nn:ss" (24-hour clock), the time left out
// at exactly midnight, as "c" formats it.
std::string FormatDateTimeC(platform::TDateTime D);
// Reads what FormatDateTimeC writes; months and days may have one digit,
// seconds may be left out, surrounding blanks are ignored. False otherwise.
bool TryParseDateTimeC(const std::string& Text, platform::TDateTime& Out);

}  // namespace zt::package
