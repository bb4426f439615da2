#include "appkit/light_start.h"

#include <Foundation/Foundation.h>
#include <host/light_start.h>
#include <objc/runtime.h>

// The back end comes as a bundle, which the application loads as it starts.
@interface BackEndWatcher : NSObject
+ (void)bundleDidLoad:(NSNotification*)notification;
@end

@implementation BackEndWatcher

+ (void)bundleDidLoad:(NSNotification*)notification {
    (void)notification;
    if (!objc_getClass("XGServer")) return;
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    put_off_input_method();
    leave_out_frame_trials();
    end_counters_with_windows();
}

@end

void start_lightly(void) {
    [[NSNotificationCenter defaultCenter] addObserver:[BackEndWatcher class]
                                             selector:@selector(bundleDidLoad:)
                                                 name:NSBundleDidLoadNotification
                                               object:nil];
}
