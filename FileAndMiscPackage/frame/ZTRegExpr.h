// TRegExpr: the regular-expression class of text find and replace (Perl-like
// syntax). Its implementation is the package's own, over PCRE2 with JIT.
// Positions are 1-based byte offsets, as the find/replace algorithm counts.
// Defaults: m on (^ and $ at every line), s off (a dot stops at CR and LF),
// i, x and r off, g on. A line break is CR LF, a lone CR or a lone LF.
// Not thread-safe: one object per run.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zt::frame {

// A bad expression, or a failure of the engine while matching.
class ERegExpr : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class TRegExpr {
 public:
  TRegExpr();
  ~TRegExpr();
  TRegExpr(const TRegExpr&) = delete;
  TRegExpr& operator=(const TRegExpr&) = delete;

  // Modifiers, each on or off: 'i' case-insensitive, 's' a dot matches line
  // breaks, 'm' ^ and $ match at every line start and end, 'r' Russian
  // letter ranges (accepted, no effect on other text), 'x' extended syntax,
  // 'g' greedy quantifiers (default on). Raises ERegExpr for another letter.
  void SetModifier(char Modifier, bool On);
  bool GetModifier(char Modifier) const;

  // The expression; compiled on the next Exec. "(?i)" and other inline
  // modifiers inside it take precedence over SetModifier.
  void SetExpression(const std::string& Expression);
  const std::string& GetExpression() const;

  // First match in Input. The object refers to Input's bytes (no copy)
  // until the next Exec, so they must outlive the matches. Compiles the
  // expression when it changed (once per object otherwise); raises ERegExpr
  // when it does not compile or the engine fails while matching.
  bool Exec(std::string_view Input);
  // Next match after the current one; an empty match advances by one
  // character (a CR LF pair counts as one) so the search always ends.
  bool ExecNext();

  // Number of groups in the expression.
  int SubExprMatchCount() const;
  // Of group Index (0 = whole match) in the current match: 1-based position,
  // -1 when the group took no part; its length; its text ("" when it took no
  // part).
  std::int64_t GetMatchPos(int Index) const;
  std::int64_t GetMatchLen(int Index) const;
  std::string GetMatch(int Index) const;

  // Template with references to the current match: "$0" and "$&" the whole
  // match, "$n" or "${n}" group n (all the digits that follow), "\" makes
  // the next character literal; any other "$" is literal. A group the
  // expression does not have raises ERegExpr; one that took no part gives "".
  std::string Substitute(const std::string& Template) const;

 private:
  struct TImpl;
  std::unique_ptr<TImpl> Impl_;
};

}  // namespace zt::frame
