// Editing of one line of UTF-8 text. Any thread.
#pragma once

#include <stddef.h>

#include <string>
#include <string_view>

struct TextEdit {
    std::string text;
    size_t caret = 0;  // in bytes, between characters

    // Puts the text in at the caret, without its control characters.
    void insert(std::string_view added);
    // Removes the character before the caret, or after it.
    void remove_before();
    void remove_after();
    // Moves the caret by one character.
    void go_back();
    void go_on();
};
