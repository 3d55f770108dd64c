// Parameter texts and argument lists. A process action hands the host one
// parameter text; the host turns it into the program's arguments the way the
// platform's programs expect. On POSIX that is shell quoting without any
// expansion; on Windows the text is passed to the program as it is.
#pragma once

#include <string>
#include <vector>

namespace zt::platform {

// The switch that makes the command interpreter (DOSCMD) run the text that
// follows it: "-c" for a POSIX shell, "/c" for the Windows interpreter.
const char* CommandInterpreterSwitch();

// Splits Text into arguments. POSIX: blanks (space, tab, line ends) separate
// words; '...' keeps everything literally; inside "..." a backslash escapes
// only $ ` " \ and a line end; outside quotes a backslash keeps the next
// character literally, and a backslash before a line end joins the lines.
// Nothing is expanded ($HOME, *, ~ stay as written). An unterminated quote
// runs to the end of the text.
std::vector<std::string> SplitCommandLine(const std::string& Text);

// Quotes one argument so that SplitCommandLine gives it back unchanged:
// plain words are returned as they are.
std::string QuoteArgument(const std::string& Argument);

}  // namespace zt::platform
