#include "command/similar_words.h"

#include <ctype.h>

#include <algorithm>
#include <utility>

namespace {

constexpr size_t longest_compared = 300;

std::string folded(const std::string& word) {
    std::string result = word.substr(0, longest_compared);
    for (char& byte : result) byte = static_cast<char>(tolower(static_cast<unsigned char>(byte)));
    return result;
}

// The number of inserted, removed and replaced bytes between the two words.
size_t edits_between(const std::string& one, const std::string& other) {
    std::vector<size_t> row(other.size() + 1);
    for (size_t j = 0; j < row.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= one.size(); ++i) {
        size_t diagonal = std::exchange(row[0], i);
        for (size_t j = 1; j < row.size(); ++j) {
            const size_t replaced = diagonal + (one[i - 1] != other[j - 1]);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return row.back();
}

bool holds(const std::string& whole, const std::string& part) {
    return part.size() > 2 && whole.find(part) != std::string::npos;
}

}  // namespace

std::vector<std::string> similar_words(const std::string& word,
                                       const std::vector<std::string>& candidates, size_t most) {
    const std::string wanted = folded(word);
    std::vector<std::pair<size_t, std::string>> found;
    for (const std::string& candidate : candidates) {
        const std::string other = folded(candidate);
        const size_t edits = edits_between(wanted, other);
        const bool alike = edits <= std::max<size_t>(2, wanted.size() / 3);
        const bool within = holds(other, wanted) || holds(wanted, other);
        if (alike || within) found.emplace_back(edits, candidate);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& one, const auto& other) { return one.first < other.first; });
    std::vector<std::string> words;
    for (const auto& [edits, candidate] : found) {
        if (words.size() == most) break;
        if (std::find(words.begin(), words.end(), candidate) == words.end()) {
            words.push_back(candidate);
        }
    }
    return words;
}
