// Texts as lists of lines: every line, the last included, ends with CR LF,
// which is how a text file is loaded into and saved from a string list. A
// lone CR or LF is a line break as well. Fast when a text already has that
// shape (one vectorised pass, no copy), so a large CR LF file costs nothing
// extra.
#pragma once

#include <string>
#include <string_view>

namespace zt::package {

// True when Text is empty or every line of it ends with CR LF and no CR or
// LF stands alone.
bool HasCrLfLines(std::string_view Text);

// Text split into lines at CR LF, CR or LF and joined again with CR LF after
// every line. A final line break adds no empty line; an empty text stays empty.
std::string ToCrLfLines(std::string_view Text);

// ToCrLfLines in place; no copy when Text already has that shape.
void MakeCrLfLines(std::string& Text);

// The index of the first CR or LF in Text, or npos.
std::size_t FindLineBreak(std::string_view Text);

}  // namespace zt::package
