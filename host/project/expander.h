// %NAME% expansion. A text is split into literal and reference pieces once
// (cached by text) and evaluated against the variables each time; a text
// without '%' or "$$(" is returned as it is without touching the cache.
//
// Rules: %NAME% is the variable's value as text (NAME: letters, digits, '_',
// '.', '-'); "%%" gives '%'; "$$(" gives "$("; any other '%' and "$(" stay.
// A project variable's text value is itself expanded by these rules when it
// is used (so "dist/app-%VERSION%" works, and "%%" in a value gives '%'); the
// result is not scanned again. Predefined and environment values are taken
// as they are.
#pragma once

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/project/variables.h"

namespace zt::host {

// A text could not be expanded; what() is one sentence saying why.
class ExpansionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// An expanded text referred to a name that no variable has.
class UndefinedVariable : public ExpansionError {
 public:
  // UsedIn: the variable whose value held the reference ("" for the text itself).
  explicit UndefinedVariable(const std::string& Name, const std::string& UsedIn = "");
  const std::string& Name() const { return Name_; }

 private:
  std::string Name_;
};

// Variables whose values refer to each other in a cycle; Names() lists them
// in the order they were reached, the first one repeated at the end.
class VariableCycle : public ExpansionError {
 public:
  explicit VariableCycle(std::vector<std::string> Names);
  const std::vector<std::string>& Names() const { return Names_; }

 private:
  std::vector<std::string> Names_;
};

class Expander {
 public:
  // Throws UndefinedVariable or VariableCycle.
  std::string Expand(const std::string& Text, const Variables& Vars);
  // As Expand, and counts in Replaced the references of Text that were
  // replaced (a reference inside a variable's value is part of that
  // variable's). With FailOnUnknown false, a reference to a name that no
  // variable has stays as written instead of raising; a cycle still raises.
  // Text is scanned without the cache: such texts are whole files, used once.
  std::string ExpandCounting(const std::string& Text, const Variables& Vars, bool FailOnUnknown,
                             int& Replaced);

  // Number of distinct texts tokenized so far (for tests of the cache).
  std::size_t CachedTexts() const;

 private:
  struct Piece {
    bool IsReference;
    std::string Text;  // literal text, or the variable name
  };
  using Pieces = std::vector<Piece>;
  // One expansion: the variables being expanded, what to do with unknown
  // names, and how many references of the outer text were replaced.
  struct Pass {
    Pass(const Variables& V, bool Keep) : Vars(V), KeepUnknown(Keep) {}
    const Variables& Vars;
    bool KeepUnknown;
    int Replaced = 0;
    std::vector<std::string> Chain;
    // Project variables already expanded in this pass: values that repeat
    // each other ("%B%%B%") would otherwise double the work at every level.
    std::unordered_map<const TZTVariant*, std::string> Expanded;
  };
  // Calls Literal(std::string_view) and Reference(name as std::string_view)
  // for the pieces of Text in order: the one tokenizer of every entry point.
  template <class L, class R>
  static void Scan(const std::string& Text, L Literal, R Reference);
  static Pieces Tokenize(const std::string& Text);
  std::shared_ptr<const Pieces> PiecesOf(const std::string& Text);
  // Append Text, or the value of the reference Name, expanded to Out.
  void Append(const std::string& Text, Pass& P, std::string& Out);
  void AppendReference(const std::string& Name, Pass& P, std::string& Out);

  mutable std::mutex Mutex_;  // scripts may expand from another thread than the build's
  std::unordered_map<std::string, std::shared_ptr<const Pieces>> Cache_;
};

}  // namespace zt::host
