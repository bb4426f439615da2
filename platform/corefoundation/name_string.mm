#include "corefoundation/name_string.h"

#include <string.h>

@implementation NameString

static char* characters(NameString* string) { return (char*)object_getIndexedIvars(string); }

- (id)initWithCharacters:(const char*)bytes count:(NSUInteger)length {
    _length = length;
    char* text = characters(self);
    memcpy(text, bytes, length);
    text[length] = 0;
    return self;
}

- (const char*)bytes {
    return characters(self);
}

- (NSUInteger)length {
    return _length;
}

- (unichar)characterAtIndex:(NSUInteger)index {
    if (index >= _length) [NSException raise:NSRangeException format:@"index out of range"];
    return (unsigned char)characters(self)[index];
}

- (void)getCharacters:(unichar*)buffer range:(NSRange)range {
    if (range.location > _length || range.length > _length - range.location) {
        [NSException raise:NSRangeException format:@"range out of bounds"];
    }
    const char* text = characters(self) + range.location;
    for (NSUInteger i = 0; i < range.length; i++) buffer[i] = (unsigned char)text[i];
}

// Never changes, so a copy is the object itself.
- (id)copyWithZone:(NSZone*)zone {
    (void)zone;
    return [self retain];
}

- (NSStringEncoding)fastestEncoding {
    return NSASCIIStringEncoding;
}

- (NSStringEncoding)smallestEncoding {
    return NSASCIIStringEncoding;
}

@end

static bool is_ascii(const char* bytes, size_t length) {
    unsigned char all = 0;
    for (size_t i = 0; i < length; i++) all |= (unsigned char)bytes[i];
    return all < 0x80;
}

CFStringRef CreateNameString(const char* bytes, size_t length) {
    static const Class name_class = [NameString class];
    if (is_ascii(bytes, length)) {
        NameString* name = (NameString*)NSAllocateObject(name_class, length + 1, nullptr);
        return (CFStringRef)[name initWithCharacters:bytes count:length];
    }
    return (CFStringRef)[[NSString alloc] initWithBytes:bytes
                                                 length:length
                                               encoding:NSUTF8StringEncoding];
}
