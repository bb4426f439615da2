// Sort weights of the characters U+0000 to U+00FF, taken from ICU's root order when the platform is
// built.
#pragma once

#include <stdint.h>

namespace collation {

// One step of a text's sort order. Weights are ranks: only their order means anything.
// A primary of 0 is a mark on the character before it, such as an accent.
struct Element {
    uint8_t primary;
    uint8_t secondary;
};

enum Kind : uint8_t {
    PLAIN,      // one element
    DIGIT,      // part of a number
    SEQUENCE,   // several elements, or none, or one that stands among the digits: see first
    CONTEXTUAL  // one element, but another sequence before MIDDLE_DOT
};

struct Character {
    Kind kind;
    uint8_t count;  // in Tables::sequences
    uint16_t first;
    Element element;
};

const uint16_t MIDDLE_DOT = 0xB7;

// The most elements that one character stands for.
const unsigned longest_sequence = 8;

struct Tables {
    Character characters[256];
    // The primary of a PLAIN or CONTEXTUAL character whose secondary is the usual one; 0 for all
    // others.
    uint8_t simple[256];
    uint8_t usual_secondary;
    Element sequences[512];
    // What a CONTEXTUAL character and the MIDDLE_DOT after it stand for.
    uint16_t contextual_first;
    uint8_t contextual_count;
    // The ranks of the characters 0 and 9. Fractions and superscripts stand between them. Whether a
    // number comes before or after one of those depends on its value.
    uint8_t lowest_digit, highest_digit;
};

extern const Tables tables;

}  // namespace collation
