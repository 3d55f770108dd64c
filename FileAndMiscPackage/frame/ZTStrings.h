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
    std::size_t Size = 0;
    for (const auto& L : Lines_) Size += L.size() + 2;
    std::string R;
    R.reserve(Size);
    for (const auto& L : Lines_) R.append(L).append("\r\n");
    return R;
  }
  // Splits at CR LF, CR or LF; a final line break adds no empty line.
  void SetText(const std::string& S) {
    Lines_.clear();
    for (std::size_t Start = 0; Start < S.size();) {
      std::size_t End = Start;
      while (End < S.size() && S[End] != '\r' && S[End] != '\n') ++End;
      Lines_.emplace_back(S, Start, End - Start);
      Start = End + (End + 1 < S.size() && S[End] == '\r' && S[End + 1] == '\n' ? 2 : 1);
    }
  }

 private:
  std::vector<std::string> Lines_;
};

// The Text of a list whose SetText was S, made without the list: every CR
// LF, CR or LF becomes CR LF, and a last line without a line break gets one.
inline std::string LineListText(const std::string& S) {
  std::string R;
  R.reserve(S.size() + S.size() / 16 + 2);
  for (std::size_t Start = 0; Start < S.size();) {
    std::size_t End = Start;
    while (End < S.size() && S[End] != '\r' && S[End] != '\n') ++End;
    R.append(S, Start, End - Start).append("\r\n");
    Start = End + (End + 1 < S.size() && S[End] == '\r' && S[End + 1] == '\n' ? 2 : 1);
  }
  return R;
}

}  // namespace zt::frame
