// Inline conversions of TZTVariant (see ZTVariant.h).
#pragma once

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <strings.h>

namespace zt::frame {

inline std::string TZTVariant::AsString() const {
  switch (Kind()) {
    case TKind::Empty: return {};
    case TKind::Boolean: return std::get<bool>(V_) ? "True" : "False";
    case TKind::Integer: return std::to_string(std::get<std::int64_t>(V_));
    case TKind::Double: {
      char Buf[64];
      std::snprintf(Buf, sizeof Buf, "%.15g", std::get<double>(V_));
      return Buf;
    }
    case TKind::String: return std::get<std::string>(V_);
  }
  return {};
}

namespace detail {
// Delphi StrToInt64: optional sign, decimal digits, or "$" / "0x" hexadecimal.
inline bool TryStrToInt64(const std::string& S, std::int64_t& Out) {
  if (S.empty()) return false;
  std::size_t I = 0;
  bool Neg = false;
  if (S[I] == '+' || S[I] == '-') Neg = S[I++] == '-';
  int Base = 10;
  if (I < S.size() && S[I] == '$') { Base = 16; ++I; }
  else if (I + 1 < S.size() && S[I] == '0' && (S[I + 1] == 'x' || S[I + 1] == 'X')) { Base = 16; I += 2; }
  if (I >= S.size()) return false;
  unsigned long long V = 0;
  for (; I < S.size(); ++I) {
    char C = S[I];
    int D;
    if (C >= '0' && C <= '9') D = C - '0';
    else if (Base == 16 && C >= 'a' && C <= 'f') D = C - 'a' + 10;
    else if (Base == 16 && C >= 'A' && C <= 'F') D = C - 'A' + 10;
    else return false;
    if (V > (~0ULL - D) / Base) return false;
    V = V * Base + D;
  }
  if (Base == 10 && V > (Neg ? 9223372036854775808ULL : 9223372036854775807ULL)) return false;
  Out = Neg ? static_cast<std::int64_t>(0 - V) : static_cast<std::int64_t>(V);
  return true;
}
}  // namespace detail

inline std::int64_t TZTVariant::AsInteger() const {
  switch (Kind()) {
    case TKind::Empty: return 0;
    case TKind::Boolean: return std::get<bool>(V_) ? -1 : 0;  // Delphi: True as integer is -1
    case TKind::Integer: return std::get<std::int64_t>(V_);
    case TKind::Double: return static_cast<std::int64_t>(std::get<double>(V_));
    case TKind::String: {
      std::int64_t R;
      if (detail::TryStrToInt64(std::get<std::string>(V_), R)) return R;
      throw std::invalid_argument("'" + std::get<std::string>(V_) + "' is not a valid integer value");
    }
  }
  return 0;
}

inline bool TZTVariant::AsBoolean() const {
  switch (Kind()) {
    case TKind::Empty: return false;
    case TKind::Boolean: return std::get<bool>(V_);
    case TKind::Integer: return std::get<std::int64_t>(V_) != 0;
    case TKind::Double: return std::get<double>(V_) != 0;
    case TKind::String: {
      const std::string& S = std::get<std::string>(V_);
      if (strcasecmp(S.c_str(), "true") == 0) return true;
      if (strcasecmp(S.c_str(), "false") == 0) return false;
      std::int64_t R;
      if (detail::TryStrToInt64(S, R)) return R != 0;
      throw std::invalid_argument("'" + S + "' is not a valid boolean value");
    }
  }
  return false;
}

inline double TZTVariant::AsDouble() const {
  switch (Kind()) {
    case TKind::Empty: return 0;
    case TKind::Boolean: return std::get<bool>(V_) ? -1 : 0;
    case TKind::Integer: return static_cast<double>(std::get<std::int64_t>(V_));
    case TKind::Double: return std::get<double>(V_);
    case TKind::String: {
      const std::string& S = std::get<std::string>(V_);
      char* End = nullptr;
      errno = 0;
      double D = std::strtod(S.c_str(), &End);
      if (S.empty() || *End != '\0' || errno != 0)
        throw std::invalid_argument("'" + S + "' is not a valid floating point value");
      return D;
    }
  }
  return 0;
}

}  // namespace zt::frame
