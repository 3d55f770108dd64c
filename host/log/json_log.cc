#include "host/log/json_log.h"

#include <array>
#include <cstdint>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <stdexcept>

#include "host/version.h"

namespace zt::host {

using nlohmann::ordered_json;

namespace {

std::string UtcNow() {
  std::time_t T = std::time(nullptr);
  std::tm Tm{};
  gmtime_r(&T, &Tm);
  char Buf[32];
  std::strftime(Buf, sizeof Buf, "%Y-%m-%dT%H:%M:%SZ", &Tm);
  return Buf;
}

// Bytes a JSON string cannot hold as they are: controls, quote, backslash,
// and everything above ASCII (which may not be UTF-8).
constexpr std::array<bool, 256> kNotPlain = [] {
  std::array<bool, 256> T{};
  for (int C = 0; C < 256; ++C) T[C] = C < 0x20 || C >= 0x80 || C == '"' || C == '\\';
  return T;
}();

// Eight bytes at a time: any byte of 0x80 or more, below 0x20, '"' or '\\'.
bool HasNotPlain(std::uint64_t X) {
  constexpr std::uint64_t kOnes = 0x0101010101010101ull, kHigh = 0x8080808080808080ull;
  const auto HasZero = [](std::uint64_t V) { return (V - kOnes) & ~V & kHigh; };
  return ((X & kHigh) | ((X - kOnes * 0x20) & ~X & kHigh) | HasZero(X ^ (kOnes * '"')) |
          HasZero(X ^ (kOnes * '\\'))) != 0;
}

bool IsPlainJson(const std::string& Text) {
  const char* P = Text.data();
  std::size_t I = 0, N = Text.size();
  for (; I + 8 <= N; I += 8) {
    std::uint64_t X;
    std::memcpy(&X, P + I, 8);
    if (HasNotPlain(X)) return false;
  }
  for (; I < N; ++I)
    if (kNotPlain[static_cast<unsigned char>(P[I])]) return false;
  return true;
}

// Appends Lines as the elements of a JSON array of strings. Plain texts are
// copied as they are; others go through the JSON library, so escapes and the
// replacement of bytes that are not UTF-8 are those of every other event.
void AppendJsonStrings(std::string& Out, const std::vector<std::string>& Lines) {
  std::size_t Size = 0;
  for (const std::string& L : Lines) Size += L.size() + 3;
  std::size_t At = Out.size();
  Out.resize(At + Size);
  for (std::size_t I = 0; I < Lines.size(); ++I) {
    const std::string& L = Lines[I];
    if (IsPlainJson(L)) {
      Out[At++] = '"';
      std::memcpy(&Out[At], L.data(), L.size());
      At += L.size();
      Out[At++] = '"';
    } else {
      const std::string Escaped = nlohmann::json(L).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
      Out.resize(Out.size() + Escaped.size());  // room for the rest as planned, whatever this one needs
      std::memcpy(&Out[At], Escaped.data(), Escaped.size());
      At += Escaped.size();
    }
    if (I + 1 < Lines.size()) Out[At++] = ',';
  }
  Out.resize(At);
}

}  // namespace

ordered_json JsonValue(const frame::TZTVariant& V) {
  using K = frame::TZTVariant::TKind;
  switch (V.Kind()) {
    case K::Empty: return nullptr;
    case K::Boolean: return V.AsBoolean();
    case K::Integer: return V.AsInteger();
    case K::Double: return V.AsDouble();
    case K::String: return V.AsString();
  }
  return nullptr;
}

JsonLog::~JsonLog() {
  if (Out_ && Owned_) std::fclose(Out_);
}

std::unique_ptr<JsonLog> JsonLog::Open(const std::string& Path) {
  if (Path == "-") return std::make_unique<JsonLog>(stdout, /*Owned=*/false);
  std::FILE* F = std::fopen(Path.c_str(), "w");
  if (!F) throw std::runtime_error("cannot write the JSON log " + Path + ": " + std::strerror(errno));
  return std::make_unique<JsonLog>(F);
}

ordered_json JsonLog::Event(const char* Name, const std::string& Id) const {
  ordered_json E;
  E["event"] = Name;
  if (!Id.empty()) E["id"] = Id;
  E["t_ms"] = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - Start_)
                  .count();
  return E;
}

void JsonLog::Write(const ordered_json& E) {
  // Texts from the file system need not be UTF-8: replace bad bytes rather than lose the event.
  std::string Line = E.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  Line += '\n';
  WriteLine(Line);
}

void JsonLog::WriteLine(const std::string& Line) {
  if (!WriteError_.empty()) return;
  if (std::fwrite(Line.data(), 1, Line.size(), Out_) != Line.size() || std::fflush(Out_) != 0)
    WriteError_ = std::strerror(errno);
}

void JsonLog::BuildStart(const std::string& Project, const std::string& File) {
  Start_ = std::chrono::steady_clock::now();
  File_ = File;
  ordered_json E = Event("build-start");
  E["project"] = Project;
  E["time"] = UtcNow();
  E["file"] = File;
  E["zt"] = kZtVersion;
  E["schema"] = kJsonLogSchema;
  Write(E);
}

void JsonLog::ActionStart(const std::string& Id, const std::string& Title, const std::string& Class,
                          const std::string& Description, int Line) {
  ordered_json E = Event("action-start", Id);
  E["title"] = Title;
  E["class"] = Class;
  E["description"] = Description;
  E["file"] = File_;
  E["line"] = Line;
  Write(E);
}

void JsonLog::Message(const std::string& Id, const std::string& Text, bool FromHost) {
  ordered_json E = Event("message", Id);
  E["text"] = Text;
  if (FromHost) E["host"] = true;
  Write(E);
}

void JsonLog::Status(const std::string& Id, const std::string& Text, const std::vector<std::string>& Details) {
  ordered_json E = Event("status", Id);
  E["text"] = Text;
  // The details are written straight into the line: a program's output can be millions of lines.
  std::string Line = E.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  Line.pop_back();  // the closing brace
  Line += ",\"details\":[";
  AppendJsonStrings(Line, Details);
  Line += "]}\n";
  WriteLine(Line);
}

void JsonLog::Progress(const std::string& Id, const std::string& Text, int Percent) {
  ordered_json E = Event("progress", Id);
  E["text"] = Text;
  E["percent"] = Percent;
  Write(E);
}

void JsonLog::Iteration(const std::string& Id, int Index, int Count,
                        const std::optional<std::string>& Value) {
  ordered_json E = Event("iteration", Id);
  E["index"] = Index;
  E["count"] = Count;
  if (Value) E["value"] = *Value;
  Write(E);
}

void JsonLog::ActionEnd(const std::string& Id, ActionResult Result, std::int64_t DurationMs, int Status) {
  ordered_json E = Event("action-end", Id);
  E["result"] = ResultName(Result);
  E["duration_ms"] = DurationMs;
  if (Status != 0) E["status"] = Status;
  Write(E);
}

void JsonLog::Variables(const VariableList& Values) {
  ordered_json E = Event("variables");
  ordered_json Map = ordered_json::object();
  for (const auto& [Name, Value] : Values) Map[Name] = JsonValue(Value);
  E["values"] = Map;
  Write(E);
}

void JsonLog::BuildEnd(BuildResult Result, std::int64_t DurationMs, const std::string& FailedId) {
  ordered_json E = Event("build-end");
  E["result"] = ResultName(Result);
  E["duration_ms"] = DurationMs;
  if (!FailedId.empty()) E["failed"] = FailedId;
  Write(E);
}

}  // namespace zt::host
