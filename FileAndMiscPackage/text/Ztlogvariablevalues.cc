#include "text/Ztlogvariablevalues.h"

#include <strings.h>

#include <algorithm>
#include <exception>

namespace zt::package {

ZT_IMPLEMENT_CLASS(TZTLogVariablesAction, &TZTLogVariablesAction::Publish)

void TZTLogVariablesAction::Publish(frame::TZTPublisher<TZTLogVariablesAction>& P) {
  using A = TZTLogVariablesAction;
  P.StringList("VariablesToLog", &A::GetVariablesToLog);
  P.String("VariableStorageString", &A::GetVariableStorageString, &A::SetVariableStorageString);
  P.Boolean("FailIfNotDefined", &A::GetFailIfNotDefined, &A::SetFailIfNotDefined);
  P.Boolean("LogAllVariables", &A::GetLogAllVariables, &A::SetLogAllVariables);
}

void TZTLogVariablesAction::GetHiddenProperties(frame::TStrings& List) {
  inherited::GetHiddenProperties(List);
  List.Add("VariableStorageString");
}

bool TZTLogVariablesAction::Execute() { return FLogAllVariables ? LogAll() : LogSelected(); }

bool TZTLogVariablesAction::ValueText(const std::string& Name, std::string& Text) {
  // What a %Name% reference gives: a value that refers to other variables
  // is shown as the build uses it.
  try {
    Text = ExpandExpression("%" + Name + "%");
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

bool TZTLogVariablesAction::LogAll() {
  SendMessage("All variable values : ");
  frame::TStrings List;
  GetVariablesList(List, /*IncludePredefined=*/false);
  std::vector<std::string> Names = List.Lines();
  std::stable_sort(Names.begin(), Names.end(), [](const std::string& A, const std::string& B) {
    return strcasecmp(A.c_str(), B.c_str()) < 0;
  });
  for (const std::string& Name : Names) {
    std::string Text;
    SendMessage(Name + " = " + (ValueText(Name, Text) ? Text : "(Cannot be represented as a string)"));
  }
  return true;
}

bool TZTLogVariablesAction::LogSelected() {
  SendMessage("Current variable values : ");
  for (const std::string& Entry : FVariablesToLog.Lines()) {
    std::string Name;
    if (!TryExpandExpression("Variable to Log", Entry, true, Name)) return false;
    if (Name.empty()) continue;
    if (!IsVariableDefined(Name)) {
      SendMessage("Variable " + Name + " not defined.");
      if (FFailIfNotDefined) return false;
      continue;
    }
    std::string Text;
    SendMessage(Name + " = " + (ValueText(Name, Text) ? Text : "(Cannot be represented as string)"));
  }
  return true;
}

}  // namespace zt::package
