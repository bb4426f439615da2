// The hover window: a large picture of a file above the menus, with a turning disc until the
// picture is ready. Main thread, except `path`.
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
    uint32_t production;  // counts the pictures started; only the last one is shown
    uint32_t produced;    // the last production that has finished
}
// The file shown. Setting a new file that exists and is not a folder starts a new picture. Any
// thread may read it.
@property (retain) NSURL* path;

// Whether the window is shown. A window that is fading out counts as hidden.
- (BOOL)isVisible;
// Shows the window, if it is hidden, with the file under the pointer.
- (void)showPreviewWindow:(id)sender;
- (void)hidePreviewWindow:(id)sender;
// If the window is shown and under the pointer, moves it to the other side of the screen.
- (void)handleMouseMoved;
- (void)generatePreview;
- (void)prepareProgressIndicator;
- (void)configureAnimationsForView:(NSView*)view;
- (void)updateProgress:(NSTimer*)timer;
@end
