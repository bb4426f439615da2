#include "desktop/desktop_settings.h"

#include <host/glib_owners.h>
#include <glib.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "desktop/settings_database.h"
#include "desktop/small_files.h"
#include "x11/shared_settings.h"

namespace {

const size_t largest_file = 1 << 20;

const char gtk3_file[] = "gtk-3.0/settings.ini", gtk4_file[] = "gtk-4.0/settings.ini";
const char kde_file[] = "kdeglobals";

// Asked each time, because GLib's own function always repeats its first answer.
std::string config_file(const char* name) {
    const char* folder = getenv("XDG_CONFIG_HOME");
    if (folder && *folder) return std::string(folder) + "/" + name;
    const char* home = getenv("HOME");
    return home ? std::string(home) + "/.config/" + name : std::string();
}

// KDE's files have keys with marks and groups within groups; GLib takes both for damage.
std::string without_marks(const std::string& content) {
    std::istringstream lines(content);
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
        const bool is_group = line.starts_with('[');
        if (is_group && line.find("][") != line.npos) line = "[other]";
        if (!is_group && line.find("[$") < line.find('=')) continue;
        kept += line + "\n";
    }
    return kept;
}

// The value of a key in a file of settings; empty when the file has none.
std::string value_in(const char* file, const char* group, const char* key) {
    std::string content;
    if (!files::read_small_file(config_file(file).c_str(), largest_file, &content)) return {};
    if (file == kde_file) content = without_marks(content);
    const files::KeyFileOwner keys(g_key_file_new());
    g_key_file_load_from_data(keys.get(), content.data(), content.size(), G_KEY_FILE_NONE, nullptr);
    return files::taken_text(g_key_file_get_string(keys.get(), group, key, nullptr));
}

std::string in_database(const char* key) {
    return files::text_in_settings_database(config_file("dconf/user"),
                                            std::string("/org/gnome/desktop/interface/") + key);
}

// The places that may hold one setting.
struct Places {
    const char *shared, *gtk_key, *kde_group, *kde_key, *database_key;
};
const Places font = {"Gtk/FontName", "gtk-font-name", "General", "font", "font-name"};
const Places icons = {"Net/IconThemeName", "gtk-icon-theme-name", "Icons", "Theme", "icon-theme"};

std::string first_answer(const Places& places) {
    std::string answer = shared_setting(places.shared);
    for (const char* file : {gtk3_file, gtk4_file}) {
        if (answer.empty()) answer = value_in(file, "Settings", places.gtk_key);
    }
    if (answer.empty()) answer = value_in(kde_file, places.kde_group, places.kde_key);
    if (answer.empty()) answer = in_database(places.database_key);
    return answer;
}

bool names_dark(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), ::tolower);
    return text.find("dark") != std::string::npos;
}

bool programs_are_to_be_dark(const char* file) {
    const std::string prefer = value_in(file, "Settings", "gtk-application-prefer-dark-theme");
    return prefer == "1" || prefer == "true";
}

bool theme_is_dark() {
    const std::string shared = shared_setting("Net/ThemeName");
    if (!shared.empty()) return names_dark(shared);
    return names_dark(value_in(gtk3_file, "Settings", "gtk-theme-name")) ||
           names_dark(value_in(gtk4_file, "Settings", "gtk-theme-name"));
}

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\"");
    if (first == std::string::npos) return std::string();
    return text.substr(first, text.find_last_not_of(" \t\"\r") - first + 1);
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
    return theme_is_dark() || programs_are_to_be_dark(gtk3_file) ||
           programs_are_to_be_dark(gtk4_file) ||
           names_dark(value_in(kde_file, "General", "ColorScheme")) ||
           in_database("color-scheme") == "prefer-dark";
}

std::string desktop_font_family() {
    const std::string family = family_of(first_answer(font));
    return family.empty() ? "system-ui, sans-serif" : family;
}

std::string desktop_icon_theme() { return first_answer(icons); }

double desktop_scale(const char* server_resources) {
    const char* found = server_resources ? strstr(server_resources, "Xft.dpi:") : nullptr;
    if (!found) return 1;
    const double dpi = strtod(found + strlen("Xft.dpi:"), nullptr);
    return std::clamp(std::round(dpi / 96 * 4) / 4, 1.0, 4.0);
}
