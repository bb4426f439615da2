#include "settings/setting_store.h"

#include <host/text.h>
#include <unistd.h>

#include "file_steps/visible_text.h"
#include "finderkit/applications_folder.h"
#include "finderkit/settings_file.h"
#include "settings/forced_settings.h"

using operations::in_quotes;

namespace {

CFStringRef cf_string(const char* ascii) {
    return reinterpret_cast<CFStringRef>([NSString stringWithUTF8String:ascii]);
}

using Strings = std::vector<std::string>;

std::string utf8(NSString* string) { return [string UTF8String] ?: ""; }

Strings strings_in(id object) {
    Strings strings;
    if ([object isKindOfClass:[NSString class]]) object = [NSArray arrayWithObject:object];
    if (![object isKindOfClass:[NSArray class]]) return strings;
    for (id element in static_cast<NSArray*>(object)) {
        if ([element isKindOfClass:[NSString class]]) strings.push_back(utf8(element));
    }
    return strings;
}

void read_number(SettingState* state) {
    Boolean valid = false;
    const CFIndex number = CFPreferencesGetAppIntegerValue(cf_string(state->setting->key),
                                                           cf_string(settings_domain), &valid);
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
    const void* stored =
        CFPreferencesCopyAppValue(cf_string(state->setting->key), cf_string(settings_domain));
    id object = [static_cast<id>(const_cast<void*>(stored)) autorelease];
    const bool list = state->setting->type == SettingType::paths;
    // NOLINTNEXTLINE(bugprone-branch-clone): the two classes differ.
    state->stored = [object isKindOfClass:list ? [NSArray class] : [NSString class]];
    if (state->stored) state->value.strings = strings_in(object);
    const Setting& setting = *state->setting;
    if (setting.type == SettingType::word) {
        std::string problem;
        SettingValue value;
        state->stored = parse_setting(setting, state->value.strings, &value, &problem);
        state->value.strings = {state->stored ? value.strings.front() : setting.words.front()};
    }
    const bool open_with = std::string_view(state->setting->key) == "open_with_path";
    if (!open_with) return;
    // The plug-in stores the settings that it has read, this one among them.
    const Strings standard = {installed_applications()};
    state->stored = state->stored && state->value.strings != standard;
    if (!state->stored) state->value.strings = standard;
}

void store(const Setting& setting, id value) {
    CFPreferencesSetAppValue(cf_string(setting.key), value, cf_string(settings_domain));
}

}  // namespace

void refresh_settings() { CFPreferencesAppSynchronize(cf_string(settings_domain)); }

SettingState read_setting(const Setting& setting) {
    SettingState state{&setting, {}, false};
    is_numeric(setting) ? read_number(&state) : read_strings(&state);
    return state;
}

void store_setting(const Setting& setting, const SettingValue& value) {
    const bool is_empty = !is_numeric(setting) && value.strings.empty();
    store(setting, is_empty ? nil : object_of(setting, value));
}

void reset_setting(const Setting& setting) { store(setting, nil); }

bool save_settings() { return CFPreferencesAppSynchronize(cf_string(settings_domain)); }

std::string saving_problem() {
    return translated(
        "cannot save the settings in the folder %s; check that you may write there and that its "
        "disk has room, and try again",
        {in_quotes(settings_folder())});
}
