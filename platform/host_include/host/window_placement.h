// Where windows of a level above menus, such as previews, stand while a menu is open. Not a Mac
// interface. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Such a window becomes a card, with a frame and a shadow like a menu's. The question is asked each
// time the window comes to the front. With YES the card stands beside the deepest open level, clear
// of all levels, and moves by its program are ignored; with NO its program places it. A null
// question, as at first, answers NO.
typedef BOOL (*BesideMenusQuestion)(void);
void place_windows_beside_menus(BesideMenusQuestion wanted);

// Whether such a card has a line below its picture that says which file it shows: name, kind, size
// and date. Only a card beside the menu has it. Asked and answered as above.
void describe_windows_beside_menus(BesideMenusQuestion wanted);
