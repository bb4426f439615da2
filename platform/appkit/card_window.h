// Windows above menus as cards. A card is a panel in the look of the menus around the window's
// content, at the scale of the menus. It stands beside the open levels, or where the window's
// program puts the window. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Makes the window the card that the host wants. Called before it comes to the front.
void prepare_raised_window(NSWindow* window);

bool is_card(NSWindow* window);
// Whether the platform chooses the card's place.
bool is_card_beside_menu(NSWindow* window);
// Called after the window's content, the open levels or its visibility may have changed.
void update_card(NSWindow* window);
// Cuts the window to the card's outline where nothing composes windows.
void shape_card(NSWindow* window);
