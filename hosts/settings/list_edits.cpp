#include "settings/list_edits.h"

#include <algorithm>

std::string entry_of_path(const std::string& path) {
    const size_t last = path.find_last_not_of('/');
    return last == std::string::npos ? path.substr(0, 1) : path.substr(0, last + 1);
}

bool list_has(const std::vector<std::string>& list, const std::string& entry) {
    return std::ranges::any_of(list, [wanted = entry_of_path(entry)](const std::string& each) {
        return entry_of_path(each) == wanted;
    });
}

bool add_entry(std::vector<std::string>* list, const std::string& entry) {
    if (entry != separator_entry && list_has(*list, entry)) return false;
    list->push_back(entry_of_path(entry));
    return true;
}

bool remove_entry(std::vector<std::string>* list, const std::string& entry) {
    const auto is_it = [wanted = entry_of_path(entry)](const std::string& each) {
        return entry_of_path(each) == wanted;
    };
    return std::erase_if(*list, is_it) > 0;
}
