// Delphi's conversions of text to numbers and Booleans, as the package's
// actions convert property texts.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace zt::platform {

// Raised by the conversions that do not fall back to a default; the
// message is Delphi's ("'abc' is not a valid integer value").
class EConvertError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Delphi's StrToInt rules for a 32-bit Integer: leading blanks, an optional
// sign, then decimal digits or hexadecimal after "$", "x" or "0x" (up to
// $FFFFFFFF, which reads as -1). False, with Value untouched, for anything
// else: trailing blanks, an empty text, or a number out of range.
bool TryStrToInt(const std::string& S, int& Value);
int StrToIntDef(const std::string& S, int Default);
int StrToInt(const std::string& S);  // raises EConvertError
// The same rules for a 64-bit Int64 ("$FFFFFFFF" is 4294967295,
// "$FFFFFFFFFFFFFFFF" is -1).
bool TryStrToInt64(const std::string& S, std::int64_t& Value);
std::int64_t StrToInt64(const std::string& S);  // raises EConvertError

// "True" / "False" in any letter case, or a number (0 is false, any other
// number true); anything else raises EConvertError
// ("'abc' is not a valid boolean value").
bool StrToBool(const std::string& S);

}  // namespace zt::platform
