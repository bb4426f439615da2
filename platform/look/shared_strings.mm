#include "look/shared_strings.h"

#include <string.h>

#include <algorithm>

namespace {

// Characters are compared here, as GNUstep compares strings by composed characters, which takes
// thousands of instructions.
const NSUInteger longest_shared = 256;

struct StringLayout {
    NSString* string;  // retained
    NSUInteger length;
    unsigned long used;  // the number of the last use
    unichar characters[longest_shared];
};

StringLayout last[3];
unsigned long uses;

const StringLayout* find(const unichar* characters, NSUInteger length) {
    for (StringLayout& text : last) {
        const bool is_equal = text.string && text.length == length &&
                              memcmp(text.characters, characters, length * sizeof(unichar)) == 0;
        if (!is_equal) continue;
        text.used = ++uses;
        return &text;
    }
    return nullptr;
}

bool is_remembered(NSString* string) {
    return string && std::ranges::any_of(
                         last, [&](const StringLayout& text) { return text.string == string; });
}

// Takes ownership of the string. A text that is used again and again, as a level's folder is,
// stays.
NSString* remember(NSString* string, const unichar* characters, NSUInteger length) {
    StringLayout& text = *std::ranges::min_element(last, {}, &StringLayout::used);
    text.used = ++uses;
    [text.string autorelease];
    text.string = string;
    text.length = length;
    memcpy(text.characters, characters, length * sizeof(unichar));
    return string;
}

}  // namespace

NSString* shared_string(const unichar* characters, NSUInteger length) {
    if (length > longest_shared) {
        return [NSString stringWithCharacters:characters length:length];
    }
    if (const StringLayout* known = find(characters, length)) return known->string;
    NSString* made = [[NSString alloc] initWithCharacters:characters length:length];
    return remember(made, characters, length);
}

NSString* shared_string(NSString* string) {
    if (is_remembered(string)) return string;
    const NSUInteger length = [string length];
    if (!string || length > longest_shared) return string;
    unichar characters[longest_shared];
    [string getCharacters:characters range:NSMakeRange(0, length)];
    if (const StringLayout* known = find(characters, length)) return known->string;
    return remember([string copy], characters, length);
}

// What is remembered never changes, so it is its own copy.
NSString* copy_of_shared_string(NSString* string) {
    NSString* const shared = shared_string(string);
    return is_remembered(shared) ? [shared retain] : [shared copy];
}
