// "Did you mean" suggestions for misspelt commands, actions and properties.
#pragma once

#include <string>
#include <vector>

namespace zt::host {

// The candidate closest to Word by edit distance (letter case ignored), or ""
// when there are no candidates or none is within half of Word's length;
// failing that, the first candidate that Word begins.
std::string NearestName(const std::string& Word, const std::vector<std::string>& Candidates);

// "; did you mean \"X\"?" for the nearest candidate, or "" when there is none.
std::string DidYouMean(const std::string& Word, const std::vector<std::string>& Candidates);

}  // namespace zt::host
