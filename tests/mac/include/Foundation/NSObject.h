#pragma once

#include <Foundation/NSObjCRuntime.h>

@class NSString, NSDictionary, NSArray, NSError, NSURL, NSData;

typedef struct _NSZone NSZone;

@protocol NSObject
- (BOOL)isEqual:(id)object;
- (Class)class;
- (id)self;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)conformsToProtocol:(Protocol*)aProtocol;
- (BOOL)respondsToSelector:(SEL)aSelector;
- (id)retain;
- (oneway void)release;
- (id)autorelease;
- (NSUInteger)retainCount;
- (NSString*)description;
@end

@protocol NSCopying
- (id)copyWithZone:(NSZone*)zone;
@end

@protocol NSCoding
@end

typedef struct {
    unsigned long state;
    id* itemsPtr;
    unsigned long* mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id*)buffer
                                    count:(NSUInteger)length;
@end

@interface NSObject <NSObject> {
    Class isa;
}
+ (id)alloc;
+ (id)new;
+ (Class)class;
- (id)init;
- (void)dealloc;
- (void)performSelector:(SEL)aSelector withObject:(id)argument afterDelay:(NSTimeInterval)delay;
@end
