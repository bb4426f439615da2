// Keeps the folder of applications up to date in a program that shows many menus, so that no menu
// has to. Main thread.
#pragma once

// From now on the folder is updated soon after a program was installed or removed, and once an
// hour. Updates run between two events, never while a menu is open. False where the system does not
// report changes.
bool watch_applications();

// Whether watch_applications() has been called and succeeded.
bool applications_are_watched();
