#include <AppKit/AppKit.h>
#include <AppKit/MenuTracking.h>

@implementation NSMenu (MacMenuMethods)

- (void)removeAllItems {
    // From the end: nothing moves up, so this is linear.
    for (NSInteger i = [self numberOfItems]; i-- > 0;) [self removeItemAtIndex:i];
}

// There are no descriptor-based menu plug-ins here.
- (void)_setContextMenuPluginAEDesc:(const struct AEDesc*)descriptor {
    (void)descriptor;
}

@end
