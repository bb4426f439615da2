// Finds icons by name in the desktop's icon theme, by the freedesktop.org rules: first the user's
// theme, then the themes that it inherits from, then hicolor, then pictures without a theme. Each
// folder is listed once. A theme's folders are listed when the themes before it lack an icon that
// is looked for. Main thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

struct IconTheme;

// The theme of the user's settings, or Adwaita if they name none. Always the same object.
IconTheme& user_icon_theme();
// From now on that theme is the one of this name; an empty name stands for Adwaita.
void use_icon_theme(const std::string& name);
// Grows each time that the theme becomes another one.
unsigned icon_theme_changes();

// The file of the best-fitting icon for `pixels`, a PNG or an SVG. The first name that any theme
// has wins, from the first theme that has it: a program's own icon from the last theme comes before
// a general icon from the first. Empty when no theme has any of the names.
std::string find_icon(IconTheme& theme, const std::vector<std::string>& names, int pixels);
