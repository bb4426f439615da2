// All settings of Delvio: name, type, default, bounds and meaning; and the parsing of values.
#pragma once

#include <stdint.h>

#include <string>
#include <string_view>
#include <vector>

// A setting of the command, not of the plug-in.
inline constexpr const char* file_manager_setting = "operations_by_file_manager";

// Whether a notice after each operation offers to undo it.
inline constexpr const char* notices_setting = "notices";

enum class SettingType {
    flag,     // 0 or 1
    integer,  // signed, 32 bits
    path,     // an absolute path, or nothing
    paths,    // absolute paths; "-" stands for a separator
    word,     // one of a few words
};

// The pages of the settings window, in their order.
enum class SettingGroup {
    menu,
    folders_shown,
    own_folders,
    open_with,
    operations,
    previews,
    pointer,
    messages,
    without_effect,
};

// How the settings window shows a setting. Texts are in English.
struct SettingShown {
    SettingGroup group = SettingGroup::menu;
    const char* label = nullptr;   // the key, if it has none
    const char* reason = nullptr;  // one line: why one would change it; the meaning, if it has none
    const char* choices = nullptr;  // what its numbers or words mean, with | between them
};

struct Setting {
    const char* key;
    SettingType type;
    int32_t standard;  // the default of flags and integers; other types have none
    int32_t least;     // bounds of flags and integers
    int32_t most;
    const char* meaning;  // in English; translated() where people read it
    SettingShown shown = {};
    std::vector<std::string> words = {};  // of a word; the first is the default
};

// A value of a setting: the number, or the strings (a single one for a path or a word).
struct SettingValue {
    int32_t number = 0;
    std::vector<std::string> strings;
};

const std::vector<Setting>& settings_table();
// The title of a group's page, in English.
const char* title_of(SettingGroup group);
// What the numbers or words of a setting mean, from the first on, in the user's language; empty for
// settings that are not chosen from a few.
std::vector<std::string> choices_of(const Setting& setting);
// Which of them the value is, and the word that sets one of them.
int choice_of(const Setting& setting, const SettingValue& value);
std::string word_of_choice(const Setting& setting, int choice);
// Null for an unknown key.
const Setting* find_setting(std::string_view key);
// One line that says that the key is unknown and names the nearest known one.
std::string unknown_setting(std::string_view key);

bool is_numeric(const Setting& setting);
// The number that takes effect for a stored one: the same within its bounds, else what the plug-in
// uses in its place.
int32_t number_in_effect(const Setting& setting, int32_t stored);
// "0 to 3", "1 or more", "an absolute path", ...
std::string describe_bounds(const Setting& setting);
// The same in the user's language.
std::string translated_bounds(const Setting& setting);
// Parses the words of a value. False when they are not a valid value; then *problem says, in one
// line, what the setting takes.
bool parse_setting(const Setting& setting, const std::vector<std::string>& words,
                   SettingValue* value, std::string* problem);
