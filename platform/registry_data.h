// Registry value data as the layer's registry services pass them: bytes in
// one std::string, laid out per type as Win32's narrow services lay them
// out, less the string terminators:
//   REG_SZ, REG_EXPAND_SZ  the UTF-8 text (no terminating NUL)
//   REG_MULTI_SZ           each UTF-8 string followed by one NUL
//   REG_DWORD              4 bytes, little-endian
//   REG_QWORD              8 bytes, little-endian
//   REG_BINARY             the bytes
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/win_types.h"

namespace zt::platform {

std::string RegDwordData(DWORD Value);
DWORD RegDwordValue(const std::string& Data);  // from the first 4 bytes (missing bytes read as 0)
std::string RegQwordData(std::uint64_t Value);
std::uint64_t RegQwordValue(const std::string& Data);
std::string RegMultiData(const std::vector<std::string>& Strings);
std::vector<std::string> RegMultiStrings(const std::string& Data);

// Lower-case hexadecimal pairs ("0a1b"); HexToBytes also takes upper case
// and is false for anything that is not whole pairs of hexadecimal digits.
std::string BytesToHex(const std::string& Bytes);
bool HexToBytes(const std::string& Hex, std::string& Bytes);

// True when S is well-formed UTF-8: the store holds no other text.
bool IsValidUtf8(const std::string& S);
// True for the six types the store holds, with Data in their layout and
// their texts in UTF-8.
bool IsStorableValue(DWORD Type, const std::string& Data);

}  // namespace zt::platform
