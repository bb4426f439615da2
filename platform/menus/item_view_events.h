// Events over the views of a menu's items. Main thread.
#pragma once

#include "menus/menu_levels.h"

// Sends the view that stands in the row at `point` a mouse event, as its window would. False when
// no item with a view is there.
bool send_to_item_view(const menu_levels_t& levels, NSEvent* event, point_t point);
