// Arrays, dictionaries and data.
#pragma once

#include <Foundation/NSObject.h>

@interface NSArray : NSObject <NSCopying, NSFastEnumeration>
+ (id)arrayWithObject:(id)object;
+ (id)arrayWithObjects:(const id[])objects count:(NSUInteger)count;
- (NSUInteger)count;
- (id)objectAtIndex:(NSUInteger)index;
- (NSArray*)sortedArrayUsingDescriptors:(NSArray*)descriptors;
@end

@interface NSMutableArray : NSArray
+ (id)arrayWithCapacity:(NSUInteger)capacity;
- (id)initWithCapacity:(NSUInteger)capacity;
- (void)addObject:(id)object;
- (void)removeAllObjects;
@end

@interface NSDictionary : NSObject <NSCopying, NSFastEnumeration>
+ (id)dictionaryWithObject:(id)object forKey:(id)key;
+ (id)dictionaryWithObjects:(const id[])objects forKeys:(const id[])keys count:(NSUInteger)count;
- (id)objectForKey:(id)key;
@end

@interface NSData : NSObject <NSCopying>
- (NSUInteger)length;
@end

@interface NSSortDescriptor : NSObject <NSCopying>
- (id)initWithKey:(NSString*)key ascending:(BOOL)ascending;
@end
