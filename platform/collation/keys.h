// Sort keys of names: bytes whose order is the order of the names.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "collation/tables.h"

namespace collation {

// The longest name that has a key, in bytes; an element takes two.
const size_t longest_name = 255;
const size_t longest_key = longest_name * longest_sequence * 2 + 1;

// Writes the key of a name and returns the key's end. Each byte of the name is a character of that
// value. Keys compare as UCCompareTextDefault compares the names, except in two cases that no key
// tells: a number beside superscripts or fractions, and the letter l before a middle dot.
uint8_t* write_key(const char* name, size_t length, uint8_t* key);

}  // namespace collation
