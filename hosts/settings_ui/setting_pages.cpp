#include "settings_ui/setting_pages.h"

#include <host/text.h>

#include <map>

std::string label_of(const Setting& setting) {
    return setting.shown.label ? translated(setting.shown.label) : setting.key;
}

std::string reason_of(const Setting& setting) {
    return translated(setting.shown.reason ? setting.shown.reason : setting.meaning);
}

double height_of(const Setting& setting) {
    if (setting.type == SettingType::paths) return 282;
    if (setting.type == SettingType::path) return 92;
    if (setting.type == SettingType::flag) return 54;
    return choices_of(setting).empty() ? 58 : 84;
}

namespace {

SettingPage page_of_managers() { return {translated("File managers"), {}, true}; }

}  // namespace

std::vector<SettingPage> setting_pages(double height) {
    std::map<SettingGroup, std::vector<const Setting*>> groups;
    for (const Setting& setting : settings_table()) {
        if (setting.shown.group == SettingGroup::without_effect) continue;
        groups[setting.shown.group].push_back(&setting);
    }
    std::vector<SettingPage> pages;
    for (const auto& [group, settings] : groups) {
        const std::string title = translated(title_of(group));
        pages.push_back({title, {}, false});
        double used = 0;
        for (const Setting* setting : settings) {
            used += height_of(*setting);
            if (used > height && !pages.back().settings.empty()) {
                pages.push_back({translated("%s, more", {title}), {}, false});
                used = height_of(*setting);
            }
            pages.back().settings.push_back(setting);
        }
    }
    pages.push_back(page_of_managers());
    return pages;
}
