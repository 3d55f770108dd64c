// The expression "Text Find / Replace" builds from any search string (first
// byte: the option flags), run over the search string loaded as a text; and
// the line-break rules that loading follows.
#include <cstdint>
#include <string>

#include "frame/ZTRegExpr.h"
#include "text/LineBreaks.h"
#include "text/ZTTextFindExpression.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace zt::package;
  if (Size == 0) return 0;
  const unsigned Flags = Data[0];
  const std::string Search(reinterpret_cast<const char*>(Data) + 1, Size - 1);

  const std::string Lines = ToCrLfLines(Search);
  if (!HasCrLfLines(Lines) || ToCrLfLines(Lines) != Lines) __builtin_trap();
  if (HasCrLfLines(Search) != (Lines == Search)) __builtin_trap();

  TTextFindOptions O;
  O.MatchRegExpr = Flags & 1;
  O.CaseSensitive = Flags & 2;
  O.WholeWords = Flags & 4;
  O.WholeLinesOnly = Flags & 8;
  O.MatchWildcards = Flags & 16;
  zt::frame::TRegExpr R;
  R.SetExpression(BuildSearchExpression(Search, O));
  try {
    R.SubExprMatchCount();  // compiles
  } catch (const zt::frame::ERegExpr&) {
    if (!O.MatchRegExpr) __builtin_trap();  // escaped text is always a valid expression
    return 0;
  }
  try {
    bool Found = R.Exec(Lines);
    // Plain text finds itself in its own lines (a lone CR excepted: loading
    // turns it into CR LF).
    bool LoneCr = false;
    for (std::size_t I = 0; I < Search.size(); ++I)
      LoneCr |= Search[I] == '\r' && (I + 1 == Search.size() || Search[I + 1] != '\n');
    if (!O.MatchRegExpr && !O.WholeWords && !O.WholeLinesOnly && !Search.empty() && !LoneCr && !Found)
      __builtin_trap();
    for (int I = 0; Found && I < 10000; ++I) Found = R.ExecNext();
  } catch (const zt::frame::ERegExpr&) {
    // The engine's limits stop a pathological search (many wildcards on a long line).
  }
  return 0;
}
