// What an alert says, and where everything stands in it. Main thread.
#pragma once

#include <string>
#include <vector>

#include "panels/panel_content.h"

struct alert_button_t {
    int item;
    std::string title;
};

struct alert_words_t {
    sign_t sign;
    std::string message, explanation;
    std::vector<alert_button_t> buttons;  // from the right
    int default_item, cancel_item;        // 0: none
};

// The sign at the left, beside it message and explanation, below them the buttons from the right.
// Without a cancel button Escape hits the default button, as users may hit that one without reading
// the alert.
panel_content_t alert_content(const alert_words_t& words);
