// The folder that stands for the Mac's "/Applications": a folder of links, one to each application
// that the user may open files with, in $XDG_CACHE_HOME/delvio/applications. It is this program's
// own and made anew as a whole when it is stale; nothing that somebody else has put there is ever
// removed. Main thread.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

// Its path, whether it is there or not.
std::string ApplicationsFolder();

// Brings the folder up to date: some stats when nothing has changed since the last time, by
// whatever program. False when it cannot be made; what it holds then may be old or missing.
bool UpdateApplicationsFolder();

// Lets the plug-in with these preferences list this folder unless the user has named another one.
void OfferApplicationsFolder(CFStringRef domain);

// Before a menu: brings the folder up to date where it is not watched anyway, and believes the
// applications of the one that the user has named in those preferences.
void PrepareApplications();
