// Settings in the preferences domain, as Foundation's objects. Main thread.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <Foundation/Foundation.h>

#include <string>
#include <utility>
#include <vector>

#include "settings/settings_table.h"

// The value as the object that is stored: a number, a string or an array of strings. Autoreleased.
id ObjectOf(const Setting& setting, const SettingValue& value);

// Lets each KEY=VALUE pair hold for this run alone; the same key again replaces a value, but adds
// to a list. False when one is refused; then *problem says why, in one line.
bool ForceSettings(const std::vector<std::pair<std::string, std::string>>& pairs,
                   std::string* problem);
