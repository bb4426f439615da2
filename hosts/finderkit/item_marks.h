// The marks of the plug-in's items. Main thread.
#pragma once

#include <host/menu_tracking.h>

// Marks the user's folders in the first level, and items of folders that are links. The plug-in
// gives a link the path of the file that it leads to.
MenuMark mark_of_item(NSMenuItem* item);
