// The smallest program of the toolkit that shows something: one empty window.
#include <AppKit/AppKit.h>

int main() {
    @autoreleasepool {
        [NSApplication sharedApplication];
        const CGFloat height = NSHeight([[[NSScreen screens] objectAtIndex:0] frame]);
        NSWindow* window =
            [[NSWindow alloc] initWithContentRect:NSMakeRect(100, height - 300, 200, 200)
                                        styleMask:NSBorderlessWindowMask
                                          backing:NSBackingStoreBuffered
                                            defer:NO];
        [window setBackgroundColor:[NSColor whiteColor]];
        [window orderFrontRegardless];
        [NSApp run];
    }
}
