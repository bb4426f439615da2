#include "settings/settings_table.h"

#include <host/text.h>

#include <glib.h>
#include <limits.h>
#include <strings.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "command/similar_words.h"
#include "file_steps/visible_text.h"
#include "finderkit/asked_settings.h"
#include "finderkit/preview_placement.h"

using operations::in_quotes;

namespace {

constexpr int32_t any_least = INT32_MIN;
constexpr int32_t any_most = INT32_MAX;
constexpr SettingType flag = SettingType::flag;
constexpr SettingType integer = SettingType::integer;

const std::vector<Setting> settings = {
    {"delvio_is_on", flag, 1, 0, 1,
     to_translate("0 leaves every contextual menu as the host made it")},
    {"folders", SettingType::paths, 0, 0, 0,
     to_translate("folders always shown in the menu, - for a separator")},
    {"custom_folder_order", integer, 1, 0, 2,
     to_translate("where these folders stand: 1 above the selection, 0 below it, 2 not at all")},
    {"rootMenuCollapseThreshold", integer, 10, 1, any_most,
     to_translate("more selected items than this go into a submenu of their own")},
    {"only_folders_in_main_menu", flag, 0, 0, 1,
     to_translate("1 lists only folders at the top of the menu")},
    {"finderInSeparateSubmenu", flag, 0, 0, 1,
     to_translate("1 puts the host's own items into a submenu")},
    {"sort_order", integer, 0, 0, 2,
     to_translate(
         "0 by kind with separators, 1 one alphabetical list, 2 by kind without separators")},
    {"intra_sort_order", integer, 0, 0, 3, to_translate("which order the kinds come in")},
    {sort_by_language_setting, flag, 0, 0, 1,
     to_translate("1 sorts names as the user's language does, 0 by their bytes")},
    {"show_hidden_files", integer, 0, 0, 3,
     to_translate("0 none, 1 names that begin with a dot, 2 invisible items, 3 both")},
    {"show_package_contents", flag, 0, 0, 1,
     to_translate("1 opens applications and packages like folders")},
    {"showLabels", flag, 1, 0, 1, to_translate("show label colours")},
    {escape_closes_setting,
     SettingType::word,
     0,
     0,
     0,
     to_translate(
         "what Escape closes: all, the whole menu; level, one level, and at once again the rest"),
     {"all", "level"}},
    {"font_size", integer, 0, 0, 288,
     to_translate("size of the menu's text in points, 0 for the host's")},
    {"showRecentItems", flag, 1, 0, 1, to_translate("offer the recent documents of applications")},
    {"open_with_path", SettingType::path, 0, 0, 0,
     to_translate(
         "folder whose applications are offered to open a file with; /Applications if not set")},
    {"autoOpenWithMenu", flag, 1, 0, 1,
     to_translate("1 gives a selected file its open-with submenu at once, 0 while Shift is held")},
    {"runningAppsInOpenWithMenu", flag, 1, 0, 1,
     to_translate("list running applications to open a file with")},
    {"hideMoveCopyAlias", flag, 0, 0, 1,
     to_translate("1 offers no moving, copying and linking into folders")},
    {"open_after_file_op", flag, 0, 0, 1,
     to_translate("1 opens the folder after moving or copying into it")},
    {file_manager_setting, flag, 0, 0, 1,
     to_translate("1 has the desktop's file manager move and copy, where one can be asked")},
    {"hoverPreviews", flag, 1, 0, 1, to_translate("show a preview beside the menu")},
    {"hoverPreviewsInterval", integer, 1000, 0, any_most,
     to_translate("how long the pointer rests on an item before its preview, in milliseconds")},
    {preview_beside_menu_setting, flag, 1, 0, 1,
     to_translate("1 shows the preview right beside the menu, 0 in a corner of the screen")},
    {preview_details_setting, flag, 0, 0, 1,
     to_translate("1 writes name, kind, size and date below the preview beside the menu")},
    {"preview_size", integer, 256, 1, 4096, to_translate("side of a preview in pixels")},
    {"control_free_enabled", integer, 0, 0, 2,
     to_translate("1 opens the menu when the button is held down in a window of the file manager, "
                  "2 in any")},
    {"control_free_delay_usec", integer, 500000, 0, any_most,
     to_translate("how long it must be held, in microseconds")},
    {"logLevel", integer, 0, 0, 2,
     to_translate("debug lines: 0 none, 1 to standard output, 2 to Library/Logs/Delvio.log in the "
                  "home folder")},
    {"use_icons", flag, 1, 0, 1, to_translate("stored, but without effect")},
    {"use_generic_icons", flag, 0, 0, 1, to_translate("stored, but without effect")},
    {"placement", integer, 2, any_least, any_most, to_translate("stored, but without effect")},
    {"disable_menu_fade", flag, 0, 0, 1, to_translate("stored, but without effect")},
};

// What the plug-in uses for a number beyond the bounds, which another program may have stored.
constexpr std::pair<std::string_view, int32_t> beyond_bounds[] = {
    {"rootMenuCollapseThreshold", 1}, {"intra_sort_order", 0},
    {"show_hidden_files", 0},         {"sort_order", 2},
    {"custom_folder_order", 2},       {"control_free_enabled", 2},
};

bool parse_number(const std::string& word, int32_t* number) {
    const char* end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, *number);
    return result.ec == std::errc() && result.ptr == end;
}

bool parse_flag(const std::string& word, int32_t* number) {
    static const struct {
        const char* word;
        int32_t number;
    } words[] = {{"0", 0},  {"1", 1},   {"off", 0},   {"on", 1},
                 {"no", 0}, {"yes", 1}, {"false", 0}, {"true", 1}};
    for (const auto& known : words) {
        if (strcasecmp(word.c_str(), known.word) != 0) continue;
        *number = known.number;
        return true;
    }
    return false;
}

bool parse_numeric(const Setting& setting, const std::string& word, int32_t* number) {
    if (setting.type == SettingType::flag) return parse_flag(word, number);
    return parse_number(word, number) && *number >= setting.least && *number <= setting.most;
}

bool is_word_of(const Setting& setting, const std::string& word) {
    return std::find(setting.words.begin(), setting.words.end(), word) != setting.words.end();
}

std::string joined_words(const Setting& setting) {
    std::string text;
    for (const std::string& word : setting.words) text += (text.empty() ? "" : " or ") + word;
    return text;
}

bool is_string_for(const Setting& setting, const std::string& word) {
    if (setting.type == SettingType::word) return is_word_of(setting, word);
    if (!g_utf8_validate(word.data(), static_cast<gssize>(word.size()), nullptr)) return false;
    if (setting.type == SettingType::paths && word == "-") return true;
    return !word.empty() && word[0] == '/';
}

}  // namespace

const std::vector<Setting>& settings_table() { return settings; }

const Setting* find_setting(std::string_view key) {
    for (const Setting& setting : settings) {
        if (key == setting.key) return &setting;
    }
    return nullptr;
}

std::string unknown_setting(std::string_view key) {
    std::vector<std::string> keys;
    for (const Setting& setting : settings) keys.push_back(setting.key);
    const std::vector<std::string> close = similar_words(std::string(key), keys, 1);
    if (close.empty()) {
        return translated("there is no setting %s; see delvio settings list", {in_quotes(key)});
    }
    return translated("there is no setting %s; did you mean %s?", {in_quotes(key), close.front()});
}

bool is_numeric(const Setting& setting) { return setting.type <= SettingType::integer; }

int32_t number_in_effect(const Setting& setting, int32_t stored) {
    if (stored >= setting.least && stored <= setting.most) return stored;
    if (setting.type == SettingType::flag) return 1;
    for (const auto& [key, number] : beyond_bounds) {
        if (key == setting.key) return number;
    }
    return stored;
}

static const char* format_of_bounds(const Setting& setting) {
    if (setting.type == SettingType::path) return to_translate("an absolute path");
    if (setting.type == SettingType::paths) {
        return to_translate("absolute paths, or - for a separator");
    }
    if (setting.type == SettingType::flag) return to_translate("0 or 1");
    if (setting.most == any_most && setting.least == any_least) {
        return to_translate("a whole number");
    }
    return setting.most == any_most ? to_translate("%s or more") : to_translate("%s to %s");
}

std::string describe_bounds(const Setting& setting) {
    if (setting.type == SettingType::word) return joined_words(setting);
    return filled(format_of_bounds(setting),
                  {std::to_string(setting.least), std::to_string(setting.most)});
}

std::string translated_bounds(const Setting& setting) {
    if (setting.type == SettingType::word) return joined_words(setting);
    return translated(format_of_bounds(setting),
                      {std::to_string(setting.least), std::to_string(setting.most)});
}

bool parse_setting(const Setting& setting, const std::vector<std::string>& words,
                   SettingValue* value, std::string* problem) {
    const bool one = words.size() == 1;
    bool good = !words.empty() && (one || setting.type == SettingType::paths);
    if (is_numeric(setting)) {
        good = good && parse_numeric(setting, words[0], &value->number);
    } else {
        good = good && std::all_of(words.begin(), words.end(), [&](const std::string& word) {
                   return is_string_for(setting, word);
               });
        value->strings = words;
    }
    if (good) return true;
    std::string given;
    for (const std::string& word : words) given += (given.empty() ? "" : " ") + word;
    *problem = translated("%s takes %s, not %s",
                          {setting.key, translated_bounds(setting), in_quotes(given)});
    return false;
}
