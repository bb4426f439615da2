#include "support/app.h"

#include <AppKit/AppKit.h>

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
