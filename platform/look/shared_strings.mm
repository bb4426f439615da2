#include "look/shared_strings.h"

#include <string.h>

namespace {

// Characters are compared here, as GNUstep compares strings by composed characters, which takes
// thousands of instructions.
const NSUInteger most_characters = 256;

struct TextLayout {
    NSString* string;  // retained
    NSUInteger length;
    unichar characters[most_characters];
};

TextLayout last[3];
unsigned oldest;

const TextLayout* find(const unichar* characters, NSUInteger length) {
    for (const TextLayout& text : last) {
        const bool is_equal = text.string && text.length == length &&
                              memcmp(text.characters, characters, length * sizeof(unichar)) == 0;
        if (is_equal) return &text;
    }
    return nullptr;
}

// Takes ownership of the string.
NSString* remember(NSString* string, const unichar* characters, NSUInteger length) {
    TextLayout& text = last[oldest];
    oldest = (oldest + 1) % 3;
    [text.string autorelease];
    text.string = string;
    text.length = length;
    memcpy(text.characters, characters, length * sizeof(unichar));
    return string;
}

}  // namespace

NSString* shared_string(const unichar* characters, NSUInteger length) {
    if (length > most_characters) {
        return [NSString stringWithCharacters:characters length:length];
    }
    if (const TextLayout* known = find(characters, length)) return known->string;
    NSString* made = [[NSString alloc] initWithCharacters:characters length:length];
    return remember(made, characters, length);
}

NSString* shared_string(NSString* string) {
    for (const TextLayout& text : last) {
        if (text.string && text.string == string) return string;
    }
    const NSUInteger length = [string length];
    if (!string || length > most_characters) return string;
    unichar characters[most_characters];
    [string getCharacters:characters range:NSMakeRange(0, length)];
    if (const TextLayout* known = find(characters, length)) return known->string;
    return remember([string copy], characters, length);
}
