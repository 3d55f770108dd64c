// The POSIX delimiter: '/'. A '\' is an ordinary file-name character here,
// so paths the package composes with '\' pass through NormalizeDelimiters.
#include <algorithm>

#include "platform/paths.h"

namespace zt::platform {

char PathDelim() { return '/'; }

bool IsPathDelimiter(char C) { return C == '/'; }

std::string NormalizeDelimiters(const std::string& S) {
  std::string Out = S;
  std::replace(Out.begin(), Out.end(), '\\', '/');
  return Out;
}

}  // namespace zt::platform
