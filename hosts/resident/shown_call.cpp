#include "resident/shown_call.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace resident {

namespace {

// The options of a shown menu; each takes a value, as the next argument or after "=".
constexpr std::string_view options[] = {"--at", "--modifiers", "--setting"};

bool is_option(std::string_view word) {
    return std::find(std::begin(options), std::end(options), word) != std::end(options);
}

bool looks_like_option(std::string_view word) { return word.size() > 1 && word[0] == '-'; }

}  // namespace

bool asks_for_shown_menu(const std::vector<std::string>& arguments) {
    if (arguments.empty() || arguments[0] != "menu") return false;
    bool has_file = false;
    for (size_t i = 1; i < arguments.size(); ++i) {
        const std::string_view word = arguments[i];
        if (word == "--") return has_file || i + 1 < arguments.size();
        if (!looks_like_option(word)) {
            has_file = true;
            continue;
        }
        const size_t equals = word.find('=');
        if (!is_option(word.substr(0, equals))) return false;
        if (equals == std::string_view::npos && ++i == arguments.size()) return false;
    }
    return has_file;
}

}  // namespace resident
