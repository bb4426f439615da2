// Suggestions for words that were not found.
#pragma once

#include <string>
#include <vector>

// At most `most` of the candidates that resemble the word, the nearest first, none twice: few edits
// away without regard to case, or holding the word, or held in it.
std::vector<std::string> SimilarWords(const std::string& word,
                                      const std::vector<std::string>& candidates, size_t most);
