#include "host/cli/commands.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "frame/ZTStrings.h"
#include "host/log/console_log.h"
#include "host/project/did_you_mean.h"
#include "host/log/json_log.h"
#include "host/project/package_loader.h"
#include "host/project/project_loader.h"
#include "host/project/property_values.h"
#include "host/run/runner.h"
#include "host/run/stop_signal.h"

namespace zt::host {

namespace {

// The registry lives for the whole process: it points into the loaded package.
ActionRegistry& Registry() {
  static ActionRegistry* R = new ActionRegistry;
  return *R;
}

bool LoadRegistry(const CommandOptions& O, bool Designing, std::ostream& Err) {
  try {
    LoadPackage(O.Package.empty() ? DefaultPackagePath() : O.Package, Registry(), Designing);
    return true;
  } catch (const PackageError& E) {
    Err << "zt: " << E.what() << "\n";
    return false;
  }
}

bool Load(const CommandOptions& O, Project& P, std::ostream& Err) {
  if (!LoadRegistry(O, false, Err)) return false;
  try {
    P = LoadProject(O.Project, Registry());
    return true;
  } catch (const ProjectError& E) {
    for (const auto& L : E.Lines()) Err << L << "\n";
    return false;
  }
}

bool ParseVars(const std::vector<std::string>& Vars, VariableList& Out, std::ostream& Err) {
  for (const auto& V : Vars) {
    auto Eq = V.find('=');
    if (Eq == std::string::npos || Eq == 0) {
      Err << "zt: --var expects NAME=VALUE, got \"" << V << "\"\n";
      return false;
    }
    std::string Name = V.substr(0, Eq);
    if (!IsVariableName(Name)) {
      Err << "zt: --var \"" << V << "\": \"" << Name << "\" is not a valid variable name (letters, digits, _, . and -)\n";
      return false;
    }
    Out.emplace_back(Name, TypedValueOf(V.substr(Eq + 1)));
  }
  return true;
}

// "Name=Text" lines of a vocabulary query, keyed by name; "[Heading]" lines skipped.
std::map<std::string, std::string> NameTextPairs(const frame::TStrings& Lines) {
  std::map<std::string, std::string> R;
  for (const auto& L : Lines.Lines()) {
    auto Eq = L.find('=');
    if (!L.empty() && L[0] != '[' && Eq != std::string::npos) R.emplace(L.substr(0, Eq), L.substr(Eq + 1));
  }
  return R;
}

class ErrorPrinter : public frame::IZTActionValidationError {
 public:
  ErrorPrinter(std::ostream& Out, std::string Prefix) : Out_(Out), Prefix_(std::move(Prefix)) {}
  void AddError(const std::string& PropertyTitle, const std::string& Message) override {
    Out_ << Prefix_ << PropertyTitle << ": " << Message << "\n";
    ++Count;
  }
  int Count = 0;

 private:
  std::ostream& Out_;
  std::string Prefix_;
};

}  // namespace

int RunCommand(const CommandOptions& O, std::ostream& Err) {
  VariableList Overrides;
  if (!ParseVars(O.Vars, Overrides, Err)) return kExitCannotLoad;
  Project P;
  if (!Load(O, P, Err)) return kExitCannotLoad;
  if (!O.Registry.empty()) setenv("ZT_REGISTRY", std::filesystem::absolute(O.Registry).c_str(), 1);

  BuildLog Log;
  Log.AddSink(std::make_unique<ConsoleLog>(stdout, isatty(STDOUT_FILENO) != 0, O.Quiet));
  try {
    // Opened before the change of folder: the path is the user's, relative to where zt started.
    if (!O.LogJson.empty()) Log.AddSink(JsonLog::Open(O.LogJson));
  } catch (const std::exception& E) {
    Err << "zt: " << E.what() << "\n";
    return kExitCannotLoad;
  }
  std::error_code Ec;
  std::filesystem::current_path(std::filesystem::path(P.File).parent_path(), Ec);
  if (Ec) {
    Err << "zt: cannot change to the project's folder: " << Ec.message() << "\n";
    return kExitCannotLoad;
  }

  Runner R(P, Log, Overrides);
  BuildResult Result;
  {
    StopSignal Stop([&R] { R.RequestStop(); });
    Result = R.Run();
  }
  switch (Result) {
    case BuildResult::Success: return kExitOk;
    case BuildResult::Failure: return kExitFailed;
    case BuildResult::Stopped: return kExitStopped;
  }
  return kExitFailed;
}

int ValidateCommand(const CommandOptions& O, std::ostream& Out, std::ostream& Err) {
  Project P;
  if (!Load(O, P, Err)) return kExitCannotLoad;
  BuildLog Silent;
  Runner R(P, Silent);
  int Invalid = 0, Count = 0;
  ForEachAction(P.Actions, [&](ActionNode& N, int) {
    ++Count;
    ErrorPrinter Errors(Out, N.Id + " " + N.Action->GetTitle() + ": ");
    bool Valid = N.Action->Validate(Errors);
    if (!Valid && Errors.Count == 0) Out << N.Id << " " << N.Action->GetTitle() << ": invalid settings\n";
    if (!Valid || Errors.Count) ++Invalid;
  });
  if (Invalid) return kExitFailed;
  Out << O.Project << ": " << Count << (Count == 1 ? " action" : " actions") << ", no errors\n";
  return kExitOk;
}

int DescribeCommand(const CommandOptions& O, std::ostream& Out, std::ostream& Err) {
  Project P;
  if (!Load(O, P, Err)) return kExitCannotLoad;
  BuildLog Silent;
  Runner R(P, Silent);
  ForEachAction(P.Actions, [&](ActionNode& N, int Depth) {
    Out << std::string(2 * Depth, ' ') << N.Action->GetFormattedDescription() << "\n";
  });
  return kExitOk;
}

int ActionsCommand(const CommandOptions& O, std::ostream& Out, std::ostream& Err) {
  if (!LoadRegistry(O, O.Designer, Err)) return kExitCannotLoad;
  const auto& Actions = Registry().Actions();
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
    Err << "zt: unknown action \"" << O.Action << "\"" << DidYouMean(O.Action, Registry().Names()) << "\n";
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
