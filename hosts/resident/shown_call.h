// Which command lines the resident host serves. Any thread.
#pragma once

#include <string>
#include <vector>

namespace resident {

// Whether these arguments, without the program's name, ask for a menu on the screen, as far as can
// be told without reading them fully. False for every other use, for mistakes, and for
// --no-resident: the full program reads those.
bool asks_for_shown_menu(const std::vector<std::string>& arguments);

}  // namespace resident
