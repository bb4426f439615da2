// The parts of the items that show a disc. Main thread.
#pragma once

#include <AppKit/AppKit.h>

@class DVCircularProgressView;

// A view of 32 by 32 points with the disc in its middle; the caller owns both.
NSView* create_disc_view(DVCircularProgressView** disc);

@protocol DVProgressUpdating
- (void)updateProgress:(NSTimer*)timer;
@end

// A repeating timer that sends updateProgress: 30 times a second while menus track, which is the
// only time when an item is visible. The target is not retained: it invalidates the timer when it
// dies.
NSTimer* start_disc_timer(id<DVProgressUpdating> target);
