// %NAME% expansion. A text is split into literal and reference pieces once
// (cached by text) and evaluated against the variables each time; a text
// without '%' or "$$(" is returned as it is without touching the cache.
//
// Rules: %NAME% is the variable's value as text (NAME: letters, digits, '_',
// '.', '-'); "%%" gives '%'; "$$(" gives "$("; any other '%' and "$(" stay.
#pragma once

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/project/variables.h"

namespace zt::host {

// An expanded text referred to a name that no variable has.
class UndefinedVariable : public std::runtime_error {
 public:
  explicit UndefinedVariable(const std::string& Name);
  const std::string& Name() const { return Name_; }

 private:
  std::string Name_;
};

class Expander {
 public:
  // Throws UndefinedVariable for the first undefined reference.
  std::string Expand(const std::string& Text, const Variables& Vars);

  // Number of distinct texts tokenized so far (for tests of the cache).
  std::size_t CachedTexts() const;

 private:
  struct Piece {
    bool IsReference;
    std::string Text;  // literal text, or the variable name
  };
  using Pieces = std::vector<Piece>;
  static Pieces Tokenize(const std::string& Text);
  std::shared_ptr<const Pieces> PiecesOf(const std::string& Text);

  mutable std::mutex Mutex_;  // scripts may expand from another thread than the build's
  std::unordered_map<std::string, std::shared_ptr<const Pieces>> Cache_;
};

}  // namespace zt::host
