// The interfaces of AT-SPI that the nodes have, as far as menus and panels need them.
#pragma once

#include <gio/gio.h>

// By its full name; null for an unknown one.
GDBusInterfaceInfo* interface_named(const char* name);

constexpr const char* accessible_interface = "org.a11y.atspi.Accessible";
constexpr const char* action_interface = "org.a11y.atspi.Action";
constexpr const char* application_interface = "org.a11y.atspi.Application";
constexpr const char* cache_interface = "org.a11y.atspi.Cache";
constexpr const char* component_interface = "org.a11y.atspi.Component";
constexpr const char* editable_text_interface = "org.a11y.atspi.EditableText";
constexpr const char* selection_interface = "org.a11y.atspi.Selection";
constexpr const char* text_interface = "org.a11y.atspi.Text";
constexpr const char* value_interface = "org.a11y.atspi.Value";
