// TStrings: Delphi's string list, as the package's vocabulary queries and log
// entries use it. Header-only.
#pragma once

#include <string>
#include <vector>

namespace zt::frame {

class TStrings {
 public:
  void Add(const std::string& Line) { Lines_.push_back(Line); }
  void Add(std::string&& Line) { Lines_.push_back(std::move(Line)); }
  void Clear() { Lines_.clear(); }
  int Count() const { return static_cast<int>(Lines_.size()); }
  const std::string& operator[](int Index) const { return Lines_.at(static_cast<std::size_t>(Index)); }
  std::string& operator[](int Index) { return Lines_.at(static_cast<std::size_t>(Index)); }
  const std::vector<std::string>& Lines() const { return Lines_; }

  // Position of the first line equal to S, or -1 (exact comparison).
  int IndexOf(const std::string& S) const {
    for (std::size_t I = 0; I < Lines_.size(); ++I)
      if (Lines_[I] == S) return static_cast<int>(I);
    return -1;
  }

  // Lines joined, each followed by CR LF (Delphi's Text).
  std::string Text() const {
    std::string R;
    for (const auto& L : Lines_) R += L + "\r\n";
    return R;
  }
  // Splits at CR LF, CR or LF; a final line break adds no empty line.
  void SetText(const std::string& S) {
    Lines_.clear();
    std::string Cur;
    for (std::size_t I = 0; I < S.size(); ++I) {
      char C = S[I];
      if (C == '\r' || C == '\n') {
        Lines_.push_back(Cur);
        Cur.clear();
        if (C == '\r' && I + 1 < S.size() && S[I + 1] == '\n') ++I;
      } else {
        Cur += C;
      }
    }
    if (!Cur.empty()) Lines_.push_back(Cur);
  }

 private:
  std::vector<std::string> Lines_;
};

}  // namespace zt::frame
