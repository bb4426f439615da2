// The contextual menu of files in GWorkspace. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "gworkspace/file_place.h"

// Selects the clicked files, pops up their menu and returns when the menu has closed.
void pop_up_file_menu(FilePlace* place, NSEvent* event);
