// "Text Find / Replace": counts the matches of a plain, wildcard or regular
// expression search in a file, a build variable or every file of a project
// file set; can fail on the count or store it, and can write the replaced
// text back to the source or to another file. The OnFindText script sees
// every match and may change its replacement.
#pragma once

#include <atomic>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "frame/ZTAction.h"
#include "frame/ZTRegExpr.h"
#include "frame/ZTStringBuilder.h"
#include "platform/files.h"

namespace zt::package {

enum TTextFindBehaviour { tfDontFail, tfFailOnLess, tfFailOnMore, tfPutIntoVar };
enum TZTReplaceMode { trNone, trOriginalFile, trDestinationFile };

// A deliberate failure on the match count; logged with its message alone.
class EFindReplaceException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class TZTTextFindAction : public frame::TCustomZTAction {
  ZT_DECLARE_CLASS(TZTTextFindAction, frame::TCustomZTAction)

 public:
  TZTTextFindAction();
  static std::string GetActionName() { return "Text Find / Replace"; }
  static void Publish(frame::TZTPublisher<TZTTextFindAction>& P);

  bool Execute() override;
  std::string GetFormattedDescription() override;
  int GetHelpTopicID() override { return 5180; }
  std::string GetQuickHelpFilename() override { return "Plugins\\TextFind.html"; }
  bool CanTerminate() override { return true; }
  void TerminateAction() override;
  void InitialiseScriptParams(const std::string& ScriptName, frame::TZTScriptParams& Params) override;

  bool GetUseVariable() const { return FUseVariable; }
  void SetUseVariable(bool Value) { FUseVariable = Value; }
  const std::string& GetZTVariable() const { return FZTVariable; }
  void SetZTVariable(const std::string& Value) { FZTVariable = Value; }
  const std::string& GetSourcePath() const { return FSourcePath; }
  void SetSourcePath(const std::string& Value) { FSourcePath = Value; }
  const std::string& GetSearchString() const { return FSearchString; }
  void SetSearchString(const std::string& Value) { FSearchString = Value; }
  bool GetMatchRegExpr() const { return FMatchRegExpr; }
  void SetMatchRegExpr(bool Value) { FMatchRegExpr = Value; }
  bool GetCaseSensitive() const { return FCaseSensitive; }
  void SetCaseSensitive(bool Value) { FCaseSensitive = Value; }
  bool GetWholeWords() const { return FWholeWords; }
  void SetWholeWords(bool Value) { FWholeWords = Value; }
  TTextFindBehaviour GetTextFindBehaviour() const { return FTextFindBehaviour; }
  void SetTextFindBehaviour(TTextFindBehaviour Value) { FTextFindBehaviour = Value; }
  int GetFailMatchCount() const { return FFailMatchCount; }
  void SetFailMatchCount(int Value) { FFailMatchCount = Value; }
  int GetFailOnMoreMatchCount() const { return FFailOnMoreMatchCount; }
  void SetFailOnMoreMatchCount(int Value) { FFailOnMoreMatchCount = Value; }
  const std::string& GetPutCountIntoVar() const { return FPutCountIntoVar; }
  void SetPutCountIntoVar(const std::string& Value) { FPutCountIntoVar = Value; }
  bool GetMatchWildcards() const { return FMatchWildcards; }
  void SetMatchWildcards(bool Value) { FMatchWildcards = Value; }
  TZTReplaceMode GetReplacementMode() const { return FReplacementMode; }
  void SetReplacementMode(TZTReplaceMode Value) { FReplacementMode = Value; }
  const std::string& GetDestinationFile() const { return FDestinationFile; }
  void SetDestinationFile(const std::string& Value) { FDestinationFile = Value; }
  bool GetWholeLinesOnly() const { return FWholeLinesOnly; }
  void SetWholeLinesOnly(bool Value) { FWholeLinesOnly = Value; }
  bool GetSubstitute() const { return FSubstitute; }
  void SetSubstitute(bool Value) { FSubstitute = Value; }
  bool GetExpandVarsWhenReplacing() const { return FExpandVarsWhenReplacing; }
  void SetExpandVarsWhenReplacing(bool Value) { FExpandVarsWhenReplacing = Value; }
  const std::string& GetReplacementText() const { return FReplacementText; }
  void SetReplacementText(const std::string& Value) { FReplacementText = Value; }
  bool GetUseFileSet() const { return FUseFileSet; }
  void SetUseFileSet(bool Value) { FUseFileSet = Value; }
  const std::string& GetFileSetName() const { return FFileSetName; }
  void SetFileSetName(const std::string& Value) { FFileSetName = Value; }
  bool GetFileSetCountAllMatches() const { return FFileSetCountAllMatches; }
  void SetFileSetCountAllMatches(bool Value) { FFileSetCountAllMatches = Value; }

 private:
  // A source's text as lines. A file that already is CR LF lines is
  // searched where it lies (View); any other text is held in Lines. A UTF-8
  // byte-order mark is set aside while searching and written back in front.
  struct TLoadedText {
    platform::TFileView View;
    std::string Lines;
    std::string_view Text;
    bool Bom = false;
  };

  void SetUpExpression(frame::TRegExpr& RegExpr);
  void LoadText(const std::string& FileName, TLoadedText& Loaded);
  void SaveText(const std::string& FileName, const std::string& Text, bool Bom,
                const std::string& CannotDelete);
  void SearchText(std::string_view Text, frame::TRegExpr& RegExpr, frame::IZTStringBuilder& Builder);
  const std::string& ComputeReplacement(const frame::TRegExpr& RegExpr);
  void OnFindText(const frame::TRegExpr& RegExpr, std::string& Replacement);
  void ReportProgress(std::int64_t Position, std::size_t TextLength);
  void CheckActionResult();
  void SendMatchCount();
  void SearchSource(frame::TRegExpr& RegExpr, frame::IZTStringBuilder& Builder);
  void SearchFileSet(frame::TRegExpr& RegExpr, frame::IZTStringBuilder& Builder);
  bool Terminated() const { return FTerminated.load(std::memory_order_relaxed); }

  bool FUseVariable = false;
  std::string FZTVariable;
  std::string FSourcePath;
  std::string FSearchString;
  bool FMatchRegExpr = false;
  bool FCaseSensitive = false;
  bool FWholeWords = false;
  TTextFindBehaviour FTextFindBehaviour = tfDontFail;
  int FFailMatchCount = 1;
  int FFailOnMoreMatchCount = 1;
  std::string FPutCountIntoVar;
  bool FMatchWildcards = false;
  TZTReplaceMode FReplacementMode = trNone;
  std::string FDestinationFile;
  bool FWholeLinesOnly = false;
  bool FSubstitute = false;
  bool FExpandVarsWhenReplacing = true;
  std::string FReplacementText;
  bool FUseFileSet = false;
  std::string FFileSetName;
  bool FFileSetCountAllMatches = false;

  // Run state, reset by Execute.
  std::int32_t FCount = 0;
  std::atomic<bool> FTerminated{false};
  std::string FScript;  // the OnFindText script's text
  bool FSearchingFileSet = false;
  // The replacement text as expanded (and escaped) for this run; kept while
  // no script runs, since nothing else can change the variables it uses.
  std::string FTemplate;
  bool FTemplateReady = false;
  std::string FReplacement;   // the current match's replacement
  std::string FProgressText;  // reused per match
};

}  // namespace zt::package
