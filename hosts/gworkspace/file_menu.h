// The contextual menu of files in GWorkspace. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "gworkspace/file_place.h"

// Selects what was clicked, pops its menu up and returns when that has closed.
void PopUpFileMenu(FilePlace* place, NSEvent* event);
