// GWorkspace's usual commands in a contextual menu: the titles and actions of its main menu. Main
// thread.
#pragma once

#include <AppKit/AppKit.h>

#include "gworkspace/file_place.h"

// Adds the commands that GWorkspace would accept at this place now.
void add_commands(NSMenu* menu, FilePlace* place);
