// The folder that stands for the Mac's "/Applications": $XDG_DATA_HOME/delvio/Applications, with
// what the user may open files with. Of the desktop's entries that are shown in menus and take
// files it holds copies, for a link would count as a plain file; of GNUstep's ".app" bundles
// folders of links. Main thread.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

// Its path, whether it is there or not.
std::string ApplicationsFolder();

// Brings the folder up to date: a few stats when nothing has changed since the last time, by
// whatever program. False when it cannot be written; what it holds then may be old or missing.
bool UpdateApplicationsFolder();

// Lets the plug-in with these preferences list this folder unless the user has named another one.
void OfferApplicationsFolder(CFStringRef domain);
