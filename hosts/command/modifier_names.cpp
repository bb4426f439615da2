#include "command/modifier_names.h"

#include <sstream>

namespace {

const struct {
    const char* name;
    unsigned long flag;
} keys[] = {{"shift", 0x20000}, {"option", 0x80000}, {"command", 0x100000}, {"control", 0x40000}};

unsigned long flag_of(const std::string& name) {
    for (const auto& key : keys) {
        if (name == key.name) return key.flag;
    }
    return 0;
}

}  // namespace

bool parse_modifiers(const std::string& names, unsigned long* flags) {
    std::istringstream in(names);
    std::string name;
    *flags = 0;
    while (std::getline(in, name, ',')) {
        const unsigned long flag = flag_of(name);
        if (!flag) return false;
        *flags |= flag;
    }
    return true;
}

std::vector<std::string> modifier_names(unsigned long flags) {
    std::vector<std::string> names;
    for (const auto& key : keys) {
        if (flags & key.flag) names.push_back(key.name);
    }
    return names;
}
