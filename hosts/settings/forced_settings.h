// Settings in the preferences domain, as Foundation objects. Main thread.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <Foundation/Foundation.h>

#include <string>
#include <utility>
#include <vector>

#include "settings/settings_table.h"

// The value as the object that is stored: a number, a string or an array of strings. Autoreleased.
id object_of(const Setting& setting, const SettingValue& value);

// Makes each KEY=VALUE pair hold for this run alone. A repeated key replaces the value, or adds to
// it if it is a list. False when a pair is refused; then *problem says why, in one line.
bool force_settings(const std::vector<std::pair<std::string, std::string>>& pairs,
                    std::string* problem);
// Ends that for these keys.
void free_settings(const std::vector<std::pair<std::string, std::string>>& pairs);
