// A dark disc with a white wedge that turns while a picture is being made. Each drawing advances
// the wedge, at most 30 times a second; the owner redraws the view from a timer. Main thread.
#pragma once

#include <AppKit/AppKit.h>

@interface DVCircularProgressView : NSView {
  @private
    double currentProgress;     // the wedge's phase, 0 to 1
    double lastProgressUpdate;  // when the phase last advanced, in seconds
}
@property (assign, nonatomic) double currentProgress;
@property (assign, nonatomic) double lastProgressUpdate;
@end
