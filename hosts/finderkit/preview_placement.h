// The host setting for the place of previews.
#pragma once

inline constexpr const char* preview_beside_menu_setting = "preview_beside_menu";

// From now on previews appear beside the menu, unless the setting is 0; it is read anew each time.
void place_previews_as_set();
