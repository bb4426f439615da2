#include "popup/shown_menu.h"

#include <host/menu_tracking.h>
#include <host/process.h>

#include <fcntl.h>
#include <unistd.h>

#include "command/exit_signals.h"
#include "popup/asked_operations.h"

NSPoint popup_point(const MenuRequest& request, const PreparedMenuStage* stage) {
    int x = request.x, y = request.y;
    const bool is_known = request.has_point || (stage && stage->pointer(&x, &y));
    if (!is_known) return [NSEvent mouseLocation];
    // AppKit's coordinates begin at the lower left corner of the first screen.
    const NSRect screen = [[[NSScreen screens] objectAtIndex:0] frame];
    return NSMakePoint(x, NSMaxY(screen) - y);
}

@implementation MenuEnder

- (void)watchForSignals {
    if (pipe2(_ends, O_CLOEXEC | O_NONBLOCK) != 0) return;
    _signals = [[NSFileHandle alloc] initWithFileDescriptor:_ends[0]];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(endMenu:)
                                                 name:NSFileHandleDataAvailableNotification
                                               object:_signals];
    [_signals waitForDataInBackgroundAndNotifyForModes:@[
        NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode
    ]];
    set_signal_descriptor(_ends[1]);
}

- (void)endMenu:(NSNotification*)notification {
    (void)notification;
    [[MenuSession current] cancel];
    end_modal_session();
}

- (void)stop {
    if (!_signals) return;
    set_signal_descriptor(-1);
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [_signals closeFile];  // without this, the run loop keeps polling it
    [_signals release];
    _signals = nil;
    close(_ends[1]);
}

@end
