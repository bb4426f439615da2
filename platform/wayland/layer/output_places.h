// Which part of the X screen shows which output of the compositor.
#pragma once

#include <string>
#include <vector>

#include "wayland/menu_stage.h"
#include "x11/server_monitors.h"

// An output as the compositor has it, in its own units: a compositor that scales an output counts
// fewer units than the X server counts pixels, or as many.
struct Output {
    std::string name;
    ScreenArea area;
};

// The place in an area at these parts of its width and height, from 0 to 1; its upper left if the
// area is empty.
StagePlace place_in(const ScreenArea& area, double across, double down);

// The same on the plane that the area is a part of: parts below 0 or above 1 lie beside it.
StagePlace place_beside(const ScreenArea& area, double across, double down);

// The areas of the X screen that show the outputs, in the order of the outputs.
std::vector<ScreenArea> places_of_outputs(const std::vector<Output>& outputs,
                                          const std::vector<Monitor>& monitors);
