// Drags that a Wayland compositor carries, to programs of its own and of its X server. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>

#include "wayland/menu_stage.h"

// Drags the files of `uri_list` (lines that end in CR LF) with the button that is held on the
// stage, and returns when they are dropped and fetched, or the drag is given up; `result` then says
// which. False when the compositor does not begin the drag.
bool drag_on_stage(MenuStage& stage, const std::string& uri_list, NSImage* image,
                   NSDragOperation* result);
