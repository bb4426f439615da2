// Windows above menus as cards: a panel in the look of the menus around what the window shows, that
// stands beside the open levels. One that is no card has the scale of the menus. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Makes the window a card, or what it was, as the host wants it. Before it comes to the front.
void prepare_raised_window(NSWindow* window);

bool is_card(NSWindow* window);
// After what it shows, the levels or its visibility may have changed.
void update_card(NSWindow* window);
// Its outline, where nothing composes windows.
void shape_card(NSWindow* window);
