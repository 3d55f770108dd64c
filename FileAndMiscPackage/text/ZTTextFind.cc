#include "text/ZTTextFind.h"

#include <algorithm>
#include <charconv>
#include <exception>

#include "frame/ZTFileSet.h"
#include "frame/ZTUtils.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "text/LineBreaks.h"
#include "text/ZTTextFindExpression.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TZTTextFindAction, &TZTTextFindAction::Publish)

namespace {

constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";
constexpr const char* kOnFindText = "OnFindText";

// "Found 1 match." style counts are the log's; progress keeps "matches".
std::string CountText(std::int32_t Count) {
  if (Count == 0) return "No matches were found.";
  if (Count == 1) return "Found 1 match.";
  return "Found " + std::to_string(Count) + " matches.";
}

// The description's short form of a text: its first line, marked with "..."
// when that is longer than ten characters.
std::string Abbreviated(const std::string& Text) {
  std::string R = Text.substr(0, FindLineBreak(Text));
  if (R.size() > 10) R += "...";
  return R;
}

// Expands Text, turning an expansion failure into Prefix + its message.
std::string Expanded(frame::TCustomZTAction& Action, const std::string& Text, bool IsName,
                     const char* Prefix) {
  try {
    return Action.ExpandExpression(Text, IsName);
  } catch (const std::exception& E) {
    throw std::runtime_error(Prefix + std::string(E.what()));
  }
}

}  // namespace

TZTTextFindAction::TZTTextFindAction() { AddScript(kOnFindText); }

void TZTTextFindAction::Publish(frame::TZTPublisher<TZTTextFindAction>& P) {
  using A = TZTTextFindAction;
  P.Boolean("UseVariable", &A::GetUseVariable, &A::SetUseVariable);
  P.String("ZTVariable", &A::GetZTVariable, &A::SetZTVariable);
  P.String("SourcePath", &A::GetSourcePath, &A::SetSourcePath);
  P.String("SearchString", &A::GetSearchString, &A::SetSearchString);
  P.Boolean("MatchRegExpr", &A::GetMatchRegExpr, &A::SetMatchRegExpr);
  P.Boolean("CaseSensitive", &A::GetCaseSensitive, &A::SetCaseSensitive);
  P.Boolean("WholeWords", &A::GetWholeWords, &A::SetWholeWords);
  P.Enumeration("TextFindBehaviour", "TTextFindBehaviour",
                {"tfDontFail", "tfFailOnLess", "tfFailOnMore", "tfPutIntoVar"}, &A::GetTextFindBehaviour,
                &A::SetTextFindBehaviour);
  P.Integer("FailMatchCount", &A::GetFailMatchCount, &A::SetFailMatchCount);
  P.Integer("FailOnMoreMatchCount", &A::GetFailOnMoreMatchCount, &A::SetFailOnMoreMatchCount);
  P.String("PutCountIntoVar", &A::GetPutCountIntoVar, &A::SetPutCountIntoVar);
  P.Boolean("MatchWildcards", &A::GetMatchWildcards, &A::SetMatchWildcards);
  P.Enumeration("ReplacementMode", "TZTReplaceMode", {"trNone", "trOriginalFile", "trDestinationFile"},
                &A::GetReplacementMode, &A::SetReplacementMode);
  P.String("DestinationFile", &A::GetDestinationFile, &A::SetDestinationFile);
  P.Boolean("WholeLinesOnly", &A::GetWholeLinesOnly, &A::SetWholeLinesOnly);
  P.Boolean("Substitute", &A::GetSubstitute, &A::SetSubstitute);
  P.Boolean("ExpandVarsWhenReplacing", &A::GetExpandVarsWhenReplacing, &A::SetExpandVarsWhenReplacing);
  P.String("ReplacementText", &A::GetReplacementText, &A::SetReplacementText);
  P.Boolean("UseFileSet", &A::GetUseFileSet, &A::SetUseFileSet);
  P.String("FileSetName", &A::GetFileSetName, &A::SetFileSetName);
  P.Boolean("FileSetCountAllMatches", &A::GetFileSetCountAllMatches, &A::SetFileSetCountAllMatches);
}

std::string TZTTextFindAction::GetFormattedDescription() {
  std::string D = FReplacementMode == trNone ? "Text Find [ " + Abbreviated(FSearchString) + " ] "
                                             : "Text Replace [ " + Abbreviated(FSearchString) + " ] with [ " +
                                                   Abbreviated(FReplacementText) + " ] ";
  if (FUseVariable) return D + " in [ " + FZTVariable + " ]";
  if (FUseFileSet) return D + " in FileSet [ " + FFileSetName + " ]";
  return D + " in [ " + pf::ExtractFileName(FSourcePath) + " ]";
}

void TZTTextFindAction::TerminateAction() {
  inherited::TerminateAction();
  FTerminated.store(true, std::memory_order_relaxed);
}

void TZTTextFindAction::InitialiseScriptParams(const std::string& ScriptName,
                                               frame::TZTScriptParams& Params) {
  inherited::InitialiseScriptParams(ScriptName, Params);
  if (ScriptName != kOnFindText) return;
  Params.push_back({"Action", {}, false});
  Params.push_back({"Count", frame::TZTVariant(0), false});
  Params.push_back({"FoundText", frame::TZTVariant(std::string()), false});
  Params.push_back({"ReplaceText", frame::TZTVariant(std::string()), true});
  Params.push_back({"Offset", frame::TZTVariant(0), false});
}

bool TZTTextFindAction::Execute() {
  FCount = 0;
  FTerminated.store(false, std::memory_order_relaxed);
  FTemplateReady = false;
  FSearchingFileSet = false;
  FScript = GetScriptByName(kOnFindText);
  if (FUseVariable && FUseFileSet) {
    SendMessage("Error: Both \"Use Variable\" and \"Use FileSet\" are enabled.");
    return false;
  }
  if (FUseFileSet && FReplacementMode == trDestinationFile) {
    SendMessage(
        "Error: Action is configured to search across a FileSet but output to a single destination file. "
        "Invalid combination.");
    return false;
  }
  try {
    frame::TRegExpr RegExpr;
    SetUpExpression(RegExpr);
    std::shared_ptr<frame::IZTStringBuilder> Builder = CreateStringBuilder();
    if (FUseFileSet) {
      SearchFileSet(RegExpr, *Builder);
      if (FFileSetCountAllMatches) CheckActionResult();
    } else {
      SearchSource(RegExpr, *Builder);
    }
    SendProgress("Found " + std::to_string(FCount) + " matches", 100);
    return true;
  } catch (const EFindReplaceException& E) {
    SendMessage(E.what());
  } catch (const std::exception& E) {
    SendMessage("An error occured:");
    SendMessage(E.what());
  }
  return false;
}

void TZTTextFindAction::SetUpExpression(frame::TRegExpr& RegExpr) {
  RegExpr.SetModifier('s', false);
  RegExpr.SetModifier('m', true);
  RegExpr.SetModifier('r', false);
  const std::string Search = Expanded(*this, FSearchString, false, "Could not expand search string : ");
  if (Search.empty()) throw std::runtime_error("Search string is blank");
  RegExpr.SetExpression(BuildSearchExpression(
      Search, {FMatchRegExpr, FCaseSensitive, FWholeWords, FWholeLinesOnly, FMatchWildcards}));
}

void TZTTextFindAction::LoadText(const std::string& FileName, TLoadedText& Loaded) {
  if (!Loaded.View.Open(FileName))
    throw std::runtime_error("Cannot open file \"" + FileName + "\". " +
                             pf::SysErrorMessage(pf::GetLastError()));
  Loaded.Text = Loaded.View.Text();
  Loaded.Bom = Loaded.Text.starts_with(kUtf8Bom);
  if (Loaded.Bom) Loaded.Text.remove_prefix(kUtf8Bom.size());
  if (HasCrLfLines(Loaded.Text)) return;
  Loaded.Lines = ToCrLfLines(Loaded.Text);
  Loaded.Text = Loaded.Lines;
  Loaded.View.Close();
}

void TZTTextFindAction::SaveText(const std::string& FileName, const std::string& Text, bool Bom,
                                 const std::string& CannotDelete) {
  // The new text replaces the file in one rename: a failure leaves it as it was.
  std::string Copy;
  const std::string* Out = &Text;
  if (!HasCrLfLines(Text)) Out = &(Copy = ToCrLfLines(Text));
  if (Bom) Out = &(Copy = std::string(kUtf8Bom).append(*Out));
  if (pf::WriteFileAtomically(FileName, *Out)) return;
  const pf::DWORD Error = pf::GetLastError();
  if (Error == pf::ERROR_ACCESS_DENIED && pf::FileExists(FileName)) throw std::runtime_error(CannotDelete);
  throw std::runtime_error("Cannot create file \"" + FileName + "\". " + pf::SysErrorMessage(Error));
}

void TZTTextFindAction::SearchSource(frame::TRegExpr& RegExpr, frame::IZTStringBuilder& Builder) {
  TLoadedText Source;
  if (FUseVariable) {
    Source.Lines = GetVariableValue(FZTVariable).AsString();
    Source.Text = Source.Lines;
  } else {
    const std::string Path =
        frame::Trim(Expanded(*this, FSourcePath, true, "Could not expand source file path: "));
    if (Path.empty()) throw std::runtime_error("Source file path is blank.");
    LoadText(Path, Source);
  }
  SearchText(Source.Text, RegExpr, Builder);
  Source.View.Close();  // the file is free for the write (a file with hard links is rewritten in place)
  // A stopped replace has only part of the text: it is never written.
  if (Terminated()) throw std::runtime_error("Terminated.");
  SendMatchCount();
  CheckActionResult();
  if (FReplacementMode == trNone) return;

  std::string Target;
  if (FReplacementMode == trDestinationFile) {
    Target = frame::Trim(Expanded(*this, FDestinationFile, true, "Unable to expand destination file : "));
    if (Target.empty()) throw std::runtime_error("Output filename is blank.");
  } else if (FUseVariable) {
    SendMessage("Writing replaced data to variable " + FZTVariable + "...");
    SetVariable(FZTVariable, frame::TZTVariant(Builder.Text()));
    return;
  } else {
    Target = frame::Trim(Expanded(*this, FSourcePath, true, "Could not expand source file path: "));
  }
  SendMessage("Writing replaced data to file " + Target);
  SaveText(Target, Builder.Text(), Source.Bom, "Unable to delete destination file.");
}

void TZTTextFindAction::SearchFileSet(frame::TRegExpr& RegExpr, frame::IZTStringBuilder& Builder) {
  frame::IZTFileSet* Set = frame::FindFileSet(GetProjectObjectAPI(), FFileSetName);
  if (!Set) throw std::runtime_error("FileSet " + FFileSetName + " not found.");
  FSearchingFileSet = true;
  const int Files = Set->GetFileCount();
  for (int I = 0; I < Files; ++I) {
    const std::string File = Set->GetFile(I);
    SendMessage((FReplacementMode != trNone ? "Replacing inside file " : "Searching inside file ") + File +
                "...");
    TLoadedText Loaded;
    LoadText(File, Loaded);
    SearchText(Loaded.Text, RegExpr, Builder);
    Loaded.View.Close();
    if (Terminated()) throw std::runtime_error("Terminated.");
    // I is the index of the file just searched, so the figures lag by one.
    const int Percent = static_cast<int>(static_cast<std::int64_t>(I) * 100 / Files);
    if (FFileSetCountAllMatches) {
      SendProgress("Found " + std::to_string(FCount) + " matches in " + std::to_string(I) + " files",
                   Percent);
    } else {
      SendProgress("Searched in " + std::to_string(I) + " files", Percent);
      SendMatchCount();
      CheckActionResult();
      FCount = 0;
    }
    if (FReplacementMode == trOriginalFile)
      SaveText(File, Builder.Text(), Loaded.Bom, "File " + File + " could not be overwritten.");
    if (Terminated()) throw std::runtime_error("Terminated.");
  }
  if (FFileSetCountAllMatches) SendMatchCount();
}

void TZTTextFindAction::SearchText(std::string_view Text, frame::TRegExpr& RegExpr,
                                   frame::IZTStringBuilder& Builder) {
  Builder.Clear();
  const bool Replacing = FReplacementMode != trNone;
  if (Replacing) Builder.Reserve(Text.size() + Text.size() / 8);
  static const std::string kNoReplacement;
  std::size_t Copied = 0;  // Text before this offset is in Builder
  try {
    for (bool Found = RegExpr.Exec(Text); Found; Found = RegExpr.ExecNext()) {
      const std::int64_t Position = RegExpr.GetMatchPos(0);
      if (!FSearchingFileSet) ReportProgress(Position, Text.size());
      // A 32-bit count: past 2^31 matches it wraps, never undefined.
      FCount = static_cast<std::int32_t>(static_cast<std::uint32_t>(FCount) + 1);
      const std::string* Replacement = Replacing ? &ComputeReplacement(RegExpr) : &kNoReplacement;
      if (!FScript.empty()) {
        if (Replacement != &FReplacement) FReplacement = *Replacement;
        OnFindText(RegExpr, FReplacement);
        Replacement = &FReplacement;
      }
      if (Replacing) {
        const auto Start = static_cast<std::size_t>(Position - 1);
        Builder.Append(Text.substr(Copied, Start - Copied));
        Builder.Append(*Replacement);
        Copied = Start + static_cast<std::size_t>(RegExpr.GetMatchLen(0));
      }
      if (Terminated()) return;  // the rest of the text is not appended
    }
  } catch (const frame::ERegExpr& E) {
    throw std::runtime_error((FMatchRegExpr ? "A syntax error occured parsing the Regular Expression : "
                                            : "An internal error occured parsing the input string : ") +
                             std::string(E.what()));
  }
  if (Replacing) Builder.Append(Text.substr(Copied));
}

const std::string& TZTTextFindAction::ComputeReplacement(const frame::TRegExpr& RegExpr) {
  if (FReplacementMode == trNone) throw std::logic_error("Replace is not correctly enabled.");
  if (!FTemplateReady || !FScript.empty()) {
    FTemplate = FExpandVarsWhenReplacing
                    ? Expanded(*this, FReplacementText, false, "Could not expand replacement string: ")
                    : FReplacementText;
    if (FSubstitute && !FMatchRegExpr) FTemplate = EscapeWholeMatchReferences(FTemplate);
    FTemplateReady = true;
  }
  if (!FSubstitute) return FTemplate;
  try {
    FReplacement = RegExpr.Substitute(FTemplate);
  } catch (const frame::ERegExpr& E) {
    throw std::runtime_error((FMatchRegExpr ? "Could not substitute regexp reference: "
                                            : "Could not substitute wildcard reference: ") +
                             std::string(E.what()));
  }
  return FReplacement;
}

void TZTTextFindAction::OnFindText(const frame::TRegExpr& RegExpr, std::string& Replacement) {
  frame::TZTScriptParams Params;
  InitialiseScriptParams(kOnFindText, Params);
  for (frame::TZTScriptParam& P : Params) {
    if (P.Name == "Count")
      P.Value = frame::TZTVariant(FCount);
    else if (P.Name == "FoundText")
      P.Value = frame::TZTVariant(RegExpr.GetMatch(0));
    else if (P.Name == "ReplaceText")
      P.Value = frame::TZTVariant(Replacement);
    else if (P.Name == "Offset")
      P.Value = frame::TZTVariant(RegExpr.GetMatchPos(0) - 1);
  }
  if (!ExecuteScript(kOnFindText, Params)) throw std::runtime_error("OnFindText failed.");
  for (const frame::TZTScriptParam& P : Params)
    if (P.Name == "ReplaceText") Replacement = P.Value.AsString();
}

void TZTTextFindAction::ReportProgress(std::int64_t Position, std::size_t TextLength) {
  // An empty match may sit just past the end; the bar stops at 100.
  const int Percent = TextLength == 0 ? 100
                                      : static_cast<int>(std::min<std::int64_t>(
                                            100, Position * 100 / static_cast<std::int64_t>(TextLength)));
  // One buffer for every match: a large file reports a million of these.
  char Digits[16];
  const auto End = std::to_chars(Digits, Digits + sizeof Digits, FCount).ptr;
  FProgressText.assign("Found ").append(Digits, End).append(" matches");
  SendProgress(FProgressText, Percent);
}

void TZTTextFindAction::CheckActionResult() {
  switch (FTextFindBehaviour) {
    case tfDontFail:
      break;
    case tfFailOnLess:
      if (FCount < FFailMatchCount) throw EFindReplaceException("Failing due to insufficient matches.");
      break;
    case tfFailOnMore:
      if (FCount > FFailOnMoreMatchCount) throw EFindReplaceException("Failing due to too many matches.");
      break;
    case tfPutIntoVar:
      if (!FPutCountIntoVar.empty()) SetVariable(FPutCountIntoVar, frame::TZTVariant(FCount));
      break;
  }
}

void TZTTextFindAction::SendMatchCount() { SendMessage(CountText(FCount)); }

}  // namespace zt::package
