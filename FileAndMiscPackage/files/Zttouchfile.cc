#include "files/Zttouchfile.h"

#include <cmath>
#include <stdexcept>

#include "files/SearchGuard.h"
#include "frame/ZTUtils.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TCustomTouchFilesAction, nullptr)
ZT_IMPLEMENT_CLASS(TTouchFilesAction, &TTouchFilesAction::Publish)

TCustomTouchFilesAction::TCustomTouchFilesAction() : FDateTime(pf::Now()) {}

void TTouchFilesAction::Publish(frame::TZTPublisher<TTouchFilesAction>& P) {
  using A = TTouchFilesAction;
  P.DateTime("DateTime", &A::GetDateTime, &A::SetDateTime);
  P.WideString("FileSpec", &A::GetFileSpec, &A::SetFileSpec);
  P.Boolean("TouchDate", &A::GetTouchDate, &A::SetTouchDate);
  P.Boolean("TouchTime", &A::GetTouchTime, &A::SetTouchTime);
  P.Boolean("TouchReadOnly", &A::GetTouchReadOnly, &A::SetTouchReadOnly);
  P.Boolean("Recurse", &A::GetRecurse, &A::SetRecurse);
  P.String("DateTimeString", &A::GetDateTimeString, &A::SetDateTimeString).Stored = false;
  P.Integer("FileCount", &A::GetFileCount).Stored = false;
  P.Boolean("UseNow", &A::GetUseNow, &A::SetUseNow);
  P.String("DateTimeAsString", &A::GetDateTimeAsString, &A::SetDateTimeAsString).Stored = false;
}

namespace {

bool IsDotEntry(const std::string& Name) { return Name == "." || Name == ".."; }

// Whole days and the time of day of a (non-negative) date-time.
double DatePart(pf::TDateTime D) { return std::trunc(D); }
double TimePart(pf::TDateTime D) { return D - std::trunc(D); }

}  // namespace

bool TCustomTouchFilesAction::Execute() {
  if (FUseNow) FDateTime = pf::Now();
  const std::string Spec = frame::Trim(ExpandExpression(FFileSpec, true));
  if (Spec.empty()) {
    frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
    Entry->Details().Add("File Spec is blank!");
    SendStatusMessage(Entry);
    return false;
  }
  if (!FTouchDate && !FTouchTime) {
    frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
    Entry->Details().Add(" Touch Date and TouchTime are not set, nothing to do");
    SendStatusMessage(Entry);
    return false;
  }
  FFileCount = 0;
  const bool Result = ProcessFiles(Spec);
  frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
  Entry->Details().Add("Processed : " + std::to_string(FFileCount) + " File(s)");
  SendStatusMessage(Entry);
  return Result;
}

bool TCustomTouchFilesAction::ProcessFiles(const std::string& Spec) {
  bool Result = true;
  // The directory part keeps its delimiter; a bare pattern means the
  // working directory.
  const std::string Dir = pf::ExtractFilePath(Spec);
  const std::string Mask = pf::ExtractFileName(Spec);
  {
    pf::TSearchRec F;
    TSearchGuard Search{F};
    // Mask 0: plain, read-only and archive files only.
    Search.Open = pf::FindFirst(Spec, 0, F) == 0;
    if (Search.Open) {
      do {
        if (IsDotEntry(F.Name)) continue;
        if (!TouchFile(Dir + F.Name)) {
          frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
          Entry->Details().Add("Error touching File : " + Dir + F.Name);
          SendStatusMessage(Entry);
          Result = false;
          break;
        }
      } while (pf::FindNext(F) == 0);
    }
  }
  if (!FRecurse) return Result;
  pf::TSearchRec D;
  TSearchGuard Search{D};
  Search.Open = pf::FindFirst(Dir + "*.*", pf::faDirectory, D) == 0;
  if (!Search.Open) return Result;
  do {
    // The last sub-directory's result becomes the walk's result.
    if ((D.Attr & pf::faDirectory) && !IsDotEntry(D.Name))
      Result = ProcessFiles(Dir + D.Name + pf::PathDelim() + Mask);
  } while (pf::FindNext(D) == 0);
  return Result;
}

bool TCustomTouchFilesAction::TouchFile(const std::string& FileName) {
  const pf::DWORD Attributes = pf::GetFileAttributesA(FileName);
  const bool ReadOnly =
      Attributes != pf::INVALID_FILE_ATTRIBUTES && (Attributes & pf::FILE_ATTRIBUTE_READONLY);
  if (ReadOnly) {
    if (!FTouchReadOnly) return true;
    pf::SetFileAttributesA(FileName, Attributes & ~pf::FILE_ATTRIBUTE_READONLY);
  }

  bool Result = false;
  const pf::THandle H = pf::FileOpen(FileName, pf::fmOpenWrite | pf::fmShareDenyNone);
  if (H != pf::INVALID_HANDLE_VALUE) {
    pf::TDateTime D = pf::FileDateToDateTime(pf::FileGetDate(H));
    if (FTouchDate) D = DatePart(FDateTime) + TimePart(D);
    if (FTouchTime) D = DatePart(D) + TimePart(FDateTime);
    // A stamp the file date cannot hold (before 1980, after 2107) is refused
    // by the platform: the file was not touched.
    Result = pf::FileSetDate(H, pf::DateTimeToFileDate(D)) == 0;
    if (Result) ++FFileCount;
    pf::FileClose(H);
  }

  if (ReadOnly) pf::SetFileAttributesA(FileName, Attributes);
  return Result;
}

bool TCustomTouchFilesAction::Validate(frame::IZTActionValidationError& Errors) {
  if (FFileSpec.empty()) {
    Errors.AddError("File Spec", "File spec has not been set");
    return false;
  }
  return true;
}

std::string TCustomTouchFilesAction::GetFormattedDescription() { return GetTitle() + " [ " + FFileSpec + " ]"; }

void TCustomTouchFilesAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Touch]");
  List.Add("TouchDate=Touch Date");
  List.Add("TouchTime=Touch Time");
  List.Add("Recurse=Recurse Directories");
  List.Add("TouchReadOnly=Touch Read Only");
  List.Add("DateTimeString=Date Time");
  List.Add("FileSpec=File Specification");
  List.Add("UseNow=Use Now");
}

void TCustomTouchFilesAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("TouchDate=Touch File Date");
  List.Add("TouchTime=Touch File Time");
  List.Add("Recurse=Recurse Directories");
  List.Add("TouchReadOnly=Touch Read Only Files");
  List.Add("FileSpec=File Specification (wildcards may be used)");
  List.Add("DateTimeString=Date Time");
  List.Add("UseNow=Use Now for Date Time");
}

void TCustomTouchFilesAction::GetHiddenProperties(frame::TStrings& List) {
  inherited::GetHiddenProperties(List);
  List.Add("DateTime");
  List.Add("FileCount");
  List.Add("DateTimeAsString");
}

std::string TCustomTouchFilesAction::GetDateTimeAsString() const { return FormatDateTimeC(FDateTime); }

void TCustomTouchFilesAction::SetDateTimeAsString(const std::string& Value) {
  pf::TDateTime D;
  if (!TryParseDateTimeC(Value, D)) throw std::invalid_argument("'" + Value + "' is not a valid date and time");
  FDateTime = D;
}

std::string FormatDateTimeC(pf::TDateTime D) { return pf::FormatDateTime("c", D); }

namespace {

// Reads 1..MaxDigits decimal digits at Pos.
bool ReadNumber(const std::string& S, std::size_t& Pos, int MaxDigits, int& Out) {
  int Digits = 0;
  Out = 0;
  while (Pos < S.size() && Digits < MaxDigits && S[Pos] >= '0' && S[Pos] <= '9') {
    Out = Out * 10 + (S[Pos++] - '0');
    ++Digits;
  }
  return Digits > 0;
}

bool Expect(const std::string& S, std::size_t& Pos, char C) {
  if (Pos >= S.size() || S[Pos] != C) return false;
  ++Pos;
  return true;
}

}  // namespace

bool TryParseDateTimeC(const std::string& Text, pf::TDateTime& Out) {
  const std::string S = frame::Trim(Text);
  std::size_t Pos = 0;
  int Mo, D, Y, H = 0, Mi = 0, Sec = 0;
  if (!ReadNumber(S, Pos, 2, Mo) || !Expect(S, Pos, '/') || !ReadNumber(S, Pos, 2, D) || !Expect(S, Pos, '/'))
    return false;
  const std::size_t YearStart = Pos;
  if (!ReadNumber(S, Pos, 4, Y) || Pos - YearStart != 4) return false;
  if (Pos < S.size()) {
    if (!Expect(S, Pos, ' ')) return false;
    while (Pos < S.size() && S[Pos] == ' ') ++Pos;
    if (!ReadNumber(S, Pos, 2, H) || !Expect(S, Pos, ':') || !ReadNumber(S, Pos, 2, Mi)) return false;
    if (Pos < S.size() && (!Expect(S, Pos, ':') || !ReadNumber(S, Pos, 2, Sec))) return false;
    if (Pos != S.size()) return false;
  }
  pf::TDateTime Date, Time;
  if (!pf::TryEncodeDate(Y, Mo, D, Date) || !pf::TryEncodeTime(H, Mi, Sec, 0, Time)) return false;
  Out = Date + Time;
  return true;
}

}  // namespace zt::package
