// What GNUstep's Foundation lacks, under the Mac's names.
#pragma once

#include_next <Foundation/Foundation.h>

@interface NSURL (Bookmarks)
// Bookmark data is the bytes of a "file:" address here. Nil, and *error, when the file is not there
// or the data names no file of this machine. Nothing is mounted and nobody is asked, whatever the
// options. Data is never stale: a file that has moved is not found again. `isStale` and `error` may
// be null.
+ (instancetype)URLByResolvingBookmarkData:(NSData*)data
                                   options:(NSURLBookmarkResolutionOptions)options
                             relativeToURL:(NSURL*)relative
                       bookmarkDataIsStale:(BOOL*)isStale
                                     error:(NSError**)error;
@end
