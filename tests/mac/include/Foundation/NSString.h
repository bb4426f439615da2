#pragma once

#include <Foundation/NSObject.h>

@interface NSString : NSObject <NSCopying>
+ (id)stringWithFormat:(NSString*)format, ... __attribute__((format(__NSString__, 1, 2)));
+ (id)stringWithUTF8String:(const char*)text;
- (id)initWithUTF8String:(const char*)text;
- (const char*)UTF8String;
- (NSUInteger)length;
@end

@interface NSAttributedString : NSObject <NSCopying>
- (id)initWithString:(NSString*)string attributes:(NSDictionary*)attributes;
@end

@interface NSSimpleCString : NSString {
  @package
    char* bytes;
    int numBytes;
}
@end

@interface NSConstantString : NSSimpleCString
@end
