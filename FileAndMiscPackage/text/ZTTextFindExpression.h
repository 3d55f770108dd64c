// How "Text Find / Replace" turns its search string into a regular
// expression, and its replacement text into a substitution template.
#pragma once

#include <string>

namespace zt::package {

struct TTextFindOptions {
  bool MatchRegExpr = false;
  bool CaseSensitive = false;
  bool WholeWords = false;
  bool WholeLinesOnly = false;
  bool MatchWildcards = false;
  // A line break in plain text matches only itself (no CR LF for a lone LF).
  bool ExactLineBreaks = false;
};

// The expression for SearchString (already expanded). A regular expression
// is taken as it is; plain text is escaped and then wrapped by the options,
// each '*' becoming a numbered group when MatchWildcards is set.
std::string BuildSearchExpression(const std::string& SearchString, const TTextFindOptions& Options);

// Escapes the whole-match references "$0", "$&", "${0}" and "${&}" of a
// template, so that a plain search substitutes only its wildcard groups.
std::string EscapeWholeMatchReferences(const std::string& Template);

}  // namespace zt::package
