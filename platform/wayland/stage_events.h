// The application's events that say what a stage has told. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "wayland/menu_stage.h"

// Nil for an event that says nothing to an application. Pointer events are located in `window`.
NSEvent* event_of_stage(const StageEvent& event, NSWindow* window);
