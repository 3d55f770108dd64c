#include "host/project/variables.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <filesystem>

#include "host/version.h"
#include "platform/dates.h"

namespace zt::host {

std::string LowerCase(std::string S) {
  for (char& C : S) C = static_cast<char>(std::tolower(static_cast<unsigned char>(C)));
  return S;
}

Variables::Variables(const std::string& ProjectFile) {
#ifdef _WIN32
  const char* Comspec = std::getenv("COMSPEC");
  Predefined_.emplace_back("DOSCMD", Comspec ? Comspec : "cmd.exe");
#else
  Predefined_.emplace_back("DOSCMD", "/bin/sh");
#endif
  if (!ProjectFile.empty()) {
    Predefined_.emplace_back("ZT_PROJECT_DIR", std::filesystem::path(ProjectFile).parent_path().string());
    Predefined_.emplace_back("ZT_PROJECT_FILE", ProjectFile);
  }
  Predefined_.emplace_back("ZT_VERSION", kZtVersion);
}

void Variables::SetPredefined(const std::string& Name, const TZTVariant& Value) {
  for (auto& [N, V] : Predefined_)
    if (N == Name) {
      V = Value;
      return;
    }
  Predefined_.emplace_back(Name, Value);
}

void Variables::Set(const std::string& Name, const TZTVariant& Value) {
  auto [It, Added] = Index_.emplace(LowerCase(Name), Project_.size());
  if (Added)
    Project_.emplace_back(Name, Value);
  else
    Project_[It->second].second = Value;
}

const TZTVariant* Variables::FindProject(const std::string& Name) const {
  auto It = Index_.find(LowerCase(Name));
  return It == Index_.end() ? nullptr : &Project_[It->second].second;
}

std::optional<TZTVariant> Variables::Lookup(const std::string& Name) const {
  if (const TZTVariant* V = FindProject(Name)) return *V;
  for (const auto& [N, V] : Predefined_)
    if (strcasecmp(N.c_str(), Name.c_str()) == 0) return V;
  if (const char* Env = std::getenv(Name.c_str())) return TZTVariant(Env);
  return std::nullopt;
}

bool Variables::IsDefined(const std::string& Name) const { return Lookup(Name).has_value(); }

TZTVariant TypedValueOf(const std::string& Text) {
  if (strcasecmp(Text.c_str(), "true") == 0) return true;
  if (strcasecmp(Text.c_str(), "false") == 0) return false;
  // An integer only when it prints back as the same text: "0456", "+5", "-0" and "1e3" stay texts.
  std::int64_t N;
  auto [End, Ec] = std::from_chars(Text.data(), Text.data() + Text.size(), N);
  if (Ec == std::errc() && End == Text.data() + Text.size() && std::to_string(N) == Text) return N;
  return Text;
}

bool IsVariableNameChar(char C) {
  return std::isalnum(static_cast<unsigned char>(C)) || C == '_' || C == '.' || C == '-';
}

bool IsVariableName(const std::string& Name) {
  return !Name.empty() && std::all_of(Name.begin(), Name.end(), IsVariableNameChar);
}

std::optional<std::string> BuildStartText(platform::TFileTime Now, const char* SourceDateEpoch) {
  if (SourceDateEpoch) {
    const std::string Text = SourceDateEpoch;
    std::int64_t Seconds;
    auto [End, Ec] = std::from_chars(Text.data(), Text.data() + Text.size(), Seconds);
    // Years 1 to 9999 are what a date can show.
    if (Text.empty() || Ec != std::errc() || End != Text.data() + Text.size() || Seconds < -62135596800 ||
        Seconds > 253402300799)
      return std::nullopt;
    Now = platform::UnixToFileTime(Seconds);
  }
  return platform::FormatDateTime("yyyy-mm-dd'T'hh:nn:ss'Z'", platform::FileTimeToDateTime(Now));
}

}  // namespace zt::host
