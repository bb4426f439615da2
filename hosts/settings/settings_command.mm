#include "settings/settings_command.h"

#include <host/text.h>

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "file_steps/visible_text.h"
#include "settings/list_edits.h"
#include "settings/setting_store.h"
#include "settings/settings_listing.h"

using operations::in_quotes;

namespace {

int misused(const std::string& problem) {
    complain_about_usage(problem);
    return exit_misused;
}

// Null, after an error message, for an unknown key.
const Setting* known(const std::string& key) {
    const Setting* setting = find_setting(key);
    if (!setting) complain_about_usage(unknown_setting(key));
    return setting;
}

int save() {
    if (save_settings()) return exit_done;
    complain_about_usage(saving_problem());
    return exit_failed;
}

int list(const SettingsRequest& request) {
    std::vector<SettingState> states;
    for (const Setting& setting : settings_table()) states.push_back(read_setting(setting));
    fputs((request.json ? write_settings_json(states) : write_settings(states)).c_str(), stdout);
    return exit_done;
}

int get(const SettingsRequest& request) {
    const Setting* setting = known(request.words[0]);
    if (!setting) return exit_misused;
    const std::string text = write_value(read_setting(*setting));
    if (!text.empty()) puts(text.c_str());
    return exit_done;
}

void tell_missing(const std::vector<std::string>& missing) {
    for (const std::string& folder : missing) {
        complain_about_usage(translated(
            "there is no folder %s; menus leave it out until there is one", {in_quotes(folder)}));
    }
}

// The paths among the entries that lead nowhere.
std::vector<std::string> missing_paths(const Setting& setting,
                                       const std::vector<std::string>& entries) {
    std::vector<std::string> missing;
    const bool has_paths = setting.type == SettingType::path || setting.type == SettingType::paths;
    if (!has_paths) return missing;
    for (const std::string& entry : entries) {
        struct stat ignored;
        const bool is_there = entry == separator_entry || stat(entry.c_str(), &ignored) == 0;
        if (!is_there) missing.push_back(entry);
    }
    return missing;
}

int set(const SettingsRequest& request) {
    const Setting* setting = known(request.words[0]);
    if (!setting) return exit_misused;
    SettingValue value;
    std::string problem;
    const std::vector<std::string> words(request.words.begin() + 1, request.words.end());
    if (!parse_setting(*setting, words, &value, &problem)) return misused(problem);
    store_setting(*setting, value);
    const int status = save();
    if (status == exit_done) tell_missing(missing_paths(*setting, words));
    return status;
}

// Names in the shell's folder become whole paths.
std::string whole_entry(const std::string& word) {
    if (word.empty() || word == separator_entry || word[0] == '/') return word;
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(word, error);
    return error ? word : path.lexically_normal().string();
}

// The list and its new or leaving entries. Null, after an error message, for a setting that is no
// list, and for words that are no entries.
const Setting* read_entries(const SettingsRequest& request, SettingValue* entries) {
    const Setting* setting = known(request.words[0]);
    if (!setting) return nullptr;
    if (setting->type != SettingType::paths) {
        complain_about_usage(
            translated("%s is no list; use delvio settings set", {request.words[0]}));
        return nullptr;
    }
    std::vector<std::string> words;
    for (size_t i = 1; i < request.words.size(); i++) {
        words.push_back(whole_entry(request.words[i]));
    }
    std::string problem;
    if (parse_setting(*setting, words, entries, &problem)) return setting;
    complain_about_usage(problem);
    return nullptr;
}

int change_list(const Setting& setting, const std::vector<std::string>& list) {
    store_setting(setting, {0, list});
    return save();
}

// Adds all of them or none. An entry that is there already stays where it is.
int add(const SettingsRequest& request) {
    SettingValue entries;
    const Setting* setting = read_entries(request, &entries);
    if (!setting) return exit_misused;
    const std::vector<std::string> missing = missing_paths(*setting, entries.strings);
    for (const std::string& folder : missing) {
        complain_about_usage(
            translated("there is no folder %s; nothing was added", {in_quotes(folder)}));
    }
    if (!missing.empty()) return exit_failed;
    std::vector<std::string> list = read_setting(*setting).value.strings;
    for (const std::string& entry : entries.strings) add_entry(&list, entry);
    return change_list(*setting, list);
}

int remove(const SettingsRequest& request) {
    SettingValue entries;
    const Setting* setting = read_entries(request, &entries);
    if (!setting) return exit_misused;
    std::vector<std::string> list = read_setting(*setting).value.strings;
    for (const std::string& entry : entries.strings) {
        if (remove_entry(&list, entry)) continue;
        complain_about_usage(translated("%s does not have %s; nothing was removed",
                                        {setting->key, in_quotes(entry)}));
        return exit_failed;
    }
    return change_list(*setting, list);
}

int reset(const SettingsRequest& request) {
    for (const std::string& key : request.words) {
        if (!known(key)) return exit_misused;
    }
    for (const Setting& setting : settings_table()) {
        const auto& words = request.words;
        const bool named = std::find(words.begin(), words.end(), setting.key) != words.end();
        if (request.all || named) reset_setting(setting);
    }
    return save();
}

}  // namespace

int run_settings_command(const SettingsRequest& request) {
    refresh_settings();
    switch (request.verb) {
        case SettingsVerb::window:
            break;
        case SettingsVerb::list:
            return list(request);
        case SettingsVerb::get:
            return get(request);
        case SettingsVerb::set:
            return set(request);
        case SettingsVerb::add:
            return add(request);
        case SettingsVerb::remove:
            return remove(request);
        case SettingsVerb::reset:
            return reset(request);
    }
    return exit_failed;
}
