#include "host/cli/command_support.h"

#include "host/log/annotations.h"
#include "host/project/package_loader.h"
#include "host/run/script_runner.h"
#include "host/run/script_session.h"

namespace zt::host {

namespace {

bool Annotating(const CommandOptions& O) { return O.Annotations == "github"; }

class ErrorPrinter : public frame::IZTActionValidationError {
 public:
  ErrorPrinter(const CommandOptions& O, const Project& P, const ActionNode& N, std::ostream& Out,
               std::ostream& Annotate)
      : O_(O), P_(P), N_(N), Out_(Out), Annotate_(Annotate) {}
  void AddError(const std::string& PropertyTitle, const std::string& Message) override {
    Print(PropertyTitle + ": " + Message);
  }
  // Also for a Validate that says no without naming a property.
  void Print(const std::string& What) {
    std::string Heading = N_.Id + " " + N_.Action->GetTitle();
    Out_ << Heading << ": " << What << "\n";
    if (Annotating(O_)) Annotate_ << GitHubCommand("error", P_.FileName, N_.Line, Heading, What) << "\n";
    ++Count;
  }
  int Count = 0;

 private:
  const CommandOptions& O_;
  const Project& P_;
  const ActionNode& N_;
  std::ostream& Out_;
  std::ostream& Annotate_;
};

int ValidateNodes(const CommandOptions& O, Project& P, std::vector<ActionNode>& Nodes, bool EnabledOnly,
                  std::ostream& Out, std::ostream& Annotate) {
  int Invalid = 0;
  for (ActionNode& N : Nodes) {
    if (EnabledOnly && !N.Enabled) continue;
    ErrorPrinter Errors(O, P, N, Out, Annotate);
    bool Valid = N.Action->Validate(Errors);
    if (!Valid && Errors.Count == 0) Errors.Print("invalid settings");
    for (const auto& S : N.Scripts) {
      std::string Error = CompileScript(ScriptFileName(P), S);
      if (!Error.empty()) Errors.AddError(S.Name, Error);
    }
    if (!Valid || Errors.Count) ++Invalid;
    Invalid += ValidateNodes(O, P, N.Children, EnabledOnly, Out, Annotate);
  }
  return Invalid;
}

}  // namespace

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

bool LoadProjectFile(const CommandOptions& O, Project& P, std::ostream& Err, std::ostream& Annotate) {
  if (!LoadRegistry(O, false, Err)) return false;
  try {
    P = LoadProject(O.Project, Registry());
    return true;
  } catch (const ProjectError& E) {
    ReportErrors(O, E.File(), E.Errors(), Err, Annotate);
    return false;
  }
}

int ReportErrors(const CommandOptions& O, const std::string& File, const std::vector<LoadError>& Errors,
                 std::ostream& Out, std::ostream& Annotate) {
  for (const auto& E : Errors) {
    Out << ErrorLine(File, E) << "\n";
    if (Annotating(O)) Annotate << GitHubCommand("error", File, E.Line, "", E.Text) << "\n";
  }
  return static_cast<int>(Errors.size());
}

int ValidateActions(const CommandOptions& O, Project& P, bool EnabledOnly, std::ostream& Out,
                    std::ostream& Annotate) {
  return ValidateNodes(O, P, P.Actions, EnabledOnly, Out, Annotate);
}

}  // namespace zt::host
