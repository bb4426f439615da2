#include "settings/settings_table.h"

#include <host/text.h>

#include <glib.h>
#include <limits.h>
#include <strings.h>

#include <algorithm>
#include <charconv>
#include <sstream>
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

// clang-format off
const std::vector<Setting> settings = {
    {"delvio_is_on", flag, 1, 0, 1,
     to_translate("0 leaves every contextual menu as the host made it"),
     {SettingGroup::menu,
      to_translate("Show Delvio's items in menus"),
      to_translate("Off leaves every menu as the program itself makes it.")}},
    {"folders", SettingType::paths, 0, 0, 0,
     to_translate("folders always shown in the menu, - for a separator"),
     {SettingGroup::own_folders,
      to_translate("Your folders"),
      to_translate("They stand in every menu, to browse and to move files to.")}},
    {"custom_folder_order", integer, 1, 0, 2,
     to_translate("where these folders stand: 1 above the selection, 0 below it, 2 not at all"),
     {SettingGroup::own_folders,
      to_translate("Your folders stand"),
      to_translate("Near the pointer they are reached sooner."),
      to_translate("Below the selection|Above the selection|Not in the menu")}},
    {"rootMenuCollapseThreshold", integer, 10, 1, any_most,
     to_translate("more selected items than this go into a submenu of their own"),
     {SettingGroup::menu,
      to_translate("Selected items side by side"),
      to_translate("More of them go into one submenu, so that the menu stays short.")}},
    {"only_folders_in_main_menu", flag, 0, 0, 1,
     to_translate("1 lists only folders at the top of the menu"),
     {SettingGroup::folders_shown,
      to_translate("List only folders at the top of the menu"),
      to_translate("Files are left out where you only want to get to folders.")}},
    {"finderInSeparateSubmenu", flag, 0, 0, 1,
     to_translate("1 puts the host's own items into a submenu"),
     {SettingGroup::menu,
      to_translate("Put the program's own items into a submenu"),
      to_translate("The menu stays short if you seldom use them.")}},
    {"sort_order", integer, 0, 0, 2,
     to_translate(
         "0 by kind with separators, 1 one alphabetical list, 2 by kind without separators"),
     {SettingGroup::folders_shown,
      to_translate("Sort a folder's items"),
      to_translate("Lines between the kinds make long folders easier to read."),
      to_translate("By kind, with lines between|One alphabetical list|By kind, without lines")}},
    {"intra_sort_order", integer, 0, 0, 3, to_translate("which order the kinds come in"),
     {SettingGroup::folders_shown,
      to_translate("Order of the kinds"),
      to_translate("What you look for most should come first."),
      to_translate("Folders, applications, packages, files|"
                   "Applications, folders, packages, files|"
                   "Packages, files, applications, folders|"
                   "Packages, files, folders, applications")}},
    {sort_by_language_setting, flag, 0, 0, 1,
     to_translate("1 sorts names as the user's language does, 0 by their bytes"),
     {SettingGroup::folders_shown,
      to_translate("Sort names by your language"),
      to_translate("Accented letters stand where you look for them.")}},
    {"show_hidden_files", integer, 0, 0, 3,
     to_translate("0 none, 1 names that begin with a dot, 2 invisible items, 3 both"),
     {SettingGroup::folders_shown,
      to_translate("Hidden files"),
      to_translate("Settings and caches of programs are hidden so that they are not in the way."),
      to_translate("Do not show|Names that begin with a dot|Invisible items|Both")}},
    {"show_package_contents", flag, 0, 0, 1,
     to_translate("1 opens applications and packages like folders"),
     {SettingGroup::folders_shown,
      to_translate("Open applications and packages like folders"),
      to_translate("Their contents are of use to those who make them.")}},
    {"showLabels", flag, 1, 0, 1, to_translate("show label colours"),
     {SettingGroup::menu,
      to_translate("Show label colours"),
      to_translate("A colour is found faster than a name.")}},
    {escape_closes_setting, SettingType::word, 0, 0, 0,
     to_translate(
         "what Escape closes: all, the whole menu; level, one level, and at once again the rest"),
     {SettingGroup::menu,
      to_translate("Escape closes"),
      to_translate("One level takes you back from a folder that you opened by mistake."),
      to_translate("The whole menu|One level, pressed again the rest")},
     {"all", "level"}},
    {"font_size", integer, 0, 0, 288,
     to_translate("size of the menu's text in points, 0 for the host's"),
     {SettingGroup::menu,
      to_translate("Text size"),
      to_translate("In points; 0 takes the size that the desktop has set.")}},
    {"showRecentItems", flag, 1, 0, 1, to_translate("offer the recent documents of applications"),
     {SettingGroup::open_with,
      to_translate("Offer recent documents of applications"),
      to_translate("The file that you had open yesterday is one click away.")}},
    {"open_with_path", SettingType::path, 0, 0, 0,
     to_translate(
         "folder whose applications are offered to open a file with; /Applications if not set"),
     {SettingGroup::open_with,
      to_translate("Folder of applications"),
      to_translate("Empty offers the installed applications; a folder of links offers just "
                   "those.")}},
    {"autoOpenWithMenu", flag, 1, 0, 1,
     to_translate("1 gives a selected file its open-with submenu at once, 0 while Shift is held"),
     {SettingGroup::open_with,
      to_translate("Offer applications for a selected file at once"),
      to_translate("Off keeps the submenu for when Shift is held.")}},
    {"runningAppsInOpenWithMenu", flag, 1, 0, 1,
     to_translate("list running applications to open a file with"),
     {SettingGroup::open_with,
      to_translate("List running applications"),
      to_translate("They are often the ones that you want to open a file with.")}},
    {"hideMoveCopyAlias", flag, 0, 0, 1,
     to_translate("1 offers no moving, copying and linking into folders"),
     {SettingGroup::operations,
      to_translate("Offer no moving, copying and linking"),
      to_translate("For menus that only open files.")}},
    {"open_after_file_op", flag, 0, 0, 1,
     to_translate("1 opens the folder after moving or copying into it"),
     {SettingGroup::operations,
      to_translate("Open the folder afterwards"),
      to_translate("You see at once what has arrived there.")}},
    {file_manager_setting, flag, 0, 0, 1,
     to_translate("1 has the desktop's file manager move and copy, where one can be asked"),
     {SettingGroup::operations,
      to_translate("Let the file manager move and copy"),
      to_translate("Its windows and its undo are used, where it can be asked.")}},
    {notices_setting, flag, 1, 0, 1,
     to_translate("show a notice with an Undo button after moving, copying and linking"),
     {SettingGroup::operations,
      to_translate("Offer to undo in a notice"),
      to_translate("After each operation, for the one that went to the wrong folder.")}},
    {"hoverPreviews", flag, 1, 0, 1, to_translate("show a preview beside the menu"),
     {SettingGroup::previews,
      to_translate("Show a preview beside the menu"),
      to_translate("You see a file before you open it.")}},
    {"hoverPreviewsInterval", integer, 1000, 0, any_most,
     to_translate("how long the pointer rests on an item before its preview, in milliseconds"),
     {SettingGroup::previews,
      to_translate("Delay in milliseconds"),
      to_translate("How long the pointer rests on a file before its preview shows.")}},
    {preview_beside_menu_setting, flag, 1, 0, 1,
     to_translate("1 shows the preview right beside the menu, 0 in a corner of the screen"),
     {SettingGroup::previews,
      to_translate("Place it right beside the menu"),
      to_translate("Off shows it in a corner of the screen.")}},
    {preview_details_setting, flag, 0, 0, 1,
     to_translate("1 writes name, kind, size and date below the preview beside the menu"),
     {SettingGroup::previews,
      to_translate("Write what the file is below it"),
      to_translate("Its name, kind, size and date.")}},
    {"preview_size", integer, 256, 1, 4096, to_translate("side of a preview in pixels"),
     {SettingGroup::previews,
      to_translate("Size in pixels"),
      to_translate("The side of the picture; larger ones take longer to make.")}},
    {"control_free_enabled", integer, 0, 0, 2,
     to_translate("1 opens the menu when the button is held down in a window of the file manager, "
                  "2 in any"),
     {SettingGroup::pointer,
      to_translate("Hold the left button to open the menu"),
      to_translate("For a mouse or a pad with one button."),
      to_translate("Off|In the file manager|In every program")}},
    {"control_free_delay_usec", integer, 500000, 0, any_most,
     to_translate("how long it must be held, in microseconds"),
     {SettingGroup::pointer,
      to_translate("Hold for, in microseconds"),
      to_translate("A longer time avoids menus that you did not ask for; 500000 is half a "
                   "second.")}},
    {"logLevel", integer, 0, 0, 2,
     to_translate("debug lines: 0 none, 1 to standard output, 2 to Library/Logs/Delvio.log in the "
                  "home folder"),
     {SettingGroup::messages,
      to_translate("Messages for troubleshooting"),
      to_translate("Say what Delvio does, if it does something else than you expect."),
      to_translate("None|To standard output|To Library/Logs/Delvio.log")}},
    {"use_icons", flag, 1, 0, 1, to_translate("stored, but without effect"),
     {SettingGroup::without_effect}},
    {"use_generic_icons", flag, 0, 0, 1, to_translate("stored, but without effect"),
     {SettingGroup::without_effect}},
    {"placement", integer, 2, any_least, any_most, to_translate("stored, but without effect"),
     {SettingGroup::without_effect}},
    {"disable_menu_fade", flag, 0, 0, 1, to_translate("stored, but without effect"),
     {SettingGroup::without_effect}},
};
// clang-format on

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

const char* title_of(SettingGroup group) {
    static const char* const titles[] = {to_translate("Menu"),
                                         to_translate("Folders shown"),
                                         to_translate("Your folders"),
                                         to_translate("Open with"),
                                         to_translate("Moving and copying"),
                                         to_translate("Previews"),
                                         to_translate("Pointer"),
                                         to_translate("Messages"),
                                         to_translate("Without effect")};
    return titles[static_cast<size_t>(group)];
}

std::vector<std::string> choices_of(const Setting& setting) {
    std::vector<std::string> choices;
    if (!setting.shown.choices) return setting.words;
    std::stringstream text(translated(setting.shown.choices));
    for (std::string choice; std::getline(text, choice, '|');) choices.push_back(choice);
    return choices;
}

int choice_of(const Setting& setting, const SettingValue& value) {
    if (setting.type != SettingType::word) return value.number - setting.least;
    const auto& words = setting.words;
    const std::string word = value.strings.empty() ? words.front() : value.strings.front();
    const auto found = std::find(words.begin(), words.end(), word);
    return found == words.end() ? 0 : static_cast<int>(found - words.begin());
}

std::string word_of_choice(const Setting& setting, int choice) {
    if (setting.type == SettingType::word) return setting.words[static_cast<size_t>(choice)];
    return std::to_string(setting.least + choice);
}

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
