// What an alert says, and where everything stands in it. Main thread.
#pragma once

#include <string>
#include <vector>

#include "panels/panel_content.h"

struct AlertButton {
    int item;
    std::string title;
};

struct AlertWords {
    Sign sign;
    std::string message, explanation;
    std::vector<AlertButton> buttons;  // from the right
    int default_item, cancel_item;     // 0: none
};

// The sign at the left, beside it message and explanation, below them the buttons from the right.
// Without a cancel button Escape hits the default button, as users may hit that one without reading
// the alert.
PanelContent alert_content(const AlertWords& words);
