// How settings and their values are printed.
#pragma once

#include <string>
#include <vector>

#include "settings/settings_table.h"

struct SettingState {
    const Setting* setting;
    SettingValue value;   // in effect
    bool stored = false;  // and not the default
};

// The value alone: a number, or the strings, one per line; empty for no string.
std::string write_value(const SettingState& state);
// One paragraph for each setting: its key and value, then its default and meaning.
std::string write_settings(const std::vector<SettingState>& states);
// An array of {"key", "type", "value", "default", "bounds", "set", "meaning"}.
std::string write_settings_json(const std::vector<SettingState>& states);
