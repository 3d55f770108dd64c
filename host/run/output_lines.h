// Splits a program's output stream into lines: LF ends a line and a CR
// right before it is dropped; the bytes are passed on as they are (any
// length, any encoding).
#pragma once

#include <cstddef>
#include <cstring>
#include <string>

namespace zt::host {

class OutputLines {
 public:
  // Calls OnLine for every line that Data completes.
  template <class Fn>
  void Feed(const char* Data, std::size_t Size, Fn&& OnLine) {
    const char* End = Data + Size;
    while (Data < End) {
      const char* Lf = static_cast<const char*>(std::memchr(Data, '\n', static_cast<std::size_t>(End - Data)));
      if (!Lf) {
        Partial_.append(Data, End);
        return;
      }
      if (Partial_.empty()) {
        Line_.clear();
        Line_.append(Data, static_cast<std::size_t>(Lf - Data));
      } else {
        Partial_.append(Data, Lf);
        Line_.swap(Partial_);
        Partial_.clear();
      }
      if (!Line_.empty() && Line_.back() == '\r') Line_.pop_back();
      OnLine(Line_);
      Data = Lf + 1;
    }
  }
  // The last line when the stream did not end with a line end.
  template <class Fn>
  void Finish(Fn&& OnLine) {
    if (Partial_.empty()) return;
    Line_.swap(Partial_);
    Partial_.clear();
    if (Line_.back() == '\r') Line_.pop_back();
    OnLine(Line_);
  }

 private:
  std::string Partial_;  // a line not ended yet
  std::string Line_;
};

}  // namespace zt::host
