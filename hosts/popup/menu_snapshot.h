// The content of a menu's item as a plain record, read while the menu is open.
#pragma once

#include <string>

// Properties that only the JSON shows.
struct ItemDetails {
    std::string color;  // "#rrggbb", or empty
    long tag = 0;
    bool plugin = false;
    std::string path;  // empty: the item is for no file
    std::string submenu_title;
};

struct ItemSnapshot {
    std::string title;  // UTF-8
    bool separator = false;
    bool enabled = false;
    bool alternate = false;
    bool image = false;
    bool has_submenu = false;
    unsigned long modifiers = 0;  // of an alternate: see modifier_names()
    ItemDetails details;
};
