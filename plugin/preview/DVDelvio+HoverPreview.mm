#include "preview/DVDelvio+HoverPreview.h"

#include <stdlib.h>

#include "finder/dv_finder.h"
#include "items/DVMenuItem.h"
#include "preview/DVPreviewWindowController.h"
#include "support/dv_log.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

// The delay between two files while the window is already shown, in seconds.
constexpr double delay_between_files = 0.35;

double hover_delay(const delvio_t* dv) {
    return static_cast<double>(static_cast<float>(dv->hoverPreviewsInterval)) / 1000.0;
}

}  // namespace

@implementation DVDelvio (HoverPreview)

- (BOOL)dvOffersHoverPreviews {
    return isInvoked && _proxyMenu && dv->hoverPreviews;
}

- (void)dvPointerMoved {
    if (![self dvOffersHoverPreviews]) return;
    const double delay =
        [previewWindowController isVisible] ? delay_between_files : hover_delay(dv);
    lastMouseMovement = dv_double_time();
    [hoverPreviewTimer invalidate];
    hoverPreviewTimer = [NSTimer scheduledTimerWithTimeInterval:delay
                                                         target:self
                                                       selector:@selector(showPreviewWindow:)
                                                       userInfo:nil
                                                        repeats:NO];
    // Menus track in their own run loop mode.
    [[NSRunLoop currentRunLoop] addTimer:hoverPreviewTimer forMode:NSEventTrackingRunLoopMode];
    [self handleMouseMovedForPreviewWindow];
}

- (void)showPreviewWindow:(NSTimer*)timer {
    // The timer has fired and is no longer valid.
    if (timer == hoverPreviewTimer) hoverPreviewTimer = nil;
    if (![self dvOffersHoverPreviews]) return;
    double threshold = hover_delay(dv);
    BOOL isFolder = NO;
    const BOOL exists =
        [[NSFileManager defaultManager] fileExistsAtPath:[[self previewItemURL] path]
                                             isDirectory:&isFolder];
    const double now = dv_double_time();
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Will show preview window? %d %d && %f %f => %d\n", isFolder, exists, now,
                  lastMouseMovement, now - lastMouseMovement > threshold);
    }
    if (!exists || isFolder) return;
    if ([previewWindowController isVisible]) threshold = delay_between_files;
    if (dv_double_time() - lastMouseMovement <= threshold) return;
    if (dvEnableDebugOutput) dvdprintf("Delvio: Showing preview window..\n");
    [previewWindowController showPreviewWindow:self];
}

- (void)handleMouseMovedForPreviewWindow {
    if ([self dvOffersHoverPreviews]) [previewWindowController handleMouseMoved];
}

- (NSURL*)previewItemURL {
    if (!_currentlyHighlightedItem) return nil;
    char* path = dv_path_for_elem([_currentlyHighlightedItem tree], 0, 0);
    if (!path) return nil;
    NSString* string = [NSString stringWithUTF8String:path];
    free(path);
    return string ? [NSURL fileURLWithPath:string] : nil;
}

- (void)updatePreview {
}

- (NSInteger)numberOfPreviewItemsInPreviewPanel:(QLPreviewPanel*)panel {
    (void)panel;
    return 1;
}

- (id<QLPreviewItem>)previewPanel:(QLPreviewPanel*)panel previewItemAtIndex:(NSInteger)index {
    (void)panel, (void)index;
    return self;
}

- (BOOL)previewPanel:(QLPreviewPanel*)panel handleEvent:(NSEvent*)event {
    (void)panel, (void)event;
    return YES;
}

- (NSRect)previewPanel:(QLPreviewPanel*)panel
    sourceFrameOnScreenForPreviewItem:(id<QLPreviewItem>)item {
    (void)panel, (void)item;
    return NSZeroRect;
}

@end
