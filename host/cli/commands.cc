#include "host/cli/commands.h"

#include <algorithm>
#include <map>

#include "frame/ZTStrings.h"
#include "host/cli/command_support.h"
#include "host/project/did_you_mean.h"
#include "host/project/property_values.h"
#include "host/run/runner.h"

namespace zt::host {

namespace {

// "Name=Text" lines of a vocabulary query, keyed by name; "[Heading]" lines skipped.
std::map<std::string, std::string> NameTextPairs(const frame::TStrings& Lines) {
  std::map<std::string, std::string> R;
  for (const auto& L : Lines.Lines()) {
    auto Eq = L.find('=');
    if (!L.empty() && L[0] != '[' && Eq != std::string::npos) R.emplace(L.substr(0, Eq), L.substr(Eq + 1));
  }
  return R;
}

}  // namespace

int ValidateCommand(const CommandOptions& O, std::ostream& Out, std::ostream& Err) {
  Project P;
  if (!LoadProjectFile(O, P, Err, Out)) return kExitCannotLoad;
  BuildLog Silent;
  Runner R(P, Silent);
  int Errors = ReportErrors(O, P.FileName, UnavailableActions(P), Out, Out);
  Errors += ValidateActions(O, P, /*EnabledOnly=*/false, Out, Out);
  if (Errors) return kExitFailed;
  int Count = 0;
  ForEachAction(P.Actions, [&](ActionNode&, int) { ++Count; });
  Out << O.Project << ": " << Count << (Count == 1 ? " action" : " actions") << ", no errors\n";
  return kExitOk;
}

int DescribeCommand(const CommandOptions& O, std::ostream& Out, std::ostream& Err) {
  Project P;
  if (!LoadProjectFile(O, P, Err, Out)) return kExitCannotLoad;
  BuildLog Silent;
  Runner R(P, Silent);
  ForEachAction(P.Actions, [&](ActionNode& N, int Depth) {
    Out << std::string(2 * Depth, ' ') << N.Action->GetFormattedDescription() << (N.Enabled ? "" : " [disabled]")
        << (N.IgnoreFailure ? " [ignore failure]" : "") << "\n";
    for (const auto& S : N.Scripts)
      Out << std::string(2 * Depth + 4, ' ') << "script " << S.Name << " (line " << S.Line << ")\n";
  });
  return kExitOk;
}

int ActionsCommand(const CommandOptions& O, std::ostream& Out, std::ostream& Err) {
  if (!LoadRegistry(O, O.Designer, Err)) return kExitCannotLoad;
  std::vector<RegisteredAction> Actions;
  for (const auto& A : Registry().Actions())
    if (!O.Available || A.Class->IsAvailable()) Actions.push_back(A);
  std::size_t W[4] = {0, 0, 0, 0};
  for (const auto& A : Actions) {
    W[0] = std::max(W[0], A.Category.size());
    W[1] = std::max(W[1], A.DisplayName.size());
    W[2] = std::max(W[2], A.Class->ClassName.size());
    W[3] = std::max(W[3], A.Icon.size());
  }
  auto Pad = [](const std::string& S, std::size_t Width) { return S + std::string(Width - S.size() + 2, ' '); };
  for (const auto& A : Actions) {
    std::string Line = Pad(A.Category, W[0]) + Pad(A.DisplayName, W[1]) + Pad(A.Class->ClassName, W[2]) +
                       (A.Class->IsAvailable() ? A.Icon : Pad(A.Icon, W[3]) + "(not available yet)");
    Out << Line << "\n";
    if (!O.Designer) continue;
    for (const auto& E : Registry().EditorsOf(A))
      Out << "    editor " << E.Editor << " for " << (E.PropertyName.empty() ? "every property" : E.PropertyName)
          << " (" << E.PropertyType << (E.ClassName == A.Class->ClassName ? "" : ", of " + E.ClassName) << ")\n";
    for (const auto& Page : Registry().PagesOf(A)) Out << "    page " << Page << "\n";
  }
  return kExitOk;
}

int HelpCommand(const CommandOptions& O, std::ostream& Out, std::ostream& Err) {
  if (!LoadRegistry(O, false, Err)) return kExitCannotLoad;
  const RegisteredAction* Type = Registry().Find(O.Action);
  if (!Type) {
    Err << "zt: unknown action \"" << O.Action << "\"" << Registry().DidYouMean(O.Action) << "\n";
    return kExitCannotLoad;
  }
  Out << Type->DisplayName << " (" << Type->Class->ClassName << "), category " << Type->Category << ", icon "
      << Type->Icon << (Type->Class->IsAvailable() ? "" : ", not available yet") << "\n";
  std::unique_ptr<frame::TZTAction> A(Type->Class->Create ? Type->Class->Create() : nullptr);
  if (!A) return kExitOk;
  frame::TStrings Alias, Help, Hidden, ReadOnly;
  A->GetPropertyAlias(Alias);
  A->GetPropertyHelp(Help);
  A->GetHiddenProperties(Hidden);
  A->GetReadOnlyProperties(ReadOnly);
  auto Captions = NameTextPairs(Alias), Helps = NameTextPairs(Help);
  Out << "Properties:\n";
  for (const auto& P : Type->Class->Properties()) {
    Out << "  " << P.Name << ": " << PropertyTypeText(P) << " = ";
    try {
      std::string Value = PropertyValueText(P, P.Get(*A));
      bool IsText = P.Kind == frame::TZTPropertyKind::String || P.Kind == frame::TZTPropertyKind::WideString;
      Out << (IsText ? "\"" + Value + "\"" : Value);
    } catch (const std::exception&) {
      Out << "?";
    }
    if (Hidden.IndexOf(P.Name) >= 0) Out << " [hidden]";
    if (P.ReadOnly() || ReadOnly.IndexOf(P.Name) >= 0) Out << " [read-only]";
    Out << "\n";
    if (Captions.count(P.Name)) Out << "      caption: " << Captions[P.Name] << "\n";
    if (Helps.count(P.Name)) Out << "      help: " << Helps[P.Name] << "\n";
  }
  Out << "Help topic: " << A->GetHelpTopicID() << "\n";
  Out << "Quick help: " << A->GetQuickHelpFilename() << "\n";
  return kExitOk;
}

}  // namespace zt::host
