// Class identifiers as text.
#include "platform/com.h"

#include <cstdio>
#include <cstring>

namespace zt::platform {

namespace {

bool HexField(const std::string& S, std::size_t At, int Digits, std::uint64_t& Value) {
  Value = 0;
  for (int I = 0; I < Digits; ++I) {
    char C = S[At + static_cast<std::size_t>(I)];
    int D = C >= '0' && C <= '9'   ? C - '0'
            : C >= 'a' && C <= 'f' ? C - 'a' + 10
            : C >= 'A' && C <= 'F' ? C - 'A' + 10
                                   : -1;
    if (D < 0) return false;
    Value = Value * 16 + static_cast<std::uint64_t>(D);
  }
  return true;
}

}  // namespace

bool TGUID::operator==(const TGUID& O) const {
  return D1 == O.D1 && D2 == O.D2 && D3 == O.D3 && std::memcmp(D4, O.D4, sizeof D4) == 0;
}

TGUID StringToGUID(const std::string& S) {
  // {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}: field starts and widths.
  static const struct {
    std::size_t At;
    int Digits;
  } Fields[] = {{1, 8},  {10, 4}, {15, 4}, {20, 2}, {22, 2}, {25, 2},
                {27, 2}, {29, 2}, {31, 2}, {33, 2}, {35, 2}};
  bool Ok = S.size() == 38 && S[0] == '{' && S[9] == '-' && S[14] == '-' && S[19] == '-' && S[24] == '-' &&
            S[37] == '}';
  std::uint64_t V[11] = {};
  for (int I = 0; Ok && I < 11; ++I) Ok = HexField(S, Fields[I].At, Fields[I].Digits, V[I]);
  if (!Ok) throw EConvertError("'" + S + "' is not a valid GUID value");
  TGUID G;
  G.D1 = static_cast<std::uint32_t>(V[0]);
  G.D2 = static_cast<std::uint16_t>(V[1]);
  G.D3 = static_cast<std::uint16_t>(V[2]);
  for (int I = 0; I < 8; ++I) G.D4[I] = static_cast<std::uint8_t>(V[3 + I]);
  return G;
}

std::string GUIDToString(const TGUID& G) {
  char Buffer[40];
  std::snprintf(Buffer, sizeof Buffer, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", G.D1, G.D2, G.D3,
                G.D4[0], G.D4[1], G.D4[2], G.D4[3], G.D4[4], G.D4[5], G.D4[6], G.D4[7]);
  return Buffer;
}

}  // namespace zt::platform
