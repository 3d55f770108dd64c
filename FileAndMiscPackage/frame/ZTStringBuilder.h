// IZTStringBuilder: the host's growing text buffer, made by
// TCustomZTAction::CreateStringBuilder. Appends are amortised O(1), so an
// action can rebuild a large text piece by piece.
#pragma once

#include <string>

namespace zt::frame {

class IZTStringBuilder {
 public:
  virtual ~IZTStringBuilder() = default;
  virtual void Clear() = 0;
  virtual void Append(const std::string& Text) = 0;
  // Appends Count bytes of Text starting at Offset (0-based).
  virtual void Append(const std::string& Text, std::size_t Offset, std::size_t Count) = 0;
  virtual const std::string& Text() const = 0;
};

// The plain implementation over std::string; hosts may hand out this one.
class TZTStringBuilder : public IZTStringBuilder {
 public:
  void Clear() override { Text_.clear(); }
  void Append(const std::string& Text) override { Text_ += Text; }
  void Append(const std::string& Text, std::size_t Offset, std::size_t Count) override {
    Text_.append(Text, Offset, Count);
  }
  const std::string& Text() const override { return Text_; }

 private:
  std::string Text_;
};

}  // namespace zt::frame
