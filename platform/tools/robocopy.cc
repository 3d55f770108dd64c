// The built-in robocopy's run: its arguments, the checks that end a run
// before anything changes (exit 16), the log file, the header and the
// summary around the walk (robocopy_walk.cc).
#include "platform/tools/robocopy.h"

#include <chrono>
#include <cstdio>

#include "platform/files.h"
#include "platform/paths.h"
#include "platform/tools/robocopy_engine.h"

namespace zt::platform {

namespace {

// UTF-8 text as UTF-16LE bytes (an invalid byte stands for itself).
std::string Utf16Le(const std::string& Text) {
  std::string Out;
  auto Put = [&Out](unsigned U) {
    Out += static_cast<char>(U & 0xFF);
    Out += static_cast<char>(U >> 8);
  };
  for (std::size_t I = 0; I < Text.size();) {
    const auto B = static_cast<unsigned char>(Text[I]);
    const int Extra = B >= 0xF0 ? 3 : B >= 0xE0 ? 2 : B >= 0xC0 ? 1 : 0;
    unsigned U = Extra == 0 ? B : B & (0x3F >> Extra);
    bool Valid = I + Extra < Text.size() + (Extra == 0);
    for (int K = 1; Valid && K <= Extra; ++K) {
      const auto C = static_cast<unsigned char>(Text[I + K]);
      Valid = (C & 0xC0) == 0x80;
      U = (U << 6) | (C & 0x3F);
    }
    if (!Valid) U = B;
    I += Valid ? Extra + 1 : 1;
    if (U >= 0x10000) {
      U -= 0x10000;
      Put(0xD800 | (U >> 10));
      Put(0xDC00 | (U & 0x3FF));
    } else {
      Put(U);
    }
  }
  return Out;
}

#ifdef _WIN32
constexpr const char* kLineEnd = "\r\n";
#else
constexpr const char* kLineEnd = "\n";
#endif

// /LOG: and /UNILOG: files (appended to with the "+" forms).
class TLogFile {
 public:
  ~TLogFile() {
    if (H_ != INVALID_HANDLE_VALUE) FileClose(H_);
  }
  bool Open(const TRobocopySettings& S) {
    Unicode_ = S.UnicodeLog;
    if (S.AppendLog && FileExists(S.LogFile)) {
      H_ = FileOpen(S.LogFile, fmOpenWrite | fmShareDenyWrite);
      return H_ != INVALID_HANDLE_VALUE && FileSeek(H_, 0, 2) >= 0;
    }
    H_ = FileCreate(S.LogFile);
    return H_ != INVALID_HANDLE_VALUE && (!Unicode_ || FileWrite(H_, "\xFF\xFE", 2) == 2);
  }
  void Write(const std::string& Line) {
    const std::string Bytes = Unicode_ ? Utf16Le(Line + kLineEnd) : Line + kLineEnd;
    FileWrite(H_, Bytes.data(), static_cast<int>(Bytes.size()));
  }

 private:
  THandle H_ = INVALID_HANDLE_VALUE;
  bool Unicode_ = false;
};

std::string Joined(const std::vector<std::string>& Items, const std::string& Default) {
  std::string Text;
  for (const std::string& I : Items) Text += (Text.empty() ? "" : " ") + I;
  return Text.empty() ? Default : Text;
}

std::string CountLine(const char* Name, const TRobocopyCounts& C) {
  const std::int64_t Skipped = C.Total - C.Copied - C.Mismatched - C.Failed;
  return std::string(Name) + " : " + std::to_string(C.Total) + " total, " + std::to_string(C.Copied) + " copied, " +
         std::to_string(Skipped < 0 ? 0 : Skipped) + " skipped, " + std::to_string(C.Mismatched) + " mismatched, " +
         std::to_string(C.Failed) + " failed, " + std::to_string(C.Extra) + " extra";
}


}  // namespace

int RunRobocopy(const std::vector<std::string>& Args, IToolOutput& Out, BOOL* Cancel) {
  const auto Start = std::chrono::steady_clock::now();
  TRobocopySettings S;
  std::string Error;
  if (!ParseRobocopyArgs(Args, S, Error)) {
    Out.Line(Error);
    return kRobocopyFatal;
  }
  if (S.Source.empty() || S.Dest.empty()) {
    Out.Line(S.Source.empty() ? "ERROR : No source directory specified." : "ERROR : No destination directory specified.");
    return kRobocopyFatal;
  }
  TLogFile Log;
  const bool ToLog = !S.LogFile.empty();
  if (ToLog && !Log.Open(S)) {
    const DWORD Code = GetLastError();
    Out.Line("ERROR : Cannot open the log file : " + S.LogFile);
    Out.Line(" --> " + SysErrorMessage(Code));
    return kRobocopyFatal;
  }
  const auto Emit = [&](const std::string& Line) {
    if (ToLog) Log.Write(Line);
    if (!ToLog || S.Tee) Out.Line(Line);
  };
  const std::string SourceDir = IncludeTrailingPathDelimiter(S.Source);
  const std::string DestDir = IncludeTrailingPathDelimiter(S.Dest);
  if (!S.NoJobHeader) {
    Emit("Source : " + SourceDir);
    Emit("Dest : " + DestDir);
    Emit("Files : " + Joined(S.Files, "*.*"));
    Emit("Options : " + Joined(S.Switches, ""));
  }

  // Nothing changes at the destination unless the source is there to read:
  // a mistyped source with /MIR or /PURGE deletes nothing.
  TSearchRec F;
  if (!DirectoryExists(S.Source) || FindFirst(SourceDir + "*", faAnyFile, F) != 0) {
    const DWORD Code = DirectoryExists(S.Source) ? GetLastError() : ERROR_PATH_NOT_FOUND;
    Emit("ERROR : The source directory does not exist or cannot be read : " + SourceDir);
    Emit(" --> " + SysErrorMessage(Code));
    return kRobocopyFatal;
  }
  FindClose(F);
  if (CanonicalPath(SourceDir) == CanonicalPath(DestDir)) {
    Emit("ERROR : The source and destination are the same directory : " + SourceDir);
    return kRobocopyFatal;
  }
  bool DestExists = DirectoryExists(S.Dest);
  if (!DestExists && !S.ListOnly) {
    if (!ForceDirectories(S.Dest)) {
      const DWORD Code = GetLastError();
      Emit("ERROR : Cannot create the destination directory : " + DestDir);
      Emit(" --> " + SysErrorMessage(Code));
      return kRobocopyFatal;
    }
    DestExists = true;
  }

  int Code;
  TRobocopyCounts Dirs, Files, Bytes;
  {
    TRobocopyEngine Engine(S, Out, Cancel, Emit, SourceDir, DestDir);
    Code = Engine.Run(DestExists);
    Dirs = Engine.Dirs(), Files = Engine.Files(), Bytes = Engine.Bytes();
  }
  if (Code == kRobocopyFatal) Emit("Stopped by the user.");
  if (!S.NoJobSummary) {
    Emit(CountLine("Dirs", Dirs));
    Emit(CountLine("Files", Files));
    Emit(CountLine("Bytes", Bytes));
    char Seconds[32];
    std::snprintf(Seconds, sizeof Seconds, "%.3f",
                  std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count());
    Emit(std::string("Time : ") + Seconds);
  }
  return Code;
}

}  // namespace zt::platform
