// A stage for compositors that offer no layers.
#pragma once

#include "wayland/menu_stage.h"

// Null where the X server cannot show a transparent window.
std::unique_ptr<MenuStage> open_cover_stage();
