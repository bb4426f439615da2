#include "settings/forced_settings.h"

#include <host/forced_preferences.h>

#include <map>

#include "finderkit/settings_file.h"

namespace {

NSString* string_of(const std::string& text) {
    return [NSString stringWithUTF8String:text.c_str()] ?: @"";
}

CFStringRef cf(const char* ascii) {
    return reinterpret_cast<CFStringRef>([NSString stringWithUTF8String:ascii]);
}

using Words = std::map<const Setting*, std::vector<std::string>>;

bool gather(const std::vector<std::pair<std::string, std::string>>& pairs, Words* words,
            std::string* problem) {
    for (const auto& [key, word] : pairs) {
        const Setting* setting = find_setting(key);
        if (!setting) {
            *problem = unknown_setting(key);
            return false;
        }
        std::vector<std::string>& known = (*words)[setting];
        if (setting->type != SettingType::paths) known.clear();
        known.push_back(word);
    }
    return true;
}

}  // namespace

id object_of(const Setting& setting, const SettingValue& value) {
    if (is_numeric(setting)) return [NSNumber numberWithInt:value.number];
    if (setting.type != SettingType::paths) return string_of(value.strings.front());
    NSMutableArray* array = [NSMutableArray array];
    for (const std::string& text : value.strings) [array addObject:string_of(text)];
    return array;
}

bool force_settings(const std::vector<std::pair<std::string, std::string>>& pairs,
                    std::string* problem) {
    Words words;
    if (!gather(pairs, &words, problem)) return false;
    for (const auto& [setting, known] : words) {
        SettingValue value;
        if (!parse_setting(*setting, known, &value, problem)) return false;
        force_preference(cf(setting->key), object_of(*setting, value), cf(settings_domain));
    }
    return true;
}

void free_settings(const std::vector<std::pair<std::string, std::string>>& pairs) {
    for (const auto& [key, word] : pairs) {
        if (find_setting(key)) force_preference(cf(key.c_str()), nullptr, cf(settings_domain));
    }
}
