#include "desktop/icon_theme.h"

#include <host/glib_owners.h>
#include <dirent.h>
#include <glib.h>
#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <deque>
#include <unordered_map>

#include "desktop/desktop_settings.h"
#include "desktop/small_files.h"

namespace {

const size_t largest_index = 1 << 20;
// No icon is larger, and products of two such numbers can be added up.
const int largest_number = 1 << 14;

// The description of a theme.
class Index {
  public:
    explicit Index(const std::string& path) {
        std::string content;
        if (!files::read_small_file(path.c_str(), largest_index, &content)) return;
        keys_.reset(g_key_file_new());
        if (!g_key_file_load_from_data(keys_.get(), content.data(), content.size(), G_KEY_FILE_NONE,
                                       nullptr)) {
            keys_.reset();
        }
    }
    explicit operator bool() const { return keys_ != nullptr; }

    std::string text(const std::string& group, const char* key) const {
        return files::taken_text(g_key_file_get_string(keys_.get(), group.c_str(), key, nullptr));
    }
    int number(const std::string& group, const char* key, int otherwise) const {
        const std::string value = text(group, key);
        int number = otherwise;
        std::from_chars(value.data(), value.data() + value.size(), number);
        return std::clamp(number, -largest_number, largest_number);
    }
    std::vector<std::string> list(const std::string& group, const char* key) const {
        const files::TextsOwner parts(g_strsplit_set(text(group, key).c_str(), ",;", -1));
        std::vector<std::string> result;
        for (char** part = parts.get(); *part; part++) {
            if (*g_strstrip(*part)) result.push_back(*part);
        }
        return result;
    }

  private:
    files::KeyFileOwner keys_;
};

// A folder of icons of one size, or of a span of sizes. Sizes are in pixels.
struct ThemeFolder {
    std::string path;
    int smallest, largest;
};

int distance(const ThemeFolder& folder, int pixels) {
    return std::max({folder.smallest - pixels, pixels - folder.largest, 0});
}

struct OneTheme {
    std::vector<ThemeFolder> folders;
    // Name of an icon to its files, each with the folder that it lies in.
    std::unordered_map<std::string, std::vector<std::pair<unsigned, std::string>>> icons;
};

std::vector<std::string> base_folders() {
    std::vector<std::string> result{std::string(g_get_home_dir()) + "/.icons",
                                    std::string(g_get_user_data_dir()) + "/icons"};
    for (const char* const* i = g_get_system_data_dirs(); *i; i++) {
        result.push_back(std::string(*i) + "/icons");
    }
    return result;
}

void list_icons(OneTheme& theme, unsigned folder) {
    DIR* open = opendir(theme.folders[folder].path.c_str());
    if (!open) return;
    while (const dirent* entry = readdir(open)) {
        const std::string name = entry->d_name;
        const size_t dot = name.rfind('.');
        if (dot == std::string::npos) continue;
        const std::string ending = name.substr(dot);
        if (ending != ".png" && ending != ".svg") continue;
        theme.icons[name.substr(0, dot)].emplace_back(folder, name);
    }
    closedir(open);
}

// Whether a file's icon can come from this context. The other contexts are large and never asked
// for.
bool is_wanted(const std::string& context) {
    static const char* const wanted[] = {"MimeTypes", "Places", "Devices", "Applications",
                                         "Emblems",   "Legacy", ""};
    return std::any_of(std::begin(wanted), std::end(wanted),
                       [&](const char* name) { return context == name; });
}

void add_folder(OneTheme& theme, const Index& index, const std::string& root,
                const std::string& name) {
    if (!is_wanted(index.text(name, "Context"))) return;
    const int size = index.number(name, "Size", 0), scale = index.number(name, "Scale", 1);
    const std::string type = index.text(name, "Type");
    ThemeFolder folder{root + "/" + name, size * scale, size * scale};
    if (type == "Scalable") {
        folder.smallest = index.number(name, "MinSize", size) * scale;
        folder.largest = index.number(name, "MaxSize", size) * scale;
    } else if (type != "Fixed") {
        const int threshold = index.number(name, "Threshold", 2);
        folder.smallest -= threshold * scale;
        folder.largest += threshold * scale;
    }
    theme.folders.push_back(folder);
    list_icons(theme, theme.folders.size() - 1);
}

// Adds the theme, whose parts may lie in several base folders, and returns what it inherits from.
std::vector<std::string> load_theme(OneTheme& theme, const std::string& name) {
    std::vector<std::string> parents;
    std::unique_ptr<Index> index;
    for (const std::string& base : base_folders()) {
        auto found = std::make_unique<Index>(base + "/" + name + "/index.theme");
        if (!*found) continue;
        index = std::move(found);
        parents = index->list("Icon Theme", "Inherits");
        break;
    }
    if (!index) return parents;
    for (const std::string& base : base_folders()) {
        if (access((base + "/" + name).c_str(), X_OK) != 0) continue;
        for (const char* key : {"Directories", "ScaledDirectories"}) {
            for (const std::string& folder : index->list("Icon Theme", key)) {
                add_folder(theme, *index, base + "/" + name, folder);
            }
        }
    }
    return parents;
}

// Pictures that belong to no theme. Each has whatever size it has.
OneTheme icons_without_theme() {
    OneTheme theme;
    std::vector<std::string> folders = base_folders();
    for (const char* const* i = g_get_system_data_dirs(); *i; i++) {
        folders.push_back(std::string(*i) + "/pixmaps");
    }
    for (const std::string& folder : folders) {
        theme.folders.push_back({folder, 0, INT_MAX});
        list_icons(theme, theme.folders.size() - 1);
    }
    return theme;
}

std::string name_or_usual(const std::string& name) { return name.empty() ? "Adwaita" : name; }

std::string best_file(const OneTheme& theme, const std::string& name, int pixels) {
    const auto found = theme.icons.find(name);
    if (found == theme.icons.end()) return "";
    const auto best = std::min_element(found->second.begin(), found->second.end(),
                                       [&](const auto& a, const auto& b) {
                                           return distance(theme.folders[a.first], pixels) <
                                                  distance(theme.folders[b.first], pixels);
                                       });
    return theme.folders[best->first].path + "/" + best->second;
}

}  // namespace

// A theme is read when an icon is looked for that the themes before it do not have.
struct IconTheme {
    explicit IconTheme(const std::string& name) : names{name_or_usual(name)} {}

    std::vector<std::string> names;
    std::deque<OneTheme> chain;  // of the first names; the last has no name
    bool is_whole = false;
};

namespace {

unsigned changes;

// Reads the next theme. The themes that it inherits from come next; those that hold for all come
// last.
void read_next(IconTheme& theme) {
    const size_t index = theme.chain.size();
    std::vector<std::string>& names = theme.names;
    if (index == names.size()) {
        theme.is_whole = true;
        theme.chain.push_back(icons_without_theme());
        return;
    }
    const auto add = [&names](const std::string& name) {
        if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    };
    theme.chain.emplace_back();
    for (const std::string& parent : load_theme(theme.chain.back(), names[index])) add(parent);
    if (index + 1 < names.size()) return;
    add("Adwaita");
    add("hicolor");
}

}  // namespace

IconTheme& user_icon_theme() {
    static auto& theme = *new IconTheme(DesktopSettings().icon_theme());
    return theme;
}

void use_icon_theme(const std::string& name) {
    IconTheme& theme = user_icon_theme();
    if (theme.names[0] == name_or_usual(name)) return;
    theme = IconTheme(name);
    changes++;
}

unsigned icon_theme_changes() { return changes; }

std::string find_icon(IconTheme& theme, const std::vector<std::string>& names, int pixels) {
    for (const std::string& name : names) {
        for (size_t i = 0; i < theme.chain.size() || !theme.is_whole; i++) {
            if (i == theme.chain.size()) read_next(theme);
            const std::string file = best_file(theme.chain[i], name, pixels);
            if (!file.empty()) return file;
        }
    }
    return "";
}
