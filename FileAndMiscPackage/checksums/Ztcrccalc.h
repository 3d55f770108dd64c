// CRC-32 of a whole file as text.
#pragma once

#include <string>

namespace zt::package {

// "$" + eight upper-case hex digits, most significant first ("$0000ABCD").
// The file is opened read-only; a failure to open raises EInOutError. A read
// that fails ends the checksum with the bytes read so far.
std::string GetCRC32(const std::string& FileName);

}  // namespace zt::package
