#include "support/app.h"

#include <AppKit/AppKit.h>

// Of Foundation's. Test programs run beside one another and end at any time: none waits for, or
// loses, the notification daemon of another.
@interface NSDistributedNotificationCenter (Alone)
- (void)_connect;
@end

@implementation NSDistributedNotificationCenter (Alone)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"
- (void)_connect {
}
#pragma clang diagnostic pop
@end

namespace test {

void start_application() {
    if (NSApp) return;
    NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
    NSMutableDictionary* arguments = [NSMutableDictionary
        dictionaryWithDictionary:[defaults volatileDomainForName:NSArgumentDomain]];
    [arguments setObject:[NSArray array] forKey:@"GSAppKitUserBundles"];
    [defaults removeVolatileDomainForName:NSArgumentDomain];
    [defaults setVolatileDomain:arguments forName:NSArgumentDomain];
    [NSApplication sharedApplication];
    [NSApp finishLaunching];
}

}  // namespace test
