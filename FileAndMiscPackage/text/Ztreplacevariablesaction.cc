#include "text/Ztreplacevariablesaction.h"

#include <exception>
#include <stdexcept>

#include "frame/ZTUtils.h"
#include "platform/files.h"
#include "text/Zttextfilestreams.h"

namespace zt::package {
namespace {

// A failure of one step, with the message logged after "An error occured:".
class EReplaceVariablesError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace

ZT_IMPLEMENT_CLASS(TZTReplaceVariablesAction, &TZTReplaceVariablesAction::Publish)

void TZTReplaceVariablesAction::Publish(frame::TZTPublisher<TZTReplaceVariablesAction>& P) {
  using A = TZTReplaceVariablesAction;
  const std::vector<std::string> Types = {"rfVariable", "rfFile"};
  P.String("SourceFile", &A::GetSourceFile, &A::SetSourceFile);
  P.Enumeration("SourceType", "TZTReplaceDataType", Types, &A::GetSourceType, &A::SetSourceType);
  P.String("SourceVariable", &A::GetSourceVariable, &A::SetSourceVariable);
  P.Boolean("WriteBackToSource", &A::GetWriteBackToSource, &A::SetWriteBackToSource);
  P.Enumeration("DestType", "TZTReplaceDataType", Types, &A::GetDestType, &A::SetDestType);
  P.String("DestFile", &A::GetDestFile, &A::SetDestFile);
  P.String("DestVariable", &A::GetDestVariable, &A::SetDestVariable);
  P.Boolean("FailOnVariableErrors", &A::GetFailOnVariableErrors, &A::SetFailOnVariableErrors);
  P.Boolean("WriteToLog", &A::GetWriteToLog, &A::SetWriteToLog);
}

bool TZTReplaceVariablesAction::Execute() {
  try {
    return Replace();
  } catch (const std::exception& E) {
    SendMessage("An error occured:");
    SendMessage(E.what());
    return false;
  }
}

bool TZTReplaceVariablesAction::Replace() {
  std::string Text, SourcePath;
  if (!Load(Text, SourcePath)) return false;
  int Count = 0;
  try {
    Text = frame::LineListText(ExpandExpression(Text, Count, FFailOnVariableErrors));
  } catch (const std::exception& E) {
    throw EReplaceVariablesError(std::string("Could not expand variables: ") + E.what());
  }
  SendMessage("Made " + std::to_string(Count) + " replacements.");
  if (FWriteToLog) {
    SendMessage("Contents with Replaced Variables:");
    SendMessage(Text);
  }
  return Store(Text, SourcePath);
}

bool TZTReplaceVariablesAction::Load(std::string& Text, std::string& Path) {
  if (FSourceType == rfVariable) {
    if (!IsVariableDefined(FSourceVariable))
      throw EReplaceVariablesError("Variable not defined: " + FSourceVariable);
    SendMessage("Loading data from variable " + FSourceVariable);
    Text = frame::LineListText(GetVariableValue(FSourceVariable).AsString());
    return true;
  }
  if (!TryExpandExpression("Source File Path", FSourceFile, true, Path)) return false;
  Path = frame::Trim(Path);
  if (!platform::FileExists(Path)) throw EReplaceVariablesError("Source file not found: " + Path);
  SendMessage("Loading data from file " + Path + "...");
  TFileStreamHandle File(Path, platform::fmOpenRead | platform::fmShareDenyWrite);
  Text = frame::LineListText(ReadFileStream(File.Get(), Path));
  return true;
}

bool TZTReplaceVariablesAction::Store(const std::string& Text, const std::string& SourcePath) {
  if (FWriteBackToSource) {
    if (FSourceType == rfVariable) {
      SendMessage("Writing result to source variable.");
      SetVariable(FSourceVariable, frame::TZTVariant(Text));
    } else {
      SendMessage("Writing result back to source file.");
      Save(Text, SourcePath);
    }
    return true;
  }
  if (FDestType == rfVariable) {
    if (!IsVariableDefined(FDestVariable))
      throw EReplaceVariablesError("Destination variable not defined: " + FDestVariable);
    SendMessage("Writing result to variable " + FDestVariable);
    SetVariable(FDestVariable, frame::TZTVariant(Text));
    return true;
  }
  std::string Path;
  if (!TryExpandExpression("Destination File Path", FDestFile, true, Path)) return false;
  Path = frame::Trim(Path);
  SendMessage("Writing result to file " + Path);
  Save(Text, Path);
  return true;
}

void TZTReplaceVariablesAction::Save(const std::string& Text, const std::string& Path) {
  try {
    SaveFileStream(Path, Text);
  } catch (const std::exception& E) {
    throw EReplaceVariablesError(std::string("Could not save file: ") + E.what());
  }
}

}  // namespace zt::package
