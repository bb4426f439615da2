#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include "corefoundation/type_ids.h"

CFTypeRef CFRetain(CFTypeRef object) { return [(id)object retain]; }

void CFRelease(CFTypeRef object) { [(id)object release]; }

CFTypeID CFGetTypeID(CFTypeRef object) {
    const id value = (id)object;
    if ([value isKindOfClass:[NSString class]]) return STRING_TYPE_ID;
    if ([value isKindOfClass:[NSNumber class]]) return NUMBER_TYPE_ID;
    if ([value isKindOfClass:[NSArray class]]) return ARRAY_TYPE_ID;
    if ([value isKindOfClass:[NSDictionary class]]) return DICTIONARY_TYPE_ID;
    if ([value isKindOfClass:[NSData class]]) return DATA_TYPE_ID;
    if ([value isKindOfClass:[NSDate class]]) return DATE_TYPE_ID;
    return 0;
}
