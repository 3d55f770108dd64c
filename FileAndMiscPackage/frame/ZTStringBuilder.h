// IZTStringBuilder: the host's growing text buffer, made by
// TCustomZTAction::CreateStringBuilder. Appends are amortised O(1), so an
// action can rebuild a large text piece by piece.
#pragma once

#include <string>
#include <string_view>

namespace zt::frame {

class IZTStringBuilder {
 public:
  virtual ~IZTStringBuilder() = default;
  virtual void Clear() = 0;
  // Makes room for a text of Capacity bytes (a hint: appends still grow it).
  virtual void Reserve(std::size_t Capacity) = 0;
  virtual void Append(std::string_view Text) = 0;
  virtual const std::string& Text() const = 0;
};

// The plain implementation over std::string; hosts may hand out this one.
class TZTStringBuilder : public IZTStringBuilder {
 public:
  void Clear() override { Text_.clear(); }
  void Reserve(std::size_t Capacity) override { Text_.reserve(Capacity); }
  void Append(std::string_view Text) override { Text_.append(Text); }
  const std::string& Text() const override { return Text_; }

 private:
  std::string Text_;
};

}  // namespace zt::frame
