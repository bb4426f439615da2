#include "file_steps/new_names.h"

#include <limits.h>

namespace operations {

namespace {

constexpr size_t longest_extension = 16;

std::string numbered(const char* word, unsigned attempt) {
    return attempt < 2 ? word : word + (" " + std::to_string(attempt));
}

bool continues_character(char byte) { return (static_cast<unsigned char>(byte) & 0xc0) == 0x80; }

std::string shortened(std::string stem, size_t most) {
    if (stem.size() <= most) return stem;
    size_t size = most;
    while (size > 0 && continues_character(stem[size])) size--;
    // Bytes that are not UTF-8 are cut at the limit.
    stem.resize(size > 0 && most - size < 4 ? size : most);
    return stem;
}

std::string assembled(const std::string& stem, const std::string& tail) {
    return shortened(stem, NAME_MAX - tail.size()) + tail;
}

size_t start_of_extension(const std::string& name) {
    const size_t dot = name.rfind('.');
    const bool has_one = dot != std::string::npos && dot > 0 && dot + 1 < name.size() &&
                         name.size() - dot <= longest_extension &&
                         name.find(' ', dot) == std::string::npos;
    return has_one ? dot : name.size();
}

}  // namespace

std::string copy_name(const std::string& name, bool is_folder, unsigned attempt) {
    const size_t end = is_folder ? name.size() : start_of_extension(name);
    return assembled(name.substr(0, end), numbered(" copy", attempt) + name.substr(end));
}

std::string alias_name(const std::string& name, unsigned attempt) {
    return attempt == 0 ? name : assembled(name, numbered(" alias", attempt));
}

}  // namespace operations
