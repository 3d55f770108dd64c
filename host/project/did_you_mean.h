// "Did you mean" suggestions for misspelt commands, actions and properties.
#pragma once

#include <string>
#include <vector>

namespace zt::host {

// The candidate that holds Word (three letters or more) as a whole word,
// one that starts with it first ("copy": "Copy File(s)"); failing that, the
// candidate closest to Word by edit distance (letter case ignored) within
// half of Word's length; failing that, the first candidate that Word begins;
// or "" when none fits.
std::string NearestName(const std::string& Word, const std::vector<std::string>& Candidates);

// "; did you mean \"X\"?" for the nearest candidate, or "" when there is none.
std::string DidYouMean(const std::string& Word, const std::vector<std::string>& Candidates);

}  // namespace zt::host
