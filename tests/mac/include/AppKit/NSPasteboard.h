#pragma once

#include <Foundation/Foundation.h>

extern "C" {
extern NSString* NSDragPboard;
extern NSString* NSFilenamesPboardType;
}

@interface NSPasteboard : NSObject
+ (NSPasteboard*)pasteboardWithName:(NSString*)name;
- (NSInteger)declareTypes:(NSArray*)types owner:(id)owner;
- (BOOL)setPropertyList:(id)propertyList forType:(NSString*)type;
- (BOOL)writeObjects:(NSArray*)objects;
@end
