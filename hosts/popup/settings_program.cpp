#include "popup/settings_program.h"

#include <host/text.h>

#include "command/private_display.h"
#include "offers/detached_program.h"

std::string open_settings() {
    if (has_private_display()) return translated("there is no display for the settings window");
    if (start_own_program({"settings"})) return {};
    return translated("cannot start the settings window");
}
