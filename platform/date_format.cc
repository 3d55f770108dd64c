// Delphi's FormatDateTime (SysUtils' DateTimeToString), with the English
// names and the fixed date and time formats zt uses on every machine.
#include <array>
#include <string>
#include <string_view>

#include "platform/dates.h"

namespace zt::platform {

namespace {

constexpr std::array<const char*, 7> kShortDays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<const char*, 7> kLongDays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                  "Thursday", "Friday", "Saturday"};
constexpr std::array<const char*, 12> kShortMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<const char*, 12> kLongMonths = {"January",   "February", "March",    "April",
                                                     "May",       "June",     "July",     "August",
                                                     "September", "October",  "November", "December"};
// The short and long forms that ddddd, dddddd, t, tt and c stand for.
constexpr std::string_view kShortDate = "mm/dd/yyyy", kLongDate = "dddd, mmmm d, yyyy";
constexpr std::string_view kShortTime = "hh:nn", kLongTime = "hh:nn:ss";

char Upper(char C) { return C >= 'a' && C <= 'z' ? static_cast<char>(C - 'a' + 'A') : C; }
bool IsLetter(char C) { return (C >= 'a' && C <= 'z') || (C >= 'A' && C <= 'Z'); }

bool StartsWithNoCase(std::string_view S, std::size_t At, std::string_view Prefix) {
  if (S.size() - At < Prefix.size()) return false;
  for (std::size_t I = 0; I < Prefix.size(); ++I)
    if (Upper(S[At + I]) != Upper(Prefix[I])) return false;
  return true;
}

// Day of the week of a Gregorian date, 0 = Sunday (Sakamoto's method).
int DayOfWeek(int Y, int M, int D) {
  static const int Offsets[] = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
  if (M < 3) --Y;
  const int Dow = (Y + Y / 4 - Y / 100 + Y / 400 + Offsets[M - 1] + D) % 7;
  return Dow < 0 ? Dow + 7 : Dow;  // years before 1 (dates Delphi cannot encode) stay in range
}

class Formatter {
 public:
  explicit Formatter(TDateTime D) {
    DecodeDate(D, Year_, Month_, Day_);
    DecodeTime(D, Hour_, Minute_, Second_, MSec_);
  }

  void Append(std::string_view F) {
    std::size_t I = 0;
    while (I < F.size()) {
      const char Start = F[I];
      char Token = Upper(Start);
      std::size_t Count = 1;
      while (I + Count < F.size() && Upper(F[I + Count]) == Token && IsLetter(Start)) ++Count;
      if (IsLetter(Start)) {
        if (Token == 'M' && LastToken_ == 'H') Token = 'N';  // "hh:mm" means minutes
        LastToken_ = Token;
      } else {
        Count = 1;
      }
      switch (Token) {
        case 'Y':
          Number(Count <= 2 ? Year_ % 100 : Year_, Count <= 2 ? 2 : 4);
          break;
        case 'M':
          if (Count <= 2)
            Number(Month_, static_cast<int>(Count));
          else
            Out += (Count == 3 ? kShortMonths : kLongMonths)[static_cast<std::size_t>(Month_ - 1)];
          break;
        case 'N':
          Number(Minute_, Count > 2 ? 2 : static_cast<int>(Count));
          break;
        case 'S':
          Number(Second_, Count > 2 ? 2 : static_cast<int>(Count));
          break;
        case 'Z':
          Number(MSec_, Count > 3 ? 3 : static_cast<int>(Count));
          break;
        case 'H':
          Hour(F, I + Count, Count);
          break;
        case 'D':
          Days(Count);
          break;
        case 'T':
          Append(Count == 1 ? kShortTime : kLongTime);
          break;
        case 'C':
          Append(kShortDate);
          if (Hour_ != 0 || Minute_ != 0 || Second_ != 0 || MSec_ != 0) {
            Out += ' ';
            Append(kLongTime);
          }
          break;
        case 'A':
          Count = AmPm(F, I);
          break;
        case '\'':
        case '"': {
          const std::size_t Close = F.find(Start, I + 1);
          const std::size_t End = Close == std::string_view::npos ? F.size() : Close;
          Out.append(F.substr(I + 1, End - I - 1));
          Count = End == F.size() ? End - I : End - I + 1;
          break;
        }
        default:
          Out.append(F.substr(I, Count));
          break;
      }
      I += Count;
    }
  }

  std::string Out;

 private:
  void Number(int Value, int Digits) {
    const std::string Text = std::to_string(Value);
    if (Text.size() < static_cast<std::size_t>(Digits))
      Out.append(static_cast<std::size_t>(Digits) - Text.size(), '0');
    Out += Text;
  }

  void Days(std::size_t Count) {
    if (Count <= 2) return Number(Day_, static_cast<int>(Count));
    const auto Dow = static_cast<std::size_t>(DayOfWeek(Year_, Month_, Day_));
    if (Count == 3)
      Out += kShortDays[Dow];
    else if (Count == 4)
      Out += kLongDays[Dow];
    else
      Append(Count == 5 ? kShortDate : kLongDate);
  }

  // The hour, on a 12-hour clock when an am/pm code follows before the next
  // h (outside quotes), as Delphi looks ahead.
  void Hour(std::string_view F, std::size_t After, std::size_t Count) {
    bool Twelve = false, Quoted = false;
    for (std::size_t P = After; P < F.size(); ++P) {
      const char C = F[P];
      if (C == 'h' || C == 'H') break;
      if (C == '\'' || C == '"') Quoted = !Quoted;
      if ((C == 'a' || C == 'A') && !Quoted) {
        Twelve = StartsWithNoCase(F, P, "am/pm") || StartsWithNoCase(F, P, "a/p") ||
                 StartsWithNoCase(F, P, "ampm");
        break;
      }
    }
    int H = Hour_;
    if (Twelve) H = H == 0 ? 12 : H > 12 ? H - 12 : H;
    Number(H, Count > 2 ? 2 : static_cast<int>(Count));
  }

  // am/pm, a/p or ampm at I, written in the code's own letter case; returns
  // the length consumed (1 for a lone "a", copied).
  std::size_t AmPm(std::string_view F, std::size_t I) {
    const bool Pm = Hour_ >= 12;
    if (StartsWithNoCase(F, I, "am/pm")) {
      Out.append(F.substr(Pm ? I + 3 : I, 2));
      return 5;
    }
    if (StartsWithNoCase(F, I, "a/p")) {
      Out += F[Pm ? I + 2 : I];
      return 3;
    }
    if (StartsWithNoCase(F, I, "ampm")) {
      Out.append(F.substr(Pm ? I + 2 : I, 2));
      return 4;
    }
    Out += F[I];
    return 1;
  }

  int Year_ = 0, Month_ = 0, Day_ = 0, Hour_ = 0, Minute_ = 0, Second_ = 0, MSec_ = 0;
  char LastToken_ = ' ';
};

}  // namespace

std::string FormatDateTime(const std::string& Format, TDateTime D) {
  Formatter F(D);
  F.Append(Format.empty() ? std::string_view("c") : std::string_view(Format));
  return std::move(F.Out);
}

}  // namespace zt::platform
