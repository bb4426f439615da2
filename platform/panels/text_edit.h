// Editing of one line of UTF-8 text. Any thread.
#pragma once

#include <stddef.h>

#include <string>
#include <string_view>

struct TextEdit {
    std::string text;
    // Both in bytes, between characters. What stands between them is selected.
    size_t caret = 0, anchor = 0;

    std::string selected() const;
    void select_all();
    void remove_selected();
    // Puts the text, without its control characters, in at the caret or for what is selected.
    void insert(std::string_view added);
    // Removes what is selected, or else the character before the caret, or after it.
    void remove_before();
    void remove_after();
    // The anchor comes along, unless the caret `selects` what it passes.
    void go_to(size_t place, bool selects = false);
    // By one character, or to the end of what is selected.
    void go_back(bool selects = false);
    void go_on(bool selects = false);
};
