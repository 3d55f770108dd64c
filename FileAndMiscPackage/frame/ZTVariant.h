// TZTVariant: the typed value of a build variable or a published property.
// Header-only, so the package and the host share it without linking.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>

namespace zt::frame {

class TZTVariant {
 public:
  enum class TKind { Empty, Boolean, Integer, Double, String };

  TZTVariant() = default;
  TZTVariant(bool B) : V_(B) {}
  TZTVariant(int I) : V_(static_cast<std::int64_t>(I)) {}
  TZTVariant(std::int64_t I) : V_(I) {}
  TZTVariant(std::uint32_t I) : V_(static_cast<std::int64_t>(I)) {}
  TZTVariant(double D) : V_(D) {}
  TZTVariant(std::string S) : V_(std::move(S)) {}
  TZTVariant(const char* S) : V_(std::string(S)) {}

  TKind Kind() const { return static_cast<TKind>(V_.index()); }
  bool IsEmpty() const { return Kind() == TKind::Empty; }

  // Text form: Booleans "True"/"False", integers in decimal, doubles with
  // up to 15 significant digits, empty as "".
  std::string AsString() const;
  // Conversions as Delphi's variants convert; throw std::invalid_argument
  // when the value has no such reading (for example "abc" as an integer).
  std::int64_t AsInteger() const;
  bool AsBoolean() const;
  double AsDouble() const;

  bool operator==(const TZTVariant& Other) const { return V_ == Other.V_; }

 private:
  std::variant<std::monostate, bool, std::int64_t, double, std::string> V_;
};

}  // namespace zt::frame

#include "frame/ZTVariant.inl"
