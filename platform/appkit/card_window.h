// Windows above menus as cards. A card is a panel in the look of the menus around the window's
// content, and stands beside the open levels. A window that is no card has the scale of the menus.
// Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Makes the window a card or a plain window, as the host wants it. Called before it comes to the
// front.
void prepare_raised_window(NSWindow* window);

bool is_card(NSWindow* window);
// Called after the window's content, the open levels or its visibility may have changed.
void update_card(NSWindow* window);
// Cuts the window to the card's outline where nothing composes windows.
void shape_card(NSWindow* window);
