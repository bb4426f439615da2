// The stage that a host has prepared for its next menu. Main thread.
#pragma once

#include "wayland/menu_stage.h"

// Null when none is prepared. The caller owns it.
std::unique_ptr<MenuStage> take_prepared_stage();
