// The hover window: a large picture of a file above the menus, with a turning disc until the
// picture is there. Main thread, but for `path`.
#pragma once

#include <AppKit/AppKit.h>

#include <stdint.h>

@class DVCircularProgressView;

@interface DVPreviewWindowController : NSObject {
  @private
    NSURL* path;
    NSWindow* window;      // owned
    NSImageView* imgView;  // owned
    NSTimer* progressTimer;
    DVCircularProgressView* progress;  // owned
    BOOL visible;
    uint32_t production;  // counts the pictures begun; only the last one's result is shown
    uint32_t produced;    // the last production that has ended
}
// The file shown. A new one that is there and no folder begins a new picture. Reads on any thread.
@property (retain) NSURL* path;

// Whether the window is shown; it may still be fading out when it is not.
- (BOOL)isVisible;
// Shows the window, if it is not shown yet, with the file under the pointer.
- (void)showPreviewWindow:(id)sender;
- (void)hidePreviewWindow:(id)sender;
// Moves the window, while it is shown, out of the pointer's way to the other side of the screen.
- (void)handleMouseMoved;
- (void)generatePreview;
- (void)prepareProgressIndicator;
- (void)configureAnimationsForView:(NSView*)view;
- (void)updateProgress:(NSTimer*)timer;
@end
