#include "text/Zttextreplace.h"

#include <algorithm>
#include <vector>

#include "Ztpropertytexts.h"
#include "files/SearchGuard.h"
#include "frame/ZTUtils.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "text/ZTTextFindExpression.h"

namespace zt::package {

namespace pf = zt::platform;

ZT_IMPLEMENT_CLASS(TTextReplaceAction, &TTextReplaceAction::Publish)

namespace {

// Output is gathered into pieces of this size before each write.
constexpr std::size_t kWriteBuffer = 1 << 20;

constexpr TPropertyText kTexts[] = {
    {"FileSpec", "File Specification", "one level"},
    {"SearchText", nullptr, "plain text"},
    {"ReplaceText", nullptr, "plain text (may be empty)"},
    {"CaseSensitive", nullptr, "false: ASCII letters match either case"},
    {"FailIfNotFound", nullptr, "no replacement anywhere fails"},
};

// The names Spec matches (normal, read-only, hidden), listed before any is
// rewritten (a rewrite adds a file to the directory for a moment), sorted.
std::vector<std::string> Matches(const std::string& Spec) {
  std::vector<std::string> Names;
  pf::TSearchRec F;
  TSearchGuard Search{F};
  Search.Open = pf::FindFirst(Spec, pf::faReadOnly | pf::faHidden, F) == 0;
  if (Search.Open) {
    do Names.push_back(F.Name);
    while (pf::FindNext(F) == 0);
  }
  std::sort(Names.begin(), Names.end());
  return Names;
}

}  // namespace

void TTextReplaceAction::Publish(frame::TZTPublisher<TTextReplaceAction>& P) {
  using A = TTextReplaceAction;
  P.String("FileSpec", &A::GetFileSpec, &A::SetFileSpec);
  P.String("SearchText", &A::GetSearchText, &A::SetSearchText);
  P.String("ReplaceText", &A::GetReplaceText, &A::SetReplaceText);
  P.Boolean("CaseSensitive", &A::GetCaseSensitive, &A::SetCaseSensitive);
  P.Boolean("FailIfNotFound", &A::GetFailIfNotFound, &A::SetFailIfNotFound);
}

bool TTextReplaceAction::Execute() {
  FFilesChanged = 0;
  std::string Spec, SearchText, Replacement;
  if (!TryExpandExpression("File Specification", FFileSpec, true, Spec)) return false;
  Spec = frame::Trim(Spec);
  if (Spec.empty()) {
    SendMessage("Error: No source file specified.");
    return false;
  }
  if (!TryExpandExpression("Search Text", FSearchText, false, SearchText)) return false;
  if (SearchText.empty()) {
    SendMessage("Error: No search text specified.");
    return false;
  }
  if (!TryExpandExpression("Replace Text", FReplaceText, false, Replacement)) return false;

  // Text Find's engine on an escaped plain text: bytes, no line-end widening.
  TTextFindOptions Options;
  Options.CaseSensitive = FCaseSensitive;
  Options.ExactLineBreaks = true;
  frame::TRegExpr Search;
  Search.SetExpression(BuildSearchExpression(SearchText, Options));

  frame::IZTActionLogMessagePtr Entry = CreateStatusMessage();
  frame::TStrings& Details = Entry->Details();
  Details.Add("Replacing text in : " + Spec);
  bool Result = true;
  std::int64_t Total = 0;
  const std::string Dir = pf::ExtractFilePath(Spec);
  for (const std::string& Name : Matches(Spec)) {
    if (StopSignalled()) {
      Details.Add("Stopping...");
      Result = false;
      break;
    }
    const std::string Path = Dir + Name;
    std::int64_t Count = 0;
    std::string ErrorText;
    if (!ReplaceInFile(Path, Search, Replacement, Count, ErrorText)) {
      Details.Add(" --> Error Replacing Text : " + Path);
      Details.Add(" --> " + (ErrorText.empty() ? pf::SysErrorMessage(pf::GetLastError()) : ErrorText));
      Result = false;
      break;
    }
    Details.Add(Path + " : " + std::to_string(Count) + " replacements");
    if (Count > 0) ++FFilesChanged;
    Total += Count;
  }
  Details.Add(std::to_string(FFilesChanged) + " Files Changed.");
  SendStatusMessage(Entry);
  return Result && !(FFailIfNotFound && Total == 0);
}

bool TTextReplaceAction::ReplaceInFile(const std::string& Path, frame::TRegExpr& Search,
                                       const std::string& Replacement, std::int64_t& Count,
                                       std::string& ErrorText) {
  pf::TFileView View;
  if (!View.Open(Path)) return false;
  const std::string_view Text = View.Text();
  try {
    if (!Search.Exec(Text)) return true;  // unchanged: never rewritten
    pf::TFileReplacement Out;             // removed unless committed
    if (!Out.Begin(Path)) return false;
    std::string Buffer;
    Buffer.reserve(kWriteBuffer + Replacement.size());
    std::size_t Copied = 0;  // Text before this offset is written
    auto Put = [&](std::string_view Piece) {
      if (Buffer.size() + Piece.size() > kWriteBuffer) {
        if (!Out.Write(Buffer.data(), Buffer.size())) return false;
        Buffer.clear();
        if (Piece.size() > kWriteBuffer) return Out.Write(Piece.data(), Piece.size());
      }
      Buffer.append(Piece);
      return true;
    };
    do {
      const auto Start = static_cast<std::size_t>(Search.GetMatchPos(0) - 1);
      if (!Put(Text.substr(Copied, Start - Copied)) || !Put(Replacement)) return false;
      Copied = Start + static_cast<std::size_t>(Search.GetMatchLen(0));
      ++Count;
    } while (Search.ExecNext());
    if (!Put(Text.substr(Copied)) || !Out.Write(Buffer.data(), Buffer.size())) return false;
    View.Close();
    return Out.Commit();
  } catch (const frame::ERegExpr& E) {
    ErrorText = E.what();
    return false;
  }
}

bool TTextReplaceAction::Validate(frame::IZTActionValidationError& Errors) {
  bool Ok = true;
  if (FFileSpec.empty()) {
    Errors.AddError("File Specification", "The file spec has not been set");
    Ok = false;
  }
  if (FSearchText.empty()) {
    Errors.AddError("Search Text", "The search text has not been set");
    Ok = false;
  }
  return Ok;
}

std::string TTextReplaceAction::GetFormattedDescription() { return "Text Replace [ " + FFileSpec + " ]"; }

void TTextReplaceAction::GetPropertyAlias(frame::TStrings& List) {
  inherited::GetPropertyAlias(List);
  AddPropertyAliases(List, GetActionName(), kTexts);
}

void TTextReplaceAction::GetPropertyHelp(frame::TStrings& List) {
  inherited::GetPropertyHelp(List);
  AddPropertyHelp(List, kTexts);
}

}  // namespace zt::package
