// Windows of a level above menus, such as previews: where they stand while a menu is open. Not a
// Mac interface. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Answered each time such a window comes to the front. With YES the window becomes a card that hugs
// what it shows and stands beside the deepest open level, clear of all levels; where its program
// moves it to is then ignored. Null, as it is at first, answers NO.
typedef BOOL (*BesideMenusQuestion)(void);
void PlaceWindowsBesideMenus(BesideMenusQuestion wanted);
