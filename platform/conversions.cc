#include "platform/conversions.h"

#include <strings.h>

#include <cerrno>
#include <cstdlib>

namespace zt::platform {

namespace {

int HexDigit(char C) {
  if (C >= '0' && C <= '9') return C - '0';
  if (C >= 'a' && C <= 'f') return C - 'a' + 10;
  if (C >= 'A' && C <= 'F') return C - 'A' + 10;
  return -1;
}

// Delphi's Val for an integer of Bits (32 or 64) bits: the number's bits,
// two's complement for a negative one.
bool ParseInteger(const std::string& S, int Bits, std::uint64_t& Result) {
  std::size_t I = 0;
  const std::size_t N = S.size();
  while (I < N && S[I] == ' ') ++I;
  bool Neg = false;
  if (I < N && (S[I] == '+' || S[I] == '-')) Neg = S[I++] == '-';
  bool Hex = false;
  if (I < N && (S[I] == '$' || S[I] == 'x' || S[I] == 'X')) {
    Hex = true, I += 1;
  } else if (I + 1 < N && S[I] == '0' && (S[I + 1] == 'x' || S[I + 1] == 'X')) {
    Hex = true, I += 2;
  }
  if (I >= N) return false;
  const std::uint64_t Top = std::uint64_t{1} << (Bits - 1);  // 2^31 or 2^63
  const std::uint64_t Limit = Hex ? Top - 1 + Top : (Neg ? Top : Top - 1);
  const unsigned Base = Hex ? 16 : 10;
  std::uint64_t V = 0;
  for (; I < N; ++I) {
    int D = HexDigit(S[I]);
    if (D < 0 || static_cast<unsigned>(D) >= Base) return false;
    if (V > (Limit - static_cast<unsigned>(D)) / Base) return false;
    V = V * Base + static_cast<unsigned>(D);
  }
  Result = Neg ? 0 - V : V;
  return true;
}

}  // namespace

bool TryStrToInt(const std::string& S, int& Value) {
  std::uint64_t V;
  if (!ParseInteger(S, 32, V)) return false;
  Value = static_cast<std::int32_t>(static_cast<std::uint32_t>(V));
  return true;
}

int StrToIntDef(const std::string& S, int Default) {
  int V;
  return TryStrToInt(S, V) ? V : Default;
}

int StrToInt(const std::string& S) {
  int V;
  if (!TryStrToInt(S, V)) throw EConvertError("'" + S + "' is not a valid integer value");
  return V;
}

bool TryStrToInt64(const std::string& S, std::int64_t& Value) {
  std::uint64_t V;
  if (!ParseInteger(S, 64, V)) return false;
  Value = static_cast<std::int64_t>(V);
  return true;
}

std::int64_t StrToInt64(const std::string& S) {
  std::int64_t V;
  if (!TryStrToInt64(S, V)) throw EConvertError("'" + S + "' is not a valid integer value");
  return V;
}

bool StrToBool(const std::string& S) {
  if (strcasecmp(S.c_str(), "true") == 0) return true;
  if (strcasecmp(S.c_str(), "false") == 0) return false;
  std::int64_t I;
  if (TryStrToInt64(S, I)) return I != 0;
  // Delphi falls back on a floating-point reading.
  char* End = nullptr;
  errno = 0;
  double D = S.empty() || S[0] <= ' ' ? 0 : std::strtod(S.c_str(), &End);
  if (End && *End == '\0' && errno == 0) return D != 0;
  throw EConvertError("'" + S + "' is not a valid boolean value");
}

}  // namespace zt::platform
