// The settings as they are stored. Main thread.
#pragma once

#include "settings/settings_table.h"

struct SettingState {
    const Setting* setting;
    SettingValue value;   // in effect
    bool stored = false;  // and not the default
};

// Reads again what other programs have stored.
void refresh_settings();
SettingState read_setting(const Setting& setting);
// These take effect for other programs with save_settings(). An empty list is no value.
void store_setting(const Setting& setting, const SettingValue& value);
void reset_setting(const Setting& setting);
// False when the settings cannot be saved.
bool save_settings();
// What to tell the user when the settings cannot be saved: the folder, and what to check. One line.
std::string saving_problem();
