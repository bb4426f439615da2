// Core Foundation as the Mac has it, as far as the plug-in uses it.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFPreferences.h>
#include <CoreFoundation/CFRunLoop.h>
#include <CoreFoundation/CFString.h>
#include <MacTypes.h>
