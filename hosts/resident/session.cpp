#include "resident/session.h"

#include <errno.h>
#include <limits.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace resident {

namespace {

constexpr std::string_view fixed_names[] = {"DBUS_SESSION_BUS_ADDRESS",
                                            "DISPLAY",
                                            "HOME",
                                            "LANG",
                                            "LANGUAGE",
                                            "LOGNAME",
                                            "TEMP",
                                            "TMP",
                                            "TMPDIR",
                                            "TZ",
                                            "USER",
                                            "WAYLAND_DISPLAY",
                                            "XAUTHORITY",
                                            "XMODIFIERS"};
constexpr std::string_view fixed_beginnings[] = {
    "ASAN_", "DELVIO_", "FC_",   "FONTCONFIG_", "GDK_",   "GNUSTEP_", "GTK_",
    "LC_",   "LD_",     "LSAN_", "MALLOC_",     "UBSAN_", "XDG_"};
// The desktop makes a new one for each start of a program.
constexpr std::string_view activation_token = "XDG_ACTIVATION_TOKEN";

bool is_fixed(std::string_view variable) {
    const std::string_view name = variable.substr(0, variable.find('='));
    if (name == activation_token) return false;
    return std::find(std::begin(fixed_names), std::end(fixed_names), name) !=
               std::end(fixed_names) ||
           std::any_of(std::begin(fixed_beginnings), std::end(fixed_beginnings),
                       [&](std::string_view beginning) { return name.starts_with(beginning); });
}

// The hash FNV-1a. It only has to tell hosts apart: a host compares the variables themselves.
uint64_t hash_of(const std::string& text, uint64_t hash) {
    for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    return hash * 0x100000001b3;  // the end of the text
}

}  // namespace

std::vector<std::string> fixed_variables(const std::vector<std::string>& environment) {
    std::vector<std::string> fixed;
    std::copy_if(environment.begin(), environment.end(), std::back_inserter(fixed), is_fixed);
    std::sort(fixed.begin(), fixed.end());
    return fixed;
}

std::string seen_files() {
    char names[PATH_MAX];
    const ssize_t size = readlink("/proc/self/ns/mnt", names, sizeof names);
    struct stat root = {};
    const bool is_unknown = size < 0 && errno != ENOENT;
    if (is_unknown || stat("/", &root) != 0) return "";
    return std::string(names, size > 0 ? static_cast<size_t>(size) : 0) + " " +
           std::to_string(root.st_dev) + ":" + std::to_string(root.st_ino);
}

std::string host_name(const std::vector<std::string>& environment, const std::string& program,
                      const std::string& files) {
    uint64_t hash = hash_of(files, hash_of(program, 0xcbf29ce484222325));
    for (const std::string& variable : fixed_variables(environment)) {
        hash = hash_of(variable, hash);
    }
    char name[17];
    snprintf(name, sizeof name, "%016llx", static_cast<unsigned long long>(hash));
    return name;
}

std::vector<std::string> own_environment() {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable; ++variable) {
        if (std::string_view(*variable).find('=') + 1 > 1) variables.emplace_back(*variable);
    }
    return variables;
}

}  // namespace resident
