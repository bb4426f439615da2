#include "settings/settings_listing.h"

#include <host/text.h>

#include <nlohmann/json.hpp>

#include "command/printable.h"

namespace {

using json = nlohmann::ordered_json;

const char* type_name(SettingType type) {
    static const char* const names[] = {"flag", "integer", "path", "paths", "word"};
    return names[static_cast<int>(type)];
}

std::string default_text(const Setting& setting) {
    if (is_numeric(setting)) return std::to_string(setting.standard);
    if (setting.type == SettingType::word) return setting.words.front();
    return setting.type == SettingType::path ? translated("the installed applications")
                                             : translated("none");
}

std::string joined(const std::vector<std::string>& strings, const char* between) {
    std::string result;
    for (const std::string& string : strings) result += (result.empty() ? "" : between) + string;
    return result;
}

std::string one_line_value(const SettingState& state) {
    if (is_numeric(*state.setting)) return std::to_string(state.value.number);
    return state.value.strings.empty() ? translated("none") : joined(state.value.strings, " ");
}

json value_json(const SettingState& state) {
    if (is_numeric(*state.setting)) return state.value.number;
    if (state.setting->type == SettingType::paths) return state.value.strings;
    return state.value.strings.empty() ? json(nullptr) : json(state.value.strings.front());
}

json default_json(const Setting& setting) {
    if (setting.type == SettingType::word) return setting.words.front();
    return is_numeric(setting) ? json(setting.standard) : json(nullptr);
}

json state_json(const SettingState& state) {
    const Setting& setting = *state.setting;
    return {{"key", setting.key},
            {"type", type_name(setting.type)},
            {"value", value_json(state)},
            {"default", default_json(setting)},
            {"bounds", describe_bounds(setting)},
            {"set", state.stored},
            {"meaning", setting.meaning}};
}

}  // namespace

std::string write_value(const SettingState& state) {
    if (is_numeric(*state.setting)) return std::to_string(state.value.number);
    return joined(state.value.strings, "\n");
}

std::string write_settings(const std::vector<SettingState>& states) {
    std::string text;
    for (const SettingState& state : states) {
        const Setting& setting = *state.setting;
        text += std::string(setting.key) + " = " + printable(one_line_value(state), "?") +
                "\n    " + translated(setting.meaning) + "\n    " +
                translated("takes %s; default %s",
                           {translated_bounds(setting), default_text(setting)}) +
                "\n";
    }
    return text;
}

std::string write_settings_json(const std::vector<SettingState>& states) {
    json list = json::array();
    for (const SettingState& state : states) list.push_back(state_json(state));
    return printable_json(list.dump(2, ' ', false, json::error_handler_t::replace)) + "\n";
}
