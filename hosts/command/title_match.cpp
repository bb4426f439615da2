#include "command/title_match.h"

#include <host/text.h>

#include <strings.h>

#include <algorithm>

#include "command/similar_words.h"
#include "file_steps/visible_text.h"

using operations::in_quotes;

namespace {

constexpr size_t most_suggestions = 5;

std::vector<int> alike_without_case(const std::string& wanted,
                                    const std::vector<std::string>& titles) {
    std::vector<int> found;
    for (size_t i = 0; i < titles.size(); ++i) {
        const bool alike = wanted.size() == titles[i].size() &&
                           strncasecmp(wanted.data(), titles[i].data(), wanted.size()) == 0;
        if (alike) found.push_back(static_cast<int>(i));
    }
    return found;
}

std::string listed(const std::vector<std::string>& titles) {
    std::string result;
    for (const std::string& title : titles) {
        result += (result.empty() ? "" : ", ") + in_quotes(title);
    }
    return result;
}

std::string not_found(const std::string& wanted, const std::vector<std::string>& titles) {
    const std::string name = in_quotes(wanted);
    std::vector<std::string> close = similar_words(wanted, titles, most_suggestions);
    if (!close.empty())
        return translated("there is no item %s; close to it: %s", {name, listed(close)});
    if (titles.empty()) return translated("there is no item %s; the menu is empty there", {name});
    close.assign(titles.begin(), titles.begin() + std::min(titles.size(), most_suggestions));
    const bool more = close.size() < titles.size();
    return translated("there is no item %s; there are: %s",
                      {name, listed(close) + (more ? ", ..." : "")});
}

}  // namespace

int match_title(const std::string& wanted, const std::vector<std::string>& titles,
                std::string* problem) {
    const auto same = std::find(titles.begin(), titles.end(), wanted);
    if (same != titles.end()) return static_cast<int>(same - titles.begin());
    const std::vector<int> alike = alike_without_case(wanted, titles);
    if (alike.size() == 1) return alike[0];
    if (alike.empty()) {
        *problem = not_found(wanted, titles);
        return -1;
    }
    std::vector<std::string> several;
    for (const int index : alike) several.push_back(titles[index]);
    *problem = translated("several items are called %s; write one of %s",
                          {in_quotes(wanted), listed(several)});
    return -1;
}
