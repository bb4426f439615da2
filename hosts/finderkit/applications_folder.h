// The folder that stands for the Mac's "/Applications": a folder of links in
// $XDG_CACHE_HOME/delvio/applications, one to each application that the user may open files with.
// This program owns it and makes it anew as a whole when it is out of date; files that others put
// there are never removed. Main thread.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

// The folder's path, whether or not the folder exists.
std::string applications_folder();

// Brings the folder up to date. This costs a few stat calls when nothing has changed since any
// program last did it. False when the folder cannot be made; it may then be out of date or missing.
bool update_applications_folder();

// Makes the plug-in with these preferences list this folder, unless the user has named another one.
void offer_applications_folder(CFStringRef domain);

// Called before a menu: brings the folder up to date unless it is watched, and trusts the
// applications of the folder that the user has named in those preferences.
void prepare_applications();
