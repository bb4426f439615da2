// Carbon as the Mac has it, as far as the plug-in uses it.
#pragma once

#include <Carbon/AppleEvents.h>
#include <Carbon/Dialogs.h>
#include <Carbon/Files.h>
#include <Carbon/LaunchServices.h>
#include <Carbon/Processes.h>
#include <Carbon/UnicodeUtilities.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
