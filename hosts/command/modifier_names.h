// The names of the modifier keys, and AppKit's bits for them.
#pragma once

#include <string>
#include <vector>

// Reads names such as "shift,option,command,control": any of them, in any number; empty for none.
// False when a name is unknown.
bool parse_modifiers(const std::string& names, unsigned long* flags);

// The names of the bits that are set: shift, option, command, control, in this order.
std::vector<std::string> modifier_names(unsigned long flags);
