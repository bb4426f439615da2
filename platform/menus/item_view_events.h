// Events over the views of a menu's items. Main thread.
#pragma once

#include "menus/menu_levels.h"

// Sends a mouse event to the item view in the row at `point`, as the view's window would. False
// when there is no item view.
bool send_to_item_view(const MenuLevels& levels, NSEvent* event, MenuPoint point);
