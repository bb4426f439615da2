// Host settings that the platform asks for when it needs them. They are read anew each time.
#pragma once

inline constexpr const char* escape_closes_setting = "escape_closes";

inline constexpr const char* sort_by_language_setting = "sort_by_language";

#ifdef __OBJC__
// What a setting of Delvio's is set to; nil if it is not set. Autoreleased.
id stored_setting(const char* setting);
#endif

// Whether Escape closes one level of a menu, and not all.
bool escape_closes_one_level();

// Whether folders list their names in the order of the user's language.
bool sorts_by_language();

// From now on the platform asks for these settings.
void answer_settings();
