#include "text/Ztreadtextfileaction.h"

#include <algorithm>
#include <exception>

#include "frame/ZTUtils.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "text/Zttextfilestreams.h"

namespace zt::package {
namespace {

const char* const kOnReadLine = "OnReadLine";

// Replaces every From in S by To.
std::string ReplaceAll(const std::string& S, const std::string& From, const std::string& To) {
  std::string R;
  R.reserve(S.size());
  std::size_t At = 0;
  for (std::size_t Hit; (Hit = S.find(From, At)) != std::string::npos; At = Hit + From.size())
    R.append(S, At, Hit - At).append(To);
  return R.append(S, At);
}

}  // namespace

ZT_IMPLEMENT_CLASS(TZTReadTextFileAction, &TZTReadTextFileAction::Publish)

void TZTReadTextFileAction::Publish(frame::TZTPublisher<TZTReadTextFileAction>& P) {
  using A = TZTReadTextFileAction;
  P.String("FileName", &A::GetFileName, &A::SetFileName);
  P.String("ZTVariable", &A::GetZTVariable, &A::SetZTVariable);
  P.Boolean("PutContentsInVar", &A::GetPutContentsInVar, &A::SetPutContentsInVar);
  P.Boolean("EscapeVariables", &A::GetEscapeVariables, &A::SetEscapeVariables);
}

TZTReadTextFileAction::TZTReadTextFileAction() { AddScript(kOnReadLine); }

void TZTReadTextFileAction::InitialiseScriptParams(const std::string& ScriptName,
                                                   frame::TZTScriptParams& Params) {
  inherited::InitialiseScriptParams(ScriptName, Params);
  if (ScriptName != kOnReadLine) return;
  Params.push_back({"Action", {}, false});
  Params.push_back({"LineText", std::string(), false});
}

bool TZTReadTextFileAction::Validate(frame::IZTActionValidationError& Errors) {
  if (!FFileName.empty()) return true;
  Errors.AddError("File Name", "Filename has not been set");
  return false;
}

std::string TZTReadTextFileAction::GetFormattedDescription() {
  return "Read Text File [ " + platform::ExtractFileName(FFileName) + " ]";
}

void TZTReadTextFileAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  List.Add("[Read Text File]");
  List.Add("FileName=File Name");
  List.Add("ZTVariable=Variable");
  List.Add("PutContentsInVar=Put File Contents in Variable");
}

void TZTReadTextFileAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  List.Add("FileName=Name of file to read");
  List.Add("ZTVariable=Variable to hold contents of file");
  List.Add("PutContentsInVar=Put the contents of the file into a variable");
}

bool TZTReadTextFileAction::Execute() {
  std::string Path;
  if (!TryExpandExpression("FileName", FFileName, true, Path)) return false;
  Path = frame::Trim(Path);
  if (!platform::FileExists(Path)) {
    SendMessage("ERROR - File does not exists: " + Path);
    return false;
  }
  const std::string Script = GetScriptByName(kOnReadLine);
  SendMessage("Reading file...");
  try {
    ReadContents(Path, Script);
  } catch (const std::exception& E) {
    SendMessage(std::string("Failed to read from text file: ") + E.what());
    return false;
  }
  SendMessage("Done.");
  return true;
}

void TZTReadTextFileAction::ReadContents(const std::string& Path, const std::string& Script) {
  TFileStreamHandle File(Path, platform::fmOpenRead | platform::fmShareDenyWrite);
  const bool ToVariable = !FZTVariable.empty() && FPutContentsInVar;
  const bool PerLine = !frame::Trim(Script).empty();
  if (!ToVariable && !PerLine) return;  // only checks that the file can be opened
  std::string Text = ReadFileStream(File.Get(), Path);
  frame::TStrings Lines;
  if (PerLine) Lines.SetText(Text);
  if (ToVariable) {
    Text.erase(std::remove(Text.begin(), Text.end(), '\0'), Text.end());
    if (FEscapeVariables) {
      SendMessage("Escaping variables...");
      Text = ReplaceAll(ReplaceAll(Text, "%", "%%"), "$(", "$$(");
    }
    SetVariable(FZTVariable, frame::TZTVariant(std::move(Text)));
  }
  if (!PerLine) return;
  frame::TZTScriptParams Params;
  InitialiseScriptParams(kOnReadLine, Params);
  auto LineText =
      std::find_if(Params.begin(), Params.end(), [](const auto& P) { return P.Name == "LineText"; });
  for (const std::string& Line : Lines.Lines()) {
    if (StopSignalled()) return;  // the build is stopping: the rest of the lines would be thrown away
    LineText->Value = Line;
    ExecuteScript(kOnReadLine, Params);  // its result is ignored: every line is visited
  }
}

}  // namespace zt::package
