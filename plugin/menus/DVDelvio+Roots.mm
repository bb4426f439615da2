#include "menus/DVDelvio+Roots.h"

#include <CoreFoundation/CoreFoundation.h>

#include "menus/DVDelvio+Population.h"
#include "support/dv_log.h"
#include "tree/dv_roots.h"
#include "tree/dv_scan.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

NSArray* running_applications_by_name() {
    NSSortDescriptor* by_name = [[[NSSortDescriptor alloc] initWithKey:@"localizedName"
                                                             ascending:YES] autorelease];
    NSArray* applications = [[NSWorkspace sharedWorkspace] runningApplications];
    return [applications sortedArrayUsingDescriptors:@[ by_name ]];
}

const char* path_of_application(NSRunningApplication* application) {
    const char* bundle = [[[application bundleURL] path] UTF8String];
    return bundle ? bundle : [[[application executableURL] path] UTF8String];
}

// The entries of an application's list of recent documents, or nil.
NSArray* recent_entries(NSString* application_identifier) {
    NSString* domain = [NSString stringWithFormat:@"%@.LSSharedFileList", application_identifier];
    id value =
        [(id)CFPreferencesCopyAppValue(CFSTR("RecentDocuments"), (CFStringRef)domain) autorelease];
    if (![value isKindOfClass:[NSDictionary class]]) return nil;
    NSArray* entries = [value objectForKey:@"CustomListItems"];
    return [entries isKindOfClass:[NSArray class]] ? entries : nil;
}

const char* path_of_recent_entry(NSDictionary* entry) {
    if (![entry isKindOfClass:[NSDictionary class]]) return nullptr;
    NSData* bookmark = [entry objectForKey:@"Bookmark"];
    if (![bookmark isKindOfClass:[NSData class]]) return nullptr;
    NSURL* url = [NSURL URLByResolvingBookmarkData:bookmark
                                           options:NSURLBookmarkResolutionWithoutUI |
                                                   NSURLBookmarkResolutionWithoutMounting
                                     relativeToURL:nil
                               bookmarkDataIsStale:nullptr
                                             error:nullptr];
    return [[url path] UTF8String];
}

}  // namespace

@implementation DVDelvio (RootTrees)

- (void)createUserTrees {
    if (dv->custom && dvEnableDebugOutput) {
        dvdprintf("Delvio: WARNING; we still have a valid custom-folders pointer..\n");
    }
    dv_tree_t *current = nullptr, *tail = nullptr;
    dv_add_user_directories(dv, &current, &tail, &dv->custom, 0, 0);
    if (dvEnableDebugOutput) dvdprintf("Delvio: Creating open-with menu..\n");
    if (!dv->open_with) dv->open_with = dv_build_open_with_tree(dv);
    [self createRunningAppsList];
    if (dvEnableDebugOutput) dvdprintf("Delvio: Done handling user dirs\n");
}

- (void)createRunningAppsList {
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Creating running apps list: %p %d\n", dv->running_apps,
                  dv->runningAppsInOpenWithMenu);
    }
    if (dv->running_apps || !dv->runningAppsInOpenWithMenu) return;
    const uint32_t flags = dv_get_flags(dv);
    dv_tree_t* tail = nullptr;
    int count = 0;
    for (NSRunningApplication* application in running_applications_by_name()) {
        if ([application activationPolicy] != NSApplicationActivationPolicyRegular) continue;
        const char* path = path_of_application(application);
        if (!path) continue;
        if (dvEnableDebugOutput) dvdprintf("Delvio: Got running app path: %s\n", path);
        dv_update_ptrs(dv_build_single_elem(path, flags, DV_ORIGIN_APP_LIST), &tail,
                       &dv->running_apps);
        count++;
    }
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Added %d items to running apps list [%p]\n", count, dv->running_apps);
    }
}

- (dv_tree_t*)getRecentItemsForElem:(dv_tree_t*)elem {
    NSString* path = [DVDelvio stringPathForTree:elem];
    NSBundle* bundle = path ? [NSBundle bundleWithPath:path] : nil;
    if (!bundle) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: No app bundle for path '%s'\n", path ? [path UTF8String] : "");
        }
        return nullptr;
    }
    const uint32_t flags = dv_get_flags(dv);
    dv_tree_t *head = nullptr, *tail = nullptr;
    for (NSDictionary* entry in recent_entries([bundle bundleIdentifier])) {
        const char* document = path_of_recent_entry(entry);
        if (!document) continue;
        dv_update_ptrs(dv_build_single_elem(document, flags, elem->origin), &tail, &head);
    }
    return head;
}

@end
