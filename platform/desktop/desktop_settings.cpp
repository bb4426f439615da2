#include "desktop/desktop_settings.h"

#include <host/glib_owners.h>
#include <glib.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <sstream>

#include "desktop/settings_database.h"
#include "desktop/settings_portal.h"
#include "desktop/small_files.h"
#include "x11/shared_settings.h"

namespace {

const size_t largest_file = 1 << 20;

const char* const gtk_files[] = {"gtk-3.0/settings.ini", "gtk-4.0/settings.ini"};
const char kde_file[] = "kdeglobals", database_file[] = "dconf/user";

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

// The text of a file of settings; empty when there is none.
std::string settings_text(const char* file) {
    std::string content;
    files::read_small_file(config_file(file).c_str(), largest_file, &content);
    return content;
}

files::KeyFileOwner parsed(const std::string& content) {
    files::KeyFileOwner keys(g_key_file_new());
    g_key_file_load_from_data(keys.get(), content.data(), content.size(), G_KEY_FILE_NONE, nullptr);
    return keys;
}

bool names(std::string text, const char* part) {
    std::transform(text.begin(), text.end(), text.begin(), ::tolower);
    return text.find(part) != std::string::npos;
}
// GTK's own theme of high contrast is dark when it is the inverse one.
bool names_dark(const std::string& text) { return names(text, "dark") || names(text, "inverse"); }

bool is_true(const std::string& text) { return text == "1" || text == "true"; }

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\"");
    if (first == std::string::npos) return std::string();
    return text.substr(first, text.find_last_not_of(" \t\"\r") - first + 1);
}

// GTK's and GNOME's fonts end with a size: "Noto Sans, Bold 10".
size_t place_of_size(const std::string& font) {
    const size_t blank = font.find_last_of(' ');
    const bool has_size = blank != std::string::npos && blank + 1 < font.size() &&
                          isdigit(static_cast<unsigned char>(font[blank + 1]));
    return has_size ? blank : std::string::npos;
}

// "Noto Sans, Bold 10" names a family, styles and a size.
std::string family_of(const std::string& font) {
    const std::string name = font.substr(0, place_of_size(font));
    return trimmed(name.substr(0, name.find(',')));
}

// In points. KDE's fonts have the size after the family: "Noto Sans,10,-1,5,50".
double size_of(const std::string& font) {
    const size_t blank = place_of_size(font), comma = font.find(',');
    const size_t place = blank != std::string::npos ? blank : comma;
    return place == std::string::npos ? 0 : strtod(font.c_str() + place + 1, nullptr);
}

struct NamedAccent {
    const char* name;
    DesktopSettings::Accent color;
};
// GNOME's names.
const NamedAccent named_accents[] = {
    {"blue", {0.208, 0.518, 0.894}},   {"teal", {0.129, 0.565, 0.643}},
    {"green", {0.227, 0.580, 0.290}},  {"yellow", {0.784, 0.533, 0.000}},
    {"orange", {0.929, 0.357, 0.000}}, {"red", {0.902, 0.176, 0.259}},
    {"pink", {0.835, 0.380, 0.600}},   {"purple", {0.569, 0.255, 0.675}},
    {"slate", {0.435, 0.514, 0.588}},
};

double clamped_scale(double scale) { return std::clamp(std::round(scale * 4) / 4, 1.0, 4.0); }

constexpr double usual_dpi = 96, points_an_inch = 72, dpi_unit = 1024;

}  // namespace

// What was read.
struct DesktopSettings::Sources {
    std::optional<std::map<std::string, std::string>> shared;
    files::KeyFileOwner gtk[std::size(gtk_files)], kde;
    std::optional<PortalSettings> portal;
};

// The places that may hold one setting; null for those that do not.
struct DesktopSettings::Places {
    const char *shared, *gtk_key, *kde_group, *kde_key, *database_key;
};

DesktopSettings::DesktopSettings() : sources_(std::make_unique<Sources>()) {}
DesktopSettings::~DesktopSettings() = default;

std::string DesktopSettings::shared(const char* name) {
    if (!sources_->shared) sources_->shared = shared_settings();
    const auto found = sources_->shared->find(name);
    return found == sources_->shared->end() ? std::string() : found->second;
}

std::string DesktopSettings::in_gtk_file(int number, const char* key) {
    files::KeyFileOwner& file = sources_->gtk[number];
    if (!file) file = parsed(settings_text(gtk_files[number]));
    return files::taken_text(g_key_file_get_string(file.get(), "Settings", key, nullptr));
}

std::string DesktopSettings::in_gtk_files(const char* key) {
    const std::string answer = in_gtk_file(0, key);
    return answer.empty() ? in_gtk_file(1, key) : answer;
}

std::string DesktopSettings::in_kde_file(const char* group, const char* key) {
    files::KeyFileOwner& file = sources_->kde;
    if (!file) file = parsed(without_marks(settings_text(kde_file)));
    return files::taken_text(g_key_file_get_string(file.get(), group, key, nullptr));
}

std::string DesktopSettings::in_database(const char* key) {
    return files::text_in_settings_database(config_file(database_file),
                                            std::string("/org/gnome/desktop/") + key);
}

const PortalSettings& DesktopSettings::portal() {
    if (!sources_->portal) sources_->portal = portal_settings();
    return *sources_->portal;
}

// Whether the desktop names a theme or colours, whatever they are.
bool DesktopSettings::names_theme() {
    return !first_answer({"Net/ThemeName", "gtk-theme-name", "General", "ColorScheme", nullptr})
                .empty();
}

std::string DesktopSettings::first_answer(const Places& places) {
    std::string answer;
    if (places.shared) answer = shared(places.shared);
    if (answer.empty() && places.gtk_key) answer = in_gtk_files(places.gtk_key);
    if (answer.empty() && places.kde_key) answer = in_kde_file(places.kde_group, places.kde_key);
    if (answer.empty() && places.database_key) answer = in_database(places.database_key);
    return answer;
}

double DesktopSettings::first_number(const Places& places) {
    const double number = strtod(first_answer(places).c_str(), nullptr);
    return std::isfinite(number) && number > 0 ? number : 0;
}

bool DesktopSettings::prefers_dark() {
    if (const char* theme = getenv("GTK_THEME"); theme && *theme) return names_dark(theme);
    const std::string theme = shared("Net/ThemeName");
    if (!theme.empty() && names_dark(theme)) return true;
    for (const int file : {0, 1}) {
        if (theme.empty() && names_dark(in_gtk_file(file, "gtk-theme-name"))) return true;
        if (is_true(in_gtk_file(file, "gtk-application-prefer-dark-theme"))) return true;
    }
    if (names_dark(in_kde_file("General", "ColorScheme"))) return true;
    const std::string wanted = in_database("interface/color-scheme");
    if (!wanted.empty() || names_theme()) return wanted == "prefer-dark";
    return portal().prefers_dark;
}

bool DesktopSettings::wants_high_contrast() {
    if (const char* theme = getenv("GTK_THEME"); theme && *theme) {
        return names(theme, "highcontrast");
    }
    if (names(first_answer({"Net/ThemeName", "gtk-theme-name", nullptr, nullptr, nullptr}),
              "highcontrast") ||
        names(in_kde_file("General", "ColorScheme"), "highcontrast")) {
        return true;
    }
    const std::string wanted = in_database("a11y/interface/high-contrast");
    if (!wanted.empty() || names_theme()) return is_true(wanted);
    return portal().wants_contrast;
}

std::string DesktopSettings::font() {
    return first_answer(
        {"Gtk/FontName", "gtk-font-name", "General", "font", "interface/font-name"});
}

std::string DesktopSettings::font_family() {
    const std::string family = family_of(font());
    return family.empty() ? "system-ui, sans-serif" : family;
}

double DesktopSettings::font_size() {
    const double points = size_of(font());
    return points >= 1 && points <= 200 ? points * usual_dpi / points_an_inch : 0;
}

std::string DesktopSettings::icon_theme() {
    return first_answer(
        {"Net/IconThemeName", "gtk-icon-theme-name", "Icons", "Theme", "interface/icon-theme"});
}

std::optional<DesktopSettings::Accent> DesktopSettings::accent() {
    const std::string kde = in_kde_file("General", "AccentColor");
    unsigned red, green, blue;
    // NOLINTNEXTLINE(cert-err34-c): three digits are never too large a number
    if (sscanf(kde.c_str(), "%3u,%3u,%3u", &red, &green, &blue) == 3 && red < 256 && green < 256 &&
        blue < 256) {
        return Accent{red / 255.0, green / 255.0, blue / 255.0};
    }
    const std::string name = in_database("interface/accent-color");
    const auto found = std::find_if(std::begin(named_accents), std::end(named_accents),
                                    [&](const NamedAccent& each) { return name == each.name; });
    if (found == std::end(named_accents)) return {};
    return found->color;
}

bool DesktopSettings::animates() {
    const std::string wanted = first_answer({"Gtk/EnableAnimations", "gtk-enable-animations",
                                             nullptr, nullptr, "interface/enable-animations"});
    const std::string duration = in_kde_file("KDE", "AnimationDurationFactor");
    const bool is_off = wanted == "0" || wanted == "false";
    return !is_off && (duration.empty() || strtod(duration.c_str(), nullptr) > 0);
}

double DesktopSettings::drag_distance() {
    return first_number({"Net/DndDragThreshold", "gtk-dnd-drag-threshold", "KDE", "StartDragDist",
                         "peripherals/mouse/drag-threshold"});
}

double DesktopSettings::double_click_interval() {
    return first_number({"Net/DoubleClickTime", "gtk-double-click-time", "KDE",
                         "DoubleClickInterval", "peripherals/mouse/double-click"}) /
           1000;
}

double DesktopSettings::scale(const char* server_resources) {
    if (const char* set = getenv("GDK_SCALE"); set && strtod(set, nullptr) >= 1) {
        return clamped_scale(strtod(set, nullptr));
    }
    // The resolution that XFCE and GNOME share includes the factor by which windows are enlarged.
    const double factor = strtod(shared("Gdk/WindowScalingFactor").c_str(), nullptr);
    const double dpi = first_number({"Xft/DPI", "gtk-xft-dpi", nullptr, nullptr, nullptr});
    if (dpi > 0 || factor > 1) return clamped_scale(std::max(dpi / dpi_unit / usual_dpi, factor));
    const char* found = server_resources ? strstr(server_resources, "Xft.dpi:") : nullptr;
    if (found) return clamped_scale(strtod(found + strlen("Xft.dpi:"), nullptr) / usual_dpi);
    return clamped_scale(strtod(in_kde_file("KScreen", "ScaleFactor").c_str(), nullptr));
}
