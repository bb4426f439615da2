#include "support/app.h"

#include <AppKit/AppKit.h>

// Replaces a method of Foundation's, so that nothing connects to a notification daemon. Test
// programs run beside one another and end at any time: none of them may wait for, or lose, another
// one's daemon.
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
