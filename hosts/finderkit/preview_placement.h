// The host's settings for previews.
#pragma once

inline constexpr const char* preview_beside_menu_setting = "preview_beside_menu";
inline constexpr const char* preview_details_setting = "preview_details";

// From now on previews appear beside the menu, unless the first setting is 0, and say which file
// they show if the second is not 0. Both are read anew each time.
void place_previews_as_set();
