// The pages of the settings window: one for each group of settings that have an effect, and the one
// of the file managers, which has no setting. Any thread.
#pragma once

#include <string>
#include <vector>

#include "settings/settings_table.h"

struct SettingPage {
    std::string title;
    std::vector<const Setting*> settings;
    bool has_managers = false;
};

// How much room a setting takes in a page, in points.
double height_of(const Setting& setting);

// Settings that do not fit into a page of this height go on in another one.
std::vector<SettingPage> setting_pages(double height);

// What the window shows for a setting; a setting without such texts shows its key and meaning.
std::string label_of(const Setting& setting);
std::string reason_of(const Setting& setting);
