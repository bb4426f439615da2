// GWorkspace's usual commands in a contextual menu: those of its main menu, by their own titles,
// done by its own actions. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "gworkspace/file_place.h"

// Adds the commands that GWorkspace would take at this place now.
void AddCommands(NSMenu* menu, FilePlace* place);
