// Host settings that the platform asks for when it needs them. They are read anew each time.
#pragma once

inline constexpr const char* escape_closes_setting = "escape_closes";

// Whether Escape closes one level of a menu, and not all.
bool escape_closes_one_level();

// From now on the platform asks for these settings.
void answer_settings();
