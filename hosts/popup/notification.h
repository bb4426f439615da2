// Messages of the desktop (org.freedesktop.Notifications): they tell and need no answer. Any
// thread.
#pragma once

#include <gio/gio.h>
#include <stdint.h>

#include <string>

struct Notification {
    std::string summary, body;  // UTF-8, plain text
    std::string undo_title;     // of a button; empty for none
};

// The name of the button's action, as the desktop reports it.
inline constexpr const char* undo_action = "undo";

// Returns the number of the message, or 0 when the desktop shows none.
uint32_t show_notification(GDBusConnection* bus, const Notification& notification);
// The same by the session bus.
bool show_notification(const Notification& notification);
