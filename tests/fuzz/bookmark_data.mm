// Bookmark data, which other programs' lists of recent documents carry.
#import <Foundation/Foundation.h>

#include "no_folders.h"
#include "require.h"

using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    @autoreleasepool {
        NSData* data = [NSData dataWithBytes:bytes length:size];
        NSError* error = nil;
        BOOL is_stale = YES;
        NSURL* url = [NSURL URLByResolvingBookmarkData:data
                                               options:0
                                         relativeToURL:nil
                                   bookmarkDataIsStale:&is_stale
                                                 error:&error];
        require((url == nil) == (error != nil), "an address or an error");
        require(!is_stale, "never stale");
        if (!url) return 0;
        require([url isFileURL], "a file's address");
        require(![url query] && ![url fragment], "an address of a path alone");
        NSData* again = [[url absoluteString] dataUsingEncoding:NSUTF8StringEncoding];
        NSURL* same = [NSURL URLByResolvingBookmarkData:again
                                                options:0
                                          relativeToURL:nil
                                    bookmarkDataIsStale:nullptr
                                                  error:nullptr];
        require([[same path] isEqual:[url path]], "a round trip");
    }
    return 0;
}
