#include "gworkspace/icons.h"

#include <AppKit/AppKit.h>
#include <host/file_icons.h>
#include <objc/runtime.h>

@interface NSObject (DelvioGWorkspaceIcons)
- (NSImage*)delvioIconOfSize:(int)size forNode:(id)node;
@end

@implementation NSObject (DelvioGWorkspaceIcons)

- (NSImage*)delvioIconOfSize:(int)size forNode:(id)node {
    use_stock_file_icons(YES);
    @try {
        return [self delvioIconOfSize:size forNode:node];
    } @finally {
        use_stock_file_icons(NO);
    }
}

@end

void keep_gworkspace_icons() {
    Class source = objc_lookUpClass("FSNodeRep");
    SEL replacement = @selector(delvioIconOfSize:forNode:);
    Method ours = class_getInstanceMethod([NSObject class], replacement);
    Method theirs = class_getInstanceMethod(source, sel_registerName("iconOfSize:forNode:"));
    if (!theirs) return;
    // Gives the class an entry of its own, since the exchange must leave all other classes alone.
    class_addMethod(source, replacement, method_getImplementation(ours),
                    method_getTypeEncoding(ours));
    method_exchangeImplementations(theirs, class_getInstanceMethod(source, replacement));
}
