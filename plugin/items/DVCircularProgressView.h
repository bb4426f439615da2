// A dark disc with a white wedge that turns while something is being made. Each drawing moves it
// on, at most 30 times a second; whoever shows it redraws it from a timer. Main thread.
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
