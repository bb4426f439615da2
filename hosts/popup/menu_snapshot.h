// What a menu holds, as plain records: taken while it is open, written after it has closed.
#pragma once

#include <string>
#include <vector>

struct ItemSnapshot {
    bool separator = false;
    std::string title;  // UTF-8
    bool enabled = false;
    bool alternate = false;
    std::vector<std::string> modifiers;
    bool image = false;
    std::string color;  // "#rrggbb", or empty
    long tag = 0;
    bool plugin = false;
    std::string path;  // empty: stands for no file
    bool has_submenu = false;
    std::string submenu_title;
    bool populated = false;  // the submenu was opened
    std::vector<ItemSnapshot> items;
};

using MenuSnapshot = std::vector<ItemSnapshot>;

// The menu as an indented tree, a line an item.
std::string WriteMenuText(const MenuSnapshot& menu);
// The menu as a JSON array. Bytes that are not UTF-8 become replacement characters.
std::string WriteMenuJson(const MenuSnapshot& menu);
