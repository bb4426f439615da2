#include "desktop/desktop_settings.h"

#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>

namespace {

std::string config_file(const char* name) {
    const char* folder = getenv("XDG_CONFIG_HOME");
    if (folder && *folder) return std::string(folder) + "/" + name;
    const char* home = getenv("HOME");
    return home ? std::string(home) + "/.config/" + name : std::string();
}

std::string content(const char* name) {
    std::ifstream in(config_file(name), std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\"");
    if (first == std::string::npos) return std::string();
    return text.substr(first, text.find_last_not_of(" \t\"\r") - first + 1);
}

// The value of `key=value` in a file of such lines; sections are not looked at.
std::string value_of(const char* file, const std::string& key) {
    std::istringstream lines(content(file));
    for (std::string line; std::getline(lines, line);) {
        const size_t equals = line.find('=');
        if (equals != std::string::npos && trimmed(line.substr(0, equals)) == key) {
            return trimmed(line.substr(equals + 1));
        }
    }
    return std::string();
}

bool names_dark(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), ::tolower);
    return text.find("dark") != std::string::npos;
}

// The settings database is rewritten as a whole at each change, so it holds no stale values.
bool database_prefers_dark() {
    const std::string database = content("dconf/user");
    return database.find("color-scheme") != std::string::npos &&
           database.find("prefer-dark") != std::string::npos;
}

bool gtk_prefers_dark(const char* file) {
    const std::string prefer = value_of(file, "gtk-application-prefer-dark-theme");
    if (prefer == "1" || prefer == "true") return true;
    return names_dark(value_of(file, "gtk-theme-name"));
}

// "Noto Sans, Bold 10" names a family, styles and a size.
std::string family_of(std::string font) {
    const size_t size = font.find_last_of(' ');
    if (size != std::string::npos && size + 1 < font.size() && isdigit(font[size + 1])) {
        font.resize(size);
    }
    return trimmed(font.substr(0, font.find(',')));
}

}  // namespace

bool desktop_prefers_dark() {
    if (const char* theme = getenv("GTK_THEME"); theme && *theme) return names_dark(theme);
    return gtk_prefers_dark("gtk-3.0/settings.ini") || gtk_prefers_dark("gtk-4.0/settings.ini") ||
           names_dark(value_of("kdeglobals", "ColorScheme")) || database_prefers_dark();
}

std::string desktop_font_family() {
    for (const char* file : {"gtk-3.0/settings.ini", "gtk-4.0/settings.ini"}) {
        const std::string family = family_of(value_of(file, "gtk-font-name"));
        if (!family.empty()) return family;
    }
    return "system-ui, sans-serif";
}

double desktop_scale(const char* server_resources) {
    const char* found = server_resources ? strstr(server_resources, "Xft.dpi:") : nullptr;
    if (!found) return 1;
    const double dpi = strtod(found + strlen("Xft.dpi:"), nullptr);
    return std::clamp(std::round(dpi / 96 * 4) / 4, 1.0, 4.0);
}
