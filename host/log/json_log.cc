#include "host/log/json_log.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <stdexcept>

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

ordered_json Event(const char* Name) {
  ordered_json E;
  E["event"] = Name;
  return E;
}

ordered_json ActionEvent(const char* Name, const std::string& Id) {
  ordered_json E = Event(Name);
  if (!Id.empty()) E["id"] = Id;
  return E;
}

// Appends Text as a JSON string. Printable ASCII is copied as it is; other
// texts go through the JSON library, so escapes and the replacement of bytes
// that are not UTF-8 are those of every other event.
void AppendJsonString(std::string& Out, const std::string& Text) {
  for (unsigned char C : Text) {
    if (C < 0x20 || C >= 0x80 || C == '"' || C == '\\') {
      Out += nlohmann::json(Text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
      return;
    }
  }
  Out += '"';
  Out += Text;
  Out += '"';
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
  if (Out_) std::fclose(Out_);
}

std::unique_ptr<JsonLog> JsonLog::Open(const std::string& Path) {
  std::FILE* F = std::fopen(Path.c_str(), "w");
  if (!F) throw std::runtime_error(Path + ": cannot write the log: " + std::strerror(errno));
  return std::make_unique<JsonLog>(F);
}

void JsonLog::Write(const ordered_json& E) {
  // Texts from the file system need not be UTF-8: replace bad bytes rather than lose the event.
  std::string Line = E.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  Line += '\n';
  WriteLine(Line);
}

void JsonLog::WriteLine(const std::string& Line) {
  std::fwrite(Line.data(), 1, Line.size(), Out_);
  std::fflush(Out_);
}

void JsonLog::BuildStart(const std::string& Project) {
  ordered_json E = Event("build-start");
  E["project"] = Project;
  E["time"] = UtcNow();
  Write(E);
}

void JsonLog::ActionStart(const std::string& Id, const std::string& Title, const std::string& Class,
                          const std::string& Description) {
  ordered_json E = ActionEvent("action-start", Id);
  E["title"] = Title;
  E["class"] = Class;
  E["description"] = Description;
  Write(E);
}

void JsonLog::Message(const std::string& Id, const std::string& Text, bool FromHost) {
  ordered_json E = ActionEvent("message", Id);
  E["text"] = Text;
  if (FromHost) E["host"] = true;
  Write(E);
}

void JsonLog::Status(const std::string& Id, const std::string& Text, const std::vector<std::string>& Details) {
  ordered_json E = ActionEvent("status", Id);
  E["text"] = Text;
  // The details are written straight into the line: a program's output can be millions of lines.
  std::string Line = E.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  Line.pop_back();  // the closing brace
  std::size_t Size = Line.size() + 16;
  for (const std::string& D : Details) Size += D.size() + 3;
  Line.reserve(Size);
  Line += ",\"details\":[";
  for (std::size_t I = 0; I < Details.size(); ++I) {
    if (I > 0) Line += ',';
    AppendJsonString(Line, Details[I]);
  }
  Line += "]}\n";
  WriteLine(Line);
}

void JsonLog::Progress(const std::string& Id, const std::string& Text, int Percent) {
  ordered_json E = ActionEvent("progress", Id);
  E["text"] = Text;
  E["percent"] = Percent;
  Write(E);
}

void JsonLog::Iteration(const std::string& Id, int Index, int Count,
                        const std::optional<std::string>& Value) {
  ordered_json E = ActionEvent("iteration", Id);
  E["index"] = Index;
  E["count"] = Count;
  if (Value) E["value"] = *Value;
  Write(E);
}

void JsonLog::ActionEnd(const std::string& Id, ActionResult Result) {
  ordered_json E = ActionEvent("action-end", Id);
  E["result"] = ResultName(Result);
  Write(E);
}

void JsonLog::Variables(const VariableList& Values) {
  ordered_json E = Event("variables");
  ordered_json Map = ordered_json::object();
  for (const auto& [Name, Value] : Values) Map[Name] = JsonValue(Value);
  E["values"] = Map;
  Write(E);
}

void JsonLog::BuildEnd(BuildResult Result, std::int64_t DurationMs) {
  ordered_json E = Event("build-end");
  E["result"] = ResultName(Result);
  E["duration_ms"] = DurationMs;
  Write(E);
}

}  // namespace zt::host
