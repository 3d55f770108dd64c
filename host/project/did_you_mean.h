// "Did you mean" suggestions for misspelt commands, actions and properties.
#pragma once

#include <string>
#include <vector>

namespace zt::host {

// The first candidate that holds Word (three letters or more) best: as its
// first whole word ("copy": "Copy File(s)"), as a whole word elsewhere, or
// as the start of a word ("crc": "Calculate File CRC32"); "" when none does.
std::string NameHolding(const std::string& Word, const std::vector<std::string>& Candidates);

// NameHolding's candidate; failing that, the candidate closest to Word by
// edit distance (letter case ignored) within half of Word's length; failing
// that, the first candidate that Word begins; or "" when none fits.
std::string NearestName(const std::string& Word, const std::vector<std::string>& Candidates);

// "; did you mean \"Name\"?", or "" for an empty Name.
std::string SuggestionText(const std::string& Name);
// SuggestionText of the nearest candidate.
std::string DidYouMean(const std::string& Word, const std::vector<std::string>& Candidates);

}  // namespace zt::host
