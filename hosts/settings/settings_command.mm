#include "settings/settings_command.h"

#include <unistd.h>

#include <algorithm>

#include "finderkit/applications_folder.h"
#include "finderkit/settings_file.h"
#include "settings/forced_settings.h"
#include "settings/settings_listing.h"

namespace {

CFStringRef cf(const char* ascii) {
    return reinterpret_cast<CFStringRef>([NSString stringWithUTF8String:ascii]);
}

std::string utf8(NSString* string) { return [string UTF8String] ?: ""; }

std::vector<std::string> strings_in(id object) {
    std::vector<std::string> strings;
    if ([object isKindOfClass:[NSString class]]) object = [NSArray arrayWithObject:object];
    if (![object isKindOfClass:[NSArray class]]) return strings;
    for (id element in static_cast<NSArray*>(object)) {
        if ([element isKindOfClass:[NSString class]]) strings.push_back(utf8(element));
    }
    return strings;
}

void read_number(SettingState* state) {
    Boolean valid = false;
    const CFIndex number =
        CFPreferencesGetAppIntegerValue(cf(state->setting->key), cf(settings_domain), &valid);
    state->stored = valid;
    state->value.number = valid ? number_in_effect(*state->setting, static_cast<int32_t>(number))
                                : state->setting->standard;
}

// The folder whose applications the menus offer when the setting has no value.
std::string installed_applications() {
    const std::string folder = applications_folder();
    return access(folder.c_str(), R_OK) == 0 ? folder : "/Applications";
}

void read_strings(SettingState* state) {
    const void* stored = CFPreferencesCopyAppValue(cf(state->setting->key), cf(settings_domain));
    id object = [static_cast<id>(const_cast<void*>(stored)) autorelease];
    const bool list = state->setting->type == SettingType::paths;
    state->stored = [object isKindOfClass:list ? [NSArray class] : [NSString class]];
    if (state->stored) state->value.strings = strings_in(object);
    const bool open_with = std::string_view(state->setting->key) == "open_with_path";
    if (open_with && !state->stored) state->value.strings = {installed_applications()};
}

SettingState state_of(const Setting& setting) {
    SettingState state{&setting, {}, false};
    is_numeric(setting) ? read_number(&state) : read_strings(&state);
    return state;
}

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
    if (CFPreferencesAppSynchronize(cf(settings_domain))) return exit_done;
    complain_about_usage("cannot save the settings; is the defaults folder writable?");
    return exit_failed;
}

void store(const Setting& setting, id value) {
    CFPreferencesSetAppValue(cf(setting.key), value, cf(settings_domain));
}

int list(const SettingsRequest& request) {
    std::vector<SettingState> states;
    for (const Setting& setting : settings_table()) states.push_back(state_of(setting));
    fputs((request.json ? write_settings_json(states) : write_settings(states)).c_str(), stdout);
    return exit_done;
}

int get(const SettingsRequest& request) {
    const Setting* setting = known(request.words[0]);
    if (!setting) return exit_misused;
    const std::string text = write_value(state_of(*setting));
    if (!text.empty()) puts(text.c_str());
    return exit_done;
}

int set(const SettingsRequest& request) {
    const Setting* setting = known(request.words[0]);
    if (!setting) return exit_misused;
    SettingValue value;
    std::string problem;
    const std::vector<std::string> words(request.words.begin() + 1, request.words.end());
    if (!parse_setting(*setting, words, &value, &problem)) return misused(problem);
    store(*setting, object_of(*setting, value));
    return save();
}

int reset(const SettingsRequest& request) {
    for (const std::string& key : request.words) {
        if (!known(key)) return exit_misused;
    }
    for (const Setting& setting : settings_table()) {
        const auto& words = request.words;
        const bool named = std::find(words.begin(), words.end(), setting.key) != words.end();
        if (request.all || named) store(setting, nil);
    }
    return save();
}

}  // namespace

int run_settings_command(const SettingsRequest& request) {
    CFPreferencesAppSynchronize(cf(settings_domain));
    switch (request.verb) {
        case SettingsVerb::list:
            return list(request);
        case SettingsVerb::get:
            return get(request);
        case SettingsVerb::set:
            return set(request);
        case SettingsVerb::reset:
            return reset(request);
    }
    return exit_failed;
}
