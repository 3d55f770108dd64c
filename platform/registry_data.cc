#include "platform/registry_data.h"

namespace zt::platform {

namespace {

std::string LittleEndian(std::uint64_t Value, int Bytes) {
  std::string R(static_cast<std::size_t>(Bytes), '\0');
  for (int I = 0; I < Bytes; ++I)
    R[static_cast<std::size_t>(I)] = static_cast<char>((Value >> (8 * I)) & 0xFF);
  return R;
}

std::uint64_t FromLittleEndian(const std::string& Data, std::size_t Bytes) {
  std::uint64_t V = 0;
  for (std::size_t I = 0; I < Bytes && I < Data.size(); ++I)
    V |= static_cast<std::uint64_t>(static_cast<unsigned char>(Data[I])) << (8 * I);
  return V;
}

int HexDigit(char C) {
  if (C >= '0' && C <= '9') return C - '0';
  if (C >= 'a' && C <= 'f') return C - 'a' + 10;
  if (C >= 'A' && C <= 'F') return C - 'A' + 10;
  return -1;
}

}  // namespace

std::string RegDwordData(DWORD Value) { return LittleEndian(Value, 4); }
DWORD RegDwordValue(const std::string& Data) { return static_cast<DWORD>(FromLittleEndian(Data, 4)); }
std::string RegQwordData(std::uint64_t Value) { return LittleEndian(Value, 8); }
std::uint64_t RegQwordValue(const std::string& Data) { return FromLittleEndian(Data, 8); }

std::string RegMultiData(const std::vector<std::string>& Strings) {
  std::string R;
  for (const std::string& S : Strings) R += S + '\0';
  return R;
}

std::vector<std::string> RegMultiStrings(const std::string& Data) {
  std::vector<std::string> R;
  std::size_t Start = 0;
  while (Start < Data.size()) {
    std::size_t End = Data.find('\0', Start);
    if (End == std::string::npos) End = Data.size();
    R.push_back(Data.substr(Start, End - Start));
    Start = End + 1;
  }
  return R;
}

std::string BytesToHex(const std::string& Bytes) {
  static const char Digits[] = "0123456789abcdef";
  std::string R;
  R.reserve(Bytes.size() * 2);
  for (unsigned char B : Bytes) {
    R += Digits[B >> 4];
    R += Digits[B & 15];
  }
  return R;
}

bool HexToBytes(const std::string& Hex, std::string& Bytes) {
  if (Hex.size() % 2) return false;
  Bytes.clear();
  for (std::size_t I = 0; I < Hex.size(); I += 2) {
    int Hi = HexDigit(Hex[I]), Lo = HexDigit(Hex[I + 1]);
    if (Hi < 0 || Lo < 0) return false;
    Bytes += static_cast<char>(Hi * 16 + Lo);
  }
  return true;
}

bool IsValidUtf8(const std::string& S) {
  const auto* P = reinterpret_cast<const unsigned char*>(S.data());
  const auto* End = P + S.size();
  while (P < End) {
    unsigned C = *P++;
    if (C < 0x80) continue;
    int More = C >= 0xF5 ? -1 : C >= 0xF0 ? 3 : C >= 0xE0 ? 2 : C >= 0xC2 ? 1 : -1;
    if (More < 0 || End - P < More) return false;
    unsigned Cp = C & (0x3F >> More);
    for (int I = 0; I < More; ++I, ++P) {
      if ((*P & 0xC0) != 0x80) return false;
      Cp = (Cp << 6) | (*P & 0x3F);
    }
    // Overlong forms, surrogates and code points past U+10FFFF.
    if ((More == 2 && Cp < 0x800) || (More == 3 && (Cp < 0x10000 || Cp > 0x10FFFF)) ||
        (Cp >= 0xD800 && Cp <= 0xDFFF))
      return false;
  }
  return true;
}

bool IsStorableValue(DWORD Type, const std::string& Data) {
  switch (Type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
      return IsValidUtf8(Data);
    case REG_MULTI_SZ:
      return (Data.empty() || Data.back() == '\0') && IsValidUtf8(Data);
    case REG_DWORD:
      return Data.size() == 4;
    case REG_QWORD:
      return Data.size() == 8;
    case REG_BINARY:
      return true;
    default:
      return false;
  }
}

}  // namespace zt::platform
