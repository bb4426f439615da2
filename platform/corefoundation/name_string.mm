#include "corefoundation/name_string.h"

#include <string.h>
#include <unicode/ustring.h>

#include <atomic>

// A file's name has at most 255 bytes. A text longer than this becomes an ordinary string.
static const size_t longest_text = 1024;

// Room for a name of 255 bytes and its units.
static const size_t passing_size = 255 * (1 + sizeof(unichar));

// The string for short use that was released last.
static std::atomic<void*> released{nullptr};

@implementation NameString

// `size` bytes of UTF-8 and, when there are any, the `length` units of the same text.
- (id)initWithBytes:(const char*)bytes
               size:(NSUInteger)size
              units:(const unichar*)units
              count:(NSUInteger)length {
    _length = length;
    _size = size;
    _bytes = (char*)object_getIndexedIvars(self);
    _units = nullptr;
    if (units) {
        _units = (unichar*)_bytes;
        _bytes += length * sizeof(unichar);
        memcpy(_units, units, length * sizeof(unichar));
    }
    memcpy(_bytes, bytes, size);
    _bytes[size] = 0;
    return self;
}

- (void)setIsPassing {
    _isPassing = YES;
}

- (void)dealloc {
    void* none = nullptr;
    if (_isPassing && released.compare_exchange_strong(none, self)) return;
    [super dealloc];
}

- (const char*)bytes {
    return _bytes;
}

- (const unichar*)units {
    return _units;
}

- (NSUInteger)size {
    return _size;
}

- (BOOL)isASCII {
    return !_units;
}

- (NSUInteger)length {
    return _length;
}

- (unichar)characterAtIndex:(NSUInteger)index {
    if (index >= _length) [NSException raise:NSRangeException format:@"index out of range"];
    return _units ? _units[index] : (unsigned char)_bytes[index];
}

- (void)getCharacters:(unichar*)buffer range:(NSRange)range {
    if (range.location > _length || range.length > _length - range.location) {
        [NSException raise:NSRangeException format:@"range out of bounds"];
    }
    if (_units) {
        memcpy(buffer, _units + range.location, range.length * sizeof(unichar));
        return;
    }
    const char* text = _bytes + range.location;
    for (NSUInteger i = 0; i < range.length; i++) buffer[i] = (unsigned char)text[i];
}

// The string never changes, so a copy is the object itself.
- (id)copyWithZone:(NSZone*)zone {
    (void)zone;
    return [self retain];
}

- (NSStringEncoding)fastestEncoding {
    return _units ? NSUnicodeStringEncoding : NSASCIIStringEncoding;
}

- (NSStringEncoding)smallestEncoding {
    return _units ? NSUnicodeStringEncoding : NSASCIIStringEncoding;
}

@end

// Looked up once, because the run time finds a class by its name.
static Class name_class() {
    static const Class found = [NameString class];
    return found;
}

bool is_name_string(NSString* string) { return object_getClass(string) == name_class(); }

static NameString* allocate(size_t text_size) {
    return (NameString*)NSAllocateObject(name_class(), text_size + 1, nullptr);
}

static NameString* allocate_passing(size_t text_size) {
    if (text_size > passing_size) return allocate(text_size);
    NameString* name = (NameString*)released.exchange(nullptr);
    if (name) return name;
    name = allocate(passing_size);
    [name setIsPassing];
    return name;
}

static bool is_ascii(const char* bytes, size_t size) {
    unsigned char all = 0;
    for (size_t i = 0; i < size; i++) all |= (unsigned char)bytes[i];
    return all < 0x80;
}

static CFStringRef create(const char* bytes, size_t size, NameString* (*allocate_for)(size_t)) {
    if (is_ascii(bytes, size)) {
        NameString* name = allocate_for(size);
        return (CFStringRef)[name initWithBytes:bytes size:size units:nullptr count:size];
    }
    if (size > longest_text) {
        return (CFStringRef)[[NSString alloc] initWithBytes:bytes
                                                     length:size
                                                   encoding:NSUTF8StringEncoding];
    }
    UChar units[longest_text];
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(units, longest_text, &length, bytes, (int32_t)size, &error);
    if (U_FAILURE(error)) return nullptr;

    const NSUInteger count = (NSUInteger)length;
    NameString* name = allocate_for(count * sizeof(unichar) + size);
    return (CFStringRef)[name initWithBytes:bytes
                                       size:size
                                      units:(const unichar*)units
                                      count:count];
}

CFStringRef create_name_string(const char* bytes, size_t size) {
    return create(bytes, size, allocate);
}

CFStringRef create_passing_name_string(const char* bytes, size_t size) {
    return create(bytes, size, allocate_passing);
}
