// The content of a menu as plain records: read while the menu is open, written after it has closed.
#pragma once

#include <memory>
#include <string>
#include <vector>

// Properties that only the JSON shows.
struct ItemDetails {
    std::string color;  // "#rrggbb", or empty
    long tag = 0;
    bool plugin = false;
    std::string path;  // empty: the item is for no file
    std::string submenu_title;
};

// A menu may have hundreds of thousands of these.
struct ItemSnapshot {
    std::string title;  // UTF-8
    bool separator = false;
    bool enabled = false;
    bool alternate = false;
    bool image = false;
    bool has_submenu = false;
    bool populated = false;       // the submenu was opened
    unsigned long modifiers = 0;  // of an alternate: see modifier_names()
    std::unique_ptr<ItemDetails> details;
    std::vector<ItemSnapshot> items;
};

using MenuSnapshot = std::vector<ItemSnapshot>;

// The menu as an indented tree, one line for each item. Its parts follow each other.
class MenuText {
  public:
    // Adds the item alone, without the items of its submenu.
    void add(const ItemSnapshot& item, size_t level);
    const std::vector<std::string>& parts() const { return parts_; }

  private:
    const std::string& title_of(const ItemSnapshot& item);

    std::vector<std::string> parts_;
    std::string last_title_, last_printable_;
};
// The menu as a JSON array; all items have details. Bytes that are not UTF-8 become replacement
// characters.
std::string write_menu_json(const MenuSnapshot& menu);
