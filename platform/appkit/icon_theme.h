// Finds icons by name in the desktop's icon theme, by the freedesktop.org rules: the user's theme,
// the themes that it inherits from, then hicolor. Folders are listed once. Main thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

struct icon_theme_t;

// The theme of the user's settings, Adwaita if they name none. Made at the first call.
const icon_theme_t& user_icon_theme();

// The file of the best-fitting icon for `pixels`, a PNG or an SVG: the first theme that has one of
// the names, the names in their order. Empty if none has.
std::string find_icon(const icon_theme_t& theme, const std::vector<std::string>& names, int pixels);
