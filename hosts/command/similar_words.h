// Suggestions for a word that was not found.
#pragma once

#include <string>
#include <vector>

// At most `most` candidates that resemble the word, the nearest first, without duplicates. A
// candidate resembles the word if it is a few edits away, without regard to case, or if one of the
// two contains the other.
std::vector<std::string> similar_words(const std::string& word,
                                       const std::vector<std::string>& candidates, size_t most);
