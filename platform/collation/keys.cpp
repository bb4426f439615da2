#include "collation/keys.h"

namespace collation {

namespace {

bool is_digit(char byte) { return byte >= '0' && byte <= '9'; }

// The longer one of two numbers is the larger one. A byte holds two digits.
uint8_t* write_number(const char* first, const char* last, uint8_t* key) {
    while (last - first > 1 && *first == '0') first++;
    *key++ = tables.characters[int{'0'}].element.primary;
    *key++ = static_cast<uint8_t>(last - first);
    if ((last - first) % 2) *key++ = static_cast<uint8_t>(*first++ - '0');
    for (; first != last; first += 2) {
        *key++ = static_cast<uint8_t>((first[0] - '0') << 4 | (first[1] - '0'));
    }
    return key;
}

// Writes the primaries of a character that is not simple, mostly a letter with an accent.
uint8_t* write_primaries(const Character& character, uint8_t* key) {
    if (character.kind != SEQUENCE) return *key = character.element.primary, key + 1;
    for (int i = 0; i < character.count; i++) {
        const uint8_t primary = tables.sequences[character.first + i].primary;
        if (primary) *key++ = primary;
    }
    return key;
}

uint8_t* write_secondaries(const Character& character, uint8_t* key) {
    if (character.kind != SEQUENCE) return *key = character.element.secondary, key + 1;
    for (int i = 0; i < character.count; i++) {
        *key++ = tables.sequences[character.first + i].secondary;
    }
    return key;
}

const Character& character_at(const char* name) {
    return tables.characters[static_cast<uint8_t>(*name)];
}

uint8_t* write_all_secondaries(const char* name, const char* end, uint8_t* key) {
    while (name != end) {
        if (is_digit(*name)) {
            while (name != end && is_digit(*name)) name++;
            *key++ = tables.usual_secondary;
        } else {
            key = write_secondaries(character_at(name++), key);
        }
    }
    return key;
}

}  // namespace

// A key holds all primaries, then 0, then all secondaries, unless all secondaries are the usual
// one.
uint8_t* write_key(const char* name, size_t length, uint8_t* key) {
    const char* const end = name + length;
    const char* at = name;
    bool has_marks = false;
    while (at != end) {
        if (const uint8_t primary = tables.simple[static_cast<uint8_t>(*at)]) {
            *key++ = primary;
            at++;
        } else if (is_digit(*at)) {
            const char* const first = at;
            while (at != end && is_digit(*at)) at++;
            key = write_number(first, at, key);
        } else {
            key = write_primaries(character_at(at++), key);
            has_marks = true;
        }
    }
    *key++ = 0;
    return has_marks ? write_all_secondaries(name, end, key) : key;
}

}  // namespace collation
