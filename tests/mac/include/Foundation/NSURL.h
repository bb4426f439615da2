#pragma once

#include <Foundation/NSObject.h>

enum {
    NSURLBookmarkResolutionWithoutUI = (1UL << 8),
    NSURLBookmarkResolutionWithoutMounting = (1UL << 9)
};
typedef NSUInteger NSURLBookmarkResolutionOptions;

@interface NSURL : NSObject <NSCopying>
+ (id)fileURLWithPath:(NSString*)path;
+ (id)URLByResolvingBookmarkData:(NSData*)bookmarkData
                         options:(NSURLBookmarkResolutionOptions)options
                   relativeToURL:(NSURL*)relativeURL
             bookmarkDataIsStale:(BOOL*)isStale
                           error:(NSError**)error;
- (NSString*)path;
@end
