#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include <string.h>

#include <mutex>
#include <string>
#include <unordered_map>

#include "corefoundation/name_string.h"
#include "corefoundation/type_ids.h"

CFTypeID CFStringGetTypeID(void) { return STRING_TYPE_ID; }

CFStringRef __CFStringMakeConstantString(const char* ascii) {
    // Never destroyed: constant strings outlive every other object.
    static auto& strings = *new std::unordered_map<std::string, NSString*>;
    static auto& lock = *new std::mutex;
    const std::lock_guard<std::mutex> guard(lock);
    NSString*& string = strings[ascii];
    if (!string) string = [[NSString alloc] initWithUTF8String:ascii];
    return (CFStringRef)string;
}

CFIndex CFStringGetLength(CFStringRef string) { return (CFIndex)[(NSString*)string length]; }

static bool foundation_encoding(CFStringEncoding encoding, NSStringEncoding* result) {
    switch (encoding) {
        case kCFStringEncodingMacRoman:
            return *result = NSMacOSRomanStringEncoding, true;
        case kCFStringEncodingUnicode:
            return *result = NSUnicodeStringEncoding, true;
        case kCFStringEncodingASCII:
            return *result = NSASCIIStringEncoding, true;
        case kCFStringEncodingUTF8:
            return *result = NSUTF8StringEncoding, true;
        default:
            return false;
    }
}

static size_t terminated_length(const char* text, CFStringEncoding encoding) {
    if (encoding != kCFStringEncodingUnicode) return strlen(text);
    size_t length = 0;
    while (text[length] || text[length + 1]) length += 2;
    return length;
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding) {
    NSStringEncoding code;
    if (!text || !foundation_encoding(encoding, &code)) return nullptr;
    return (CFStringRef)[[NSString alloc] initWithBytes:text
                                                 length:terminated_length(text, encoding)
                                               encoding:code];
}

static Boolean copy_bytes(const void* bytes, size_t length, char* buffer, CFIndex size) {
    if (size < 0 || length + 1 > (size_t)size) return false;
    memcpy(buffer, bytes, length);
    buffer[length] = 0;
    return true;
}

static Boolean copy_units(NSString* source, char* buffer, CFIndex size) {
    const NSUInteger length = [source length];
    if (size < 0 || (length + 1) * sizeof(unichar) > (size_t)size) return false;
    [source getCharacters:(unichar*)buffer range:NSMakeRange(0, length)];
    ((unichar*)buffer)[length] = 0;
    return true;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding) {
    NSString* source = (NSString*)string;
    NSStringEncoding code;
    if (!source || !foundation_encoding(encoding, &code)) return false;
    if (encoding == kCFStringEncodingUnicode) return copy_units(source, buffer, size);
    if (is_name_string(source) && (code == NSUTF8StringEncoding || [(NameString*)source isASCII])) {
        NameString* name = (NameString*)source;
        return copy_bytes([name bytes], [name size], buffer, size);
    }
    @autoreleasepool {
        NSData* data = nil;
        @try {
            data = [source dataUsingEncoding:code allowLossyConversion:NO];
        } @catch (NSException*) {
            return false;  // a lone surrogate
        }
        return data && copy_bytes([data bytes], [data length], buffer, size);
    }
}

const UniChar* CFStringGetCharactersPtr(CFStringRef string) {
    NSString* source = (NSString*)string;
    return is_name_string(source) ? [(NameString*)source units] : nullptr;
}

CFStringEncoding CFStringGetFastestEncoding(CFStringRef string) {
    NSString* source = (NSString*)string;
    const bool ascii = is_name_string(source)
                           ? [(NameString*)source isASCII]
                           : [source canBeConvertedToEncoding:NSASCIIStringEncoding];
    return ascii ? kCFStringEncodingASCII : kCFStringEncodingUnicode;
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
    const NSRange units = NSMakeRange((NSUInteger)range.location, (NSUInteger)range.length);
    [(NSString*)string getCharacters:buffer range:units];
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
    switch (encoding) {
        case kCFStringEncodingUTF8:
            return length * 3;
        case kCFStringEncodingUnicode:
            return length * 2;
        default:
            return length;
    }
}
