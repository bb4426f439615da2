// The host setting of where previews stand.
#pragma once

inline constexpr const char* preview_beside_menu_setting = "preview_beside_menu";

// From now on previews stand beside the menu unless the setting, read anew each time, is 0.
void PlacePreviewsAsSet();
