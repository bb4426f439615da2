#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include <math.h>

#include "corefoundation/type_ids.h"

CFTypeID CFArrayGetTypeID(void) { return ARRAY_TYPE_ID; }

CFIndex CFArrayGetCount(CFArrayRef array) { return (CFIndex)[(NSArray*)array count]; }

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    return [(NSArray*)array objectAtIndex:(NSUInteger)index];
}

CFTypeID CFNumberGetTypeID(void) { return NUMBER_TYPE_ID; }

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value) {
    NSNumber* number = [NSNumber alloc];
    switch (type) {
        case kCFNumberSInt32Type:
            number = [number initWithInt:*(const SInt32*)value];
            break;
        case kCFNumberSInt64Type:
            number = [number initWithLongLong:*(const SInt64*)value];
            break;
        case kCFNumberFloat64Type:
            number = [number initWithDouble:*(const double*)value];
            break;
        default:
            [number release];
            return nullptr;
    }
    return (CFNumberRef)number;
}

static bool is_real(NSNumber* number) {
    const char kind = *[number objCType];
    return kind == *@encode(double) || kind == *@encode(float);
}

// The number as an integer, limited to a signed type of `bits`; false when that changed the number.
static bool integer_value(NSNumber* number, int bits, SInt64* value) {
    const SInt64 highest = bits == 64 ? INT64_MAX : INT32_MAX;
    const SInt64 lowest = -highest - 1;
    if (!is_real(number)) {
        const SInt64 whole = [number longLongValue];
        *value = whole < lowest ? lowest : whole > highest ? highest : whole;
        return *value == whole;
    }
    const double real = [number doubleValue];
    if (isnan(real)) return *value = 0, false;
    // 2^63 is a double, INT64_MAX is not.
    if (real >= -(double)lowest) return *value = highest, false;
    if (real < (double)lowest) return *value = lowest, false;
    *value = (SInt64)real;
    return (double)*value == real;
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
    NSNumber* source = (NSNumber*)number;
    if (type == kCFNumberFloat64Type) {
        *(double*)value = [source doubleValue];
        return is_real(source) || (SInt64)[source doubleValue] == [source longLongValue];
    }
    if (type != kCFNumberSInt32Type && type != kCFNumberSInt64Type) return false;

    const int bits = type == kCFNumberSInt64Type ? 64 : 32;
    SInt64 whole;
    const bool exact = integer_value(source, bits, &whole);
    if (bits == 64)
        *(SInt64*)value = whole;
    else
        *(SInt32*)value = (SInt32)whole;
    return exact;
}
