// The clipboard of the X server, or of the Wayland session. Its content is lost when the owning
// process exits, so a process of its own keeps it.
#pragma once

#include <string>

// The one argument with which this program is started as the keeper.
inline constexpr const char* clipboard_keeper_argument = "--keep-clipboard";

// Starts a keeper with the text (UTF-8) and returns when the keeper owns the clipboard. The keeper
// exits when something else is copied, or with the X server. Returns an empty string, or why it
// failed.
std::string keep_on_clipboard(const std::string& text);

// The keeper itself: reads the text from standard input, writes a byte to standard output once it
// owns the clipboard, and serves it. Returns the exit status.
int run_clipboard_keeper();
