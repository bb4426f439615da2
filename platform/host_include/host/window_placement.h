// Where windows of a level above menus, such as previews, stand while a menu is open. Not a Mac
// interface. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// The question is asked each time such a window comes to the front. With YES the window becomes a
// card that fits around its content and stands beside the deepest open level, clear of all levels;
// moves by its program are then ignored. A null question, as at first, answers NO.
typedef BOOL (*BesideMenusQuestion)(void);
void place_windows_beside_menus(BesideMenusQuestion wanted);
