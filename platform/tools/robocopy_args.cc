#include "platform/tools/robocopy_args.h"

#include <algorithm>
#include <cctype>
#include <map>

#include "platform/conversions.h"
#include "platform/dates.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zt::platform {

namespace {

enum class Kind { Flag, Value, OptionalValue, List, NoEffect, NoEffectValue };

// Every switch the engine knows; anything else is refused.
const std::map<std::string, Kind>& Switches() {
  static const std::map<std::string, Kind> M = {
      {"S", Kind::Flag},        {"E", Kind::Flag},       {"MIR", Kind::Flag},     {"PURGE", Kind::Flag},
      {"MOV", Kind::Flag},      {"MOVE", Kind::Flag},    {"L", Kind::Flag},       {"X", Kind::Flag},
      {"V", Kind::Flag},        {"TS", Kind::Flag},      {"FP", Kind::Flag},      {"NS", Kind::Flag},
      {"NC", Kind::Flag},       {"NFL", Kind::Flag},     {"NDL", Kind::Flag},     {"TEE", Kind::Flag},
      {"NJH", Kind::Flag},      {"NJS", Kind::Flag},     {"NP", Kind::Flag},      {"A", Kind::Flag},
      {"M", Kind::Flag},        {"IS", Kind::Flag},      {"IT", Kind::Flag},      {"XC", Kind::Flag},
      {"XN", Kind::Flag},       {"XO", Kind::Flag},      {"XX", Kind::Flag},      {"XL", Kind::Flag},
      {"XJ", Kind::Flag},       {"XJD", Kind::Flag},     {"XJF", Kind::Flag},     {"FFT", Kind::Flag},
      {"DST", Kind::Flag},      {"CREATE", Kind::Flag},  {"NOCOPY", Kind::Flag},
      {"TIMFIX", Kind::Flag},   {"NOSD", Kind::Flag},    {"NODD", Kind::Flag},    {"LEV", Kind::Value},
      {"R", Kind::Value},       {"W", Kind::Value},      {"MT", Kind::OptionalValue},
      {"A+", Kind::Value},      {"A-", Kind::Value},     {"IA", Kind::Value},     {"XA", Kind::Value},
      {"MAX", Kind::Value},     {"MIN", Kind::Value},    {"MAXAGE", Kind::Value}, {"MINAGE", Kind::Value},
      {"MAXLAD", Kind::Value},  {"MINLAD", Kind::Value}, {"COPY", Kind::Value},   {"DCOPY", Kind::Value},
      {"LOG", Kind::Value},     {"LOG+", Kind::Value},   {"UNILOG", Kind::Value}, {"UNILOG+", Kind::Value},
      {"JOB", Kind::Value},     {"SD", Kind::Value},     {"DD", Kind::Value},     {"XF", Kind::List},
      {"XD", Kind::List},       {"IF", Kind::List},      {"Z", Kind::NoEffect},   {"J", Kind::NoEffect},
      {"BYTES", Kind::NoEffect}, {"ETA", Kind::NoEffect}, {"UNICODE", Kind::NoEffect},
      {"256", Kind::NoEffect},  {"NOOFFLOAD", Kind::NoEffect}, {"COMPRESS", Kind::NoEffect},
      {"IPG", Kind::NoEffectValue},
  };
  return M;
}

std::string Upper(std::string S) {
  for (char& C : S) C = static_cast<char>(std::toupper(static_cast<unsigned char>(C)));
  return S;
}

// "/LEV:2" -> name "LEV", value "2", HasValue.
struct Token {
  std::string Name, Value;
  bool HasValue = false;
};

bool AsSwitch(const std::string& Arg, Token& T) {
  if (Arg.size() < 2 || Arg[0] != '/') return false;
  const auto Colon = Arg.find(':');
  T.Name = Upper(Arg.substr(1, Colon == std::string::npos ? std::string::npos : Colon - 1));
  T.HasValue = Colon != std::string::npos;
  T.Value = T.HasValue ? Arg.substr(Colon + 1) : std::string();
  return Switches().count(T.Name) != 0;
}

// Attribute letters (R A S H C N E T O) as FILE_ATTRIBUTE_* bits.
bool ParseAttributes(const std::string& Letters, DWORD& Bits) {
  static const std::map<char, DWORD> M = {{'R', 0x1},   {'H', 0x2},    {'S', 0x4},    {'A', 0x20},  {'T', 0x100},
                                          {'C', 0x800}, {'O', 0x1000}, {'N', 0x2000}, {'E', 0x4000}};
  Bits = 0;
  for (char C : Upper(Letters)) {
    auto It = M.find(C);
    if (It == M.end()) return false;
    Bits |= It->second;
  }
  return true;
}

// n < 1900: n days before now; otherwise the local date YYYYMMDD.
bool ParseAge(const std::string& Text, TFileTime& At) {
  std::int64_t N;
  if (!TryStrToInt64(Text, N) || N < 0) return false;
  if (N < 1900) {
    At = GetSystemTimeAsFileTime() - N * 864000000000LL;
    return true;
  }
  TDateTime D;
  if (N > 99991231 || !TryEncodeDate(static_cast<int>(N / 10000), static_cast<int>(N / 100 % 100),
                                     static_cast<int>(N % 100), D))
    return false;
  At = LocalDateTimeToFileTime(D);
  return true;
}

bool ParseCount(const std::string& Text, int Min, int Max, int& Out) {
  return TryStrToInt(Text, Out) && Out >= Min && Out <= Max;
}

// The letters of /COPY: and /DCOPY:; X (auxiliary streams) is accepted and
// ignored. S O U (security, owner, auditing) are refused.
bool ParseCopyFlags(const std::string& Text, std::string& Out) {
  Out.clear();
  for (char C : Upper(Text)) {
    if (C == 'X') continue;
    if (C != 'D' && C != 'A' && C != 'T') return false;
    Out += C;
  }
  return true;
}

std::string Invalid(const std::string& Arg) { return "ERROR : Invalid Parameter : " + Arg; }
std::string Refused(const std::string& Arg) {
  return Invalid(Arg) + " (not supported by the built-in engine)";
}

bool ApplyValue(const Token& T, const std::string& Arg, TRobocopySettings& S, std::string& Error) {
  const std::string& V = T.Value;
  bool Ok = true;
  DWORD Bits = 0;
  TFileTime At = 0;
  std::int64_t Size = 0;
  if (T.Name == "LEV") Ok = ParseCount(V, 1, 1 << 30, S.Levels);
  else if (T.Name == "R") Ok = ParseCount(V, 0, 1 << 30, S.Retries);
  else if (T.Name == "W") Ok = ParseCount(V, 0, 1 << 30, S.Wait);
  else if (T.Name == "MT") Ok = !T.HasValue ? (S.Threads = 8, true) : ParseCount(V, 1, 128, S.Threads);
  else if (T.Name == "A+" || T.Name == "A-" || T.Name == "IA" || T.Name == "XA") {
    Ok = ParseAttributes(V, Bits);
    (T.Name == "A+" ? S.AddAttributes : T.Name == "A-" ? S.RemoveAttributes
     : T.Name == "IA" ? S.IncludeAttributes : S.ExcludeAttributes) |= Bits;
  } else if (T.Name == "MAX" || T.Name == "MIN") {
    Ok = TryStrToInt64(V, Size) && Size >= 0;
    (T.Name == "MAX" ? S.MaxSize : S.MinSize) = Size;
  } else if (T.Name == "MAXAGE" || T.Name == "MINAGE" || T.Name == "MAXLAD" || T.Name == "MINLAD") {
    Ok = ParseAge(V, At);
    (T.Name == "MAXAGE" ? S.OldestWrite : T.Name == "MINAGE" ? S.NewestWrite
     : T.Name == "MAXLAD" ? S.OldestAccess : S.NewestAccess) = At;
  } else if (T.Name == "COPY" || T.Name == "DCOPY") {
    if (!ParseCopyFlags(V, T.Name == "COPY" ? S.CopyFlags : S.DirCopyFlags)) {
      Error = Refused(Arg);
      return false;
    }
  } else if (T.Name == "LOG" || T.Name == "LOG+" || T.Name == "UNILOG" || T.Name == "UNILOG+") {
    Ok = !V.empty();
    S.LogFile = V;
    S.AppendLog = T.Name.back() == '+';
    S.UnicodeLog = T.Name[0] == 'U';
  } else if (T.Name == "SD") {
    Ok = !V.empty();
    S.Source = V;
  } else if (T.Name == "DD") {
    Ok = !V.empty();
    S.Dest = V;
  }
  if (!Ok) Error = Invalid(Arg);
  return Ok;
}

void ApplyFlag(const std::string& N, TRobocopySettings& S) {
  if (N == "S") S.SubDirs = true;
  else if (N == "E") S.SubDirs = S.EmptySubDirs = true;
  else if (N == "MIR") S.SubDirs = S.EmptySubDirs = S.Purge = true;
  else if (N == "PURGE") S.Purge = true;
  else if (N == "MOV") S.MoveFiles = true;
  else if (N == "MOVE") S.MoveFiles = S.MoveDirs = true;
  else if (N == "L") S.ListOnly = true;
  else if (N == "X") S.ReportExtra = true;
  else if (N == "V") S.Verbose = true;
  else if (N == "TS") S.TimeStamps = true;
  else if (N == "FP") S.FullPaths = true;
  else if (N == "NS") S.NoSizes = true;
  else if (N == "NC") S.NoClasses = true;
  else if (N == "NFL") S.NoFileList = true;
  else if (N == "NDL") S.NoDirList = true;
  else if (N == "TEE") S.Tee = true;
  else if (N == "NJH") S.NoJobHeader = true;
  else if (N == "NJS") S.NoJobSummary = true;
  else if (N == "NP") S.NoProgress = true;
  else if (N == "A") S.IncludeAttributes |= FILE_ATTRIBUTE_ARCHIVE;
  else if (N == "M") S.IncludeAttributes |= FILE_ATTRIBUTE_ARCHIVE, S.ResetArchive = true;
  else if (N == "IS") S.IncludeSame = true;
  else if (N == "IT") S.IncludeTweaked = true;
  else if (N == "XC") S.ExcludeChanged = true;
  else if (N == "XN") S.ExcludeNewer = true;
  else if (N == "XO") S.ExcludeOlder = true;
  else if (N == "XX") S.ExcludeExtra = true;
  else if (N == "XL") S.ExcludeLonely = true;
  else if (N == "XJ") S.ExcludeDirLinks = S.ExcludeFileLinks = true;
  else if (N == "XJD") S.ExcludeDirLinks = true;
  else if (N == "XJF") S.ExcludeFileLinks = true;
  else if (N == "FFT") S.FatTimes = true;
  else if (N == "DST") S.Dst = true;
  else if (N == "CREATE") S.CreateOnly = true;
  else if (N == "NOCOPY") S.NoCopy = true;
  else if (N == "TIMFIX") S.TimeFix = true;
}

bool ReadJob(const std::string& Value, std::vector<std::string>& Out, std::string& Error) {
  std::string Name = Value;
  // Where names are case-sensitive, "job.rcj" serves as well as "job.RCJ".
  if (ExtractFileExt(Name).empty()) Name += FileExists(Name + ".RCJ") || !FileExists(Name + ".rcj") ? ".RCJ" : ".rcj";
  std::string Text;
  if (Value.empty() || !ReadWholeFile(Name, Text)) {
    Error = "ERROR : Cannot read the job file : " + Name;
    return false;
  }
  Out = ReadRobocopyJobText(Text);
  return true;
}

// Applies Args to S; Positional counts the paths met so far (a job's
// start at 2: it names its paths with /SD: and /DD:).
bool Apply(const std::vector<std::string>& Args, TRobocopySettings& S, std::string& Error, int& Positional,
           bool InJob = false) {
  std::vector<std::string>* List = nullptr;
  for (const std::string& Arg : Args) {
    Token T;
    const bool IsSwitch = AsSwitch(Arg, T);
    if (!IsSwitch && List) {
      List->push_back(Arg);
      S.Switches.push_back(Arg);
      continue;
    }
    if (!IsSwitch) {
      if (Arg.size() > 1 && Arg[0] == '/' && Positional >= 2) {
        Error = Refused(Arg);
        return false;
      }
      if (Positional == 0) S.Source = Arg;
      else if (Positional == 1) S.Dest = Arg;
      else S.Files.push_back(Arg);
      ++Positional;
      continue;
    }
    List = nullptr;
    const Kind K = Switches().at(T.Name);
    if (T.Name != "JOB") S.Switches.push_back(Arg);
    if ((K == Kind::Flag || K == Kind::NoEffect || K == Kind::List) && T.HasValue) {
      Error = Invalid(Arg);
      return false;
    }
    if (K == Kind::Value && !T.HasValue) {
      Error = Invalid(Arg);
      return false;
    }
    switch (K) {
      case Kind::Flag:
        if (T.Name == "NOSD") S.Source.clear();
        else if (T.Name == "NODD") S.Dest.clear();
        else ApplyFlag(T.Name, S);
        break;
      case Kind::List:
        List = T.Name == "XF" ? &S.ExcludeFiles : T.Name == "XD" ? &S.ExcludeDirs : &S.Files;
        break;
      case Kind::Value:
      case Kind::OptionalValue:
        if (T.Name == "JOB") {
          if (InJob) {  // a job naming a job (itself, perhaps) would never end
            Error = Invalid(Arg);
            return false;
          }
          std::vector<std::string> JobArgs;
          int JobPositional = 2;  // a job names its paths with /SD: and /DD:
          if (!ReadJob(T.Value, JobArgs, Error) || !Apply(JobArgs, S, Error, JobPositional, true))
            return false;
        } else if (!ApplyValue(T, Arg, S, Error)) {
          return false;
        }
        break;
      case Kind::NoEffect:
      case Kind::NoEffectValue:
        break;
    }
  }
  return true;
}

}  // namespace

bool ParseRobocopyArgs(const std::vector<std::string>& Args, TRobocopySettings& S, std::string& Error) {
  // A job's arguments come first, so that the command line's add to them and
  // its paths override the job's /SD: and /DD:.
  std::vector<std::string> Jobs, Rest;
  for (const std::string& Arg : Args) {
    Token T;
    (AsSwitch(Arg, T) && T.Name == "JOB" ? Jobs : Rest).push_back(Arg);
  }
  int Positional = 0;
  if (!Apply(Jobs, S, Error, Positional)) return false;
  const std::string JobSource = S.Source, JobDest = S.Dest;
  S.Source.clear(), S.Dest.clear();
  if (!Apply(Rest, S, Error, Positional)) return false;
  if (S.Source.empty()) S.Source = JobSource;
  if (S.Dest.empty()) S.Dest = JobDest;
  return true;
}

std::vector<std::string> ReadRobocopyJobText(const std::string& Text) {
  std::vector<std::string> Out;
  bool InList = false;
  std::size_t Start = 0;
  while (Start <= Text.size()) {
    std::size_t End = Text.find('\n', Start);
    if (End == std::string::npos) End = Text.size();
    std::string Line = Text.substr(Start, End - Start);
    Start = End + 1;
    if (const auto C = Line.find("::"); C != std::string::npos) Line.erase(C);
    const auto First = Line.find_first_not_of(" \t\r");
    if (First == std::string::npos) continue;
    Line = Line.substr(First, Line.find_last_not_of(" \t\r") - First + 1);
    Token T;
    std::string Head = Line.substr(0, Line.find_first_of(" \t"));
    const bool StartsWithSwitch = AsSwitch(Head, T);
    if (StartsWithSwitch && (T.Name == "SD" || T.Name == "DD")) {
      Out.push_back(Line);  // the rest of the line is the path, blanks included
      InList = false;
      continue;
    }
    if (InList && !StartsWithSwitch) {
      Out.push_back(Line);
      continue;
    }
    // Blank-separated arguments, double quotes grouping.
    std::string Current;
    bool Quoted = false, Any = false;
    for (char C : Line) {
      if (C == '"') {
        Quoted = !Quoted;
        Any = true;
      } else if (!Quoted && (C == ' ' || C == '\t')) {
        if (Any) Out.push_back(Current);
        Current.clear();
        Any = false;
      } else {
        Current += C;
        Any = true;
      }
    }
    if (Any) Out.push_back(Current);
    // The list stays open when the line's last switch opens one.
    InList = false;
    for (std::size_t I = Out.size(); StartsWithSwitch && I-- > 0;) {
      Token Last;
      if (AsSwitch(Out[I], Last)) {
        InList = Last.Name == "IF" || Last.Name == "XF" || Last.Name == "XD";
        break;
      }
    }
  }
  return Out;
}

}  // namespace zt::platform
