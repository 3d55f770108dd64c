#include "text/ZTTextFindExpression.h"

#include <cstring>

namespace zt::package {
namespace {

// Delphi's StringReplace with rfReplaceAll.
std::string ReplaceAll(const std::string& S, const std::string& From, const std::string& To) {
  std::string R;
  R.reserve(S.size());
  std::size_t I = 0;
  for (std::size_t J; (J = S.find(From, I)) != std::string::npos; I = J + From.size())
    R.append(S, I, J - I).append(To);
  return R.append(S, I, std::string::npos);
}

// The characters a plain search string escapes (']' and '}' need not be).
constexpr const char* kSpecial = "\\[^$.|?*+(){";

}  // namespace

std::string BuildSearchExpression(const std::string& SearchString, const TTextFindOptions& Options) {
  if (Options.MatchRegExpr) return SearchString;
  std::string E;
  E.reserve(SearchString.size() * 2 + 16);
  for (std::size_t I = 0; I < SearchString.size(); ++I) {
    const char C = SearchString[I];
    const bool Widen = !Options.ExactLineBreaks;
    if (Widen && C == '\r' && I + 1 < SearchString.size() && SearchString[I + 1] == '\n') {
      E += "\\r\\n";
      ++I;
    } else if (Widen && C == '\n') {
      // A line break written without its CR (as project files write them)
      // matches the CR LF of a loaded file as well.
      E += "\\r?\\n";
    } else {
      if (C != '\0' && std::strchr(kSpecial, C)) E += '\\';
      E += C;
    }
  }
  if (Options.WholeWords)
    E = "\\b" + E + "\\b";
  else if (Options.WholeLinesOnly)
    E = "^" + E + "$";
  if (!Options.CaseSensitive) E = "(?i)" + E;
  if (Options.MatchWildcards) {
    const std::string Group = Options.WholeWords ? "(\\w*)" : "(.*)";
    // A star the user escaped ends up as an escaped backslash and star.
    E = ReplaceAll(ReplaceAll(E, "\\*", Group), "\\" + Group, "\\\\*");
  }
  return E;
}

std::string EscapeWholeMatchReferences(const std::string& Template) {
  std::string R = Template;
  for (const char* Ref : {"$0", "$&", "${0}", "${&}"}) R = ReplaceAll(R, Ref, std::string("\\") + Ref);
  return R;
}

}  // namespace zt::package
