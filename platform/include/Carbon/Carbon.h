// Carbon, as far as Delvio uses it, over Linux files and processes.
#pragma once

#include <Carbon/Appearance.h>
#include <Carbon/AppleEvents.h>
#include <Carbon/Dialogs.h>
#include <Carbon/Files.h>
#include <Carbon/LaunchServices.h>
#include <Carbon/MacMemory.h>
#include <Carbon/Processes.h>
#include <Carbon/UnicodeUtilities.h>
