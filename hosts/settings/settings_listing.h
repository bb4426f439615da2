// How settings and their values are printed.
#pragma once

#include <string>
#include <vector>

#include "settings/setting_store.h"

// The value alone: a number, or the strings, one per line; empty for no string.
std::string write_value(const SettingState& state);
// One paragraph for each setting: its key and value, then its default and meaning.
std::string write_settings(const std::vector<SettingState>& states);
// An array of {"key", "type", "value", "default", "bounds", "set", "meaning"}.
std::string write_settings_json(const std::vector<SettingState>& states);
