// The clipboard of a Wayland session. Not a Mac interface.
#pragma once

#ifdef __cplusplus

#include <functional>
#include <string>

// Puts a text (UTF-8) on the clipboard, calls `owned`, and serves the text until something else is
// copied. False, without calling `owned`, where the session does not let programs without a window
// do so; the X server's clipboard then is the one to use. A compositor may hand that one to Wayland
// programs, but sway does so only while an X program has its keyboard.
bool keep_on_session_clipboard(const std::string& text, const std::function<void()>& owned);

#endif
