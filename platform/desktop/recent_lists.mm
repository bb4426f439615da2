// The recent documents as the Mac keeps them: in a preferences domain beside the application's own,
// where the system finds the list of its Open Recent menu.
#import <Foundation/Foundation.h>

#include "corefoundation/preferences_sources.h"
#include "desktop/recent_documents.h"

namespace {

// As many as the Mac's lists hold, unless the user asks for more.
const size_t documents_in_list = 10;

NSString* const suffix = @".LSSharedFileList";

NSDictionary* item_of(const std::string& address) {
    NSData* bookmark = [NSData dataWithBytes:address.data() length:address.size()];
    return [NSDictionary dictionaryWithObject:bookmark forKey:@"Bookmark"];
}

CFPropertyListRef copy_recent_documents(CFStringRef key, CFStringRef domain) {
    if (![(NSString*)key isEqualToString:@"RecentDocuments"]) return nullptr;
    @autoreleasepool {
        NSString* name = (NSString*)domain;
        NSString* identifier = [name substringToIndex:[name length] - [suffix length]];
        NSMutableArray* items = [NSMutableArray array];
        const char* text = [identifier UTF8String];
        for (const auto& address : files::recent_documents(text ? text : "", documents_in_list)) {
            [items addObject:item_of(address)];
        }
        if ([items count] == 0) return nullptr;
        return [[NSDictionary dictionaryWithObject:items forKey:@"CustomListItems"] retain];
    }
}

}  // namespace

@interface RecentLists : NSObject
@end

@implementation RecentLists

+ (void)load {
    add_preferences_source(".LSSharedFileList", copy_recent_documents);
}

@end
