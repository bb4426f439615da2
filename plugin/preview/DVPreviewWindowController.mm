#include "preview/DVPreviewWindowController.h"

#include <QuartzCore/QuartzCore.h>
#include <dispatch/dispatch.h>

#include "controller/DVDelvio.h"
#include "items/DVCircularProgressView.h"
#include "preview/DVDelvio+HoverPreview.h"
#include "preview/NSWindow+Fading.h"
#include "preview/dv_pictures.h"
#include "support/dv_log.h"

namespace {

constexpr CGFloat window_side = 512, progress_side = 128;
constexpr NSTimeInterval progress_interval = 1.0 / 30, fade_duration = 0.5;

NSWindow* create_window() {
    const NSRect content = NSMakeRect(0, 0, window_side, window_side);
    NSWindow* window = [[NSWindow alloc] initWithContentRect:content
                                                   styleMask:NSBorderlessWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
    [window setOpaque:NO];
    [window setBackgroundColor:[NSColor colorWithDeviceRed:0 green:0 blue:0 alpha:0]];
    [window setLevel:CGWindowLevelForKey(kCGPopUpMenuWindowLevelKey) + 1];
    [window setReleasedWhenClosed:NO];
    [[window contentView] setWantsLayer:YES];
    return window;
}

NSImageView* create_image_view() {
    const NSRect frame = NSMakeRect(0, 0, window_side, window_side);
    NSImageView* view = [[NSImageView alloc] initWithFrame:frame];
    [view setImageFrameStyle:NSImageFrameNone];
    [view setImageScaling:NSImageScaleProportionallyDown];
    [view setImageAlignment:NSImageAlignCenter];
    [view setEditable:NO];
    return view;
}

DVCircularProgressView* create_progress_view() {
    const CGFloat origin = (window_side - progress_side) / 2;
    const NSRect frame = NSMakeRect(origin, origin, progress_side, progress_side);
    return [[DVCircularProgressView alloc] initWithFrame:frame];
}

bool is_plain_file(NSURL* url) {
    BOOL is_folder = NO;
    return [[NSFileManager defaultManager] fileExistsAtPath:[url path] isDirectory:&is_folder] &&
           !is_folder;
}

// A picture that a background queue makes for the window.
struct production_t {
    DVPreviewWindowController* controller;  // retained
    uint32_t number;
    CGImageRef image;  // owned
};

}  // namespace

@interface DVPreviewWindowController (Productions)
- (void)dvEndProduction:(uint32_t)number withImage:(CGImageRef)image;
@end

namespace {

void show_picture(void* context) {
    auto* work = static_cast<production_t*>(context);
    [work->controller dvEndProduction:work->number withImage:work->image];
    CGImageRelease(work->image);
    [work->controller release];
    delete work;
}

void make_picture(void* context) {
    auto* work = static_cast<production_t*>(context);
    if (dvEnableDebugOutput) dvdprintf("Delvio: Generating preview image\n");
    delvio_t* dv = [[DVDelvio sharedDelvio] getDV];
    work->image = dv_create_picture(dv, [work->controller path], window_side, nullptr);
    dispatch_async_f(dispatch_get_main_queue(), work, show_picture);
}

}  // namespace

@implementation DVPreviewWindowController

- (instancetype)init {
    self = [super init];
    if (!self) return nil;
    window = create_window();
    imgView = create_image_view();
    progress = create_progress_view();
    return self;
}

- (void)dealloc {
    [self setPath:nil];
    [imgView removeFromSuperview];
    [imgView release];
    [progress release];
    [window orderOut:nil];
    [window release];
    [progressTimer invalidate];
    imgView = nil;
    window = nil;
    progressTimer = nil;
    [super dealloc];
}

- (BOOL)isVisible {
    return visible;
}

- (void)updateProgress:(NSTimer*)timer {
    (void)timer;
    [progress setNeedsDisplay:YES];
}

- (void)configureAnimationsForView:(NSView*)view {
    CATransition* transition = [CATransition animation];
    [transition setType:kCATransitionFade];
    [transition setSubtype:kCATransitionFromLeft];
    [transition setDuration:fade_duration];
    [view setAnimations:[NSDictionary dictionaryWithObject:transition forKey:@"subviews"]];
}

- (void)prepareProgressIndicator {
    [self dvStartProgressTimer];
    NSView* content = [window contentView];
    [self configureAnimationsForView:content];
    if ([imgView superview] == content) {
        [[content animator] replaceSubview:imgView with:progress];
    } else {
        [[content animator] addSubview:progress];
    }
}

- (void)dvStartProgressTimer {
    if (progressTimer) return;
    progressTimer = [NSTimer timerWithTimeInterval:progress_interval
                                            target:self
                                          selector:@selector(updateProgress:)
                                          userInfo:nil
                                           repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:progressTimer forMode:NSEventTrackingRunLoopMode];
}

- (void)dvStopProgressTimer {
    [progressTimer invalidate];
    progressTimer = nil;
}

- (void)showPreviewWindow:(id)sender {
    if (!visible) {
        [window dvOrderFront:sender];
        visible = YES;
        if ([imgView superview]) [[window contentView] replaceSubview:imgView with:progress];
        [self handleMouseMoved];
    }
    [self setPath:[[DVDelvio sharedDelvio] previewItemURL]];
    [self dvShowPictureAtHand];
}

// When the file is the same as last time, no new picture is started, so the disc must not stay.
- (void)dvShowPictureAtHand {
    if (produced != production) {
        [self dvStartProgressTimer];
    } else if ([progress superview] && production > 0) {
        [[window contentView] replaceSubview:progress with:imgView];
    }
}

- (void)hidePreviewWindow:(id)sender {
    if (!visible) return;
    visible = NO;
    [window dvOrderOut:sender];
    [self dvStopProgressTimer];
}

- (NSURL*)path {
    @synchronized(self) {
        return [[path retain] autorelease];
    }
}

- (void)setPath:(NSURL*)url {
    NSURL* previous = path;
    @synchronized(self) {
        path = [url retain];
    }
    if (url && ![url isEqual:previous]) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Set preview path: %s\n", [[url description] UTF8String]);
        }
        if (is_plain_file(url)) {
            if (dvEnableDebugOutput) dvdprintf("Delvio: Generating new preview..\n");
            [self generatePreview];
        }
    }
    [previous release];
}

- (void)generatePreview {
    [self prepareProgressIndicator];
    auto* work = new production_t{[self retain], ++production, nullptr};
    dispatch_async_f(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0), work,
                     make_picture);
}

// A picture that is not the newest belongs to a file that is no longer shown.
- (void)dvEndProduction:(uint32_t)number withImage:(CGImageRef)image {
    if (number != production) return;
    produced = number;
    if (image) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: Got preview image\n");
        NSImage* picture = [[NSImage alloc] initWithCGImage:image size:NSZeroSize];
        [imgView setImage:picture];
        [picture release];
    }
    [self dvStopProgressTimer];
    NSView* content = [window contentView];
    [self configureAnimationsForView:content];
    [[content animator] replaceSubview:progress with:imgView];
}

- (void)handleMouseMoved {
    if (!visible) return;
    const NSPoint pointer = [NSEvent mouseLocation];
    NSRect frame = [window frame];
    if (!CGRectContainsPoint(NSRectToCGRect(frame), NSPointToCGPoint(pointer))) return;
    const NSRect area = [[window screen] visibleFrame];
    frame.origin.x = pointer.x < NSMidX(area) ? NSMaxX(area) - NSWidth(frame) : NSMinX(area);
    // The window changes sides but stays in the pointer's half: above stays above.
    frame.origin.y = pointer.y > NSMidY(area) ? NSMaxY(area) - NSHeight(frame) : NSMinY(area);
    [window setFrame:frame display:YES animate:YES];
}

@end
