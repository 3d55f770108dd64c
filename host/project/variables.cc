#include "host/project/variables.h"

#include <cctype>
#include <cstdlib>
#include <filesystem>

#include <strings.h>

#include "host/version.h"

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

void Variables::Set(const std::string& Name, const TZTVariant& Value) {
  auto [It, Added] = Index_.emplace(LowerCase(Name), Project_.size());
  if (Added) Project_.emplace_back(Name, Value);
  else Project_[It->second].second = Value;
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
  std::size_t I = (!Text.empty() && (Text[0] == '-' || Text[0] == '+')) ? 1 : 0;
  bool Digits = I < Text.size() && Text.size() - I <= 18;
  for (std::size_t J = I; Digits && J < Text.size(); ++J) Digits = std::isdigit(static_cast<unsigned char>(Text[J]));
  if (Digits) return static_cast<std::int64_t>(std::strtoll(Text.c_str(), nullptr, 10));
  return Text;
}

}  // namespace zt::host
