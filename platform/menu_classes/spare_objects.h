// The memory of an item or a menu that went, kept for the next object of its class: while a large
// level is filled, nearly each new object follows one that was packed.
#pragma once

#include <AppKit/AppKit.h>

// These take the memory of an object that nobody holds. Its fields are left as they are: what they
// own belongs to the caller.
void keep_spare_item(NSMenuItem* item);
void keep_spare_menu(NSMenu* menu);
