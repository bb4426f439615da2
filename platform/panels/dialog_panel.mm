#include "panels/dialog_panel.h"

#include "look/menu_text.h"
#include "x11/screens.h"
#include "x11/server_windows.h"

namespace {

const NSTimeInterval keyboard_watch = 0.1;
const double screen_share_above = 0.3;  // of the room that the panel leaves

}  // namespace

@implementation DialogPanel

- (instancetype)initWithView:(NSView*)view title:(NSString*)title {
    // The window is unscaled, as the view scales its own drawing.
    self =
        [super initWithContentRect:[view frame]
                         styleMask:NSTitledWindowMask | NSClosableWindowMask | NSUnscaledWindowMask
                           backing:NSBackingStoreBuffered
                             defer:NO];
    if (!self) return nil;
    [self setReleasedWhenClosed:NO];
    [self setTitle:[NSString stringWithUTF8String:visible_title(title).c_str()] ?: @""];
    [self setHidesOnDeactivate:NO];
    [self setExcludedFromWindowsMenu:YES];
    [self setContentView:view];
    [self setAcceptsMouseMovedEvents:YES];
    [self makeFirstResponder:view];
    return self;
}

- (void)place {
    const Area screen = screen_at(current_pointer().at);
    const NSSize size = [self frame].size;
    const NSPoint corner = screen_point({screen.left, screen.bottom()});
    const double below = (screen.height - size.height) * (1 - screen_share_above);
    [self setFrameOrigin:NSMakePoint(corner.x + (screen.width - size.width) / 2, corner.y + below)];
    make_dialog_window(self);
}

- (void)show {
    [self place];
    [self orderFrontRegardless];
}

- (NSInteger)runModal {
    [self place];
    [NSApp activateIgnoringOtherApps:YES];
    [self makeKeyAndOrderFront:nil];
    give_keyboard_to_window(self);
    NSTimer* timer = [NSTimer timerWithTimeInterval:keyboard_watch
                                             target:self
                                           selector:@selector(keepKeyboard:)
                                           userInfo:nil
                                            repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSModalPanelRunLoopMode];
    const NSInteger code = [NSApp runModalForWindow:self];
    [timer invalidate];
    [self orderOut:nil];
    return code;
}

// GNUstep may hear late that an earlier window has lost the keyboard. It then throws away keys that
// are typed into this window.
- (void)keepKeyboard:(NSTimer*)timer {
    (void)timer;
    if ([self isKeyWindow] || !window_has_keyboard(self)) return;
    [NSApp activateIgnoringOtherApps:YES];
    [self makeKeyWindow];
}

// Sent by the window manager's close button and by everything else that closes a window. It also
// comes while another window is modal; the user then has to answer that window first.
- (void)performClose:(id)sender {
    (void)sender;
    NSWindow* modal = [NSApp modalWindow];
    if (!modal || modal == self || [self worksWhenModal]) [self cancelDialog];
}

// Some window managers minimise even a window that says that it cannot be minimised. No task bar
// has a button that would bring this one back.
- (void)performMiniaturize:(id)sender {
    (void)sender;
    [self orderFrontRegardless];
    if ([NSApp modalWindow] == self) give_keyboard_to_window(self);
}

- (void)cancelDialog {
}

- (BOOL)canBecomeKeyWindow {
    return YES;
}

@end
