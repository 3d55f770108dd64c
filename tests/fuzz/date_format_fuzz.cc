// FormatDateTime over any format text and any date: input is eight bytes of
// a date (a double, days since 1899-12-30) followed by the format. Never a
// crash; the same input always gives the same text; a format of characters
// that are no codes comes back as it is; output grows at most linearly.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>

#include "platform/dates.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  if (Size < sizeof(double)) return 0;
  double D;
  std::memcpy(&D, Data, sizeof D);
  const std::string Format(reinterpret_cast<const char*>(Data) + sizeof D, Size - sizeof D);
  const std::string Text = zt::platform::FormatDateTime(Format, D);
  if (Text != zt::platform::FormatDateTime(Format, D)) __builtin_trap();
  // The longest code output ("dddddd": "Wednesday, September 30, 2024") is
  // 31 characters for one character of format; "c" alone gives 19.
  if (Text.size() > 40 * (Format.size() + 1)) __builtin_trap();
  bool Plain = !Format.empty();
  for (char C : Format)
    if ((C >= 'a' && C <= 'z') || (C >= 'A' && C <= 'Z') || C == '\'' || C == '"') Plain = false;
  if (Plain && Text != Format) __builtin_trap();
  return 0;
}
