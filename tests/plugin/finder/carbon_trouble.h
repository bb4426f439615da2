// In front of the platform's Apple Events, aliases and processes: calls that fail.
#pragma once

#include <Carbon/Carbon.h>

#include <functional>
#include <string>

namespace test {

// Told of each call, and of the type, the keyword or the event's id that it is about (0 where it
// has none); what it answers is the call's error. noErr, or no function, lets the call happen.
using CarbonTrouble = std::function<OSErr(const std::string& function, FourCharCode about)>;

extern CarbonTrouble carbon_trouble;

// Every call of one function fails, or just those about one thing.
CarbonTrouble failing(const std::string& function, OSErr error, FourCharCode about = 0);

}  // namespace test
