// Replaces the platform's calls for Apple Events, aliases and processes with calls that can fail.
#pragma once

#include <Carbon/Carbon.h>

#include <functional>
#include <string>

namespace test {

// Called for each call, with the type, the keyword or the event's id that the call is about (0
// where it has none). The result is the call's error. With noErr, or without a function, the call
// happens.
using CarbonTrouble = std::function<OSErr(const std::string& function, FourCharCode about)>;

extern CarbonTrouble carbon_trouble;

// Makes every call of one function fail, or only the calls about one thing.
CarbonTrouble failing(const std::string& function, OSErr error, FourCharCode about = 0);

}  // namespace test
