// Finds icons by name in the desktop's icon theme, by the freedesktop.org rules: the user's theme,
// the themes that it inherits from, then hicolor, then pictures without a theme. Folders are listed
// once, each theme's when an icon is looked for that those before do not have. Main thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

struct IconTheme;

// The theme of the user's settings, Adwaita if they name none. The same each time.
IconTheme& user_icon_theme();

// The file of the best-fitting icon for `pixels`, a PNG or an SVG: of the first name that any theme
// has, from the first theme that has it. So a program's own icon from the last theme comes before a
// general one from the first. Empty if none has any.
std::string find_icon(IconTheme& theme, const std::vector<std::string>& names, int pixels);
