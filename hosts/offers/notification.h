// Messages of the desktop (org.freedesktop.Notifications). Any thread.
#pragma once

#include <gio/gio.h>
#include <stdint.h>

#include <string>

struct Notification {
    std::string summary, body;  // UTF-8, plain text
    std::string undo_title;     // of a button; empty for none
};

// The desktop's service of this name, which has one object and one interface.
inline constexpr const char* notifications_name = "org.freedesktop.Notifications";
inline constexpr const char* notifications_object = "/org/freedesktop/Notifications";
// The name of the button's action, as the desktop reports it.
inline constexpr const char* undo_action = "undo";

// Returns the number of the message, or 0 when the desktop shows none, or shows no buttons and the
// message has one.
uint32_t show_notification(GDBusConnection* bus, const Notification& notification);
// Takes it from the screen.
void close_notification(GDBusConnection* bus, uint32_t number);
// The same by the session bus.
bool show_notification(const Notification& notification);
