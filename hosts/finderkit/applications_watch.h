// Keeps the folder of applications up to date while a program lives that shows many menus, so that
// none of them has to. Main thread.
#pragma once

// From now on: soon after something was installed or removed, and once an hour, between two events
// and never while a menu is open. False where the system does not tell of changes.
bool WatchApplications();

// Whether it has been sent, with success.
bool ApplicationsAreWatched();
